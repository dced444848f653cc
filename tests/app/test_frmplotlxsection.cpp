#include "app/frmplotlxsection.h"
#include "engine/session.h"
#include "tests/app/appfixture.h"
#include "tests/qtestmain.h"

#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QStandardPaths>

using app::frmPlotLXSection;
using apptest::Desk;

namespace {

// The demo's section 1, its first cross-section shown (chainage 0, ground readings at offsets
// ... -2.4, 0, 2 ... with levels 152.274, 152.418, 152.596).
struct Viewer {
  explicit Viewer(std::uint8_t mode = 2) {
    desk.choose(1, 1);
    view = desk.window->openSectionViewer(mode);
    QVERIFY(view);
  }

  void clickAt(QPointF value) {
    QTest::mouseClick(view->pbGraph(), Qt::LeftButton, {}, view->pixelOf(value).toPoint());
  }
  void type(QLineEdit* box, const QString& text) {
    box->selectAll();
    QTest::keyClicks(box, text);
  }
  QString lastMessage() const {
    return desk.messages.isEmpty() ? QString() : desk.messages.back().text;
  }
  QString levelsAt(const char* chainage, const char* offset) {
    return desk.rows(QStringLiteral("SELECT [Level] FROM Initial WHERE SectionID=1 AND Chainage=%1 "
                                    "AND Offset=%2 ORDER BY [Level]")
                         .arg(QLatin1String(chainage), QLatin1String(offset))
                         .toUtf8()
                         .constData());
  }

  Desk desk{true};
  QPointer<frmPlotLXSection> view;
};

}  // namespace

