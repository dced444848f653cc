#include "app/appstate.h"
#include "app/frmmain.h"
#include "app/helpwindow.h"
#include "app/mdiarrange.h"
#include "db/connection.h"
#include "db/project.h"
#include "db/resultset.h"
#include "engine/reporter.h"
#include "engine/session.h"
#include "sheets/frmdatagrid.h"
#include "sheets/gridcontrol.h"
#include "tests/qtestmain.h"
#include "tests/testsupport.h"

#include <QAction>
#include <QCheckBox>
#include <QDate>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QScrollBar>
#include <QSettings>
#include <QStandardPaths>
#include <QTest>
#include <QTextBrowser>
#include <QToolBar>

#include <memory>
#include <optional>

using sheets::MessageAnswer;
using sheets::MessageIcon;

namespace {

struct Message {
  QString title;
  QString text;
  MessageIcon icon;
};

// A main window over a fresh project file, with every box answered by the test.
struct Desk {
  explicit Desk(bool demo = false) {
    project.create(demo);
    state.cnProject = db::openProject(project.path());
    state.engine = std::make_unique<engine::EngineSession>(*state.cnProject, reporter);
    window = std::make_unique<app::frmMain>(state);
    window->setMessageFunction([this](QWidget*, const QString& text, const QString& title,
                                      sheets::MessageButtons, MessageIcon icon) {
      messages.append({title, text, icon});
      return answer;
    });
    window->setInputFunction(
        [this](QWidget*, const QString& title, const QString& prompt, const QString& defaultText) {
          prompts.append(title + QLatin1Char('|') + prompt + QLatin1Char('|') + defaultText);
          return inputs.isEmpty() ? QString() : inputs.takeFirst();
        });
    window->resize(900, 700);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
  }

  db::Connection& db() { return *state.cnProject; }
  void exec(const char* sql) { db().exec(QString::fromUtf8(sql)); }
  int count(const QString& table, const QString& where = {}) {
    return testsupport::rowCount(db(), table, where);
  }
  QAction* action(const char* name) const { return window->action(QLatin1String(name)); }
  sheets::frmDataGrid* sheet() const { return window->activeDataSheet(); }
  // Lets closed children go, as the event loop would.
  static void settle() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

  testsupport::TempProject project;
  engine::RecordingReporter reporter;
  app::AppState state;
  std::unique_ptr<app::frmMain> window;
  QList<Message> messages;
  QStringList inputs;
  QStringList prompts;
  MessageAnswer answer = MessageAnswer::Yes;
};

// The value of a column of the sheet's row, by column name.
QVariant sheetValue(sheets::frmDataGrid& sheet, int row, const char* column) {
  db::ResultSet* rows = sheet.resultSet();
  return rows->value(row, rows->columnIndex(QLatin1String(column)));
}

std::optional<double> scalar(db::Connection& connection, const char* sql) {
  return connection.scalar(QString::fromUtf8(sql));
}

}  // namespace

class TestFrmMain : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

  void menuItemsHaveTheirCaptionsAndKeys_data();
  void menuItemsHaveTheirCaptionsAndKeys();
  void toolButtonsHaveTheirToolTips_data();
  void toolButtonsHaveTheirToolTips();
  void startsWithEditAndSheetCommandsDisabled();
  void menusFollowTheCurrentPackageAndSection_data();
  void menusFollowTheCurrentPackageAndSection();
  void activeDataSheetEnablesEditCommands();
  void executedLevelSwitchReachesTheEngine();
  void viewMenuHidesToolbarAndStatusBar();

  void addOnInitialInsertsCountRowsAtTheChainage();
  void addWithNonNumericCountAddsNothing();
  void addOnPackageTakesTheNextKeyAndSelectsIt();
  void deletingTheOnlySectionRemovesItsRowsAndKeepsThePackage();
  void initialSetDoesNothingWithoutASection();
  void initialSetOrdersTheReadingsAndRefreshesTheSheet();
  void saveWithANonSheetChildSaysDisabled();
  void drillDownWalksFromPackageToSection();

  void horizontalTilesStackAndFillTheArea_data();
  void horizontalTilesStackAndFillTheArea();
  void verticalTilesSitSideBySide();
  void iconPositionsLineUpAlongTheBottom();
  void tilingCommandsFillTheMdiArea();
  void arrangeIconsMovesMinimisedChildrenToTheBottom();
  void windowMenuListsTheOpenChildren();

  void exportWritesTheQuantitySheetOfTheCurrentSection();
  void exportToAnUnknownKindOfFileSaysWhichKindsThereAre();

  void closingWritesTheWindowPlacement();

  void helpShowsTheManualsContentsPage();
  void helpWithoutTheManualSaysWhy();
};

