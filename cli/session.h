#pragma once

#include "cli/command.h"
#include "db/connection.h"
#include "db/schema.h"
#include "engine/session.h"

#include <QCommandLineParser>
#include <QString>

#include <cstdint>
#include <memory>
#include <optional>

namespace cli {

// The option names the commands that work on one section share.
extern const QString kSection;
extern const QString kChainage;
extern const QString kExecuted;
extern const QString kJson;

// FILE and --section ID; sectionHelp describes the section option.
void addFileAndSection(QCommandLineParser& parser, const QString& sectionHelp);
void addFileAndSection(QCommandLineParser& parser);
void addJson(QCommandLineParser& parser);

// The one FILE argument; nullopt (after the usage message, its exit code in code) otherwise.
std::optional<QString> fileArgument(Context& context, int& code);
// The section of --section; nullopt (after the usage message) when missing or not positive.
std::optional<std::int32_t> sectionOption(Context& context, int& code);
// The chainage of --chainage in kilometres, or fallback when it is not given; nullopt (after the
// usage message) on bad text.
std::optional<float> chainageOption(Context& context, float fallback, int& code);

// An open project with an engine session that reports to a console reporter of type Reporter.
template <typename Reporter = ConsoleReporter>
struct ProjectSession {
  std::unique_ptr<db::Connection> connection;
  std::unique_ptr<Reporter> reporter;
  std::unique_ptr<engine::EngineSession> engine;

  // Opens file and starts the session, loading the design profile when asked. Returns the exit
  // code when the project or its profile cannot be opened, else -1.
  int open(Context& context, const QString& file, bool loadDesignProfile,
           db::ProjectAccess access) {
    connection = openProjectOrReport(context, file, access);
    if (!connection) return kCannotOpen;
    reporter = std::make_unique<Reporter>(context.err);
    engine = std::make_unique<engine::EngineSession>(*connection, *reporter);
    if (loadDesignProfile && engine->LoadDesignProfile()) return kCannotOpen;
    return -1;
  }

  // Makes section the current one, as choosing it in the main window does. Returns -1, or the
  // exit code after a message when the project has no such section.
  int useSection(Context& context, std::int32_t section) {
    try {
      if (!db::sectionExists(*connection, section))
        return usageError(context, QStringLiteral("the project has no section ") +
                                       QString::number(section) + QLatin1Char('.'));
    } catch (const db::Error& e) {
      context.err << connection->path() << ": " << e.message() << "\n";
      return kCannotOpen;
    }
    engine->setSection(section);
    return -1;
  }

  // Runs body, turning a database failure into a message naming the file and kCannotOpen.
  template <typename Body>
  int guarded(Context& context, Body body) {
    try {
      return body();
    } catch (const db::Error& e) {
      context.err << connection->path() << ": " << e.message() << "\n";
      return kCannotOpen;
    }
  }
};

}  // namespace cli
