#include "cli/command.h"
#include "cli/json.h"
#include "cli/session.h"
#include "engine/levelimport.h"
#include "engine/surveycsv.h"

#include <QFileInfo>

namespace cli {

namespace {

const QString kCsv = QStringLiteral("csv");
const QString kTable = QStringLiteral("table");
const QString kChainageUnit = QStringLiteral("chainage-unit");
const QString kReplace = QStringLiteral("replace");

void importLevelsOptions(QCommandLineParser& parser) {
  addFileAndSection(parser, QStringLiteral("The section whose levels the file holds (its ID)."));
  parser.addOption({kCsv, QStringLiteral("The survey file: station, offset and level per line."),
                    QStringLiteral("SURVEY.csv")});
  parser.addOption({kTable, QStringLiteral("The levels to fill: initial (default) or executed."),
                    QStringLiteral("TABLE")});
  parser.addOption({kChainageUnit,
                    QStringLiteral("How plain chainages are written: km or m (default: m when "
                                   "any is 100 or more, km otherwise)."),
                    QStringLiteral("UNIT")});
  parser.addOption({kReplace, QStringLiteral("Delete the section's levels of the table first.")});
  addJson(parser);
}

QString delimiterName(QChar delimiter) {
  if (delimiter == QLatin1Char('\t')) return QStringLiteral("tab");
  if (delimiter == QLatin1Char(' ')) return QStringLiteral("space");
  return delimiter;
}

int importLevels(Context& context) {
  int code = -1;
  const auto file = fileArgument(context, code);
  if (!file) return code;
  const auto section = sectionOption(context, code);
  if (!section) return code;
  const QString csv = context.parser.value(kCsv);
  if (csv.isEmpty()) return usageError(context, QStringLiteral("give the survey file with --csv."));
  engine::LevelTable table = engine::LevelTable::Initial;
  if (context.parser.isSet(kTable)) {
    const QString name = context.parser.value(kTable).toLower();
    if (name == QLatin1String("executed"))
      table = engine::LevelTable::Executed;
    else if (name != QLatin1String("initial"))
      return usageError(context, QStringLiteral("--table is initial or executed, not '") +
                                     context.parser.value(kTable) + QStringLiteral("'."));
  }
  std::optional<engine::ChainageUnit> unit;
  if (context.parser.isSet(kChainageUnit)) {
    const QString name = context.parser.value(kChainageUnit).toLower();
    if (name == QLatin1String("km"))
      unit = engine::ChainageUnit::Kilometres;
    else if (name == QLatin1String("m"))
      unit = engine::ChainageUnit::Metres;
    else
      return usageError(context, QStringLiteral("--chainage-unit is km or m, not '") +
                                     context.parser.value(kChainageUnit) + QStringLiteral("'."));
  }

  QString error;
  const auto bytes = engine::readSurveyFile(csv, error);
  if (!bytes) {
    context.err << error << "\n";
    return kCannotOpen;
  }
  ProjectSession<> run;
  if (int failed = run.open(context, *file, false, db::ProjectAccess::Edit); failed >= 0)
    return failed;
  if (int failed = run.useSection(context, *section); failed >= 0) return failed;

  const QStringList lines = engine::surveyLines(*bytes);
  const engine::SurveyLayout layout = engine::detectSurveyLayout(lines);
  const engine::SurveyRead read = engine::readSurvey(lines, layout, unit);
  const QString fileName = QFileInfo(csv).fileName();
  return run.guarded(context, [&] {
    const engine::LevelImportResult result = engine::importLevels(
        *run.engine, fileName, layout, read, table, *section, context.parser.isSet(kReplace));
    const QString unitName =
        read.unit == engine::ChainageUnit::Metres ? QStringLiteral("m") : QStringLiteral("km");
    if (context.parser.isSet(kJson)) {
      writeJson(context.out, {{QStringLiteral("written"), result.written},
                              {QStringLiteral("table"), engine::levelTableName(table)},
                              {QStringLiteral("section"), *section},
                              {QStringLiteral("rows"), result.rows},
                              {QStringLiteral("chainages"), result.chainages},
                              {QStringLiteral("replaced"), result.replaced},
                              {QStringLiteral("delimiter"), delimiterName(layout.delimiter)},
                              {QStringLiteral("header_line"), layout.headerLine},
                              {QStringLiteral("chainage_unit"), unitName},
                              {QStringLiteral("chainage_unit_guessed"), read.unitGuessed},
                              {QStringLiteral("errors"), jsonLines(run.reporter->errors())}});
    } else if (result.written) {
      context.out << "Imported " << result.rows << " readings at " << result.chainages
                  << " chainages into the " << engine::levelTableName(table)
                  << " levels of section " << *section;
      if (context.parser.isSet(kReplace)) context.out << ", in place of its " << result.replaced;
      context.out << ".\n";
      if (read.unitGuessed)
        context.out << "The plain chainages were read as "
                    << (read.unit == engine::ChainageUnit::Metres ? "metres" : "kilometres")
                    << ", as their values suggest; --chainage-unit chooses.\n";
    }
    return result.written ? kOk : kDataProblems;
  });
}

}  // namespace

const Command kSurveyCommands[] = {
    {"import-levels", "Add the readings of a survey CSV file to a section's levels.",
     importLevelsOptions, importLevels},
};
const int kSurveyCommandCount = std::size(kSurveyCommands);

}  // namespace cli