void TestFrmMain::menuItemsHaveTheirCaptionsAndKeys_data() {
  QTest::addColumn<QString>("name");
  QTest::addColumn<QString>("caption");
  QTest::addColumn<QKeySequence>("shortcut");
  const struct {
    const char* name;
    const char* caption;
    QKeySequence shortcut;
  } cases[] = {
      {"mnuFile", "&File", {}},
      {"mnuFileOpen", "&Open DB...", QKeySequence(Qt::CTRL | Qt::Key_O)},
      {"mnuFileSave", "&Save", QKeySequence(Qt::CTRL | Qt::Key_S)},
      {"mnuFilePageSetup", "Page Set&up...", {}},
      {"mnuFilePrint", "&Print...", {}},
      {"mnuFileExit", "E&xit", {}},
      {"mnuEdit", "&Edit", {}},
      {"mnuEditUndo", "&Undo", QKeySequence(Qt::CTRL | Qt::Key_Z)},
      {"mnuEditCut", "Cu&t", QKeySequence(Qt::CTRL | Qt::Key_X)},
      {"mnuEditCopy", "&Copy", QKeySequence(Qt::CTRL | Qt::Key_C)},
      {"mnuEditPaste", "&Paste", QKeySequence(Qt::CTRL | Qt::Key_V)},
      {"mnuEditTransform", "T&ransform...", QKeySequence(Qt::CTRL | Qt::Key_T)},
      {"mnuEditAdd", "&Add", QKeySequence(Qt::CTRL | Qt::Key_N)},
      {"mnuEditDelete", "&Delete", QKeySequence(Qt::CTRL | Qt::Key_D)},
      {"mnuView", "&View", {}},
      {"mnuViewToolbar", "&Toolbar", {}},
      {"mnuViewStatusBar", "Status &Bar", {}},
      {"mnuViewDetail", "Filter Window", {}},
      {"mnuLockColumn", "Lock/Unlock Column", QKeySequence(Qt::CTRL | Qt::Key_F3)},
      {"mnuViewFreeze", "Freeze/Unfreeze Column", {}},
      {"mnuViewRefresh", "&Refresh", {}},
      {"mnuData", "&Data", {}},
      {"mnuDataPackage", "Package", {}},
      {"mnuDataSections", "Sections", {}},
      {"mnuDataDesignSummary", "Design Profile Values", {}},
      {"mnuDataDesign", "Design Levels", {}},
      {"mnuDataInitial", "Initial Levels", {}},
      {"mnuDataExecuted", "Executed Levels", {}},
      {"mnuDataOutlets", "Outlets", {}},
      {"mnuOutput", "&Output", {}},
      {"mnuOutputViewLSec", "View L Section", {}},
      {"mnuOutputViewXSec", "View X Section", {}},
      {"mnuOutputViewQty", "View Quantity", {}},
      {"mnuOutputLSection", "Plot L Section", {}},
      {"mnuOutputXSection", "Plot X Section", {}},
      {"mnuOutputQuantity", "Export Quantity Sheet", {}},
      {"mnuTools", "&Tools", {}},
      {"mnuToolsOptions", "&Options...", {}},
      {"mnuWindow", "&Window", {}},
      {"mnuWindowCascade", "&Cascade", {}},
      {"mnuWindowTileHorizontal", "Tile &Horizontal", {}},
      {"mnuWindowTileVertical", "Tile &Vertical", {}},
      {"mnuWindowArrangeIcons", "&Arrange Icons", {}},
      {"mnuHelp", "&Help", {}},
      {"mnuHelpContents", "&Contents", QKeySequence(Qt::Key_F1)},
      {"mnuHelpAbout", "&About ", {}},
  };
  for (const auto& c : cases)
    QTest::newRow(c.name) << QString::fromLatin1(c.name) << QString::fromLatin1(c.caption)
                          << c.shortcut;
}

void TestFrmMain::menuItemsHaveTheirCaptionsAndKeys() {
  QFETCH(QString, name);
  QFETCH(QString, caption);
  QFETCH(QKeySequence, shortcut);
  Desk desk;
  QAction* item = desk.window->action(name);
  QVERIFY(item);
  QCOMPARE(item->text(), caption);
  QCOMPARE(item->shortcut(), shortcut);
}

