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

QStringList headers(const GridControl& grid) {
  QStringList texts;
  for (int col = 0; col < grid.Cols(); ++col) texts.append(grid.Text(-1, col));
  return texts;
}

void compareCells(const GridControl& grid, const engine::MemoryReportGrid& expected, int cols) {
  QCOMPARE(grid.Rows(), expected.RowCount());
  for (int row = 0; row < expected.RowCount(); ++row) {
    for (int col = 0; col < cols; ++col) {
      QCOMPARE(grid.Text(row, col), expected.text(row, col));
      QCOMPARE(grid.CellBold(row, col), expected.bold(row, col));
    }
  }
}

}  // namespace

class TestFrmReport : public QObject {
  Q_OBJECT

 private slots:
  void quantitySummaryShowsTheEnginesRows() {
    SmallProject project;
    const engine::MemoryReportGrid expected = project.expected();
    QCOMPARE(expected.RowCount(), 7);  // six chainages and the totals

    std::unique_ptr<frmReport> report(
        sheets::modGridStyles::ShowQuantitySummary(project.fixture.context()));
    QVERIFY(report);

    QCOMPARE(report->windowTitle(), QStringLiteral("Quantity Summary"));
    QCOMPARE(report->strCurrentDataSheet, QStringLiteral("QuantitySummary"));
    QCOMPARE(headers(report->scg()),
             (QStringList{"Chainage", "Cut Area", "Fill Area", "Cut Volume", "Fill Volume"}));
    compareCells(report->scg(), expected, 5);
    QVERIFY(report->scg().CellBold(6, 3));
    QVERIFY(report->scg().Redraw());
    QVERIFY(report->isVisible());
  }

  void areaCalculation_data() {
    QTest::addColumn<bool>("executed");
    QTest::addColumn<int>("cols");
    QTest::newRow("ground levels only") << false << 10;
    QTest::newRow("with executed levels") << true << 19;
  }
  void areaCalculation() {
    QFETCH(bool, executed);
    QFETCH(int, cols);
    SmallProject project;
    project.fixture.useExecutedLevel = executed;
    const engine::MemoryReportGrid expected = project.expected(0.04f, executed);
    QVERIFY(expected.RowCount() > 2);

    std::unique_ptr<frmReport> report(
        sheets::modGridStyles::ShowAreaCalculation(project.fixture.context(), 0.04f));
    QVERIFY(report);
    const GridControl& grid = report->scg();

    QCOMPARE(report->windowTitle(), QStringLiteral("Area Calculation for Chainage : 0.04"));
    QCOMPARE(report->strCurrentDataSheet, QStringLiteral("QuantityDetails"));
    QCOMPARE(grid.Cols(), cols);
    QCOMPARE(grid.HeaderHeight(), 65);
    const QStringList shown = headers(grid);
    QCOMPARE(shown.mid(0, 10),
             (QStringList{"Offset", "OGL", "Design Level", "Depth of Cut", "Depth of Fill",
                          "Avg Depth of Cut", "Avg Depth of Fill", "Horiz Distance", "Cut Area",
                          "Fill Area"}));
    for (int col = 10; col < cols; ++col) QCOMPARE(shown[col], QString());
    for (int col = 0; col < cols; ++col) QCOMPARE(grid.ColWidth(col), 60);
    compareCells(grid, expected, cols);
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
