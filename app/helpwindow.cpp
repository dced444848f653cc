#include "app/helpwindow.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStyle>
#include <QTextBrowser>
#include <QToolBar>
#include <QUrl>
#include <QVBoxLayout>

namespace app {

QString manualFolder() {
  return QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("manual"));
}

HelpWindow::HelpWindow(QWidget* parent) : QWidget(parent, Qt::Window) {
  setObjectName(QStringLiteral("HelpWindow"));
  setWindowTitle(QStringLiteral("Delvane Help"));
  setAttribute(Qt::WA_DeleteOnClose);
  resize(820, 640);

  m_browser = new QTextBrowser(this);
  m_browser->setOpenExternalLinks(true);

  auto* bar = new QToolBar(this);
  QAction* back = bar->addAction(style()->standardIcon(QStyle::SP_ArrowBack),
                                 QStringLiteral("Back"), m_browser, &QTextBrowser::backward);
  QAction* forward = bar->addAction(style()->standardIcon(QStyle::SP_ArrowForward),
                                    QStringLiteral("Forward"), m_browser, &QTextBrowser::forward);
  bar->addAction(style()->standardIcon(QStyle::SP_DirHomeIcon), QStringLiteral("Contents"),
                 m_browser, &QTextBrowser::home);
  back->setEnabled(false);
  forward->setEnabled(false);
  connect(m_browser, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
  connect(m_browser, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);
  connect(m_browser, &QTextBrowser::sourceChanged, this, [this] {
    const QString title = m_browser->documentTitle();
    setWindowTitle(title.isEmpty() ? QStringLiteral("Delvane Help")
                                   : QStringLiteral("Delvane Help - ") + title);
  });

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(bar);
  layout->addWidget(m_browser);
}

bool HelpWindow::openContents(const QString& folder, QString& error) {
  const QString path = QDir(folder).filePath(QStringLiteral("index.html"));
  QFile file(path);
  if (!QFileInfo(path).isFile()) {
    error = QStringLiteral("The help file ") + QDir::toNativeSeparators(path) +
            QStringLiteral(" could not be opened: the file does not exist.");
    return false;
  }
  if (!file.open(QIODevice::ReadOnly)) {
    error = QStringLiteral("The help file ") + QDir::toNativeSeparators(path) +
            QStringLiteral(" could not be opened: ") + file.errorString() + QLatin1Char('.');
    return false;
  }
  file.close();
  m_browser->setSearchPaths({folder});
  m_browser->setSource(QUrl::fromLocalFile(path));
  return true;
}

}  // namespace app