void TestFrmMain::toolButtonsHaveTheirToolTips_data() {
  QTest::addColumn<QString>("name");
  QTest::addColumn<QString>("toolTip");
  const char* toolBar[] = {"Open",  "Save", "Print",  "Packages", "Cut", "Copy",
                           "Paste", "Undo", "Filter", "Help",     "Add", "Delete"};
  for (const char* key : toolBar)
    QTest::newRow(key) << QStringLiteral("tbToolBar/") + QLatin1String(key)
                       << QString::fromLatin1(key);
  const struct {
    const char* key;
    const char* tip;
  } blockBar[] = {
      {"Profile", "Design Profile Values"},      {"DesignLevels", "Design Levels"},
      {"InitialLevels", "Initial Levels"},       {"InitialSet", "Set Initial Levels in order"},
      {"Lsection", "Longitudinal Section"},      {"Xsection", "Cross Section"},
      {"QuantityReport", "View Quantity Report"}};
  for (const auto& b : blockBar)
    QTest::newRow(b.key) << QStringLiteral("tbBlockBar/") + QLatin1String(b.key)
                         << QString::fromLatin1(b.tip);
}

void TestFrmMain::toolButtonsHaveTheirToolTips() {
  QFETCH(QString, name);
  QFETCH(QString, toolTip);
  Desk desk;
  QAction* button = desk.window->action(name);
  QVERIFY(button);
  QCOMPARE(button->toolTip(), toolTip);
  QVERIFY2(!button->icon().isNull(), "every button has a picture");
}

void TestFrmMain::startsWithEditAndSheetCommandsDisabled() {
  Desk desk;
  QCOMPARE(desk.window->windowTitle(), QStringLiteral("Delvane"));
  QVERIFY(desk.action("mnuViewToolbar")->isChecked());
  QVERIFY(desk.action("mnuViewStatusBar")->isChecked());
  for (const char* name : {"mnuEdit", "mnuEditAdd", "mnuEditCopy", "mnuViewDetail", "mnuLockColumn",
                           "mnuViewFreeze", "mnuViewRefresh"})
    QVERIFY2(!desk.action(name)->isEnabled(), name);
  QVERIFY(desk.action("mnuDataPackage")->isEnabled());
  QVERIFY(!desk.action("tbToolBar/Add")->isVisible());
  QVERIFY(!desk.action("tbToolBar/Delete")->isVisible());
  QVERIFY(!desk.action("tbToolBar/Filter")->isEnabled());
  QCOMPARE(desk.window->chkUseExecutedLevel()->text(), QStringLiteral("Executed Lvl"));
  QVERIFY(desk.window->findChild<QWidget*>(QStringLiteral("sbStatusBar")));
  QVERIFY(desk.window->findChild<QLabel*>(QStringLiteral("sbPanel4")));
}

void TestFrmMain::menusFollowTheCurrentPackageAndSection_data() {
  QTest::addColumn<int>("packageId");
  QTest::addColumn<int>("sectionId");
  QTest::addColumn<bool>("sectionsEnabled");
  QTest::addColumn<bool>("sectionCommandsEnabled");
  QTest::newRow("no package") << 0 << 0 << false << false;
  QTest::newRow("package chosen") << 3 << 0 << true << false;
  QTest::newRow("section chosen") << 3 << 5 << true << true;
}

void TestFrmMain::menusFollowTheCurrentPackageAndSection() {
  QFETCH(int, packageId);
  QFETCH(int, sectionId);
  QFETCH(bool, sectionsEnabled);
  QFETCH(bool, sectionCommandsEnabled);
  Desk desk;
  desk.state.lngPackageID = packageId;
  desk.state.lngSectionID = sectionId;
  desk.window->EnableMenus();
  QCOMPARE(desk.action("mnuDataSections")->isEnabled(), sectionsEnabled);
  for (const char* name :
       {"mnuDataDesign", "mnuDataDesignSummary", "mnuDataOutlets", "mnuDataInitial",
        "mnuDataExecuted", "mnuOutputXSection", "mnuOutputLSection", "mnuOutputQuantity",
        "mnuOutputViewXSec", "mnuOutputViewLSec", "mnuOutputViewQty"})
    QVERIFY2(desk.action(name)->isEnabled() == sectionCommandsEnabled, name);
  QCOMPARE(desk.window->tbBlockBar()->isVisible(), sectionCommandsEnabled);
  QVERIFY(desk.action("mnuDataPackage")->isEnabled());
}

