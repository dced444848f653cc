#pragma once

#include <QDialog>

class QLabel;

namespace app {

// The About box: the program's version and product notice; a click or any key closes it.
class frmSplash : public QDialog {
  Q_OBJECT

 public:
  explicit frmSplash(QWidget* parent = nullptr);

  QLabel* lblVersion() const { return m_lblVersion; }
  QLabel* lblNotice() const { return m_lblNotice; }

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QLabel* m_lblVersion;
  QLabel* m_lblNotice;
};

}  // namespace app
