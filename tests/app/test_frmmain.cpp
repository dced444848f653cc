#include "app/dlgselectdb.h"
#include "app/frmsplash.h"
#include "app/mdiarrange.h"
#include "engine/session.h"
#include "sheets/modgridstyles.h"
#include "tests/app/appfixture.h"
#include "tests/qtestmain.h"

#include <QApplication>
#include <QCheckBox>
#include <QDate>
#include <QFileInfo>
#include <QMdiArea>
#include <QMenu>
#include <QSettings>
#include <QStandardPaths>
#include <QTimer>
#include <QToolBar>

using apptest::Desk;
using sheets::MessageAnswer;

namespace {

// Packages 1 "P" and 2 "Q"; package 1 has sections 3 "A" and 4 "B", each with one reading at
// level 100.
void addTwoSections(Desk& desk) {
  desk.exec("INSERT INTO Package (ID, Name) VALUES (1, 'P'), (2, 'Q')");
  desk.exec("INSERT INTO Sections (ID, PackageID, Description) VALUES (3, 1, 'A'), (4, 1, 'B')");
  desk.exec(
      "INSERT INTO Initial (SectionID, Chainage, Offset, [Level]) VALUES (3, 0, 0, 100), "
      "(4, 0, 0, 100)");
}

// Double-clicks the row with that ID in the active sheet, as the user drills down.
void drillDownTo(Desk& desk, int id) {
  sheets::frmDataGrid* sheet = desk.sheet();
  QVERIFY(sheet);
  const int row = sheet->resultSet()->findId(id);
  sheet->grid().SelectRow(row);
  desk.window->DoubleClickHandler(row);
  Desk::settle();
}

// Changes the Level of the first row of the active sheet, as the user types it.
void typeLevel(Desk& desk, const QString& level) {
  sheets::GridControl& grid = desk.sheet()->grid();
  grid.SetCurrentCell(0, 2);
  Desk::typeAndEnter(grid, level);
  QVERIFY(desk.sheet()->isDirty());
}

// The titles of the open children, sorted, joined by ','.
QString childTitles(const Desk& desk) {
  QStringList titles;
  for (QMdiSubWindow* child : desk.window->mdiArea()->subWindowList())
    titles.append(child->windowTitle());
  titles.sort();
  return titles.join(QLatin1Char(','));
}

}  // namespace

class TestFrmMain : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

  void commandsHaveTheirKeysAndButtonsTheirPictures();
  void menusFollowTheCurrentPackageAndSection_data();
  void menusFollowTheCurrentPackageAndSection();
  void saveSaysDisabledWithoutADataSheet();
  void executedLevelSwitchAndViewMenuWork();

  void addOnInitialInsertsCountRowsAtTheChainageOrNothing();
  void addOnPackageTakesTheNextKeyAndSelectsIt();
  void deletingTheOnlySectionRemovesItsRowsAndKeepsThePackage();
  void initialSetNeedsASectionAsksThenOrdersTheReadings();
  void drillDownWalksFromPackageToSection();
  void deletingTheCurrentSelectionGoesBackAndClosesItsWindows_data();
  void deletingTheCurrentSelectionGoesBackAndClosesItsWindows();
  void addWritesNothingForAPackageOrSectionThatIsGone();
  void addStopsWhenTheSheetCannotBeSaved();
  void choosingAnotherSectionClosesTheWindowsOfTheOldOne_data();
  void choosingAnotherSectionClosesTheWindowsOfTheOldOne();
  void openAndExitAskAboutUnsavedEdits_data();
  void openAndExitAskAboutUnsavedEdits();

  void tilesSplitTheAreaAndIconsStackUpwards();
  void windowCommandsTileArrangeAndList();

  void exportKindFollowsTheFileName();
  void closingWritesTheWindowPlacement();
  void helpWithoutTheManualSaysWhyAndAboutShowsTheVersion();
};

