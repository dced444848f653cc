#include "tests/qtestmain.h"

#include "engine/session.h"
#include "sheets/frmdatagrid.h"
#include "sheets/gridcontrol.h"
#include "sheets/sheetediting.h"
#include "tests/sheets/sheetsfixture.h"

#include <QApplication>
#include <QClipboard>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QTest>

using sheets::frmDataGrid;
using sheets::GridControl;
using sheets::MainWindowLink;
using sheets::MessageAnswer;
using sheetstest::SheetsFixture;

namespace {

constexpr int kOffsetCol = 1;
constexpr int kLevelCol = 2;

}  // namespace

class TestFrmDataGrid : public QObject {
  Q_OBJECT

 private slots:
  void saveWritesChangedRowsAndClearsDirty() {
    SheetsFixture fixture(false);
    fixture.writeInitialRows(4);
    engine::RecordingReporter reporter;
    engine::EngineSession session(fixture.connection(), reporter);
    session.clearQuantityChainagesMark();
    fixture.engine = &session;
    auto sheet = fixture.openSheet();
    sheet->grid().Text(1, kLevelCol, QStringLiteral("120.5"));
    sheet->grid().Text(3, kLevelCol, QString());
    sheet->setDirty(true);
    sheet->HandleMenuEvent(frmDataGrid::kSave);
    QVERIFY(!sheet->isDirty());
    QVERIFY(fixture.messages.isEmpty());
    QCOMPARE(fixture.initialAt(1), 120.5);
    QCOMPARE(fixture.initialAt(3, QStringLiteral("Level IS NULL")), 1.0);
    // Saved levels are what the next computation must read.
    QVERIFY(session.quantityChainagesOutOfDate());
    sheet->grid().Text(0, kLevelCol, QStringLiteral("8"));
    sheet->SaveBeforeAdd();  // not dirty: nothing to do
    QCOMPARE(fixture.initialAt(0), 100.0);
    sheet->setDirty(true);
    sheet->SaveBeforeAdd();
    QCOMPARE(fixture.initialAt(0), 8.0);
  }

  void saveFailureKeepsEarlierRowsAndStaysDirty_data() {
    QTest::addColumn<int>("col");
    QTest::addColumn<QString>("badText");
    QTest::addColumn<QStringList>("descriptionParts");
    QTest::newRow("text in a number column") << kOffsetCol << "abc" << QStringList{"Offset", "abc"};
    QTest::newRow("value the database refuses")
        << kLevelCol << "13" << QStringList{"level 13 refused"};
  }
  void saveFailureKeepsEarlierRowsAndStaysDirty() {
    QFETCH(int, col);
    QFETCH(QString, badText);
    QFETCH(QStringList, descriptionParts);
    SheetsFixture fixture(false);
    fixture.writeInitialRows(5);
    fixture.connection().exec(
        QStringLiteral("CREATE TRIGGER refuse13 BEFORE UPDATE ON Initial WHEN NEW.Level = 13 "
                       "BEGIN SELECT RAISE(ABORT, 'level 13 refused'); END"));
    auto sheet = fixture.openSheet();
    sheet->grid().Text(0, kLevelCol, QStringLiteral("200"));
    sheet->grid().Text(2, kLevelCol, QStringLiteral("202.5"));
    sheet->grid().Text(2, col, badText);
    sheet->grid().Text(4, kLevelCol, QStringLiteral("204"));
    sheet->setDirty(true);

    QVERIFY(!sheet->save());

    QVERIFY(sheet->isDirty());
    QCOMPARE(fixture.messages.size(), 1);
    const QString text = fixture.messages.front().text;
    QVERIFY2(text.endsWith(QStringLiteral("\nError encountered while updating row 3")),
             qPrintable(text));
    for (const QString& part : descriptionParts) QVERIFY2(text.contains(part), qPrintable(text));
    // The row before stays written, the failing row and the rows after it are untouched, and
    // the user's edits stay in the sheet to be corrected.
    QCOMPARE(fixture.initialAt(0), 200.0);
    QCOMPARE(fixture.initialAt(2), 102.0);
    QCOMPARE(fixture.initialAt(4), 104.0);
    QCOMPARE(sheet->grid().Text(2, col), badText);
    QCOMPARE(sheet->grid().Text(4, kLevelCol), QStringLiteral("204"));
  }