class TestFrmPlotLXSection : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

  void navigationStaysAtTheEndsAndGoFindsStoredChainages_data() {
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("message");
    QTest::newRow("opens on the first") << QStringList{} << "0"
                                        << "";
    QTest::newRow("prev on the first stays") << QStringList{"prev"} << "0"
                                             << "";
    QTest::newRow("next") << QStringList{"next", "next"} << "0.04"
                          << "";
    QTest::newRow("next on the last stays") << QStringList{"last", "next"} << "4"
                                            << "";
    QTest::newRow("page keys") << QStringList{"End", "PgUp", "Home", "PgDn"} << "0.02"
                               << "";
    QTest::newRow("go finds a stored chainage typed plainly") << QStringList{"go:4.00"} << "4"
                                                              << "";
    QTest::newRow("go stays when not found") << QStringList{"next", "go:0.031"} << "0.02"
                                             << "Chainage 0.031 not found in data!";
    QTest::newRow("go refuses text") << QStringList{"go:abc"} << "0"
                                     << "Chainage abc not found in data!";
  }
  void navigationStaysAtTheEndsAndGoFindsStoredChainages() {
    QFETCH(QStringList, steps);
    QFETCH(QString, shown);
    QFETCH(QString, message);
    Viewer v;
    frmPlotLXSection& view = *v.view;
    const std::map<QString, Qt::Key> keys = {{"PgUp", Qt::Key_PageUp},
                                             {"PgDn", Qt::Key_PageDown},
                                             {"Home", Qt::Key_Home},
                                             {"End", Qt::Key_End}};
    for (const QString& step : steps) {
      if (step == QLatin1String("prev")) QTest::mouseClick(view.cmdPrev(), Qt::LeftButton);
      if (step == QLatin1String("next")) QTest::mouseClick(view.cmdNext(), Qt::LeftButton);
      if (step == QLatin1String("last")) QTest::mouseClick(view.cmdLast(), Qt::LeftButton);
      if (keys.count(step)) QTest::keyClick(view.pbGraph(), keys.at(step));
      if (step.startsWith(QLatin1String("go:"))) {
        view.txtChainage()->setText(step.mid(3));
        QTest::keyClick(view.txtChainage(), Qt::Key_Return);
      }
    }
    QCOMPARE(view.txtChainage()->text(), shown);
    QCOMPARE(v.lastMessage(), message);
  }

  // The areas shown are the ones stored for the chainage, with two decimals.
  void areasShowTwoDecimalsOfTheStoredAreas() {
    Viewer v;
    QTest::mouseClick(v.view->cmdNext(), Qt::LeftButton);
    const double cut = *v.desk.scalar(
        QStringLiteral("SELECT AreaCut FROM DesignQty WHERE SectionID=1 AND Chainage=0.02"));
    const double fill = *v.desk.scalar(
        QStringLiteral("SELECT AreaFill FROM DesignQty WHERE SectionID=1 AND Chainage=0.02"));
    QCOMPARE(v.view->lblDesCutArea()->text(), QString::number(cut, 'f', 2) + " Sqm.");
    QCOMPARE(v.view->lblDesFillArea()->text(), QString::number(fill, 'f', 2) + " Sqm.");
    QVERIFY(v.view->windowTitle().endsWith("Chainage 0.020"));
  }

  void aChainageWithBadLevelsIsNotShown() {
    Viewer v;
    v.desk.exec("UPDATE Initial SET [Level]=15.2 WHERE SectionID=1 AND Chainage=0.02 AND Offset=0");
    const QString cut = v.view->lblDesCutArea()->text();
    QTest::mouseClick(v.view->cmdNext(), Qt::LeftButton);
    QCOMPARE(v.view->txtChainage()->text(), QString("0"));
    QCOMPARE(v.view->lblDesCutArea()->text(), cut);
    QVERIFY(v.desk.reporter.blnErrorListLoaded());
  }

  // A click selects the nearest surveyed reading, never a point of the drawn line between two,
  // at any zoom and scroll position.
  void clicksSelectSurveyedReadings_data() {
    QTest::addColumn<double>("zoom");
    QTest::addColumn<bool>("scrolled");
    QTest::newRow("as opened") << 1.0 << false;
    QTest::newRow("zoomed and scrolled") << 2.0 << true;
    QTest::newRow("zoomed out") << 0.5 << false;
  }
  void clicksSelectSurveyedReadings() {
    QFETCH(double, zoom);
    QFETCH(bool, scrolled);
    Viewer v;
    v.view->setZoom(zoom);
    if (scrolled) v.view->HScroll1()->setValue(v.view->HScroll1()->maximum() / 2);

    v.clickAt(QPointF(-12.8, 152.246));
    QCOMPARE(v.view->txtOffset()->text(), QString("-12.8"));
    QCOMPARE(v.view->txtLevel()->text(), QString("152.246"));

    v.clickAt(QPointF(1.0, 152.5));  // halfway between the readings at 0 and 2
    const QString offset = v.view->txtOffset()->text();
    QVERIFY2(offset == "0" || offset == "2", qPrintable(offset));
    QCOMPARE(v.view->txtLevel()->text(), offset == "0" ? QString("152.418") : QString("152.596"));
  }

  // Two readings share offset 0 at chainage 0: a change moves only the one whose level matches.
  void changeTouchesOnlyTheRowWhoseLevelMatches() {
    Viewer v;
    v.desk.exec(
        "INSERT INTO Initial (SectionID, Chainage, Offset, [Level]) VALUES (1, 0, 0, 152.9)");
    v.clickAt(QPointF(0.0, 152.418));
    QCOMPARE(v.view->txtLevel()->text(), QString("152.418"));
    QTest::keyClick(v.view->pbGraph(), Qt::Key_C);
    QCOMPARE(v.view->editMode(), std::uint8_t{frmPlotLXSection::kChange});
    QVERIFY(v.view->cmdYes()->isVisibleTo(v.view));
    v.type(v.view->txtLevel(), "153.5");
    QTest::mouseClick(v.view->cmdYes(), Qt::LeftButton);
    QCOMPARE(v.levelsAt("0", "0"), QString("152.9|153.5"));
    QCOMPARE(v.view->editMode(), std::uint8_t{frmPlotLXSection::kNoEdit});
    QVERIFY(!v.view->cmdYes()->isVisibleTo(v.view));
  }

  // The edit is written, the areas of the chainage follow and so do the volumes and totals, and
  // an open Initial sheet shows the new reading.
  void anAddTypedAndCommittedWithYRefreshesTheQuantities() {
    Viewer v;
    v.desk.window->dataInitial();
    sheets::frmDataGrid* sheet = v.desk.sheet();
    QVERIFY(sheet);
    const int sheetRows = sheet->resultSet()->rowCount();
    v.desk.window->setStatusPanel(1, QString());
    const int before = v.desk.count("Initial", "SectionID=1 AND Chainage=0");
    const QString cut = v.view->lblDesCutArea()->text();
    QTest::keyClick(v.view->pbGraph(), Qt::Key_A);
    QCOMPARE(v.view->txtOffset()->text(), QString("Offset"));
    v.type(v.view->txtOffset(), "1");
    v.type(v.view->txtLevel(), "154");
    QTest::keyClicks(v.view->txtLevel(), "y");
    QCOMPARE(v.desk.count("Initial", "SectionID=1 AND Chainage=0"), before + 1);
    QCOMPARE(v.levelsAt("0", "1"), QString("154"));
    QVERIFY(v.view->lblDesCutArea()->text() != cut);
    QVERIFY(v.desk.window->statusPanel(1).startsWith("Cutting Volume"));
    const double stored = *v.desk.scalar(
        QStringLiteral("SELECT AreaCut FROM DesignQty WHERE SectionID=1 AND Chainage=0"));
    QCOMPARE(v.view->lblDesCutArea()->text(), QString::number(stored, 'f', 2) + " Sqm.");
    QCOMPARE(sheet->resultSet()->rowCount(), sheetRows + 1);
  }

  void badBoxesAreRefusedAndNothingIsWritten_data() {
    QTest::addColumn<QString>("offset");
    QTest::addColumn<QString>("level");
    QTest::addColumn<QString>("message");
    QTest::addColumn<bool>("stillEditing");
    QTest::newRow("text in the offset")
        << "1; DROP TABLE Outlets"
        << "152"
        << "The Offset box holds \"1; DROP TABLE Outlets\", which is not a number. Nothing was "
           "written."
        << true;
    QTest::newRow("text in the level") << "1"
                                       << "abc"
                                       << "The Level box holds \"abc\", which is not a number. "
                                          "Nothing was written."
                                       << true;
    QTest::newRow("no level given") << "1"
                                    << "Level"
                                    << "You have not selected a correct offset and level" << false;
  }
  void badBoxesAreRefusedAndNothingIsWritten() {
    QFETCH(QString, offset);
    QFETCH(QString, level);
    QFETCH(QString, message);
    QFETCH(bool, stillEditing);
    Viewer v;
    const int before = v.desk.count("Initial");
    v.view->startAdd();
    v.type(v.view->txtOffset(), offset);
    v.type(v.view->txtLevel(), level);
    QTest::keyClick(v.view->txtLevel(), Qt::Key_Return);
    QCOMPARE(v.lastMessage(), message);
    QCOMPARE(v.desk.count("Initial"), before);
    QCOMPARE(v.view->editMode() != frmPlotLXSection::kNoEdit, stillEditing);
  }

  void deleteAsksThenRemovesTheReading() {
    Viewer v;
    v.clickAt(QPointF(2.0, 152.596));
    QTest::keyClick(v.view->pbGraph(), Qt::Key_D);
    QCOMPARE(v.view->lblStatusMessage()->text(),
             QString("Are you sure you want to delete the selected point at offset 2?"));
    QTest::keyClick(v.view->pbGraph(), Qt::Key_N);
    QCOMPARE(v.levelsAt("0", "2"), QString("152.596"));
    QCOMPARE(v.view->txtOffset()->text(), QString("2"));
    QTest::keyClick(v.view->pbGraph(), Qt::Key_D);
    QTest::keyClick(v.view->pbGraph(), Qt::Key_Y);
    QCOMPARE(v.levelsAt("0", "2"), QString());
    QCOMPARE(v.view->txtOffset()->text(), QString("Offset"));
  }

  // Design levels stand at every half kilometre; the chainages between are interpolated.
  void longitudinalEditsRefuseInterpolatedPointsAndClearAfterDelete() {
    Viewer v(1);
    frmPlotLXSection& view = *v.view;
    QCOMPARE(view.windowTitle(), QString("Longitudinal Section"));
    QVERIFY(!view.cmdFirst()->isVisibleTo(&view));

    v.clickAt(QPointF(0.02, 151.0));
    QCOMPARE(view.txtOffset()->text(), QString("0.02"));
    view.startChange();
    QCOMPARE(v.lastMessage(), QString("You cannot change an interpolated point!"));
    view.startDelete();
    QCOMPARE(v.lastMessage(), QString("You cannot delete an interpolated point!"));
    QCOMPARE(view.editMode(), std::uint8_t{frmPlotLXSection::kNoEdit});

    const double areaBefore = *v.desk.scalar(
        QStringLiteral("SELECT AreaCut FROM DesignQty WHERE SectionID=1 AND Chainage=0.2"));
    v.clickAt(QPointF(0.0, 151.0));
    QCOMPARE(view.txtOffset()->text(), QString("0"));
    QCOMPARE(view.txtLevel()->text(), QString("151"));
    view.startDelete();
    QTest::mouseClick(view.cmdYes(), Qt::LeftButton);
    QCOMPARE(v.desk.count("DesignLevels", "SectionID=1 AND Chainage=0"), 0);
    QCOMPARE(view.txtOffset()->text(), QString("Offset"));
    QCOMPARE(view.txtLevel()->text(), QString("Level"));
    // Every chainage's areas were computed again against the new design line.
    QVERIFY(*v.desk.scalar(QStringLiteral(
                "SELECT AreaCut FROM DesignQty WHERE SectionID=1 AND Chainage=0.2")) != areaBefore);
  }

  void fewChainagesOrNoneOpenQuietViews() {
    Desk desk(true);
    desk.exec("INSERT INTO Sections (ID, PackageID) VALUES (9, 1), (10, 1)");
    desk.exec("INSERT INTO Initial (SectionID, Chainage, Offset, [Level]) VALUES (9, 0, 0, 100)");
    desk.choose(1, 9);
    frmPlotLXSection* cross = desk.window->openSectionViewer(2);
    QCOMPARE(cross->txtChainage()->text(), QString("0"));
    frmPlotLXSection* longitudinal = desk.window->openSectionViewer(1);
    QVERIFY(longitudinal != cross);
    QCOMPARE(desk.messages.back().text,
             QString("Insufficient levels to plot L-Section. Atleast 2 sections are required."));
    desk.choose(1, 10);
    frmPlotLXSection* empty = desk.window->openSectionViewer(2);
    QVERIFY(empty->chainages().empty());
    QCOMPARE(empty->txtOffset()->text(), QString("Offset"));
  }

  void theWheelScrollsOnlyWhileTheBarIsEnabled() {
    Viewer v;
    QScrollBar& bar = *v.view->HScroll1();
    QVERIFY(bar.isEnabled());
    v.view->MouseWheel(0, -120, 0, 0);
    QCOMPARE(bar.value(), bar.pageStep());
    v.view->MouseWheel(0, 120, 0, 0);
    QCOMPARE(bar.value(), 0);
    v.view->MouseWheel(8, 120, 0, 0);  // with Ctrl: zoom
    QCOMPARE(v.view->zoom(), 1.25);
    v.view->setZoom(0.25);
    QVERIFY(!bar.isEnabled());
    v.view->MouseWheel(0, -120, 0, 0);
    QCOMPARE(bar.value(), 0);
  }
};

DELVANE_QTEST(TestFrmPlotLXSection)
#include "test_frmplotlxsection.moc"
