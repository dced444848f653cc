#include "app/appstate.h"
#include "app/desktopreporter.h"
#include "app/frmmain.h"
#include "app/opendatabase.h"
#include "app/settings.h"
#include "app/toolicons.h"
#include "app/twips.h"
#include "sheets/mousewheel.h"

#include <QApplication>
#include <QSettings>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QApplication::setOrganizationName(QStringLiteral("Delvane"));
  QApplication::setApplicationName(QStringLiteral("Delvane"));
  QApplication::setApplicationVersion(QStringLiteral(DELVANE_VERSION));
  // The canal cross-section of the tool bar stands for the program in the window frames.
  QApplication::setWindowIcon(app::toolIcon(QStringLiteral("Xsection")));

  app::DesktopReporter reporter;
  sheets::MouseWheelModule mouseWheel;
  app::AppState state;
  state.reporter = &reporter;
  state.mouseWheel = &mouseWheel;

  switch (app::OpenDatabase(state, nullptr, true)) {
    case app::OpenResult::Opened:
      break;
    case app::OpenResult::Cancelled:
      return 0;
    case app::OpenResult::Refused:
      return 1;
  }

  app::frmMain window(state);
  reporter.setParentWindow(&window);
  reporter.setStatusFunction(
      [&window](int panel, const QString& text) { window.setStatusPanel(panel, text); });

  QSettings store;
  app::LoadSettings(store, state.settings);
  app::applyWindowPlacement(window, state.settings);
  window.show();

  const int code = QApplication::exec();
  app::recordWindowPlacement(window, state.settings);
  app::SaveSettings(store, state.settings);
  return code;
}