void TestFrmMain::commandsHaveTheirKeysAndButtonsTheirPictures() {
  const char* const shortcuts =
      "mnuFileOpen=Ctrl+O;mnuFileSave=Ctrl+S;mnuEditUndo=Ctrl+Z;mnuEditCut=Ctrl+X;"
      "mnuEditCopy=Ctrl+C;mnuEditPaste=Ctrl+V;mnuEditTransform=Ctrl+T;mnuEditAdd=Ctrl+N;"
      "mnuEditDelete=Ctrl+D;mnuLockColumn=Ctrl+F3;mnuHelpContents=F1;mnuFileExit=";
  Desk desk;
  for (const QString& item : QString::fromLatin1(shortcuts).split(QLatin1Char(';'))) {
    const QStringList parts = item.split(QLatin1Char('='));
    QCOMPARE(desk.window->action(parts[0])->shortcut(), QKeySequence(parts[1]));
  }
  for (const char* button :
       {"tbToolBar/Open", "tbToolBar/Add", "tbToolBar/Delete", "tbToolBar/Filter",
        "tbBlockBar/Profile", "tbBlockBar/InitialSet", "tbBlockBar/QuantityReport"})
    QVERIFY2(!desk.action(button)->icon().isNull() && !desk.action(button)->toolTip().isEmpty(),
             button);
}

void TestFrmMain::menusFollowTheCurrentPackageAndSection_data() {
  QTest::addColumn<int>("packageId");
  QTest::addColumn<int>("sectionId");
  QTest::addColumn<QString>("child");
  QTest::addColumn<QString>("enabled");
  const QString outputs = QStringLiteral(
      "mnuDataDesign mnuDataDesignSummary mnuDataOutlets mnuDataInitial mnuDataExecuted "
      "mnuFileImportLevels mnuOutputXSection mnuOutputLSection mnuOutputQuantity mnuOutputViewXSec "
      "mnuOutputViewLSec "
      "mnuOutputViewQty");
  QTest::newRow("no package") << 0 << 0 << ""
                              << "mnuDataPackage";
  QTest::newRow("package chosen") << 3 << 0 << ""
                                  << "mnuDataPackage mnuDataSections";
  QTest::newRow("section chosen") << 3 << 5 << ""
                                  << "mnuDataPackage mnuDataSections " + outputs + " tbBlockBar";
  QTest::newRow("data sheet") << 0 << 0 << "sheet"
                              << "mnuDataPackage mnuEdit mnuEditAdd mnuViewDetail mnuLockColumn "
                                 "mnuViewFreeze mnuViewRefresh tbToolBar/Filter tbToolBar/Add";
  QTest::newRow("viewer over the sheet") << 0 << 0 << "viewer"
                                         << "mnuDataPackage";
}

// Lists the watched commands that are enabled, and the block bar and Add button when shown.
void TestFrmMain::menusFollowTheCurrentPackageAndSection() {
  QFETCH(int, packageId);
  QFETCH(int, sectionId);
  QFETCH(QString, child);
  QFETCH(QString, enabled);
  Desk desk;
  desk.state.lngPackageID = packageId;
  desk.state.lngSectionID = sectionId;
  desk.window->EnableMenus();
  if (!child.isEmpty()) desk.window->dataPackage();
  if (child == QLatin1String("viewer")) desk.window->showChild(new QLabel(child));
  QStringList found;
  for (const char* name :
       {"mnuDataPackage",    "mnuDataSections",   "mnuDataDesign",     "mnuDataDesignSummary",
        "mnuDataOutlets",    "mnuDataInitial",    "mnuDataExecuted",   "mnuFileImportLevels",
        "mnuOutputXSection", "mnuOutputLSection", "mnuOutputQuantity", "mnuOutputViewXSec",
        "mnuOutputViewLSec", "mnuOutputViewQty",  "mnuEdit",           "mnuEditAdd",
        "mnuViewDetail",     "mnuLockColumn",     "mnuViewFreeze",     "mnuViewRefresh",
        "tbToolBar/Filter"})
    if (desk.action(name)->isEnabled()) found.append(QLatin1String(name));
  if (desk.window->tbBlockBar()->isVisible()) found.append(QStringLiteral("tbBlockBar"));
  if (desk.action("tbToolBar/Add")->isVisible()) found.append(QStringLiteral("tbToolBar/Add"));
  QCOMPARE(found.join(QLatin1Char(' ')), enabled);
}