void TestFrmMain::activeDataSheetEnablesEditCommands() {
  Desk desk;
  desk.window->dataPackage();
  QVERIFY(desk.sheet());
  QVERIFY(desk.action("mnuEdit")->isEnabled());
  QVERIFY(desk.action("mnuEditAdd")->isEnabled());
  QVERIFY(desk.action("mnuViewRefresh")->isEnabled());
  QVERIFY(desk.action("tbToolBar/Add")->isVisible());

  desk.window->showChild(new QLabel(QStringLiteral("a viewer")));
  QVERIFY(!desk.window->activeDataSheet());
  QVERIFY(!desk.action("mnuEdit")->isEnabled());
  QVERIFY(!desk.action("mnuEditAdd")->isEnabled());
  QVERIFY(!desk.action("tbToolBar/Add")->isVisible());
}

void TestFrmMain::executedLevelSwitchReachesTheEngine() {
  Desk desk;
  QVERIFY(!desk.state.engine->useExecutedLevel());
  desk.window->chkUseExecutedLevel()->setChecked(true);
  QVERIFY(desk.state.engine->useExecutedLevel());
  QVERIFY(desk.window->sheetContext().isUseExecutedLevel());
  desk.window->chkUseExecutedLevel()->setChecked(false);
  QVERIFY(!desk.state.engine->useExecutedLevel());
}

void TestFrmMain::viewMenuHidesToolbarAndStatusBar() {
  Desk desk;
  desk.action("mnuViewToolbar")->trigger();
  QVERIFY(!desk.action("mnuViewToolbar")->isChecked());
  QVERIFY(desk.window->tbToolBar()->isHidden());
  desk.action("mnuViewStatusBar")->trigger();
  QVERIFY(desk.window->findChild<QWidget*>(QStringLiteral("sbStatusBar"))->isHidden());
  desk.action("mnuViewToolbar")->trigger();
  QVERIFY(!desk.window->tbToolBar()->isHidden());
}

void TestFrmMain::addOnInitialInsertsCountRowsAtTheChainage() {
  Desk desk;
  desk.exec("INSERT INTO Package (ID, Name) VALUES (1, 'P')");
  desk.exec("INSERT INTO Sections (ID, PackageID) VALUES (6, 1)");
  desk.exec("INSERT INTO Initial (SectionID, Chainage, Offset, [Level]) VALUES (9, 1, 2, 3)");
  desk.state.lngPackageID = 1;
  desk.state.lngSectionID = 6;
  desk.window->EnableMenus();
  desk.window->dataInitial();
  QVERIFY(desk.sheet());
  QCOMPARE(desk.sheet()->strCurrentDataSheet, QStringLiteral("Initial"));

  desk.inputs = {QStringLiteral("3"), QStringLiteral("150")};
  desk.action("mnuEditAdd")->trigger();

  QCOMPARE(desk.prompts,
           QStringList({QStringLiteral("Add Initial Data|Number of records to add ?|1"),
                        QStringLiteral("Add Initial Data|Chainage ?|0")}));
  QCOMPARE(desk.count(QStringLiteral("Initial"), QStringLiteral("SectionID=6")), 3);
  QCOMPARE(desk.count(QStringLiteral("Initial"),
                      QStringLiteral("SectionID=6 AND Chainage=150 AND Offset IS NULL AND "
                                     "[Level] IS NULL")),
           3);
  QCOMPARE(desk.count(QStringLiteral("Initial")), 4);
  // The sheet shows the new rows without being reopened.
  QCOMPARE(desk.sheet()->resultSet()->rowCount(), 3);
}

void TestFrmMain::addWithNonNumericCountAddsNothing() {
  Desk desk;
  desk.exec("INSERT INTO Package (ID, Name) VALUES (1, 'P')");
  desk.exec("INSERT INTO Sections (ID, PackageID) VALUES (2, 1)");
  desk.state.lngPackageID = 1;
  desk.state.lngSectionID = 2;
  desk.window->dataDesign();
  QVERIFY(desk.sheet());
  for (const char* text : {"", "many", "0", "-2"}) {
    desk.inputs = {QString::fromLatin1(text)};
    desk.window->editAdd();
    QVERIFY2(desk.count(QStringLiteral("DesignLevels")) == 0, text);
  }
  desk.inputs = {QStringLiteral("2.5")};  // rounds half to even
  desk.window->editAdd();
  QCOMPARE(desk.count(QStringLiteral("DesignLevels"), QStringLiteral("SectionID=2")), 2);
}

