#include "tests/qtestmain.h"

#include "engine/quantities.h"
#include "engine/reporter.h"
#include "engine/session.h"
#include "sheets/frmreport.h"
#include "sheets/gridcontrol.h"
#include "sheets/modgridstyles.h"
#include "tests/sheets/sheetsfixture.h"

#include <QTest>

#include <memory>
#include <optional>

using sheets::frmReport;
using sheets::GridControl;
using sheetstest::headers;
using sheetstest::SheetsFixture;

namespace {

// The demo project cut down to the first 100 m of section 1 (six cross-sections, with executed
// levels), with an engine session on it.
class SmallProject {
 public:
  SmallProject() : fixture(true) {
    db::Connection& c = fixture.connection();
    for (const char* table : {"Initial", "Executed", "DesignQty"})
      c.exec(QStringLiteral("DELETE FROM ") + QLatin1String(table) +
             QStringLiteral(" WHERE SectionID=1 AND Chainage > 0.1"));
    session = std::make_unique<engine::EngineSession>(c, reporter);
    if (session->LoadDesignProfile()) qFatal("The demo design profile does not load");
    session->setSection(1);
    fixture.sectionId = 1;
    fixture.engine = session.get();
  }

  // What the engine itself writes into a grid, through a session of its own: the quantity
  // summary, or with a chainage the area details there.
  engine::MemoryReportGrid expected(std::optional<float> chainage = {}, bool executed = false) {
    engine::RecordingReporter quiet;
    engine::EngineSession own(fixture.connection(), quiet);
    own.LoadDesignProfile();
    own.setSection(1);
    own.setUseExecutedLevel(executed);
    engine::MemoryReportGrid grid;
    if (chainage)
      engine::FillAreaDetails(own, *chainage, grid);
    else
      engine::ComputeQuantities(own, &grid, -1.0f);
    return grid;
  }

  SheetsFixture fixture;
  engine::RecordingReporter reporter;
  std::unique_ptr<engine::EngineSession> session;
};

}  // namespace

class TestFrmReport : public QObject {
  Q_OBJECT

 private slots:
  // The summary (no chainage) or the area details at 0.04 km: the engine's cells, bold included.
  void reportShowsTheEnginesGrid_data() {
    QTest::addColumn<bool>("area");
    QTest::addColumn<bool>("executed");
    QTest::addColumn<int>("cols");
    QTest::newRow("quantity summary") << false << false << 5;
    QTest::newRow("area, ground levels only") << true << false << 10;
    QTest::newRow("area, with executed levels") << true << true << 19;
  }
  void reportShowsTheEnginesGrid() {
    QFETCH(bool, area);
    QFETCH(bool, executed);
    QFETCH(int, cols);
    SmallProject project;
    project.fixture.useExecutedLevel = executed;
    const auto expected = area ? project.expected(0.04f, executed) : project.expected();
    QVERIFY(expected.RowCount() > 2);
    if (!area) QCOMPARE(expected.RowCount(), 7);  // six chainages and the totals
    namespace styles = sheets::modGridStyles;
    const sheets::SheetContext context = project.fixture.context();
    std::unique_ptr<frmReport> report(area ? styles::ShowAreaCalculation(context, 0.04f)
                                           : styles::ShowQuantitySummary(context));
    QVERIFY(report);
    const GridControl& grid = report->scg();
    QCOMPARE(report->windowTitle() + '|' + report->strCurrentDataSheet,
             area ? QStringLiteral("Area Calculation for Chainage : 0.04|QuantityDetails")
                  : QStringLiteral("Quantity Summary|QuantitySummary"));
    QStringList columns =
        area ? QStringList{"Offset",
                           "OGL",
                           "Design Level",
                           "Depth of Cut",
                           "Depth of Fill",
                           "Avg Depth of Cut",
                           "Avg Depth of Fill",
                           "Horiz Distance",
                           "Cut Area",
                           "Fill Area"}
             : QStringList{"Chainage", "Cut Area", "Fill Area", "Cut Volume", "Fill Volume"};
    while (columns.size() < cols) columns.append(QString());
    QCOMPARE(headers(grid), columns);
    QCOMPARE(grid.Rows(), expected.RowCount());
    for (int row = 0; row < expected.RowCount(); ++row)
      for (int col = 0; col < cols; ++col) {
        QCOMPARE(grid.Text(row, col), expected.text(row, col));
        QCOMPARE(grid.CellBold(row, col), expected.bold(row, col));
      }
    QVERIFY(grid.Redraw() && report->isVisible());
    if (!area) QVERIFY(grid.CellBold(6, 3));
    if (area) QCOMPARE(grid.HeaderHeight(), 65);
    for (int col = 0; area && col < cols; ++col) QCOMPARE(grid.ColWidth(col), 60);
  }

  void reportsOpenNewWindowsThatHandRowHeadersToTheMainWindow() {
    SheetsFixture empty(false);
    QCOMPARE(sheets::modGridStyles::ShowQuantitySummary(empty.context()), nullptr);
    QCOMPARE(sheets::modGridStyles::ShowAreaCalculation(empty.context(), 1.0f), nullptr);

    SmallProject project;
    const sheets::SheetContext context = project.fixture.context(true);
    std::unique_ptr<frmReport> first(sheets::modGridStyles::ShowAreaCalculation(context, 0.0f));
    std::unique_ptr<frmReport> second(sheets::modGridStyles::ShowAreaCalculation(context, 0.0f));
    std::unique_ptr<frmReport> summary(sheets::modGridStyles::ShowQuantitySummary(context));
    QVERIFY(first && second && summary);
    QCOMPARE(project.fixture.mainWindow.shown,
             (QList<QWidget*>{first.get(), second.get(), summary.get()}));

    emit summary->scg().doubleClicked(2, 1);   // a cell: nothing
    emit summary->scg().doubleClicked(-1, 0);  // a column header: nothing
    emit summary->scg().doubleClicked(2, -1);
    QCOMPARE(project.fixture.mainWindow.doubleClickedRows, QList<int>{2});
  }

  void mouseWheelScrollsTheReport() {
    SheetsFixture fixture(false);
    frmReport report(fixture.context());
    report.resize(300, 200);
    report.scg().Cols(2);
    report.reportGrid().SetRowCount(40);
    report.show();
    QVERIFY(QTest::qWaitForWindowExposed(&report));
    report.scg().TopRow(1);
    report.MouseWheel(0, 120, 0, 0);
    QCOMPARE(report.scg().TopRow(), 0);

    report.scg().BottomRow(38);
    report.MouseWheel(0, -120, 0, 0);
    QCOMPARE(report.scg().BottomRow(), 39);
  }
};

DELVANE_QTEST(TestFrmReport)

#include "test_frmreport.moc"