void TestFrmMain::saveSaysDisabledWithoutADataSheet() {
  Desk desk;
  desk.window->fileSave();
  QVERIFY2(desk.messages.isEmpty(), "no child: nothing to say");
  desk.window->showChild(new QLabel(QStringLiteral("a viewer")));
  desk.action("mnuFileSave")->trigger();
  QCOMPARE(desk.messagesText(), QStringLiteral("Delvane: Disabled"));
  QCOMPARE(desk.messages[0].icon, sheets::MessageIcon::Information);
}

void TestFrmMain::executedLevelSwitchAndViewMenuWork() {
  Desk desk;
  QVERIFY(!desk.state.engine->useExecutedLevel());
  desk.window->chkUseExecutedLevel()->setChecked(true);
  QVERIFY(desk.state.engine->useExecutedLevel());
  QVERIFY(desk.window->sheetContext().isUseExecutedLevel());
  desk.window->chkUseExecutedLevel()->setChecked(false);
  QVERIFY(!desk.state.engine->useExecutedLevel());

  // The toolbar hides and shows again, and the status bar hides.
  QWidget* statusBar = desk.window->findChild<QWidget*>(QStringLiteral("sbStatusBar"));
  for (const auto& [item, checked] :
       {std::pair{"mnuViewToolbar", true}, {"mnuViewStatusBar", true}, {"mnuViewToolbar", false}}) {
    QCOMPARE(desk.action(item)->isChecked(), checked);
    desk.action(item)->trigger();
    if (checked) QVERIFY(desk.window->tbToolBar()->isHidden());
  }
  QCOMPARE(desk.window->tbToolBar()->isHidden() + 2 * statusBar->isHidden(), 2);
}

void TestFrmMain::addOnInitialInsertsCountRowsAtTheChainageOrNothing() {
  Desk desk;
  desk.exec("INSERT INTO Package (ID, Name) VALUES (1, 'P')");
  desk.exec("INSERT INTO Sections (ID, PackageID) VALUES (6, 1)");
  desk.exec("INSERT INTO Initial (SectionID, Chainage, Offset, [Level]) VALUES (9, 1, 2, 3)");
  desk.choose(1, 6);
  desk.window->dataInitial();
  QVERIFY(desk.sheet());
  desk.inputs = {"", "many", "0", "-2"};  // no count, or not a positive one: nothing
  for (int refused = 0; refused < 4; ++refused) desk.window->editAdd();
  desk.prompts.clear();
  desk.inputs = {"3", "150"};
  desk.action("mnuEditAdd")->trigger();
  QCOMPARE(desk.prompts, QStringList({"Add Initial Data|Number of records to add ?|1",
                                      "Add Initial Data|Chainage ?|0"}));
  QCOMPARE(desk.sheet()->resultSet()->rowCount(), 3);  // shown without reopening
  desk.inputs = {"2.5", "7"};                          // rounds half to even
  desk.window->editAdd();
  QCOMPARE(desk.rows("SELECT SectionID, Chainage, Offset, [Level] FROM Initial ORDER BY ID"),
           "9 1 2 3|6 150 - -|6 150 - -|6 150 - -|6 7 - -|6 7 - -");
}

