#include "cli/cli.h"

#include <QGuiApplication>

namespace {

// Text in the drawn sheets needs fonts, and fonts need a GUI application. Without a display
// (a server, a build job) it runs on the offscreen platform instead of failing to start.
void chooseOffscreenWithoutDisplay() {
  for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
    if (!qEnvironmentVariableIsEmpty(name)) return;
  qputenv("QT_QPA_PLATFORM", "offscreen");
}

}  // namespace

int main(int argc, char* argv[]) {
  chooseOffscreenWithoutDisplay();
  QGuiApplication app(argc, argv);
  QTextStream out(stdout);
  QTextStream err(stderr);
  return cli::run(QCoreApplication::arguments(), out, err);
}