void TestFrmMain::addOnPackageTakesTheNextKeyAndSelectsIt() {
  Desk desk;
  desk.exec("INSERT INTO Package (ID, Name) VALUES (1, 'A'), (2, 'B'), (7, 'C')");
  desk.window->dataPackage();
  QVERIFY(desk.sheet());
  desk.window->editAdd();

  QCOMPARE(desk.count(QStringLiteral("Package")), 4);
  QCOMPARE(desk.count(QStringLiteral("Package"), QStringLiteral("ID=8 AND Phase='") +
                                                     QString::number(QDate::currentDate().year()) +
                                                     QLatin1Char('\'')),
           1);
  sheets::frmDataGrid& sheet = *desk.sheet();
  QCOMPARE(sheet.resultSet()->rowCount(), 4);
  QVERIFY(sheet.grid().Row() >= 0);
  QCOMPARE(sheetValue(sheet, sheet.grid().Row(), "ID").toInt(), 8);
}

void TestFrmMain::deletingTheOnlySectionRemovesItsRowsAndKeepsThePackage() {
  Desk desk;
  desk.exec("INSERT INTO Package (ID, Name) VALUES (1, 'P')");
  desk.exec("INSERT INTO Sections (ID, PackageID, Description) VALUES (3, 1, 'Only')");
  desk.exec("INSERT INTO Initial (SectionID, Chainage, Offset, [Level]) VALUES (3, 0, 0, 10)");
  desk.exec("INSERT INTO Executed (SectionID, Chainage, Offset, [Level]) VALUES (3, 0, 0, 9)");
  desk.exec("INSERT INTO DesignLevels (SectionID, Chainage, [Level]) VALUES (3, 0, 8)");
  desk.exec("INSERT INTO DesignDetails (SectionID, Chainage) VALUES (3, 0)");
  desk.exec("INSERT INTO DesignQty (SectionID, Chainage) VALUES (3, 0)");
  desk.exec("INSERT INTO Outlets (SectionID, Chainage) VALUES (3, 0)");
  desk.state.lngPackageID = 1;
  desk.window->EnableMenus();
  desk.window->dataSections();
  QVERIFY(desk.sheet());
  QCOMPARE(desk.sheet()->strCurrentDataSheet, QStringLiteral("Sections"));
  desk.sheet()->grid().SelectRow(0);

  desk.answer = MessageAnswer::Yes;
  desk.action("mnuEditDelete")->trigger();

  QCOMPARE(desk.count(QStringLiteral("Sections")), 0);
  for (const char* table :
       {"Initial", "Executed", "DesignLevels", "DesignDetails", "DesignQty", "Outlets"})
    QVERIFY2(desk.count(QString::fromLatin1(table)) == 0, table);
  QCOMPARE(desk.count(QStringLiteral("Package")), 1);
}

void TestFrmMain::initialSetDoesNothingWithoutASection() {
  Desk desk;
  desk.exec("INSERT INTO Initial (SectionID, Chainage, Offset, [Level]) VALUES (1, 100, 5, 10)");
  desk.exec("INSERT INTO Initial (SectionID, Offset, [Level]) VALUES (1, 0, 10)");
  desk.window->initialSet();
  desk.action("tbBlockBar/InitialSet")->trigger();
  QVERIFY(desk.messages.isEmpty());
  QCOMPARE(desk.count(QStringLiteral("Initial"), QStringLiteral("Chainage IS NULL")), 1);
  QCOMPARE(desk.count(QStringLiteral("Initial"), QStringLiteral("Offset < 0")), 0);
}

void TestFrmMain::initialSetOrdersTheReadingsAndRefreshesTheSheet() {
  Desk desk;
  desk.exec("INSERT INTO Package (ID, Name) VALUES (1, 'P')");
  desk.exec("INSERT INTO Sections (ID, PackageID) VALUES (1, 1)");
  desk.exec("INSERT INTO Initial (SectionID, Chainage, Offset, [Level]) VALUES (1, 100, 5, 10)");
  for (const char* offset : {"3", "0", "4", "8"})
    desk.db().exec(QStringLiteral("INSERT INTO Initial (SectionID, Offset, [Level]) VALUES (1, ") +
                   QLatin1String(offset) + QStringLiteral(", 10)"));
  desk.state.lngPackageID = 1;
  desk.state.lngSectionID = 1;
  desk.window->EnableMenus();
  desk.window->dataInitial();
  QVERIFY(desk.sheet());

  desk.answer = MessageAnswer::No;
  desk.window->initialSet();
  QCOMPARE(desk.messages.size(), 1);
  QCOMPARE(desk.messages[0].title, QStringLiteral("Set Initial Levels"));
  QCOMPARE(desk.messages[0].text,
           QStringLiteral("Initial levels will be checked and offset and chainage will be filled "
                          "correctly. Do you want to continue?"));
  QCOMPARE(desk.count(QStringLiteral("Initial"), QStringLiteral("Chainage IS NULL")), 4);

  desk.answer = MessageAnswer::Yes;
  desk.window->initialSet();
  QCOMPARE(desk.count(QStringLiteral("Initial"), QStringLiteral("Chainage=100")), 5);
  QCOMPARE(desk.count(QStringLiteral("Initial"), QStringLiteral("Offset < 0")), 2);
  QCOMPARE(*scalar(desk.db(), "SELECT Offset FROM Initial WHERE [Level]=10 ORDER BY ID"), -5.0);
  sheets::frmDataGrid& sheet = *desk.sheet();
  bool leftFound = false;
  for (int row = 0; row < sheet.resultSet()->rowCount(); ++row)
    leftFound = leftFound || sheetValue(sheet, row, "Offset").toDouble() == -5.0;
  QVERIFY2(leftFound, "the sheet shows the ordered readings");
}