  // Functional check of the large-sheet paths: one changed row is the only row written, and a
  // paste or transform over every row is saved (and undone) as a whole.
  void tenThousandRowSheetSavesWhatChanged() {
    constexpr int kRows = 10000;
    SheetsFixture fixture(false);
    fixture.writeInitialRows(kRows);
    db::Connection& c = fixture.connection();
    const auto levelSum = [&c] {
      return c.scalar(QStringLiteral("SELECT SUM(Level) FROM Initial WHERE SectionID=1"))
          .value_or(-1);
    };
    auto sheet = fixture.openSheet();
    GridControl& grid = sheet->grid();
    QCOMPARE(grid.Rows(), kRows);
    c.exec(QStringLiteral("CREATE TABLE Updates (n INTEGER)"));
    c.exec(QStringLiteral("INSERT INTO Updates VALUES (0)"));
    c.exec(
        QStringLiteral("CREATE TRIGGER countUpdates AFTER UPDATE ON Initial BEGIN "
                       "UPDATE Updates SET n = n + 1; END"));
    grid.Text(kRows - 2, kLevelCol, QStringLiteral("100"));
    QVERIFY(sheet->save());
    QCOMPARE(c.scalar(QStringLiteral("SELECT n FROM Updates")).value_or(-1), 1.0);
    QCOMPARE(fixture.initialAt(kRows - 2), 100.0);
    const double originalSum = levelSum();

    fixture.autoSave = true;
    QString text;
    for (int i = 0; i < kRows; ++i) text += QStringLiteral("101\r\n");
    QApplication::clipboard()->setText(text);
    grid.SetCurrentCell(0, kLevelCol);
    sheet->HandleMenuEvent(frmDataGrid::kPaste);
    QVERIFY(!sheet->isDirty());
    QCOMPARE(levelSum(), 101.0 * kRows);
    sheet->HandleMenuEvent(frmDataGrid::kUndo);
    QCOMPARE(levelSum(), originalSum);

    sheet->editing()->selectRange(0, kLevelCol, kRows - 1, kLevelCol);
    sheet->editing()->applyTransform({sheets::TransformRequest::Add, 1.5f});
    QVERIFY(!sheet->isDirty());
    QCOMPARE(levelSum(), originalSum + 1.5 * kRows);
    QVERIFY(fixture.messages.isEmpty());
  }

  void rowEditedWritesOnlyWithAutoSave() {
    for (const bool autoSave : {true, false}) {
      SheetsFixture fixture(false);
      fixture.autoSave = autoSave;
      fixture.writeInitialRows(3);
      auto sheet = fixture.openSheet();
      sheet->grid().Text(1, kLevelCol, QStringLiteral("111"));
      sheet->setDirty(true);
      sheet->rowEdited(1);
      QCOMPARE(sheet->isDirty(), !autoSave);
      QCOMPARE(fixture.initialAt(1), autoSave ? 111.0 : 101.0);
      sheet->setDirty(false);
      sheet->cellsChanged();
      QCOMPARE(sheet->isDirty(), !autoSave);
    }
  }

  // With AutoSave on, a typed value the table refuses is reported and stays in its cell, and the
  // sheet stays dirty when the cursor moves on: closing it asks, as for any unsaved edit.
  void refusedEntryKeepsTheSheetDirty_data() {
    QTest::addColumn<QString>("typed");
    QTest::newRow("text") << "abc";
    QTest::newRow("decimal comma") << "152,5";
    QTest::newRow("beyond a single") << "1e39";
  }
  void refusedEntryKeepsTheSheetDirty() {
    QFETCH(QString, typed);
    SheetsFixture fixture(false);
    fixture.autoSave = true;
    fixture.writeInitialRows(3);
    auto sheet = fixture.openSheet();
    sheet->show();
    GridControl& grid = sheet->grid();
    grid.SetCurrentCell(0, kLevelCol);
    QTest::keyClick(grid.cellArea()->parentWidget(), typed.front().toLatin1());
    QTest::keyClicks(grid.editor(), typed.mid(1));
    QTest::keyClick(grid.editor(), Qt::Key_Return);

    QCOMPARE(grid.Row(), 1);
    QCOMPARE(fixture.messages.size(), 1);
    QVERIFY2(fixture.messages.front().text.contains(typed), qPrintable(fixture.messages[0].text));
    QCOMPARE(fixture.initialAt(0), 100.0);
    QCOMPARE(grid.Text(0, kLevelCol), typed);
    QVERIFY(sheet->isDirty());
    fixture.answers = {MessageAnswer::Cancel};
    QVERIFY(!sheet->close());
    QCOMPARE(fixture.messages.back().title, QStringLiteral("Save Changes"));
  }

