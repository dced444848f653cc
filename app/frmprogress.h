#pragma once

#include <QWidget>

class QLabel;
class QProgressBar;
class QPushButton;

namespace app {

// The progress window long operations show: a caption bar, the current task text, a bar and,
// for a run that can stop, Cancel. Stays on top of all windows and centres itself on the screen
// whenever its size is set.
class frmProgress : public QWidget {
  Q_OBJECT

 public:
  explicit frmProgress(QWidget* parent = nullptr);

  // caption goes to progressName; maximum becomes the bar's maximum when greater than 0 and
  // is otherwise ignored; showBar shows or hides the bar.
  void SetProperties(const QString& caption, int maximum, bool showBar);
  // Sets the bar's position; a value outside the bar's range is ignored.
  void UpdateValue(int value);

  // Shows or hides Cancel. A click on it is remembered until clearCancel.
  void setCancelVisible(bool visible);
  bool cancelRequested() const { return m_cancelRequested; }
  void clearCancel();

  QLabel* wnTitle() const { return m_wnTitle; }
  QLabel* progressName() const { return m_progressName; }
  QProgressBar* ProgressBar1() const { return m_progressBar1; }
  QPushButton* cmdCancel() const { return m_cmdCancel; }

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void centreOnScreen();

  QLabel* m_wnTitle;
  QLabel* m_progressName;
  QProgressBar* m_progressBar1;
  QPushButton* m_cmdCancel;
  bool m_cancelRequested = false;
};

}  // namespace app