void TestFrmMain::saveWithANonSheetChildSaysDisabled() {
  Desk desk;
  desk.window->fileSave();
  QVERIFY2(desk.messages.isEmpty(), "no child: nothing to say");

  desk.window->showChild(new QLabel(QStringLiteral("a viewer")));
  desk.action("mnuFileSave")->trigger();
  QCOMPARE(desk.messages.size(), 1);
  QCOMPARE(desk.messages[0].text, QStringLiteral("Disabled"));
  QCOMPARE(desk.messages[0].icon, MessageIcon::Information);
}

void TestFrmMain::drillDownWalksFromPackageToSection() {
  Desk desk;
  desk.exec(
      "INSERT INTO Package (ID, Name, Phase, District) VALUES (4, 'North Canal', '2024', "
      "'East')");
  desk.exec(
      "INSERT INTO Sections (ID, PackageID, Description, Title) VALUES (11, 4, 'Reach A', "
      "'T')");
  desk.window->dataPackage();
  QVERIFY(desk.sheet());
  desk.sheet()->grid().SelectRow(0);
  desk.window->DoubleClickHandler(0);
  Desk::settle();

  QCOMPARE(desk.state.lngPackageID, 4);
  QCOMPARE(desk.state.strPackageName, QStringLiteral("North Canal"));
  QCOMPARE(desk.window->windowTitle(), QStringLiteral("Delvane - North Canal"));
  QVERIFY(desk.action("mnuDataSections")->isEnabled());
  QVERIFY(!desk.action("mnuDataInitial")->isEnabled());
  QCOMPARE(desk.window->activeSheetName(), QStringLiteral("Sections"));
  QCOMPARE(desk.window->mdiArea()->subWindowList().size(), 1);

  for (int panel = 1; panel <= 4; ++panel)
    desk.window->setStatusPanel(panel, QStringLiteral("old"));
  desk.state.engine->clearQuantityChainagesMark();
  desk.sheet()->grid().SelectRow(0);
  desk.window->DoubleClickHandler(0);
  Desk::settle();

  QCOMPARE(desk.state.lngSectionID, 11);
  QCOMPARE(desk.window->windowTitle(), QStringLiteral("Delvane - North Canal - Reach A"));
  QCOMPARE(desk.state.engine->sectionId(), 11);
  QVERIFY(desk.state.engine->quantityChainagesOutOfDate());
  QCOMPARE(desk.window->statusPanel(1), QString());
  QCOMPARE(desk.window->statusPanel(3), QString());
  QCOMPARE(desk.window->statusPanel(4), QStringLiteral("old"));
  QVERIFY(desk.action("mnuDataInitial")->isEnabled());
  QVERIFY(desk.window->tbBlockBar()->isVisible());
  QVERIFY(desk.window->mdiArea()->subWindowList().isEmpty());
}

void TestFrmMain::horizontalTilesStackAndFillTheArea_data() {
  QTest::addColumn<QRect>("area");
  QTest::addColumn<int>("count");
  QTest::addColumn<QList<int>>("heights");
  QTest::newRow("one fills all") << QRect(0, 0, 300, 100) << 1 << QList<int>{100};
  QTest::newRow("even split") << QRect(0, 0, 300, 100) << 2 << QList<int>{50, 50};
  QTest::newRow("odd pixel to the first") << QRect(10, 20, 300, 100) << 3 << QList<int>{34, 33, 33};
  QTest::newRow("none") << QRect(0, 0, 300, 100) << 0 << QList<int>{};
}

