#include "cli/command.h"
#include "cli/json.h"
#include "cli/session.h"
#include "db/connection.h"
#include "db/numbers.h"
#include "db/project.h"
#include "drawing/pageoutput.h"
#include "drawing/tablesheet.h"
#include "engine/areas.h"
#include "engine/numberformat.h"
#include "engine/quantities.h"
#include "engine/session.h"

#include <QDate>

#include <map>
#include <memory>
#include <vector>

namespace cli {

namespace {

const QString kCsv = QStringLiteral("csv");
const QString kOutput = QStringLiteral("output");
const QString kAll = QStringLiteral("all");

// The console reporter that also keeps the status-bar texts, which the text output prints.
class QuantityReporter : public ConsoleReporter {
 public:
  using ConsoleReporter::ConsoleReporter;
  void statusText(int panel, const QString& text) override { m_status[panel] = text; }
  QString status(int panel) const {
    auto it = m_status.find(panel);
    return it == m_status.end() ? QString() : it->second;
  }

 private:
  std::map<int, QString> m_status;
};

// An open project with an engine session and its design profile.
using Session = ProjectSession<QuantityReporter>;

// Opens FILE and loads the design profile; returns the exit code when that fails, else -1.
int open(Context& context, Session& s) {
  int code = -1;
  const auto file = fileArgument(context, code);
  if (!file) return code;
  // The run stores the areas it computes in DesignQty, as the desktop's View Quantity does.
  if (int failed = s.open(context, *file, true, db::ProjectAccess::Edit); failed >= 0)
    return failed;
  s.engine->setUseExecutedLevel(context.parser.isSet(kExecuted));
  return -1;
}

void addCommon(QCommandLineParser& parser) {
  addFileAndSection(parser);
  parser.addOption({kExecuted, QStringLiteral("Carry the executed levels along, as the main "
                                              "window's 'use executed levels' switch does.")});
  addJson(parser);
}

QString tabbed(const QStringList& cells) { return cells.join(QLatin1Char('\t')); }

// ---- areas ----------------------------------------------------------------------------------

void areasOptions(QCommandLineParser& parser) {
  addCommon(parser);
  parser.addOption({kChainage, QStringLiteral("The chainage in kilometres."), QStringLiteral("C")});
}

int areas(Context& context) {
  int code = -1;
  const auto section = sectionOption(context, code);
  if (!section) return code;
  if (!context.parser.isSet(kChainage))
    return usageError(context, QStringLiteral("give the chainage with --chainage C."));
  const auto chainage = chainageOption(context, -1.0f, code);
  if (!chainage) return code;
  Session s;
  if (int failed = open(context, s); failed >= 0) return failed;
  if (int failed = s.useSection(context, *section); failed >= 0) return failed;
  return s.guarded(context, [&] {
    engine::EngineSession& session = *s.engine;
    engine::ResetDesignCache(session);
    engine::MemoryReportGrid grid;
    engine::FillAreaDetails(session, *chainage, grid);
    const engine::AreaState& st = session.areas();

    if (context.parser.isSet(kJson)) {
      QJsonArray areaSlots;
      for (int i = 0; i < 6; ++i) areaSlots.append(jsonNumber(st.Area[i]));
      QJsonArray rows;
      for (int r = 0; r <= st.RowCount; ++r) {
        QJsonArray cells;
        for (int c = 0; c <= 18; ++c) cells.append(jsonNumber(st.Table.value(r, c)));
        rows.append(cells);
      }
      writeJson(context.out, {{QStringLiteral("chainage"), jsonNumber(st.Chainage)},
                              {QStringLiteral("area_cut"), jsonNumber(st.Area[0])},
                              {QStringLiteral("area_fill"), jsonNumber(st.Area[1])},
                              {QStringLiteral("slots"), areaSlots},
                              {QStringLiteral("rows"), rows},
                              {QStringLiteral("errors"), jsonLines(s.reporter->errors())}});
    } else {
      const int columns = session.useExecutedLevel() ? 19 : 10;
      QStringList headers = engine::AreaCalculationHeaders();
      while (headers.size() < columns) headers.append(QString());
      context.out << "Area Calculation for Chainage : " << db::floatText(*chainage) << '\n'
                  << tabbed(headers) << '\n';
      for (int r = 0; r < grid.RowCount(); ++r) {
        QStringList cells;
        for (int c = 0; c < columns; ++c) cells.append(grid.text(r, c));
        context.out << tabbed(cells) << '\n';
      }
    }
    return s.reporter->errors().isEmpty() ? kOk : kDataProblems;
  });
}

// ---- quantities -----------------------------------------------------------------------------

void quantitiesOptions(QCommandLineParser& parser) {
  addCommon(parser);
  parser.addOption({kChainage,
                    QStringLiteral("Compute this chainage only and take the stored areas of the "
                                   "others (default: compute every chainage)."),
                    QStringLiteral("C")});
  parser.addOption({kCsv, QStringLiteral("Write the summary as comma-separated plain numbers.")});
  parser.addOption({kOutput,
                    QStringLiteral("Also print the summary, every row over A4 pages with its "
                                   "totals, to OUT.pdf (or one OUT.png or OUT.svg per page)."),
                    QStringLiteral("OUT")});
  parser.addOption({kAll, QStringLiteral("Run every section of every package and print the "
                                         "totals of each and the grand total.")});
}

QJsonValue optionalNumber(const std::optional<float>& value) {
  return value ? jsonNumber(*value) : QJsonValue(QJsonValue::Null);
}

QString csvNumber(const std::optional<float>& value) {
  return value ? db::floatText(*value) : QString();
}

// Prints the Quantity Summary as the desktop's File > Print does; -1 when written, else the exit
// code after the reason went to stderr.
int printSummary(Context& context, Session& s, std::int32_t section,
                 const engine::MemoryReportGrid& grid) {
  const QString output = context.parser.value(kOutput);
  const std::optional<drawing::PageFormat> format = drawing::pageFormatOf(output);
  if (!format || *format == drawing::PageFormat::Json)
    return usageError(context,
                      QStringLiteral("--output takes a file ending in .pdf, .png or .svg."));
  if (db::isSameFile(output, s.connection->path()))
    return usageError(context, QStringLiteral("--output would write the project file itself: "
                                              "give another file."));
  std::vector<drawing::TableColumn> columns;
  for (const QString& header : engine::QuantitySummaryHeaders()) columns.push_back({header, 32.0});
  drawing::TableRows rows;
  rows.count = grid.RowCount();
  const int width = static_cast<int>(columns.size());
  rows.text = [&grid, width](int row) {
    QStringList cells;
    for (int c = 0; c < width; ++c) cells.append(grid.text(row, c));
    return cells;
  };
  rows.bold = [&grid](int row) { return grid.bold(row, 0); };
  drawing::TableSheetOptions options;
  options.title = drawing::sheetTitleOf(*s.connection, s.connection->path(), section);
  options.name = QStringLiteral("Quantity Summary");
  options.date = QDate::currentDate().toString(Qt::ISODate);
  const drawing::TableSheet sheet(columns, rows, options);
  const drawing::PageOutputResult result =
      drawing::writePages(sheet, output, *format, 0, sheet.pageCount() - 1, options.name);
  if (!result.ok) {
    context.err << result.message << '\n';
    return kCannotOpen;
  }
  if (!context.parser.isSet(kJson))
    context.err << "Wrote " << sheet.pageCount() << (sheet.pageCount() == 1 ? " page" : " pages")
                << " of the quantity summary to " << result.written.join(QStringLiteral(", "))
                << ".\n";
  return -1;
}

int oneSection(Context& context, Session& s, std::int32_t section, float chainage) {
  if (int failed = s.useSection(context, section); failed >= 0) return failed;
  engine::EngineSession& session = *s.engine;
  engine::MemoryReportGrid grid;
  std::vector<engine::QuantityRow> rows;
  engine::ComputeQuantities(session, &grid, chainage,
                            [&rows](const engine::QuantityRow& row) { rows.push_back(row); });
  const engine::QuantityRunState& run = session.quantityRun();
  if (context.parser.isSet(kOutput) && run.Computed) {
    if (int failed = printSummary(context, s, section, grid); failed >= 0) return failed;
  }

  if (context.parser.isSet(kJson)) {
    QJsonArray out;
    for (const engine::QuantityRow& row : rows)
      out.append(QJsonObject{{QStringLiteral("chainage"), jsonNumber(row.Chainage)},
                             {QStringLiteral("cut_area"), jsonNumber(row.CutArea)},
                             {QStringLiteral("fill_area"), jsonNumber(row.FillArea)},
                             {QStringLiteral("cut_volume"), optionalNumber(row.CutVolume)},
                             {QStringLiteral("fill_volume"), optionalNumber(row.FillVolume)}});
    writeJson(context.out, {{QStringLiteral("section"), section},
                            {QStringLiteral("computed"), run.Computed},
                            {QStringLiteral("rows"), out},
                            {QStringLiteral("total_cut_volume"), jsonNumber(run.TotalCutVolume)},
                            {QStringLiteral("total_fill_volume"), jsonNumber(run.TotalFillVolume)},
                            {QStringLiteral("errors"), jsonLines(s.reporter->errors())}});
  } else if (!run.Computed) {
    context.out << "The quantities of section " << section
                << " were not computed: its level data have problems, named above.\n";
  } else if (context.parser.isSet(kCsv)) {
    context.out << engine::QuantitySummaryHeaders().join(QLatin1Char(',')) << '\n';
    for (const engine::QuantityRow& row : rows)
      context.out << db::floatText(row.Chainage) << ',' << db::floatText(row.CutArea) << ','
                  << db::floatText(row.FillArea) << ',' << csvNumber(row.CutVolume) << ','
                  << csvNumber(row.FillVolume) << '\n';
    context.out << ",,," << db::floatText(run.TotalCutVolume) << ','
                << db::floatText(run.TotalFillVolume) << '\n';
  } else {
    context.out << tabbed(engine::QuantitySummaryHeaders()) << '\n';
    for (int r = 0; r < grid.RowCount(); ++r) {
      QStringList cells;
      for (int c = 0; c < 5; ++c) cells.append(grid.text(r, c));
      context.out << tabbed(cells) << '\n';
    }
    context.out << s.reporter->status(1) << '\n' << s.reporter->status(2) << '\n';
  }
  return run.Computed && s.reporter->errors().isEmpty() ? kOk : kDataProblems;
}

int allSections(Context& context, Session& s) {
  const std::vector<db::SectionEntry> sections = db::listSections(*s.connection);
  engine::EngineSession& session = *s.engine;
  const engine::NumberSymbols symbols;
  double totalCut = 0.0;
  double totalFill = 0.0;
  bool allComputed = true;
  QJsonArray out;
  for (const db::SectionEntry& section : sections) {
    session.setSection(section.sectionId);
    engine::ComputeQuantities(session, nullptr, -1.0f);
    const engine::QuantityRunState& run = session.quantityRun();
    allComputed = allComputed && run.Computed;
    if (run.Computed) {
      totalCut += run.TotalCutVolume;
      totalFill += run.TotalFillVolume;
    }
    if (context.parser.isSet(kJson)) {
      out.append(
          QJsonObject{{QStringLiteral("section"), section.sectionId},
                      {QStringLiteral("description"), section.description},
                      {QStringLiteral("computed"), run.Computed},
                      {QStringLiteral("total_cut_volume"), jsonNumber(run.TotalCutVolume)},
                      {QStringLiteral("total_fill_volume"), jsonNumber(run.TotalFillVolume)}});
    } else if (!run.Computed) {
      context.out << "Section " << section.sectionId << " (" << section.description
                  << "): not computed, its level data have problems.\n";
    } else {
      context.out << "Section " << section.sectionId << " (" << section.description
                  << "): Cutting Volume : " << engine::formatNumber(run.TotalCutVolume, 2, symbols)
                  << " cum, Filling Volume : "
                  << engine::formatNumber(run.TotalFillVolume, 2, symbols) << " cum\n";
    }
  }
  if (context.parser.isSet(kJson)) {
    writeJson(context.out,
              {{QStringLiteral("sections"), out},
               {QStringLiteral("total_cut_volume"), jsonNumber(static_cast<float>(totalCut))},
               {QStringLiteral("total_fill_volume"), jsonNumber(static_cast<float>(totalFill))},
               {QStringLiteral("errors"), jsonLines(s.reporter->errors())}});
  } else {
    context.out << "Total: Cutting Volume : " << engine::formatNumber(totalCut, 2, symbols)
                << " cum, Filling Volume : " << engine::formatNumber(totalFill, 2, symbols)
                << " cum\n";
  }
  return allComputed && s.reporter->errors().isEmpty() ? kOk : kDataProblems;
}

int quantities(Context& context) {
  int code = -1;
  const bool all = context.parser.isSet(kAll);
  if (context.parser.isSet(kJson) && context.parser.isSet(kCsv))
    return usageError(context, QStringLiteral("give --json or --csv, not both."));
  std::optional<std::int32_t> section;
  if (all) {
    if (context.parser.isSet(kSection) || context.parser.isSet(kChainage) ||
        context.parser.isSet(kCsv) || context.parser.isSet(kOutput))
      return usageError(context, QStringLiteral("--all runs every section; it takes no --section, "
                                                "--chainage, --csv or --output."));
  } else {
    section = sectionOption(context, code);
    if (!section) return code;
  }
  const auto chainage = chainageOption(context, -1.0f, code);
  if (!chainage) return code;
  Session s;
  if (int failed = open(context, s); failed >= 0) return failed;
  return s.guarded(context, [&] {
    return all ? allSections(context, s) : oneSection(context, s, *section, *chainage);
  });
}

}  // namespace

const Command kQuantityCommands[] = {
    {"areas", "Compute the cut and fill areas of one chainage and print its area calculation.",
     areasOptions, areas},
    {"quantities",
     "Run the quantities of a section (or of all): areas, volumes and the total cut and fill.",
     quantitiesOptions, quantities},
};
const int kQuantityCommandCount = std::size(kQuantityCommands);

}  // namespace cli
