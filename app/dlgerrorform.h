#pragma once

#include <QDialog>
#include <QString>

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace app {

// The error list: messages collected line by line while the program goes on. Closing it
// discards the messages with the window (it deletes itself on close).
class dlgErrorForm : public QDialog {
  Q_OBJECT

 public:
  explicit dlgErrorForm(QWidget* parent = nullptr);

  // Appends message as the new last line (the first message becomes the whole text).
  void DisplayMessage(const QString& message);
  // All messages, separated by carriage return and line feed.
  const QString& text() const { return m_text; }

  QPlainTextEdit* ErrText() const { return m_errText; }
  QPushButton* cmdClose() const { return m_cmdClose; }
  QLabel* Image1() const { return m_image1; }

 private:
  QString m_text;
  QPlainTextEdit* m_errText;
  QPushButton* m_cmdClose;
  QLabel* m_image1;
};

}  // namespace app
