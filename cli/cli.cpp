#include "cli/cli.h"

#include "cli/command.h"
#include "db/project.h"

#include <QFileInfo>

#include <span>
#include <vector>

namespace cli {

namespace {

std::vector<const Command*> allCommands() {
  std::vector<const Command*> all;
  for (int i = 0; i < kProjectCommandCount; ++i) all.push_back(&kProjectCommands[i]);
  for (int i = 0; i < kFormulaCommandCount; ++i) all.push_back(&kFormulaCommands[i]);
  for (int i = 0; i < kDesignCommandCount; ++i) all.push_back(&kDesignCommands[i]);
  for (int i = 0; i < kExportCommandCount; ++i) all.push_back(&kExportCommands[i]);
  for (int i = 0; i < kQuantityCommandCount; ++i) all.push_back(&kQuantityCommands[i]);
  for (int i = 0; i < kPlotCommandCount; ++i) all.push_back(&kPlotCommands[i]);
  for (int i = 0; i < kViewCommandCount; ++i) all.push_back(&kViewCommands[i]);
  for (int i = 0; i < kLegacyCommandCount; ++i) all.push_back(&kLegacyCommands[i]);
  for (int i = 0; i < kSurveyCommandCount; ++i) all.push_back(&kSurveyCommands[i]);
  return all;
}

QString overview(const QString& program) {
  QString text = QStringLiteral(
                     "Usage: %1 COMMAND [options]\n\nDelvane's command line: the same "
                     "engine as the desktop program.\n\nCommands:\n")
                     .arg(program);
  for (const Command* c : allCommands())
    text += QStringLiteral("  %1%2\n")
                .arg(QString::fromLatin1(c->name), -18)
                .arg(QString::fromLatin1(c->summary));
  text += QStringLiteral(
              "\nRun '%1 COMMAND --help' for the options of a command.\nExit codes: 0 "
              "ok, 1 data problems, 2 usage, 3 file cannot be opened.\n")
              .arg(program);
  return text;
}

// The command's help, its usage line naming the command ("Usage: delvane-cli areas [options]
// FILE") where Qt would name the program's path.
QString commandHelp(const Context& context) {
  QString text = context.parser.helpText();
  const QString usage = QStringLiteral("Usage: ");
  const qsizetype end = text.indexOf(QStringLiteral(" [options]"));
  if (text.startsWith(usage) && end > 0 && !text.left(end).contains(QLatin1Char('\n')))
    text.replace(usage.size(), end - usage.size(),
                 context.program + QLatin1Char(' ') + context.command);
  return text;
}

}  // namespace

int usageError(Context& context, const QString& message) {
  context.err << context.program << " " << context.command << ": " << message << "\n\n"
              << commandHelp(context);
  context.err.flush();
  return kUsage;
}

std::unique_ptr<db::Connection> openProjectOrReport(Context& context, const QString& path,
                                                    db::ProjectAccess access) {
  try {
    return db::openProject(path, access);
  } catch (const db::Error& e) {
    context.err << e.message() << "\n";
    context.err.flush();
    return nullptr;
  }
}

std::optional<float> parseMeasure(const QString& text) {
  bool ok = false;
  const double v = text.trimmed().toDouble(&ok);
  if (!ok) return std::nullopt;
  return static_cast<float>(v);
}

std::optional<std::int32_t> parseKey(const QString& text) {
  bool ok = false;
  const int v = text.trimmed().toInt(&ok);
  if (!ok) return std::nullopt;
  return v;
}

void ConsoleReporter::ShowError(const QString& message) {
  m_errors.append(message);
  m_err << message << "\n";
  m_err.flush();
}

void ConsoleReporter::messageBox(const QString& text, Icon) {
  m_err << text << "\n";
  m_err.flush();
}

int run(const QStringList& args, QTextStream& out, QTextStream& err) {
  const QString program =
      args.isEmpty() ? QStringLiteral("delvane-cli") : QFileInfo(args.first()).fileName();
  if (args.size() < 2 || args[1] == QLatin1String("--help") || args[1] == QLatin1String("-h") ||
      args[1] == QLatin1String("help")) {
    (args.size() < 2 ? err : out) << overview(program);
    return args.size() < 2 ? kUsage : kOk;
  }
  if (args[1] == QLatin1String("--version")) {
    out << "delvane-cli " << DELVANE_VERSION << "\n";
    return kOk;
  }
  const Command* command = nullptr;
  for (const Command* c : allCommands())
    if (args[1] == QLatin1String(c->name)) command = c;
  if (!command) {
    err << program << ": unknown command '" << args[1] << "'.\n\n" << overview(program);
    return kUsage;
  }

  QCommandLineParser parser;
  parser.setApplicationDescription(QString::fromLatin1(command->summary));
  parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
  const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                QStringLiteral("Show the options of this command."));
  parser.addOption(help);
  command->addOptions(parser);
  Context context{parser, out, err, program, QString::fromLatin1(command->name)};
  if (!parser.parse(args.mid(1))) return usageError(context, parser.errorText());
  if (parser.isSet(help)) {
    out << commandHelp(context);
    return kOk;
  }
  const int code = command->run(context);
  out.flush();
  err.flush();
  return code;
}

}  // namespace cli