  // Every case starts from the filter [Offset] < '4' (four rows); a rejected filter keeps it.
  void filterData_data() {
    QTest::addColumn<QString>("expression");
    QTest::addColumn<int>("rows");  // 4: rejected
    QTest::newRow("one term") << "[Offset] >= '7'" << 3;
    QTest::newRow("AND and LIKE") << "[Level] > '101' AND [Offset] LIKE '%5%'" << 1;
    QTest::newRow("OR") << "[Offset] = '1' OR [Offset] = '2'" << 2;
    QTest::newRow("empty shows all") << "" << 10;
    QTest::newRow("terms without a connective") << "[Offset] = '1'[Offset] = '2'" << 4;
    QTest::newRow("unknown field") << "[Depth] = '1'" << 4;
    QTest::newRow("unterminated quote") << "[Offset] = '1" << 4;
    QTest::newRow("text for a number column") << "[Offset] < 'x'" << 4;
  }
  void filterData() {
    QFETCH(QString, expression);
    QFETCH(int, rows);
    const bool rejected = rows == 4;
    SheetsFixture fixture(false);
    fixture.writeInitialRows(10);
    auto sheet = fixture.openSheet();
    sheet->FilterData(QStringLiteral("[Offset] < '4'"));
    QCOMPARE(sheet->grid().Rows(), 4);

    sheet->FilterData(expression);

    QCOMPARE(sheet->grid().Rows(), rows);
    QCOMPARE(fixture.messages.size(), rejected ? 1 : 0);
    if (rejected) QCOMPARE(fixture.messages.front().icon, sheets::MessageIcon::Warning);
  }

  void mouseWheel_data() {
    QTest::addColumn<bool>("up");
    QTest::addColumn<int>("fromRowsBeforeEnd");  // start: TopRow (up) or Rows-1-BottomRow (down)
    QTest::addColumn<int>("expectedRowsBeforeEnd");
    QTest::newRow("up two rows") << true << 5 << 3;
    QTest::newRow("up from row 2 to 0") << true << 2 << 0;
    QTest::newRow("up from row 1 stops at 0") << true << 1 << 0;
    QTest::newRow("up at the top stays") << true << 0 << 0;
    QTest::newRow("down two rows") << false << 10 << 8;
    QTest::newRow("down with two left") << false << 2 << 0;
    QTest::newRow("down with one left advances one") << false << 1 << 0;
    QTest::newRow("down at the bottom stays") << false << 0 << 0;
  }
  void mouseWheel() {
    QFETCH(bool, up);
    QFETCH(int, fromRowsBeforeEnd);
    QFETCH(int, expectedRowsBeforeEnd);
    SheetsFixture fixture(false);
    fixture.writeInitialRows(60);
    auto sheet = fixture.openSheet();
    sheet->show();
    QVERIFY(QTest::qWaitForWindowExposed(sheet.get()));
    GridControl& grid = sheet->grid();
    const int last = grid.Rows() - 1;
    if (up) {
      grid.TopRow(fromRowsBeforeEnd);
      sheet->MouseWheel(0, 120, 0, 0);
      QCOMPARE(grid.TopRow(), expectedRowsBeforeEnd);
    } else {
      grid.BottomRow(last - fromRowsBeforeEnd);
      sheet->MouseWheel(0, -120, 0, 0);
      QCOMPARE(grid.BottomRow(), last - expectedRowsBeforeEnd);
    }
  }

  void selectedRecordAndSeekUseTheRowsID() {
    SheetsFixture fixture(false);
    fixture.writeInitialRows(5);
    auto sheet = fixture.openSheet();
    sheet->grid().SetCurrentCell(1, 1);
    QCOMPARE(sheet->CurrentSelectedRecord(), 0);  // a current cell is no selection
    sheet->grid().SelectRow(3);
    sheet->grid().SelectRow(2, true);
    QCOMPARE(sheet->CurrentSelectedRecord(), std::int32_t(fixture.initialAt(2, "ID")));

    sheet->SeekRecord(std::int32_t(fixture.initialAt(3, "ID")));
    sheet->SeekRecord(99999);  // no such record: stays
    QCOMPARE(QPoint(sheet->grid().Col(), sheet->grid().Row()), QPoint(0, 3));
  }

