#include "tests/qtestmain.h"

#include "db/resultset.h"
#include "sheets/frmdatagrid.h"
#include "sheets/gridcontrol.h"
#include "sheets/modgridstyles.h"
#include "tests/sheets/sheetsfixture.h"

#include <QTest>

#include <functional>
#include <memory>

using sheets::frmDataGrid;
using sheets::GridControl;
using sheetstest::SheetsFixture;

namespace {

using Layout = std::function<void(frmDataGrid&)>;

Layout layoutNamed(const QString& name) {
  namespace styles = sheets::modGridStyles;
  if (name == QLatin1String("Package")) return styles::PackageStyle;
  if (name == QLatin1String("Sections")) return styles::SectionsStyle;
  if (name == QLatin1String("DesignDetails")) return styles::DesignDetailsStyle;
  if (name == QLatin1String("DesignLevels")) return styles::DesignLevelsStyle;
  if (name == QLatin1String("Outlets")) return styles::OutletsStyle;
  return [name](frmDataGrid& sheet) { styles::LevelsStyle(sheet, name); };
}

QStringList headers(const GridControl& grid) {
  QStringList texts;
  for (int col = 0; col < grid.Cols(); ++col) texts.append(grid.Text(-1, col));
  return texts;
}

std::unique_ptr<frmDataGrid> openSheet(SheetsFixture& fixture, const QString& name,
                                       bool withLink = false) {
  auto sheet = std::make_unique<frmDataGrid>(fixture.context(withLink));
  sheet->resize(600, 300);
  layoutNamed(name)(*sheet);
  return sheet;
}

}  // namespace

class TestModGridStyles : public QObject {
  Q_OBJECT

 private slots:
  void layoutShowsItsColumns_data() {
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<QString>("query");
    QTest::addColumn<QStringList>("columns");
    QTest::addColumn<int>("rowsInSection1");
    QTest::newRow("Package") << QStringLiteral("Package")
                             << QStringLiteral(
                                    "Select [Name], [Phase], [District], ID from Package order by "
                                    "[District], [Name]")
                             << QStringList{QStringLiteral("Name"), QStringLiteral("Phase"),
                                            QStringLiteral("District")}
                             << 1;
    QTest::newRow("Sections")
        << QStringLiteral("Sections")
        << QStringLiteral(
               "Select [Description], [Title], ID from Sections WHERE [PackageID]=1 "
               "order by [Description]")
        << QStringList{QStringLiteral("Description"), QStringLiteral("Title")} << 2;
    QTest::newRow("DesignDetails")
        << QStringLiteral("DesignDetails")
        << QStringLiteral("Select * from DesignDetails WHERE [SectionID]=1 order by Chainage")
        << QStringList{QStringLiteral("Chainage"),    QStringLiteral("BED_WIDTH"),
                       QStringLiteral("FSD"),         QStringLiteral("FREEBOARD"),
                       QStringLiteral("INNER_SLOPE"), QStringLiteral("BANK_WIDTH"),
                       QStringLiteral("SRS_LEFT"),    QStringLiteral("SRS_RIGHT")}
        << 3;
    QTest::newRow("DesignLevels")
        << QStringLiteral("DesignLevels")
        << QStringLiteral("Select * from DesignLevels WHERE [SectionID]=1 ORDER BY Chainage, ID")
        << QStringList{QStringLiteral("Chainage"), QStringLiteral("Level")} << 9;
    QTest::newRow("Initial") << QStringLiteral("Initial")
                             << QStringLiteral(
                                    "SELECT Chainage, Offset, [Level], ID from Initial "
                                    "WHERE [SectionID]=1 ORDER BY Chainage, Offset, ID")
                             << QStringList{QStringLiteral("Chainage"), QStringLiteral("Offset"),
                                            QStringLiteral("Level")}
                             << -1;
    QTest::newRow("Executed") << QStringLiteral("Executed")
                              << QStringLiteral(
                                     "SELECT Chainage, Offset, [Level], ID from "
                                     "Executed WHERE [SectionID]=1 ORDER BY Chainage, "
                                     "Offset, ID")
                              << QStringList{QStringLiteral("Chainage"), QStringLiteral("Offset"),
                                             QStringLiteral("Level")}
                              << -1;
    QTest::newRow("Outlets") << QStringLiteral("Outlets")
                             << QStringLiteral(
                                    "Select * from Outlets WHERE [SectionID]=1 order by [Chainage]")
                             << QStringList{QStringLiteral("Chainage"), QStringLiteral("Name"),
                                            QStringLiteral("Side"), QStringLiteral("SillLevel"),
                                            QStringLiteral("Discharge")}
                             << 3;
  }
  void layoutShowsItsColumns() {
    QFETCH(QString, sheet);
    QFETCH(QString, query);
    QFETCH(QStringList, columns);
    QFETCH(int, rowsInSection1);
    SheetsFixture fixture(true);

    auto window = openSheet(fixture, sheet);

    QCOMPARE(window->strSheetQuery, query);
    QCOMPARE(window->rsConPtr, &fixture.connection());
    QCOMPARE(window->strCurrentDataSheet, sheet);
    QCOMPARE(window->windowTitle(), sheet);
    QCOMPARE(headers(window->grid()), columns);
    if (rowsInSection1 < 0)
      rowsInSection1 =
          testsupport::rowCount(fixture.connection(), sheet, QStringLiteral("SectionID=1"));
    QCOMPARE(window->grid().Rows(), rowsInSection1);
    QVERIFY(window->grid().Redraw());
    QVERIFY(window->isVisible());
  }

