#include "cli/cli.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>

#include <unistd.h>

namespace {

// Text in the drawn sheets needs fonts, and fonts need a GUI application. Without a display
// (a server, a build job) it runs on the offscreen platform instead of failing to start.
void chooseOffscreenWithoutDisplay() {
  for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
    if (!qEnvironmentVariableIsEmpty(name)) return;
  qputenv("QT_QPA_PLATFORM", "offscreen");
}

// A session without a runtime folder (a cron job, a container) makes Qt warn on every run; the
// folder it would fall back to is given here, so that a script's error output holds only what
// the command says.
void provideRuntimeFolder() {
  if (!qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) return;
  const QString folder = QDir::tempPath() + QStringLiteral("/runtime-") +
                         QString::number(static_cast<qulonglong>(::getuid()));
  if (!QDir().mkpath(folder)) return;
  QFile::setPermissions(folder,
                        QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
  qputenv("XDG_RUNTIME_DIR", QFile::encodeName(folder));
}

}  // namespace

int main(int argc, char* argv[]) {
  chooseOffscreenWithoutDisplay();
  provideRuntimeFolder();
  QGuiApplication app(argc, argv);
  QTextStream out(stdout);
  QTextStream err(stderr);
  return cli::run(QCoreApplication::arguments(), out, err);
}
