#pragma once

#include <QString>
#include <QWidget>

class QTextBrowser;

namespace app {

// The folder of the HTML manual that the build copies beside the program.
QString manualFolder();

// The user's manual in a window of its own: a browser over the HTML pages with buttons to go
// back, forward and to the contents page.
class HelpWindow : public QWidget {
  Q_OBJECT

 public:
  explicit HelpWindow(QWidget* parent = nullptr);

  // Shows folder + "/index.html". On failure returns false and sets error to a sentence that
  // names the file and the reason; the window then shows nothing new.
  bool openContents(const QString& folder, QString& error);

  QTextBrowser* browser() const { return m_browser; }

 private:
  QTextBrowser* m_browser;
};

}  // namespace app