  void deleteRecordConfirms_data() {
    QTest::addColumn<QList<int>>("selected");
    QTest::addColumn<int>("answer");
    QTest::addColumn<QString>("message");
    QTest::addColumn<int>("left");
    QTest::newRow("nothing selected warns")
        << QList<int>{} << int(MessageAnswer::Yes)
        << "No records selected. Select one or more records for deletion!" << 5;
    const QString twoRows = QStringLiteral(
        "Surely delete 2 record(s) from the database?\n\nFirst: Chainage 0.1, Offset 1\n"
        "Last: Chainage 0.1, Offset 3");
    QTest::newRow("No keeps the rows")
        << QList<int>{1, 3} << int(MessageAnswer::No) << twoRows << 5;
    QTest::newRow("Yes deletes the rows")
        << QList<int>{1, 3} << int(MessageAnswer::Yes) << twoRows << 3;
    QTest::newRow("one row is named alone")
        << QList<int>{4} << int(MessageAnswer::Yes)
        << "Surely delete 1 record(s) from the database?\n\nChainage 0.1, Offset 4" << 4;
  }
  void deleteRecordConfirms() {
    QFETCH(QList<int>, selected);
    QFETCH(int, answer);
    QFETCH(QString, message);
    QFETCH(int, left);
    SheetsFixture fixture(false);
    fixture.writeInitialRows(5);
    auto sheet = fixture.openSheet();
    for (int row : selected) sheet->grid().SelectRow(row, row != selected.first());
    sheet->grid().Text(0, kLevelCol, QStringLiteral("9"));  // a pending edit
    sheet->setDirty(true);
    fixture.answers = {static_cast<MessageAnswer>(answer)};

    QCOMPARE(sheet->DeleteRecord(), left < 5);

    QCOMPARE(fixture.messageTexts(), QStringList{message});
    QCOMPARE(fixture.messages.front().buttons,
             selected.isEmpty() ? sheets::MessageButtons::Ok : sheets::MessageButtons::YesNo);
    QCOMPARE(testsupport::rowCount(fixture.connection(), "Initial", "SectionID=1"), left);
    QCOMPARE(sheet->grid().Rows(), left);
    if (left < 5) {
      for (int row : selected) QCOMPARE(fixture.initialAt(row), -1.0);
      QCOMPARE(fixture.initialAt(0), 9.0);  // saved before deleting
      QVERIFY(!sheet->isDirty());
    }
  }

  void lockColumnsTogglesEditabilityAndHeaderColour() {
    SheetsFixture fixture(false);
    fixture.writeInitialRows(3);
    auto sheet = fixture.openSheet();
    GridControl& grid = sheet->grid();
    sheet->LockColumns();
    QCOMPARE(fixture.messageTexts(),
             QStringList{"Select a column by clicking on the column header to lock it"});
    grid.SelectCol(1);
    sheet->LockColumns();
    QVERIFY(!grid.ColEditable(1) && grid.ColEditable(0));
    QCOMPARE(grid.CellBackColor(-1, 1), sheets::RGB(255, 102, 51));
    sheet->LockColumns();
    QVERIFY(grid.ColEditable(1));
    QCOMPARE(grid.CellStyle(-1, 1), int(GridControl::kStyleRaised));
    QCOMPARE(grid.CellStyleColor(-1, 1), sheets::RGB(255, 162, 130));
    sheet->FreezeCol();
    QVERIFY(grid.Frozen() && grid.FrozenCols() == 1);
    sheet->FreezeCol();
    QVERIFY(!grid.Frozen());
  }

  void reloadingFollowsTheDatabaseAndTheCurrentSection() {
    SheetsFixture fixture(false);
    fixture.writeInitialRows(3);
    auto sheet = fixture.openSheet();
    fixture.connection().exec(QStringLiteral(
        "INSERT INTO Initial (Chainage, Offset, Level, SectionID) VALUES (0.2, 0, 1, 1)"));
    sheet->RefreshData();
    QCOMPARE(sheet->grid().Rows(), 4);
    fixture.connection().exec(QStringLiteral("DELETE FROM Initial WHERE Chainage > 0.15"));
    sheet->LoadFormData();
    QCOMPARE(sheet->grid().Rows(), 3);

    fixture.sectionId = 2;
    frmDataGrid other(fixture.context());
    other.strSheetQuery =
        QStringLiteral("SELECT Level, ID FROM Initial WHERE SectionID=<paramSectionID>");
    other.rsConPtr = &fixture.connection();
    other.load();
    QCOMPARE(other.grid().Rows(), 1);
    QCOMPARE(other.grid().Text(0, 0), QStringLiteral("55"));
  }