void TestFrmMain::addOnPackageTakesTheNextKeyAndSelectsIt() {
  Desk desk;
  desk.exec("INSERT INTO Package (ID, Name) VALUES (1, 'A'), (2, 'B'), (7, 'C')");
  desk.window->dataPackage();
  QVERIFY(desk.sheet());
  desk.window->editAdd();
  QCOMPARE(desk.rows("SELECT ID, Phase FROM Package ORDER BY ID"),
           QStringLiteral("1 -|2 -|7 -|8 %1").arg(QDate::currentDate().year()));
  sheets::frmDataGrid& sheet = *desk.sheet();
  QCOMPARE(sheet.resultSet()->rowCount(), 4);
  QVERIFY(sheet.grid().Row() >= 0);
  QCOMPARE(Desk::value(sheet, sheet.grid().Row(), "ID").toInt(), 8);
}

void TestFrmMain::deletingTheOnlySectionRemovesItsRowsAndKeepsThePackage() {
  const char* const tables[] = {"Initial",       "Executed",  "DesignLevels",
                                "DesignDetails", "DesignQty", "Outlets"};
  Desk desk;
  desk.exec("INSERT INTO Package (ID, Name) VALUES (1, 'P')");
  desk.exec("INSERT INTO Sections (ID, PackageID, Description) VALUES (3, 1, 'Only')");
  for (const char* table : tables)
    desk.db().exec(QStringLiteral("INSERT INTO %1 (SectionID, Chainage) VALUES (3, 0)")
                       .arg(QLatin1String(table)));
  desk.choose(1, 0);
  desk.window->dataSections();
  QVERIFY(desk.sheet());
  desk.sheet()->grid().SelectRow(0);

  desk.action("mnuEditDelete")->trigger();

  QCOMPARE(desk.count(QStringLiteral("Sections")), 0);
  for (const char* table : tables) QVERIFY2(desk.count(QString::fromLatin1(table)) == 0, table);
  QCOMPARE(desk.count(QStringLiteral("Package")), 1);
}

void TestFrmMain::initialSetNeedsASectionAsksThenOrdersTheReadings() {
  Desk desk;
  desk.exec("INSERT INTO Package (ID, Name) VALUES (1, 'P')");
  desk.exec("INSERT INTO Sections (ID, PackageID) VALUES (1, 1)");
  desk.exec("INSERT INTO Initial (SectionID, Chainage, Offset, [Level]) VALUES (1, 100, 5, 10)");
  desk.exec(
      "INSERT INTO Initial (SectionID, Offset, [Level]) VALUES (1, 3, 10), (1, 0, 10), "
      "(1, 4, 10), (1, 8, 10)");
  // Readings without chainage, at 100, and on the left.
  const char* const readings =
      "SELECT sum(Chainage IS NULL), sum(Chainage = 100), sum(Offset < 0) FROM Initial";
  desk.window->initialSet();  // no section: nothing
  desk.action("tbBlockBar/InitialSet")->trigger();
  QVERIFY(desk.messages.isEmpty());
  QCOMPARE(desk.rows(readings), "4 1 0");
  desk.choose(1, 1);
  desk.window->dataInitial();
  QVERIFY(desk.sheet());

  desk.answer = MessageAnswer::No;
  desk.window->initialSet();
  QCOMPARE(desk.messages.size(), 1);
  QCOMPARE(desk.messages[0].title, QStringLiteral("Set Initial Levels"));
  QCOMPARE(desk.rows(readings), "4 1 0");
  desk.answer = MessageAnswer::Yes;
  desk.window->initialSet();
  QCOMPARE(desk.rows(readings), "0 5 2");
  QCOMPARE(*desk.scalar(QStringLiteral("SELECT Offset FROM Initial ORDER BY ID")), -5.0);
  QCOMPARE(Desk::value(*desk.sheet(), 0, "Offset").toDouble(), -5.0);  // the sheet is refreshed
}

