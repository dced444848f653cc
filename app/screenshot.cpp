// A documentation tool, not part of the program: opens the demo project in the main window,
// walks to its first section, shows the Initial Levels sheet beside the Quantity Summary and
// saves a picture of the window; with --viewers, also pictures of the two section viewers, the
// cross-section one with a ground point picked.
// Usage: delvane-screenshot OUTPUT.png [WIDTH HEIGHT] [--viewers CROSS.png LONG.png]
#include "app/appstate.h"
#include "app/desktopreporter.h"
#include "app/frmmain.h"
#include "app/frmplotlxsection.h"
#include "app/mdiarrange.h"
#include "app/opendatabase.h"
#include "db/connection.h"
#include "db/project.h"
#include "sheets/frmdatagrid.h"
#include "sheets/gridcontrol.h"
#include "sheets/mousewheel.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPixmap>
#include <QTemporaryDir>
#include <QTextStream>
#include <QWidget>

#include <cstdint>
#include <memory>

namespace {

constexpr std::int32_t kDemoPackageID = 1;
constexpr std::int32_t kDemoSectionID = 1;

void fail(const QString& text) { QTextStream(stderr) << "delvane-screenshot: " << text << '\n'; }

// Runs the event loop for a while so that layouts, repaints and deferred deletes finish.
void settle(int milliseconds) {
  QElapsedTimer timer;
  timer.start();
  while (timer.elapsed() < milliseconds) {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QApplication::processEvents(QEventLoop::AllEvents, 20);
  }
}

// Double-clicks the row of the active sheet whose record has id, as the user would.
bool drillDown(app::frmMain& window, std::int32_t id) {
  sheets::frmDataGrid* sheet = window.activeDataSheet();
  if (!sheet) return false;
  sheet->SeekRecord(id);
  const int row = sheet->grid().Row();
  if (row < 0) return false;
  sheet->grid().SelectRow(row);
  window.DoubleClickHandler(row);
  settle(100);
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QApplication::setOrganizationName(QStringLiteral("Delvane"));
  QApplication::setApplicationName(QStringLiteral("Delvane"));
  QApplication::setApplicationVersion(QStringLiteral(DELVANE_VERSION));

  QStringList arguments = QCoreApplication::arguments();
  QStringList viewerPictures;
  if (const qsizetype at = arguments.indexOf(QStringLiteral("--viewers"));
      at > 0 && at + 2 < arguments.size()) {
    viewerPictures = arguments.mid(at + 1, 2);
    arguments = arguments.mid(0, at);
  }
  if ((arguments.size() != 2 && arguments.size() != 4) ||
      (!viewerPictures.isEmpty() && viewerPictures.size() != 2)) {
    fail(QStringLiteral(
        "usage: delvane-screenshot OUTPUT.png [WIDTH HEIGHT] [--viewers CROSS.png LONG.png]"));
    return 2;
  }
  const QString output = arguments[1];
  const QSize size =
      arguments.size() == 4 ? QSize(arguments[2].toInt(), arguments[3].toInt()) : QSize(1280, 800);

  QTemporaryDir folder;
  if (!folder.isValid()) {
    fail(QStringLiteral("cannot make a temporary folder."));
    return 1;
  }
  const QString path = QDir(folder.path()).filePath(db::demoProjectFileName());

  // Any box the program would show means the picture is not of a normal session.
  QStringList messages;
  app::DesktopReporter reporter;
  reporter.setMessageFunction(
      [&messages](const QString& text, engine::Reporter::Icon) { messages.append(text); });
  sheets::MouseWheelModule mouseWheel;
  app::AppState state;
  state.reporter = &reporter;
  state.mouseWheel = &mouseWheel;

  try {
    db::createProject(path, true);
    if (app::adoptProject(state, db::openProject(path), path) != app::OpenResult::Opened) {
      fail(QStringLiteral("the demo project was refused: ") + messages.join(QStringLiteral("; ")));
      return 1;
    }
  } catch (const db::Error& error) {
    fail(error.message());
    return 1;
  }

  auto window = std::make_unique<app::frmMain>(state);
  reporter.setParentWindow(window.get());
  reporter.setStatusFunction(
      [&window](int panel, const QString& text) { window->setStatusPanel(panel, text); });
  window->setMessageFunction([&messages](QWidget*, const QString& text, const QString&,
                                         sheets::MessageButtons, sheets::MessageIcon) {
    messages.append(text);
    return sheets::MessageAnswer::Yes;
  });
  window->resize(size);
  window->show();
  settle(300);

  window->dataPackage();
  settle(100);
  if (!drillDown(*window, kDemoPackageID) || !drillDown(*window, kDemoSectionID)) {
    fail(QStringLiteral("cannot walk to the demo's first section."));
    return 1;
  }
  window->dataInitial();
  settle(100);
  QMdiSubWindow* levels = window->activeChild();
  window->outputViewQuantity();
  settle(100);
  // Side by side, each window gets the full height; the levels sheet is left active, as after
  // a return from a glance at the quantities.
  app::tileVertical(*window->mdiArea());
  if (levels) window->mdiArea()->setActiveSubWindow(levels);
  settle(500);

  if (window->mdiArea()->subWindowList().size() != 2)
    fail(QStringLiteral("expected two child windows, found ") +
         QString::number(window->mdiArea()->subWindowList().size()) + QStringLiteral("."));
  if (!messages.isEmpty() || reporter.blnErrorListLoaded()) {
    fail(QStringLiteral("the program reported: ") + messages.join(QStringLiteral("; ")));
    return 1;
  }

  if (!window->grab().save(output)) {
    fail(QStringLiteral("cannot write ") + output + QStringLiteral("."));
    return 1;
  }
  QTextStream(stdout) << output << '\n';

  if (!viewerPictures.isEmpty()) {
    for (int mode : {2, 1}) {
      app::frmPlotLXSection* viewer = window->openSectionViewer(static_cast<std::uint8_t>(mode));
      if (!viewer) {
        fail(QStringLiteral("the section viewer did not open."));
        return 1;
      }
      viewer->parentWidget()->showMaximized();
      settle(300);
      // The reading at the centre line of the first cross-section, as a click picks it.
      if (mode == 2) viewer->pictureReleased(viewer->pixelOf(QPointF(0.0, 152.418)));
      settle(200);
      const QString picture = viewerPictures[mode == 2 ? 0 : 1];
      if (!viewer->grab().save(picture)) {
        fail(QStringLiteral("cannot write ") + picture + QStringLiteral("."));
        return 1;
      }
      QTextStream(stdout) << picture << '\n';
      viewer->parentWidget()->close();
      settle(100);
    }
  }
  window.reset();
  return 0;
}
