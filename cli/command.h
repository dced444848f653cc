#pragma once

#include "cli/cli.h"
#include "db/project.h"
#include "engine/reporter.h"

#include <QCommandLineParser>
#include <QString>
#include <QTextStream>

#include <memory>
#include <optional>

namespace db {
class Connection;
}

namespace cli {

// What every command gets: its parsed options and the two output streams.
struct Context {
  QCommandLineParser& parser;
  QTextStream& out;
  QTextStream& err;
  QString program;
  QString command;
};

// One sub-command: its name, a one-line summary for the overview, how it sets up its options
// and how it runs. run() returns the exit code.
struct Command {
  const char* name;
  const char* summary;
  void (*addOptions)(QCommandLineParser& parser);
  int (*run)(Context& context);
};

// Prints the error and the command's usage to err and returns kUsage.
int usageError(Context& context, const QString& message);

// Opens a project file; on failure writes one line naming the file and the reason to err and
// returns null (the command then returns kCannotOpen). Commands that only read open it with
// db::ProjectAccess::Read and leave the file as it was.
std::unique_ptr<db::Connection> openProjectOrReport(Context& context, const QString& path,
                                                    db::ProjectAccess access);

// Parses a whole decimal number option as a single / a 32-bit key; nullopt on bad text.
std::optional<float> parseMeasure(const QString& text);
std::optional<std::int32_t> parseKey(const QString& text);

// Writes error-list lines to stderr, one per line, as the engine reports them; message boxes
// as lines too. Progress and status-bar texts are dropped.
class ConsoleReporter : public engine::Reporter {
 public:
  explicit ConsoleReporter(QTextStream& err) : m_err(err) {}
  void ShowError(const QString& message) override;
  void messageBox(const QString& text, Icon icon) override;
  void progressStart(const QString&, int, bool) override {}
  void progressValue(int) override {}
  void progressEnd() override {}
  void statusText(int, const QString&) override {}

  const QStringList& errors() const { return m_errors; }

 private:
  QTextStream& m_err;
  QStringList m_errors;
};

// The commands of each file, collected by run().
extern const Command kProjectCommands[];
extern const int kProjectCommandCount;
extern const Command kFormulaCommands[];
extern const int kFormulaCommandCount;
extern const Command kDesignCommands[];
extern const int kDesignCommandCount;
extern const Command kExportCommands[];
extern const int kExportCommandCount;
extern const Command kQuantityCommands[];
extern const int kQuantityCommandCount;
extern const Command kPlotCommands[];
extern const int kPlotCommandCount;
extern const Command kViewCommands[];
extern const int kViewCommandCount;
extern const Command kLegacyCommands[];
extern const int kLegacyCommandCount;
extern const Command kSurveyCommands[];
extern const int kSurveyCommandCount;

}  // namespace cli