void TestFrmMain::drillDownWalksFromPackageToSection() {
  Desk desk;
  desk.exec("INSERT INTO Package (ID, Name) VALUES (4, 'North Canal')");
  desk.exec("INSERT INTO Sections (ID, PackageID, Description) VALUES (11, 4, 'Reach A')");
  // Package, section, caption, sheet, children, Initial enabled, engine section, status panels.
  const auto drillDown = [&desk] {
    for (int panel = 1; panel <= 4; ++panel)
      desk.window->setStatusPanel(panel, QStringLiteral("old"));
    desk.sheet()->grid().SelectRow(0);
    desk.window->DoubleClickHandler(0);
    Desk::settle();
    return QStringList{QString::number(desk.state.lngPackageID),
                       QString::number(desk.state.lngSectionID),
                       desk.window->windowTitle(),
                       desk.window->activeSheetName(),
                       QString::number(desk.window->mdiArea()->subWindowList().size()),
                       QString::number(desk.action("mnuDataInitial")->isEnabled()),
                       QString::number(desk.state.engine->sectionId()),
                       desk.window->statusPanel(1) + desk.window->statusPanel(3) + "/" +
                           desk.window->statusPanel(4)}
        .join(QLatin1Char('|'));
  };
  desk.window->dataPackage();
  QCOMPARE(drillDown(), QStringLiteral("4|0|Delvane - North Canal|Sections|1|0|0|oldold/old"));
  QCOMPARE(desk.state.strPackageName, QStringLiteral("North Canal"));
  desk.state.engine->clearQuantityChainagesMark();
  QCOMPARE(drillDown(), QStringLiteral("4|11|Delvane - North Canal - Reach A||0|1|11|/old"));
  QVERIFY(desk.state.engine->quantityChainagesOutOfDate());
}

void TestFrmMain::deletingTheCurrentSelectionGoesBackAndClosesItsWindows_data() {
  QTest::addColumn<QString>("sheet");
  QTest::addColumn<int>("deleted");
  // Package, section, caption, children, Sections and Initial enabled, section tool bar shown.
  QTest::addColumn<QString>("after");
  QTest::newRow("current section") << "Sections" << 3 << "1|0|Delvane - P|Sections|1|0|0";
  QTest::newRow("current package") << "Package" << 1 << "0|0|Delvane|Package|0|0|0";
  QTest::newRow("another section")
      << "Sections" << 4 << "1|3|Delvane - P - A|Initial,Sections|1|1|1";
}
void TestFrmMain::deletingTheCurrentSelectionGoesBackAndClosesItsWindows() {
  QFETCH(QString, sheet);
  QFETCH(int, deleted);
  QFETCH(QString, after);
  Desk desk;
  addTwoSections(desk);
  desk.window->dataPackage();
  drillDownTo(desk, 1);
  drillDownTo(desk, 3);
  desk.window->dataInitial();
  if (sheet == QLatin1String("Package"))
    desk.window->dataPackage();
  else
    desk.window->dataSections();
  desk.sheet()->grid().SelectRow(desk.sheet()->resultSet()->findId(deleted));

  desk.trigger("mnuEditDelete");

  QCOMPARE(
      QStringList({QString::number(desk.state.lngPackageID),
                   QString::number(desk.state.lngSectionID), desk.window->windowTitle(),
                   childTitles(desk), QString::number(desk.action("mnuDataSections")->isEnabled()),
                   QString::number(desk.action("mnuDataInitial")->isEnabled()),
                   QString::number(!desk.window->tbBlockBar()->isHidden())})
          .join(QLatin1Char('|')),
      after);
  QCOMPARE(desk.state.engine->sectionId(), desk.state.lngSectionID);
}

