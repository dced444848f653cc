#include "sheets/modgridstyles.h"

#include "db/numbers.h"
#include "db/resultset.h"
#include "engine/quantities.h"
#include "engine/session.h"
#include "sheets/frmdatagrid.h"
#include "sheets/frmreport.h"
#include "sheets/gridcontrol.h"

#include <QFontMetrics>
#include <QHeaderView>

#include <algorithm>
#include <functional>
#include <memory>

namespace sheets::modGridStyles {

namespace {

constexpr int kAreaCalculationHeaderHeight = 65;
constexpr int kAreaCalculationColWidth = 60;
constexpr int kAreaCalculationCols = 10;
constexpr int kAreaCalculationColsWithExecuted = 19;
// Rows measured when an Outlets column is sized to its contents.
constexpr int kRowsMeasured = 200;

QString key(std::int32_t value) { return QString::number(value); }

// The steps every sheet layout shares: query, connection, load, hide the trailing key
// columns, the sheet's own column settings, name and caption, show.
void applyLayout(frmDataGrid& sheet, const QString& query, int trailingColumns, const QString& name,
                 const std::function<void(GridControl&)>& columnSettings) {
  sheet.strSheetQuery = query;
  sheet.rsConPtr = sheet.context().currentConnection();
  sheet.load();
  GridControl& grid = sheet.grid();
  grid.Redraw(false);
  if (trailingColumns > 0) grid.DeleteCols(grid.Cols() - trailingColumns, trailingColumns);
  columnSettings(grid);
  sheet.strCurrentDataSheet = name;
  sheet.setWindowTitle(sheet.strCurrentDataSheet);
  if (MainWindowLink* link = sheet.context().link)
    link->showChild(&sheet);
  else
    sheet.show();
  grid.Redraw(true);
}

// The same width and alignment for every column left after the keys were removed.
std::function<void(GridControl&)> everyColumn(int width, int align) {
  return [width, align](GridControl& grid) {
    for (int col = 0; col < grid.Cols(); ++col) {
      grid.ColWidth(col, width);
      grid.ColTextAlign(col, align);
    }
  };
}

// Outlets: SectionID and ID stand among the columns, so they go by name; the rest are as wide
// as their header and their first rows need.
void outletsColumns(frmDataGrid& sheet) {
  GridControl& grid = sheet.grid();
  const db::ResultSet& rows = *sheet.resultSet();
  std::vector<int> hidden;
  for (const char* name : {"SectionID", "ID"}) {
    const int col = rows.columnIndex(QLatin1String(name));
    if (col >= 0) hidden.push_back(col);
  }
  std::sort(hidden.rbegin(), hidden.rend());
  for (int col : hidden) grid.DeleteCols(col, 1);

  const QFontMetrics cellMetrics(grid.font());
  const QFontMetrics headerMetrics(grid.columnHeader() ? grid.columnHeader()->font() : grid.font());
  const int measured = std::min(grid.Rows(), kRowsMeasured);
  for (int col = 0; col < grid.Cols(); ++col) {
    int width = headerMetrics.horizontalAdvance(grid.Text(-1, col));
    for (int row = 0; row < measured; ++row)
      width = std::max(width, cellMetrics.horizontalAdvance(grid.Text(row, col)));
    grid.ColWidth(col, width + 16);
    const int source = rows.columnIndex(grid.Text(-1, col));
    if (source >= 0 && rows.column(source).numeric)
      grid.ColTextAlign(col, GridControl::kAlignCenter);
  }
}

// Shows a filled report and hands it over; deletes it when filling failed.
frmReport* showReport(const SheetContext& context, std::unique_ptr<frmReport> report) {
  frmReport* window = report.release();
  if (context.link)
    context.link->showChild(window);
  else
    window->show();
  window->scg().Redraw(true);
  window->scg().Refresh();
  return window;
}

void setHeaders(GridControl& grid, const QStringList& headers) {
  for (int col = 0; col < headers.size(); ++col) grid.Text(-1, col, headers[col]);
}

}  // namespace

void PackageStyle(frmDataGrid& sheet) {
  applyLayout(
      sheet,
      QStringLiteral("Select [Name], [Phase], [District], ID from Package order by [District], "
                     "[Name]"),
      1, QStringLiteral("Package"), [](GridControl& grid) {
        grid.ColWidth(2, 100);
        // Column 3 was the key, gone by now; the grid ignores it as it always has.
        grid.ColWidth(3, 120);
        grid.ColWidthPercent(0, 100);
        grid.ColTextAlign(1, GridControl::kAlignRight);
      });
}

void SectionsStyle(frmDataGrid& sheet) {
  applyLayout(sheet,
              QStringLiteral("Select [Description], [Title], ID from Sections WHERE [PackageID]=") +
                  key(sheet.context().currentPackageId()) +
                  QStringLiteral(" order by [Description]"),
              1, QStringLiteral("Sections"), [](GridControl& grid) {
                grid.ColWidthPercent(0, 70);
                grid.ColWidthPercent(1, 30);
              });
}

void DesignDetailsStyle(frmDataGrid& sheet) {
  applyLayout(sheet,
              QStringLiteral("Select * from DesignDetails WHERE [SectionID]=") +
                  key(sheet.context().currentSectionId()) + QStringLiteral(" order by Chainage"),
              2, QStringLiteral("DesignDetails"), everyColumn(70, GridControl::kAlignCenter));
}

void DesignLevelsStyle(frmDataGrid& sheet) {
  applyLayout(sheet,
              QStringLiteral("Select * from DesignLevels WHERE [SectionID]=") +
                  key(sheet.context().currentSectionId()) +
                  QStringLiteral(" ORDER BY Chainage, ID"),
              2, QStringLiteral("DesignLevels"), everyColumn(80, GridControl::kAlignCenter));
}

void LevelsStyle(frmDataGrid& sheet, const QString& table) {
  applyLayout(sheet,
              QStringLiteral("SELECT Chainage, Offset, [Level], ID from ") + table +
                  QStringLiteral(" WHERE [SectionID]=") + key(sheet.context().currentSectionId()) +
                  QStringLiteral(" ORDER BY Chainage, Offset, ID"),
              1, table, everyColumn(60, GridControl::kAlignCenter));
}

void OutletsStyle(frmDataGrid& sheet) {
  applyLayout(sheet,
              QStringLiteral("Select * from Outlets WHERE [SectionID]=") +
                  key(sheet.context().currentSectionId()) + QStringLiteral(" order by [Chainage]"),
              0, QStringLiteral("Outlets"), [&sheet](GridControl&) { outletsColumns(sheet); });
}

frmReport* ShowQuantitySummary(const SheetContext& context) {
  engine::EngineSession* session = context.currentEngine();
  // A run started from the events of another would only show an empty summary.
  if (!session || session->quantityRun().Running) return nullptr;
  if (context.useExecutedLevel) session->setUseExecutedLevel(context.isUseExecutedLevel());

  auto report = std::make_unique<frmReport>(context);
  report->setWindowTitle(QStringLiteral("Quantity Summary"));
  GridControl& grid = report->scg();
  grid.Redraw(false);
  const QStringList headers = engine::QuantitySummaryHeaders();
  grid.Cols(static_cast<int>(headers.size()));
  setHeaders(grid, headers);
  grid.ColTextAlign(-1, GridControl::kAlignRight);  // every cell holds a number
  grid.SetRowCount(0);
  engine::ComputeQuantities(*session, &report->reportGrid(), -1.0f);
  if (session->quantityRun().Cancelled) return nullptr;
  report->strCurrentDataSheet = QStringLiteral("QuantitySummary");
  return showReport(context, std::move(report));
}

frmReport* ShowAreaCalculation(const SheetContext& context, float chainage) {
  engine::EngineSession* session = context.currentEngine();
  if (!session) return nullptr;
  if (context.useExecutedLevel) session->setUseExecutedLevel(context.isUseExecutedLevel());

  const QStringList headers = engine::AreaCalculationHeaders();
  auto report = std::make_unique<frmReport>(context);
  report->setWindowTitle(QStringLiteral("Area Calculation for Chainage : ") +
                         db::floatText(chainage));
  GridControl& grid = report->scg();
  grid.Redraw(false);
  grid.HeaderHeight(kAreaCalculationHeaderHeight);
  grid.Cols(session->useExecutedLevel() ? kAreaCalculationColsWithExecuted : kAreaCalculationCols);
  setHeaders(grid, headers);
  grid.ColWidth(-1, kAreaCalculationColWidth);
  grid.ColTextAlign(-1, GridControl::kAlignRight);  // every cell holds a number
  grid.SetRowCount(0);
  engine::FillAreaDetails(*session, chainage, report->reportGrid());
  report->strCurrentDataSheet = QStringLiteral("QuantityDetails");
  return showReport(context, std::move(report));
}

}  // namespace sheets::modGridStyles
