#include "app/opendatabase.h"

#include "app/appstate.h"
#include "app/desktopreporter.h"
#include "app/dlgselectdb.h"
#include "db/project.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QStandardPaths>

namespace app {

namespace {

engine::NumberSymbols localeSymbols() {
  const QLocale locale;
  engine::NumberSymbols symbols;
  if (!locale.groupSeparator().isEmpty()) symbols.group = locale.groupSeparator().front();
  if (!locale.decimalPoint().isEmpty()) symbols.decimal = locale.decimalPoint().front();
  if (!locale.negativeSign().isEmpty()) symbols.minus = locale.negativeSign().front();
  return symbols;
}

}  // namespace

QString dataFolder() {
  const QString beside = QCoreApplication::applicationDirPath() + QStringLiteral("/Data/");
  if (QFileInfo(beside).isDir()) return beside;
  const QString perUser =
      QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/Data/");
  QDir().mkpath(perUser);
  return perUser;
}

void ensureDemoProject(const QString& folder) {
  if (!QDir(folder).entryList({QStringLiteral("*.delvane")}, QDir::Files).isEmpty()) return;
  db::createProject(folder + db::demoProjectFileName(), true);
}

OpenResult OpenDatabase(AppState& state, QWidget* parent, bool atStartup,
                        const std::function<bool()>& beforeReplacing) {
  const QString folder = dataFolder();
  if (atStartup) {
    try {
      ensureDemoProject(folder);
    } catch (const db::Error& e) {
      // The chooser still opens: the user may browse for a project elsewhere.
      state.reporter->messageBox(e.message(), engine::Reporter::Icon::Exclamation);
    }
  }
  dlgSelectDB chooser(folder, *state.reporter, parent);
  if (chooser.exec() != QDialog::Accepted) return OpenResult::Cancelled;
  return adoptProject(state, chooser.takeConnection(), chooser.strDatabasePath(), beforeReplacing);
}

OpenResult adoptProject(AppState& state, std::unique_ptr<db::Connection> connection,
                        const QString& path, const std::function<bool()>& beforeReplacing) {
  auto session = std::make_unique<engine::EngineSession>(*connection, *state.reporter);
  session->setNumberSymbols(localeSymbols());
  if (session->LoadDesignProfile()) return OpenResult::Refused;
  if (beforeReplacing && !beforeReplacing()) return OpenResult::Cancelled;

  // The engine refers to the connection, so it goes first.
  state.engine.reset();
  state.cnProject.reset();
  state.cnProject = std::move(connection);
  state.engine = std::move(session);
  state.strDatabasePath = path;
  state.lngPackageID = 0;
  state.lngSectionID = 0;
  state.strPackageName.clear();
  state.strSectionDescription.clear();
  return OpenResult::Opened;
}

}  // namespace app