// Another program deletes the package or section under an open sheet: Add adds no orphans.
void TestFrmMain::addWritesNothingForAPackageOrSectionThatIsGone() {
  Desk desk;
  addTwoSections(desk);
  desk.choose(1, 3);
  desk.window->dataInitial();
  desk.window->dataSections();
  desk.exec("DELETE FROM Package WHERE ID=1");
  desk.exec("DELETE FROM Sections WHERE ID=3");
  desk.inputs = {"2", "5"};
  desk.trigger("mnuEditAdd");  // on the Sections sheet of package 1
  desk.window->mdiArea()->activatePreviousSubWindow();
  QCOMPARE(desk.childTitle(), QStringLiteral("Initial"));
  desk.trigger("mnuEditAdd");
  QCOMPARE(desk.count(QStringLiteral("Sections")), 1);
  QCOMPARE(desk.count(QStringLiteral("Initial")), 2);
  QCOMPARE(desk.messages.size(), 2);
  QVERIFY2(desk.messages[0].text.contains(QStringLiteral("package")),
           qPrintable(desk.messagesText()));
  QVERIFY2(desk.messages[1].text.contains(QStringLiteral("section")),
           qPrintable(desk.messagesText()));
}

// Add saves the sheet first; a refused entry stops it, and stays to be corrected.
void TestFrmMain::addStopsWhenTheSheetCannotBeSaved() {
  Desk desk;
  addTwoSections(desk);
  desk.state.settings.AutoSave = false;
  desk.choose(1, 3);
  desk.window->dataInitial();
  typeLevel(desk, QStringLiteral("abc"));
  desk.inputs = {"1", "5"};
  desk.trigger("mnuEditAdd");
  QCOMPARE(desk.count(QStringLiteral("Initial"), QStringLiteral("SectionID=3")), 1);
  QCOMPARE(desk.sheet()->grid().Text(0, 2), QStringLiteral("abc"));
  QVERIFY(desk.sheet()->isDirty());
  QCOMPARE(desk.messages.size(), 1);  // the refusal
}

void TestFrmMain::choosingAnotherSectionClosesTheWindowsOfTheOldOne_data() {
  QTest::addColumn<int>("answer");
  // Section, stored level, children.
  QTest::addColumn<QString>("after");
  QTest::newRow("Yes saves") << int(MessageAnswer::Yes) << "4|7|";
  QTest::newRow("No drops the edit") << int(MessageAnswer::No) << "4|100|";
  QTest::newRow("Cancel keeps the old section")
      << int(MessageAnswer::Cancel) << "3|100|Area Calculation for Chainage : 0,Initial,Sections";
}
void TestFrmMain::choosingAnotherSectionClosesTheWindowsOfTheOldOne() {
  QFETCH(int, answer);
  QFETCH(QString, after);
  Desk desk;
  addTwoSections(desk);
  desk.state.settings.AutoSave = false;
  desk.window->dataPackage();
  drillDownTo(desk, 1);
  drillDownTo(desk, 3);
  sheets::modGridStyles::ShowAreaCalculation(desk.window->sheetContext(), 0.0f);
  desk.window->dataInitial();
  typeLevel(desk, QStringLiteral("7"));
  desk.window->dataSections();
  desk.answer = static_cast<MessageAnswer>(answer);

  drillDownTo(desk, 4);

  QCOMPARE(QStringLiteral("%1|%2|%3")
               .arg(desk.state.lngSectionID)
               .arg(*desk.scalar(QStringLiteral("SELECT Level FROM Initial WHERE SectionID=3")))
               .arg(childTitles(desk)),
           after);
  QCOMPARE(desk.messages.size(), 1);
  QCOMPARE(desk.messages[0].title, QStringLiteral("Save Changes"));
}