void TestFrmMain::horizontalTilesStackAndFillTheArea() {
  QFETCH(QRect, area);
  QFETCH(int, count);
  QFETCH(QList<int>, heights);
  const std::vector<QRect> tiles = app::horizontalTiles(area, count);
  QCOMPARE(static_cast<int>(tiles.size()), static_cast<int>(heights.size()));
  int top = area.top();
  for (std::size_t i = 0; i < tiles.size(); ++i) {
    QCOMPARE(tiles[i], QRect(area.left(), top, area.width(), heights[static_cast<int>(i)]));
    top += tiles[i].height();
  }
  if (!tiles.empty()) QCOMPARE(top, area.top() + area.height());
}

void TestFrmMain::verticalTilesSitSideBySide() {
  const std::vector<QRect> tiles = app::verticalTiles(QRect(5, 5, 101, 80), 2);
  QCOMPARE(static_cast<int>(tiles.size()), 2);
  QCOMPARE(tiles[0], QRect(5, 5, 51, 80));
  QCOMPARE(tiles[1], QRect(56, 5, 50, 80));
}

void TestFrmMain::iconPositionsLineUpAlongTheBottom() {
  const std::vector<QPoint> positions =
      app::iconPositions(QRect(0, 0, 250, 400), QSize(100, 30), 3);
  QCOMPARE(static_cast<int>(positions.size()), 3);
  QCOMPARE(positions[0], QPoint(0, 370));
  QCOMPARE(positions[1], QPoint(100, 370));
  // Two fit in a row of 250; the third starts a row above.
  QCOMPARE(positions[2], QPoint(0, 340));
}

void TestFrmMain::tilingCommandsFillTheMdiArea() {
  Desk desk;
  for (const char* title : {"one", "two", "three"}) {
    auto* child = new QLabel(QString::fromLatin1(title));
    child->setWindowTitle(QString::fromLatin1(title));
    desk.window->showChild(child);
  }
  QMdiArea& area = *desk.window->mdiArea();
  const QRect viewport = area.viewport()->rect();

  desk.action("mnuWindowTileHorizontal")->trigger();
  int covered = 0;
  for (QMdiSubWindow* child : area.subWindowList()) {
    QCOMPARE(child->geometry().left(), viewport.left());
    QCOMPARE(child->geometry().width(), viewport.width());
    covered += child->geometry().height();
  }
  QCOMPARE(covered, viewport.height());
  // The active child comes first.
  QCOMPARE(area.activeSubWindow()->geometry().top(), viewport.top());

  desk.action("mnuWindowTileVertical")->trigger();
  covered = 0;
  for (QMdiSubWindow* child : area.subWindowList()) {
    QCOMPARE(child->geometry().top(), viewport.top());
    QCOMPARE(child->geometry().height(), viewport.height());
    covered += child->geometry().width();
  }
  QCOMPARE(covered, viewport.width());
}

void TestFrmMain::arrangeIconsMovesMinimisedChildrenToTheBottom() {
  Desk desk;
  for (const char* title : {"one", "two", "three"}) {
    auto* child = new QLabel(QString::fromLatin1(title));
    child->setWindowTitle(QString::fromLatin1(title));
    desk.window->showChild(child);
  }
  QMdiArea& area = *desk.window->mdiArea();
  const QList<QMdiSubWindow*> children = area.subWindowList(QMdiArea::CreationOrder);
  children[0]->showMinimized();
  children[1]->showMinimized();
  children[0]->move(40, 10);

  desk.action("mnuWindowArrangeIcons")->trigger();
  const int bottom = area.viewport()->rect().bottom();
  QCOMPARE(children[0]->geometry().bottom(), bottom);
  QCOMPARE(children[1]->geometry().bottom(), bottom);
  QCOMPARE(children[0]->x(), 0);
  QCOMPARE(children[1]->x(), std::max(children[0]->width(), children[1]->width()));

  // Tiling leaves the row of icons free.
  desk.action("mnuWindowTileHorizontal")->trigger();
  QVERIFY(children[2]->geometry().bottom() < children[0]->geometry().top());
  QCOMPARE(children[2]->geometry().top(), 0);
}

