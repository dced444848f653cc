#include "tests/qtestmain.h"

#include "sheets/frmdatagrid.h"
#include "sheets/gridcontrol.h"
#include "sheets/modgridstyles.h"
#include "tests/sheets/sheetsfixture.h"

#include <QTest>

using sheets::GridControl;
using sheetstest::headers;
using sheetstest::SheetsFixture;

class TestModGridStyles : public QObject {
  Q_OBJECT

 private slots:
  void layoutShowsItsColumns_data() {
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<QStringList>("columns");
    QTest::addColumn<int>("rowsInSection1");  // -1: count the table's rows of section 1
    QTest::addColumn<int>("centredWidth");    // 0: not every column centred at one width
    QTest::newRow("Package") << "Package" << QStringList{"Name", "Phase", "District"} << 1 << 0;
    QTest::newRow("Sections") << "Sections" << QStringList{"Description", "Title"} << 2 << 0;
    QTest::newRow("DesignDetails")
        << "DesignDetails" << QStringList{"Chainage",    "BED_WIDTH",  "FSD",      "FREEBOARD",
                                          "INNER_SLOPE", "BANK_WIDTH", "SRS_LEFT", "SRS_RIGHT"}
        << 3 << 70;
    QTest::newRow("DesignLevels") << "DesignLevels" << QStringList{"Chainage", "Level"} << 9 << 80;
    QTest::newRow("Initial") << "Initial" << QStringList{"Chainage", "Offset", "Level"} << -1 << 60;
    QTest::newRow("Executed") << "Executed" << QStringList{"Chainage", "Offset", "Level"} << -1
                              << 60;
    QTest::newRow("Outlets") << "Outlets"
                             << QStringList{"Chainage", "Name", "Side", "SillLevel", "Discharge"}
                             << 3 << 0;
  }
  void layoutShowsItsColumns() {
    QFETCH(QString, sheet);
    QFETCH(QStringList, columns);
    QFETCH(int, rowsInSection1);
    QFETCH(int, centredWidth);
    SheetsFixture fixture(true);

    auto window = fixture.openSheet(sheet);

    const GridControl& grid = window->grid();
    QCOMPARE(window->rsConPtr, &fixture.connection());
    QCOMPARE(window->strCurrentDataSheet + ' ' + window->windowTitle(), sheet + ' ' + sheet);
    QCOMPARE(headers(grid), columns);
    if (rowsInSection1 < 0)
      rowsInSection1 = testsupport::rowCount(fixture.connection(), sheet, "SectionID=1");
    QCOMPARE(grid.Rows(), rowsInSection1);
    QVERIFY(grid.Redraw() && window->isVisible());
    for (int col = 0; centredWidth > 0 && col < grid.Cols(); ++col) {
      QCOMPARE(grid.ColWidth(col), centredWidth);
      QCOMPARE(grid.ColTextAlign(col), int(GridControl::kAlignCenter));
    }
  }

  void levelRowsComeByChainageThenOffset() {
    SheetsFixture fixture(false);
    fixture.connection().exec(
        QStringLiteral("INSERT INTO Initial (Chainage, Offset, Level, SectionID) "
                       "VALUES (0.2, -5, 1, 1), (0.1, 5, 2, 1), (0.1, -3, 3, 1), (0.1, 0, 4, 1)"));
    auto window = fixture.openSheet(QStringLiteral("Initial"));
    QStringList levels;
    for (int row = 0; row < window->grid().Rows(); ++row) levels << window->grid().Text(row, 2);
    QCOMPARE(levels, QStringList({"3", "4", "2", "1"}));
  }

  void packageAndOutletsColumnsFitTheirContents() {
    SheetsFixture fixture(true);
    auto package = fixture.openSheet(QStringLiteral("Package"));
    QCOMPARE(package->grid().ColWidth(2), 100);
    QCOMPARE(package->grid().ColTextAlign(1), int(GridControl::kAlignRight));
    QCOMPARE(package->grid().Text(0, 0), QStringLiteral("Right Main Canal"));

    auto outlets = fixture.openSheet(QStringLiteral("Outlets"));
    const GridControl& grid = outlets->grid();
    const QFontMetrics metrics(grid.font());
    for (int col = 0; col < grid.Cols(); ++col)
      QVERIFY(grid.ColWidth(col) >= metrics.horizontalAdvance(grid.Text(0, col)));
    QCOMPARE(grid.Text(0, 1), QStringLiteral("OT 11"));
  }

  void aSectionKeyOfZeroGivesAnEmptySheetWithAllColumns() {
    SheetsFixture fixture(true);
    fixture.sectionId = 0;
    auto window = fixture.openSheet(QStringLiteral("DesignDetails"));
    QCOMPARE(window->grid().Rows(), 0);
    QCOMPARE(window->grid().Cols(), 8);
    QCOMPARE(window->grid().ColWidth(7), 70);
  }

  void designDetailsWithoutParameterColumnsShowsChainageOnly() {
    SheetsFixture fixture(false);
    fixture.connection().exec(QStringLiteral("DROP TABLE DesignDetails"));
    fixture.connection().exec(QStringLiteral(
        "CREATE TABLE DesignDetails (Chainage REAL, SectionID INTEGER, ID INTEGER PRIMARY KEY)"));
    auto window = fixture.openSheet(QStringLiteral("DesignDetails"));
    QCOMPARE(headers(window->grid()), QStringList{QStringLiteral("Chainage")});
  }

  void theMainWindowShowsTheSheetUnlessItsQueryFails() {
    SheetsFixture fixture(false);
    auto shown = fixture.openSheet(QStringLiteral("Outlets"), true);
    QCOMPARE(fixture.mainWindow.shown, QList<QWidget*>{shown.get()});
    fixture.connection().exec(QStringLiteral("DROP TABLE Outlets"));
    sheets::frmDataGrid sheet(fixture.context(true));
    QVERIFY_THROWS_EXCEPTION(db::Error, sheets::modGridStyles::OutletsStyle(sheet));
    QCOMPARE(fixture.mainWindow.shown.size(), 1);
  }
};

DELVANE_QTEST(TestModGridStyles)

#include "test_modgridstyles.moc"