void TestFrmMain::openAndExitAskAboutUnsavedEdits_data() {
  QTest::addColumn<bool>("open");
  QTest::addColumn<int>("answer");
  // Stored level, children, whether the project is still the old one.
  QTest::addColumn<QString>("after");
  QTest::newRow("Open, Yes saves") << true << int(MessageAnswer::Yes) << "7|0|0";
  QTest::newRow("Open, No drops the edit") << true << int(MessageAnswer::No) << "100|0|0";
  QTest::newRow("Open, Cancel keeps everything") << true << int(MessageAnswer::Cancel) << "100|2|1";
  QTest::newRow("Exit, No drops the edit") << false << int(MessageAnswer::No) << "100|0|1";
  QTest::newRow("Exit, Cancel keeps everything")
      << false << int(MessageAnswer::Cancel) << "100|2|1";
}
void TestFrmMain::openAndExitAskAboutUnsavedEdits() {
  QFETCH(bool, open);
  QFETCH(int, answer);
  QFETCH(QString, after);
  Desk desk;
  addTwoSections(desk);
  desk.state.settings.AutoSave = false;
  desk.choose(1, 3);
  desk.window->dataPackage();  // a clean sheet, closed first when all close
  desk.window->dataInitial();
  typeLevel(desk, QStringLiteral("7"));
  desk.answer = static_cast<MessageAnswer>(answer);
  const QString other = desk.folder.filePath(QStringLiteral("other.delvane"));
  db::createProject(other, false);

  if (open) {
    QTimer::singleShot(0, desk.window.get(), [&other] {
      if (auto* chooser = qobject_cast<app::dlgSelectDB*>(QApplication::activeModalWidget()))
        chooser->openFile(other);
    });
    desk.trigger("mnuFileOpen");
  } else {
    desk.window->close();
    Desk::settle();
  }

  const auto old = db::Connection::open(desk.path);
  QCOMPARE(QStringLiteral("%1|%2|%3")
               .arg(*old->scalar(QStringLiteral("SELECT Level FROM Initial WHERE SectionID=3")))
               .arg(desk.window->mdiArea()->subWindowList().size())
               .arg(desk.state.strDatabasePath == desk.path),
           after);
  QCOMPARE(desk.messages.size(), 1);
  QCOMPARE(desk.messages[0].title, QStringLiteral("Save Changes"));
}

void TestFrmMain::tilesSplitTheAreaAndIconsStackUpwards() {
  using Rects = std::vector<QRect>;
  QVERIFY(app::horizontalTiles(QRect(0, 0, 300, 100), 0).empty());
  QCOMPARE(app::horizontalTiles(QRect(0, 0, 300, 100), 1), Rects{QRect(0, 0, 300, 100)});
  // The odd pixel goes to the first tile.
  QCOMPARE(app::horizontalTiles(QRect(10, 20, 300, 100), 3),
           (Rects{QRect(10, 20, 300, 34), QRect(10, 54, 300, 33), QRect(10, 87, 300, 33)}));
  QCOMPARE(app::verticalTiles(QRect(5, 5, 101, 80), 2),
           (Rects{QRect(5, 5, 51, 80), QRect(56, 5, 50, 80)}));
  // Two icons fit in a row of 250; the third starts a row above.
  QCOMPARE(app::iconPositions(QRect(0, 0, 250, 400), QSize(100, 30), 3),
           (std::vector<QPoint>{QPoint(0, 370), QPoint(100, 370), QPoint(0, 340)}));
}