void TestFrmMain::windowMenuListsTheOpenChildren() {
  Desk desk;
  for (const char* title : {"Alpha", "Beta"}) {
    auto* child = new QLabel(QString::fromLatin1(title));
    child->setWindowTitle(QString::fromLatin1(title));
    desk.window->showChild(child);
  }
  desk.window->updateWindowMenu();
  QMenu* menu = desk.window->findChild<QMenu*>(QStringLiteral("mnuWindow"));
  QVERIFY(menu);
  QStringList listed;
  QAction* checked = nullptr;
  for (QAction* item : menu->actions()) {
    if (item->isCheckable()) {
      listed.append(item->text());
      if (item->isChecked()) checked = item;
    }
  }
  QCOMPARE(listed, QStringList({QStringLiteral("&1 Alpha"), QStringLiteral("&2 Beta")}));
  QVERIFY(checked);
  QCOMPARE(checked->text(), QStringLiteral("&2 Beta"));

  menu->actions()[menu->actions().indexOf(checked) - 1]->trigger();
  QCOMPARE(desk.window->mdiArea()->currentSubWindow()->windowTitle(), QStringLiteral("Alpha"));
}

void TestFrmMain::exportWritesTheQuantitySheetOfTheCurrentSection() {
  Desk desk(true);
  QVERIFY(!desk.state.engine->LoadDesignProfile());
  desk.state.lngPackageID = 1;
  desk.state.lngSectionID = 1;
  desk.state.engine->setSection(1);
  desk.window->EnableMenus();
  QString suggested;
  QString chosen = desk.project.dir().filePath(QStringLiteral("summary.csv"));
  desk.window->setSaveFileFunction(
      [&](QWidget*, const QString&, const QString& suggestedPath, const QString&) {
        suggested = suggestedPath;
        return chosen;
      });
  desk.action("mnuOutputQuantity")->trigger();

  QVERIFY2(desk.messages.isEmpty(), qPrintable(desk.messages.value(0).text));
  QVERIFY(suggested.endsWith(QStringLiteral(".xlsx")));
  QFile file(chosen);
  QVERIFY(file.open(QIODevice::ReadOnly));
  const QByteArray text = file.readAll();
  // A header, one row per chainage of the section and the totals.
  QVERIFY(text.count("\r\n") >= 3);

  // A name without an extension becomes a workbook.
  chosen = desk.project.dir().filePath(QStringLiteral("book"));
  desk.window->outputExportQuantity();
  QVERIFY(QFileInfo::exists(chosen + QStringLiteral(".xlsx")));
}

void TestFrmMain::exportToAnUnknownKindOfFileSaysWhichKindsThereAre() {
  Desk desk;
  desk.state.lngSectionID = 1;
  QVERIFY(!desk.window->exportQuantitySheet(desk.project.dir().filePath(QStringLiteral("q.txt"))));
  QCOMPARE(desk.messages.size(), 1);
  QVERIFY(desk.messages[0].text.contains(QStringLiteral(".csv")));
  QVERIFY(!QFileInfo::exists(desk.project.dir().filePath(QStringLiteral("q.txt"))));
}

void TestFrmMain::closingWritesTheWindowPlacement() {
  QSettings().clear();
  Desk desk;
  desk.state.settings.MainWidth = 1;
  desk.window->showChild(new QLabel(QStringLiteral("a viewer")));
  QVERIFY(desk.window->close());
  QVERIFY(desk.window->mdiArea()->subWindowList().isEmpty() ||
          !desk.window->mdiArea()->subWindowList().first()->isVisible());
  QVERIFY(desk.state.settings.MainWidth > 1);
  QSettings store;
  QVERIFY(store.contains(QStringLiteral("Settings/MainWidth")));
  QVERIFY(store.contains(QStringLiteral("Settings/MetersPerPage")));
}

void TestFrmMain::helpShowsTheManualsContentsPage() {
  Desk desk;
  desk.window->setManualFolder(QStringLiteral(DELVANE_MANUAL_DIR));
  desk.action("mnuHelpContents")->trigger();
  QVERIFY(desk.messages.isEmpty());
  QVERIFY(desk.window->helpWindow());
  QCOMPARE(desk.window->helpWindow()->browser()->documentTitle(), QStringLiteral("Contents"));
  QVERIFY(desk.window->helpWindow()->browser()->toPlainText().contains(
      QStringLiteral("Packages, sections and chainages")));
}

void TestFrmMain::helpWithoutTheManualSaysWhy() {
  Desk desk;
  desk.window->setManualFolder(desk.project.dir().filePath(QStringLiteral("no-manual")));
  desk.window->helpContents();
  QCOMPARE(desk.messages.size(), 1);
  QVERIFY(desk.messages[0].text.contains(QStringLiteral("could not be opened")));
  QVERIFY(desk.messages[0].text.contains(QStringLiteral("index.html")));
  QVERIFY(!desk.window->helpWindow());
}

DELVANE_QTEST(TestFrmMain)
#include "test_frmmain.moc"