  void sectionSheetsSizeAndCentreEveryColumn_data() {
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<int>("width");
    QTest::newRow("DesignDetails") << QStringLiteral("DesignDetails") << 70;
    QTest::newRow("DesignLevels") << QStringLiteral("DesignLevels") << 80;
    QTest::newRow("Initial") << QStringLiteral("Initial") << 60;
    QTest::newRow("Executed") << QStringLiteral("Executed") << 60;
  }
  void sectionSheetsSizeAndCentreEveryColumn() {
    QFETCH(QString, sheet);
    QFETCH(int, width);
    SheetsFixture fixture(true);

    auto window = openSheet(fixture, sheet);

    const GridControl& grid = window->grid();
    for (int col = 0; col < grid.Cols(); ++col) {
      QCOMPARE(grid.ColWidth(col), width);
      QCOMPARE(grid.ColTextAlign(col), int(GridControl::kAlignCenter));
    }
  }

  void packageSheetSizesDistrictAndRightAlignsPhase() {
    SheetsFixture fixture(true);

    auto window = openSheet(fixture, QStringLiteral("Package"));

    QCOMPARE(window->grid().ColWidth(2), 100);
    QCOMPARE(window->grid().ColTextAlign(1), int(GridControl::kAlignRight));
    QCOMPARE(window->grid().Text(0, 0), QStringLiteral("Right Main Canal"));
  }

  void outletsColumnsFitTheirContents() {
    SheetsFixture fixture(true);

    auto window = openSheet(fixture, QStringLiteral("Outlets"));

    const GridControl& grid = window->grid();
    const QFontMetrics metrics(grid.font());
    for (int col = 0; col < grid.Cols(); ++col)
      QVERIFY(grid.ColWidth(col) >= metrics.horizontalAdvance(grid.Text(0, col)));
    QCOMPARE(grid.Text(0, 1), QStringLiteral("OT 11"));
  }

  void aSectionKeyOfZeroGivesAnEmptySheetWithAllColumns() {
    SheetsFixture fixture(true);
    fixture.sectionId = 0;

    auto window = openSheet(fixture, QStringLiteral("DesignDetails"));

    QVERIFY(window->strSheetQuery.contains(QStringLiteral("[SectionID]=0 ")));
    QCOMPARE(window->grid().Rows(), 0);
    QCOMPARE(window->grid().Cols(), 8);
    QCOMPARE(window->grid().ColWidth(7), 70);
  }

  void designDetailsWithoutParameterColumnsShowsChainageOnly() {
    SheetsFixture fixture(false);
    fixture.connection().exec(QStringLiteral("DROP TABLE DesignDetails"));
    fixture.connection().exec(QStringLiteral(
        "CREATE TABLE DesignDetails (Chainage REAL, SectionID INTEGER, ID INTEGER PRIMARY KEY)"));

    auto window = openSheet(fixture, QStringLiteral("DesignDetails"));

    QCOMPARE(headers(window->grid()), QStringList{QStringLiteral("Chainage")});
  }

  void theMainWindowShowsTheSheet() {
    SheetsFixture fixture(true);

    auto window = openSheet(fixture, QStringLiteral("Initial"), true);

    QCOMPARE(fixture.mainWindow.shown, QList<QWidget*>{window.get()});
  }

  void aQueryThatFailsThrowsBeforeShowing() {
    SheetsFixture fixture(false);
    fixture.connection().exec(QStringLiteral("DROP TABLE Outlets"));
    frmDataGrid sheet(fixture.context(true));

    QVERIFY_THROWS_EXCEPTION(db::Error, sheets::modGridStyles::OutletsStyle(sheet));
    QVERIFY(fixture.mainWindow.shown.isEmpty());
  }
};

DELVANE_QTEST(TestModGridStyles)

#include "test_modgridstyles.moc"