void TestFrmMain::windowCommandsTileArrangeAndList() {
  Desk desk;
  desk.showChildren({"one", "two", "three"});
  QMdiArea& area = *desk.window->mdiArea();
  const QRect viewport = area.viewport()->rect();
  // The Window menu lists the children, the active one checked, and activates the one chosen.
  desk.window->updateWindowMenu();
  QMenu* menu = desk.window->findChild<QMenu*>(QStringLiteral("mnuWindow"));
  QStringList listed;
  for (QAction* item : menu->actions())
    if (item->isCheckable())
      listed.append(item->text() + QLatin1String(item->isChecked() ? "*" : ""));
  QCOMPARE(listed, QStringList({"&1 one", "&2 two", "&3 three*"}));
  for (QAction* item : menu->actions())
    if (item->text() == QLatin1String("&1 one")) item->trigger();
  QCOMPARE(area.currentSubWindow()->windowTitle(), QStringLiteral("one"));

  // The children, top to bottom and left to right.
  const auto geometries = [&area] {
    std::vector<QRect> all;
    for (QMdiSubWindow* child : area.subWindowList()) all.push_back(child->geometry());
    std::ranges::sort(all, {}, [](const QRect& r) { return std::pair(r.top(), r.left()); });
    return all;
  };
  desk.action("mnuWindowTileHorizontal")->trigger();
  QCOMPARE(geometries(), app::horizontalTiles(viewport, 3));
  QCOMPARE(area.activeSubWindow()->geometry().top(), viewport.top());  // the active one first
  desk.action("mnuWindowTileVertical")->trigger();
  QCOMPARE(geometries(), app::verticalTiles(viewport, 3));

  // Minimised children go to the bottom, and tiling leaves their row free.
  const QList<QMdiSubWindow*> children = area.subWindowList(QMdiArea::CreationOrder);
  children[0]->showMinimized();
  children[1]->showMinimized();
  children[0]->move(40, 10);
  desk.action("mnuWindowArrangeIcons")->trigger();
  QCOMPARE((std::vector<QPoint>{children[0]->pos(), children[1]->pos()}),
           app::iconPositions(viewport, children[0]->size(), 2));
  desk.action("mnuWindowTileHorizontal")->trigger();
  QVERIFY(children[2]->geometry().bottom() < children[0]->geometry().top());
}

void TestFrmMain::exportKindFollowsTheFileName() {
  Desk desk(true);
  desk.choose(1, 1);
  desk.saveAs = desk.folder.filePath(QStringLiteral("book"));  // no extension: a workbook
  desk.action("mnuOutputQuantity")->trigger();
  QVERIFY2(desk.messages.isEmpty(), qPrintable(desk.messagesText()));
  QVERIFY(desk.suggestedSave.endsWith(QStringLiteral(".xlsx")));
  QVERIFY(QFileInfo::exists(desk.saveAs + QStringLiteral(".xlsx")));

  const QString text = desk.folder.filePath(QStringLiteral("q.txt"));
  QVERIFY(!desk.window->exportQuantitySheet(text));
  QCOMPARE(desk.messages.size(), 1);
  QVERIFY(desk.messages[0].text.contains(QStringLiteral(".csv")));
  QVERIFY(!QFileInfo::exists(text));
}

void TestFrmMain::closingWritesTheWindowPlacement() {
  QSettings().clear();
  Desk desk;
  desk.state.settings.MainWidth = 1;
  desk.window->showChild(new QLabel(QStringLiteral("a viewer")));
  QVERIFY(desk.window->close());
  QVERIFY(desk.state.settings.MainWidth > 1);
  QSettings store;
  QVERIFY(store.contains(QStringLiteral("Settings/MainWidth")));
  QVERIFY(store.contains(QStringLiteral("Settings/MetersPerPage")));
}

void TestFrmMain::helpWithoutTheManualSaysWhyAndAboutShowsTheVersion() {
  Desk desk;
  desk.window->setManualFolder(desk.folder.filePath(QStringLiteral("no-manual")));
  desk.window->helpContents();
  QCOMPARE(desk.messages.size(), 1);
  QVERIFY(desk.messages[0].text.contains(QStringLiteral("could not be opened")));
  QVERIFY(desk.messages[0].text.contains(QStringLiteral("index.html")));
  QVERIFY(!desk.window->helpWindow());

  QString about;
  QTimer::singleShot(0, [&about] {
    if (auto* splash = qobject_cast<app::frmSplash*>(QApplication::activeModalWidget())) {
      about = splash->lblVersion()->text();
      splash->close();
    }
  });
  desk.action("mnuHelpAbout")->trigger();
  QCOMPARE(about, QStringLiteral("Version 1.9.2"));
}

DELVANE_QTEST(TestFrmMain)
#include "test_frmmain.moc"