  void activationSwitchesTheMainWindowsCommands() {
    SheetsFixture fixture(false);
    fixture.writeInitialRows(3);
    sheetstest::RecordingMainWindow& main = fixture.mainWindow;
    using C = MainWindowLink::Command;
    QMdiArea area;
    area.resize(800, 600);
    area.show();
    QVERIFY(QTest::qWaitForWindowExposed(&area));
    auto* first = fixture.openSheet(QStringLiteral("Initial"), true).release();
    auto* second = fixture.openSheet(QStringLiteral("Initial"), true).release();
    QMdiSubWindow* firstWindow = area.addSubWindow(first);
    QMdiSubWindow* secondWindow = area.addSubWindow(second);
    firstWindow->show();
    secondWindow->show();
    area.setActiveSubWindow(firstWindow);
    QVERIFY(first->isActiveSheet() && !second->isActiveSheet());
    area.setActiveSubWindow(secondWindow);
    QVERIFY(!first->isActiveSheet() && second->isActiveSheet());
    // Every command and button the sheet switches follows its activation.
    const auto switched = [&main](bool on) {
      for (C command :
           {C::mnuEdit, C::mnuViewDetail, C::mnuLockColumn, C::mnuViewFreeze, C::mnuViewRefresh})
        QCOMPARE(main.enabled[command], on);
      QCOMPARE(main.buttonVisible[QStringLiteral("Add")], on);
      QCOMPARE(main.buttonVisible[QStringLiteral("Delete")], on);
      QCOMPARE(main.buttonEnabled[QStringLiteral("Filter")], on);
    };
    switched(true);
    main.checked[C::mnuViewDetail] = true;
    second->deactivateSheet();
    switched(false);
    QVERIFY(!main.checked[C::mnuViewDetail]);
    QCOMPARE(main.filterWindowClosed, 1);
    // Without the filter window open there is nothing to close.
    second->activateSheet();
    second->deactivateSheet();
    QCOMPARE(main.filterWindowClosed, 1);
  }

  void closingAsksToSaveADirtySheet_data() {
    QTest::addColumn<bool>("dirty");
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("rowRejected");
    QTest::addColumn<bool>("closes");
    QTest::addColumn<double>("storedLevel");
    const int yes = int(MessageAnswer::Yes);
    // A rejected row 2 still leaves row 1 written.
    QTest::newRow("clean closes without asking") << false << yes << false << true << 100.0;
    QTest::newRow("Yes saves and closes") << true << yes << false << true << 7.0;
    QTest::newRow("Yes with a rejected row stays open") << true << yes << true << false << 7.0;
    QTest::newRow("No closes without saving")
        << true << int(MessageAnswer::No) << false << true << 100.0;
    QTest::newRow("Cancel stays open")
        << true << int(MessageAnswer::Cancel) << false << false << 100.0;
  }
  void closingAsksToSaveADirtySheet() {
    QFETCH(bool, dirty);
    QFETCH(int, answer);
    QFETCH(bool, rowRejected);
    QFETCH(bool, closes);
    QFETCH(double, storedLevel);
    SheetsFixture fixture(false);
    fixture.writeInitialRows(3);
    auto sheet = fixture.openSheet();
    sheet->show();
    if (dirty) {
      sheet->grid().Text(0, kLevelCol, QStringLiteral("7"));
      if (rowRejected) sheet->grid().Text(1, kOffsetCol, QStringLiteral("left"));
      sheet->setDirty(true);
    }
    fixture.answers = {static_cast<MessageAnswer>(answer)};

    QCOMPARE(sheet->close(), closes);

    QCOMPARE(fixture.initialAt(0), storedLevel);
    if (!dirty) {
      QVERIFY(fixture.messages.isEmpty());
      return;
    }
    QCOMPARE(fixture.messages.front().text,
             QStringLiteral("The db has changed since it was last saved. Do you wish to save "
                            "changes before closing ?"));
    QCOMPARE(fixture.messages.front().title, QStringLiteral("Save Changes"));
    QCOMPARE(fixture.messages.front().buttons, sheets::MessageButtons::YesNoCancel);
    QCOMPARE(sheet->isDirty(), !closes || answer == int(MessageAnswer::No));
  }
};

DELVANE_QTEST(TestFrmDataGrid)

#include "test_frmdatagrid.moc"
