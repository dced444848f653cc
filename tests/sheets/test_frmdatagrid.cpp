#include "tests/qtestmain.h"

#include "db/resultset.h"
#include "sheets/frmdatagrid.h"
#include "sheets/gridcontrol.h"
#include "sheets/modgridstyles.h"
#include "tests/sheets/sheetsfixture.h"

#include <QMdiArea>
#include <QMdiSubWindow>
#include <QTest>

#include <memory>

using sheets::frmDataGrid;
using sheets::GridControl;
using sheets::MainWindowLink;
using sheets::MessageAnswer;
using sheetstest::SheetsFixture;

namespace {

// Section 1 of a fresh project gets that many Initial readings at chainage 0.1 km, offsets 0, 1, 2,
// ... and levels 100, 101, ...; a second section gets one reading that no sheet of section 1
// may touch.
void writeInitialRows(db::Connection& connection, int rows) {
  db::Transaction transaction(connection);
  db::Statement insert = connection.prepare(
      QStringLiteral("INSERT INTO Initial (Chainage, Offset, Level, SectionID) VALUES (?,?,?,?)"));
  for (int i = 0; i < rows; ++i) {
    insert.bindMeasure(1, 0.1f)
        .bindMeasure(2, static_cast<float>(i))
        .bindMeasure(3, 100.0f + static_cast<float>(i))
        .bindKey(4, 1);
    insert.run();
    insert.reset();
  }
  connection.exec(QStringLiteral(
      "INSERT INTO Initial (Chainage, Offset, Level, SectionID) VALUES (0.1, 0, 55, 2)"));
  transaction.commit();
}

std::optional<double> levelAtOffset(db::Connection& connection, int offset) {
  return connection.scalar(QStringLiteral("SELECT Level FROM Initial WHERE SectionID=1 AND "
                                          "Offset=") +
                           QString::number(offset));
}

bool levelIsNull(db::Connection& connection, int offset) {
  return connection
             .scalar(QStringLiteral("SELECT IFNULL(Level, 'null')='null' FROM Initial WHERE "
                                    "SectionID=1 AND Offset=") +
                     QString::number(offset))
             .value_or(0) != 0;
}

// An Initial sheet of section 1, loaded and laid out as the main window opens it.
std::unique_ptr<frmDataGrid> openInitialSheet(SheetsFixture& fixture, bool withLink = false) {
  auto sheet = std::make_unique<frmDataGrid>(fixture.context(withLink));
  sheet->resize(400, 300);
  sheets::modGridStyles::LevelsStyle(*sheet, QStringLiteral("Initial"));
  return sheet;
}

constexpr int kOffsetCol = 1;
constexpr int kLevelCol = 2;

}  // namespace

class TestFrmDataGrid : public QObject {
  Q_OBJECT

 private slots:
  void saveWritesChangedRowsAndClearsDirty() {
    SheetsFixture fixture(false);
    writeInitialRows(fixture.connection(), 4);
    auto sheet = openInitialSheet(fixture);
    sheet->grid().Text(1, kLevelCol, QStringLiteral("120.5"));
    sheet->grid().Text(3, kLevelCol, QString());
    sheet->setDirty(true);

    QVERIFY(sheet->save());

    QVERIFY(!sheet->isDirty());
    QVERIFY(fixture.messages.isEmpty());
    QCOMPARE(levelAtOffset(fixture.connection(), 1).value_or(0), 120.5);
    QVERIFY(levelIsNull(fixture.connection(), 3));
    QCOMPARE(levelAtOffset(fixture.connection(), 2).value_or(0), 102.0);
  }

  void saveFailureKeepsEarlierRowsAndStaysDirty_data() {
    QTest::addColumn<int>("col");
    QTest::addColumn<QString>("badText");
    QTest::addColumn<QStringList>("descriptionParts");
    QTest::newRow("text in a number column")
        << kOffsetCol << QStringLiteral("abc")
        << QStringList{QStringLiteral("Offset"), QStringLiteral("abc")};
    QTest::newRow("value the database refuses")
        << kLevelCol << QStringLiteral("13") << QStringList{QStringLiteral("level 13 refused")};
  }
  void saveFailureKeepsEarlierRowsAndStaysDirty() {
    QFETCH(int, col);
    QFETCH(QString, badText);
    QFETCH(QStringList, descriptionParts);
    SheetsFixture fixture(false);
    writeInitialRows(fixture.connection(), 5);
    fixture.connection().exec(
        QStringLiteral("CREATE TRIGGER refuse13 BEFORE UPDATE ON Initial WHEN NEW.Level = 13 "
                       "BEGIN SELECT RAISE(ABORT, 'level 13 refused'); END"));
    auto sheet = openInitialSheet(fixture);
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
    // The row before stays written, the failing row and the rows after it are untouched.
    QCOMPARE(levelAtOffset(fixture.connection(), 0).value_or(0), 200.0);
    QCOMPARE(levelAtOffset(fixture.connection(), 2).value_or(0), 102.0);
    QCOMPARE(levelAtOffset(fixture.connection(), 4).value_or(0), 104.0);
    // The user's edits are still in the sheet, to be corrected and saved again.
    QCOMPARE(sheet->grid().Text(2, col), badText);
    QCOMPARE(sheet->grid().Text(4, kLevelCol), QStringLiteral("204"));
  }

  void saveSkipsUnchangedRowsOfALargeSheet() {
    SheetsFixture fixture(false);
    writeInitialRows(fixture.connection(), 20000);
    auto sheet = openInitialSheet(fixture);
    db::Connection& c = fixture.connection();
    c.exec(QStringLiteral("CREATE TABLE Updates (n INTEGER)"));
    c.exec(QStringLiteral("INSERT INTO Updates VALUES (0)"));
    c.exec(
        QStringLiteral("CREATE TRIGGER countUpdates AFTER UPDATE ON Initial BEGIN "
                       "UPDATE Updates SET n = n + 1; END"));
    sheet->grid().Text(19998, kLevelCol, QStringLiteral("1"));

    QVERIFY(sheet->save());

    QCOMPARE(fixture.connection().scalar(QStringLiteral("SELECT n FROM Updates")).value_or(-1),
             1.0);
    QCOMPARE(levelAtOffset(fixture.connection(), 19998).value_or(0), 1.0);
  }

  void rowEditedWritesTheRowAtOnceWithAutoSave() {
    SheetsFixture fixture(false);
    fixture.autoSave = true;
    writeInitialRows(fixture.connection(), 3);
    auto sheet = openInitialSheet(fixture);
    sheet->grid().Text(1, kLevelCol, QStringLiteral("111"));
    sheet->setDirty(true);

    sheet->rowEdited(1);

    QVERIFY(!sheet->isDirty());
    QCOMPARE(levelAtOffset(fixture.connection(), 1).value_or(0), 111.0);
  }

  void changesOnlyMarkTheSheetDirtyWithoutAutoSave() {
    SheetsFixture fixture(false);
    writeInitialRows(fixture.connection(), 3);
    auto sheet = openInitialSheet(fixture);
    sheet->grid().Text(1, kLevelCol, QStringLiteral("111"));

    sheet->rowEdited(1);
    QVERIFY(sheet->isDirty());
    sheet->setDirty(false);
    sheet->cellsChanged();
    QVERIFY(sheet->isDirty());

    QCOMPARE(levelAtOffset(fixture.connection(), 1).value_or(0), 101.0);
  }

  void saveCommandAndSaveBeforeAddWriteTheSheet() {
    SheetsFixture fixture(false);
    writeInitialRows(fixture.connection(), 3);
    auto sheet = openInitialSheet(fixture);
    sheet->grid().Text(0, kLevelCol, QStringLiteral("7"));
    sheet->HandleMenuEvent(frmDataGrid::kSave);
    QCOMPARE(levelAtOffset(fixture.connection(), 0).value_or(0), 7.0);

    sheet->grid().Text(0, kLevelCol, QStringLiteral("8"));
    sheet->SaveBeforeAdd();  // not dirty: nothing to do
    QCOMPARE(levelAtOffset(fixture.connection(), 0).value_or(0), 7.0);
    sheet->setDirty(true);
    sheet->SaveBeforeAdd();
    QCOMPARE(levelAtOffset(fixture.connection(), 0).value_or(0), 8.0);
  }

  void filterData_data() {
    QTest::addColumn<QString>("expression");
    QTest::addColumn<int>("rows");
    QTest::addColumn<bool>("rejected");
    QTest::newRow("one term") << QStringLiteral("[Offset] >= '7'") << 3 << false;
    QTest::newRow("AND and LIKE") << QStringLiteral("[Level] > '101' AND [Offset] LIKE '%5%'") << 1
                                  << false;
    QTest::newRow("OR") << QStringLiteral("[Offset] = '1' OR [Offset] = '2'") << 2 << false;
    QTest::newRow("empty shows all") << QString() << 10 << false;
    QTest::newRow("terms without a connective")
        << QStringLiteral("[Offset] = '1'[Offset] = '2'") << 10 << true;
    QTest::newRow("unknown field") << QStringLiteral("[Depth] = '1'") << 10 << true;
    QTest::newRow("unterminated quote") << QStringLiteral("[Offset] = '1") << 10 << true;
    QTest::newRow("text for a number column") << QStringLiteral("[Offset] < 'x'") << 10 << true;
  }
  void filterData() {
    QFETCH(QString, expression);
    QFETCH(int, rows);
    QFETCH(bool, rejected);
    SheetsFixture fixture(false);
    writeInitialRows(fixture.connection(), 10);
    auto sheet = openInitialSheet(fixture);

    sheet->FilterData(expression);

    QCOMPARE(sheet->grid().Rows(), rows);
    QCOMPARE(fixture.messages.size(), rejected ? 1 : 0);
    if (rejected) {
      QCOMPARE(fixture.messages.front().icon, sheets::MessageIcon::Warning);
      QVERIFY(!fixture.messages.front().text.isEmpty());
    }
  }

  void rejectedFilterKeepsThePreviousFilter() {
    SheetsFixture fixture(false);
    writeInitialRows(fixture.connection(), 10);
    auto sheet = openInitialSheet(fixture);
    sheet->FilterData(QStringLiteral("[Offset] < '4'"));
    QCOMPARE(sheet->grid().Rows(), 4);

    sheet->FilterData(QStringLiteral("[Offset] < '4' [Level] = '1'"));

    QCOMPARE(sheet->grid().Rows(), 4);
    QCOMPARE(sheet->grid().Text(3, kOffsetCol), QStringLiteral("3"));
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
    writeInitialRows(fixture.connection(), 60);
    auto sheet = openInitialSheet(fixture);
    sheet->show();
    QVERIFY(QTest::qWaitForWindowExposed(sheet.get()));
    GridControl& grid = sheet->grid();
    const int last = grid.Rows() - 1;

    if (up) {
      grid.TopRow(fromRowsBeforeEnd);
      QCOMPARE(grid.TopRow(), fromRowsBeforeEnd);
      sheet->MouseWheel(0, 120, 0, 0);
      QCOMPARE(grid.TopRow(), expectedRowsBeforeEnd);
    } else {
      grid.BottomRow(last - fromRowsBeforeEnd);
      QCOMPARE(grid.BottomRow(), last - fromRowsBeforeEnd);
      sheet->MouseWheel(0, -120, 0, 0);
      QCOMPARE(grid.BottomRow(), last - expectedRowsBeforeEnd);
    }
  }

  void currentSelectedRecordIsZeroWithNothingSelected() {
    SheetsFixture fixture(false);
    writeInitialRows(fixture.connection(), 3);
    auto sheet = openInitialSheet(fixture);
    sheet->grid().SetCurrentCell(1, 1);

    QCOMPARE(sheet->CurrentSelectedRecord(), 0);
  }

  void currentSelectedRecordIsTheFirstSelectedRowsID() {
    SheetsFixture fixture(false);
    writeInitialRows(fixture.connection(), 5);
    auto sheet = openInitialSheet(fixture);
    sheet->grid().SelectRow(3);
    sheet->grid().SelectRow(2, true);
    const auto expected = fixture.connection().scalar(
        QStringLiteral("SELECT ID FROM Initial WHERE SectionID=1 AND Offset=2"));

    QCOMPARE(sheet->CurrentSelectedRecord(), static_cast<std::int32_t>(expected.value_or(-1)));
  }

  void seekRecordMakesThatRowCurrent() {
    SheetsFixture fixture(false);
    writeInitialRows(fixture.connection(), 5);
    auto sheet = openInitialSheet(fixture);
    const auto id = static_cast<std::int32_t>(
        fixture.connection()
            .scalar(QStringLiteral("SELECT ID FROM Initial WHERE SectionID=1 AND Offset=3"))
            .value_or(-1));

    sheet->SeekRecord(id);
    QCOMPARE(sheet->grid().Row(), 3);
    QCOMPARE(sheet->grid().Col(), 0);

    sheet->SeekRecord(99999);
    QCOMPARE(sheet->grid().Row(), 3);
  }

  void deleteWithNothingSelectedWarns() {
    SheetsFixture fixture(false);
    writeInitialRows(fixture.connection(), 3);
    auto sheet = openInitialSheet(fixture);

    QVERIFY(!sheet->DeleteRecord());

    QCOMPARE(fixture.messageTexts(),
             QStringList{QStringLiteral("No records selected. Select one or more records for "
                                        "deletion!")});
    QCOMPARE(testsupport::rowCount(fixture.connection(), QStringLiteral("Initial")), 4);
  }

  void deleteAsksAndRespectsTheAnswer_data() {
    QTest::addColumn<bool>("yes");
    QTest::newRow("No keeps the rows") << false;
    QTest::newRow("Yes deletes the rows") << true;
  }
  void deleteAsksAndRespectsTheAnswer() {
    QFETCH(bool, yes);
    SheetsFixture fixture(false);
    writeInitialRows(fixture.connection(), 5);
    auto sheet = openInitialSheet(fixture);
    sheet->grid().SelectRow(1);
    sheet->grid().SelectRow(3, true);
    fixture.answers = {yes ? MessageAnswer::Yes : MessageAnswer::No};

    QCOMPARE(sheet->DeleteRecord(), yes);

    QCOMPARE(fixture.messages.size(), 1);
    QCOMPARE(fixture.messages.front().text,
             QStringLiteral("Surely delete 2 record(s) from the database?"));
    QCOMPARE(fixture.messages.front().buttons, sheets::MessageButtons::YesNo);
    const int left = testsupport::rowCount(fixture.connection(), QStringLiteral("Initial"),
                                           QStringLiteral("SectionID=1"));
    QCOMPARE(left, yes ? 3 : 5);
    QCOMPARE(sheet->grid().Rows(), left);
    if (yes) {
      QCOMPARE(testsupport::rowCount(fixture.connection(), QStringLiteral("Initial"),
                                     QStringLiteral("SectionID=1 AND Offset IN (1, 3)")),
               0);
      QCOMPARE(sheet->grid().SelectedRowCount(), 0);
    }
  }

  void deleteSavesPendingEditsFirst() {
    SheetsFixture fixture(false);
    writeInitialRows(fixture.connection(), 3);
    auto sheet = openInitialSheet(fixture);
    sheet->grid().Text(0, kLevelCol, QStringLiteral("9"));
    sheet->setDirty(true);
    sheet->grid().SelectRow(2);

    QVERIFY(sheet->DeleteRecord());

    QCOMPARE(levelAtOffset(fixture.connection(), 0).value_or(0), 9.0);
    QVERIFY(!sheet->isDirty());
  }

  void lockColumnsTogglesEditabilityAndHeaderColour() {
    SheetsFixture fixture(false);
    writeInitialRows(fixture.connection(), 3);
    auto sheet = openInitialSheet(fixture);
    GridControl& grid = sheet->grid();

    sheet->LockColumns();
    QCOMPARE(
        fixture.messageTexts(),
        QStringList{QStringLiteral("Select a column by clicking on the column header to lock it")});
    QVERIFY(grid.ColEditable(0));

    grid.SelectCol(1);
    sheet->LockColumns();
    QVERIFY(!grid.ColEditable(1));
    QVERIFY(grid.ColEditable(0));
    QCOMPARE(grid.CellBackColor(-1, 1), sheets::RGB(255, 102, 51));

    sheet->LockColumns();
    QVERIFY(grid.ColEditable(1));
    QCOMPARE(grid.CellStyle(-1, 1), int(GridControl::kStyleRaised));
    QCOMPARE(grid.CellStyleColor(-1, 1), sheets::RGB(255, 162, 130));
  }

  void freezeColTogglesTheFirstColumn() {
    SheetsFixture fixture(false);
    writeInitialRows(fixture.connection(), 3);
    auto sheet = openInitialSheet(fixture);

    sheet->FreezeCol();
    QVERIFY(sheet->grid().Frozen());
    QCOMPARE(sheet->grid().FrozenCols(), 1);
    sheet->FreezeCol();
    QVERIFY(!sheet->grid().Frozen());
  }

  void refreshDataShowsRowsAddedSinceLoading() {
    SheetsFixture fixture(false);
    writeInitialRows(fixture.connection(), 3);
    auto sheet = openInitialSheet(fixture);
    fixture.connection().exec(QStringLiteral(
        "INSERT INTO Initial (Chainage, Offset, Level, SectionID) VALUES (0.2, 0, 1, 1)"));

    sheet->RefreshData();
    QCOMPARE(sheet->grid().Rows(), 4);

    fixture.connection().exec(QStringLiteral("DELETE FROM Initial WHERE Chainage > 0.15"));
    sheet->LoadFormData();
    QCOMPARE(sheet->grid().Rows(), 3);
  }

  void queryPlaceholderTakesTheCurrentSection() {
    SheetsFixture fixture(false);
    writeInitialRows(fixture.connection(), 3);
    fixture.sectionId = 2;
    frmDataGrid sheet(fixture.context());
    sheet.strSheetQuery =
        QStringLiteral("SELECT Level, ID FROM Initial WHERE SectionID=<paramSectionID>");
    sheet.rsConPtr = &fixture.connection();
    sheet.load();

    QCOMPARE(sheet.grid().Rows(), 1);
    QCOMPARE(sheet.grid().Text(0, 0), QStringLiteral("55"));
  }

  void activationSwitchesTheMainWindowsCommands() {
    SheetsFixture fixture(false);
    writeInitialRows(fixture.connection(), 3);
    auto sheet = openInitialSheet(fixture, true);
    sheetstest::RecordingMainWindow& main = fixture.mainWindow;
    using C = MainWindowLink::Command;
    const C commands[] = {C::mnuEdit, C::mnuViewDetail, C::mnuLockColumn, C::mnuViewFreeze,
                          C::mnuViewRefresh};

    sheet->activateSheet();
    for (C command : commands) QVERIFY(main.enabled[command]);
    QVERIFY(main.buttonVisible[QStringLiteral("Add")]);
    QVERIFY(main.buttonVisible[QStringLiteral("Delete")]);
    QVERIFY(main.buttonEnabled[QStringLiteral("Filter")]);

    main.checked[C::mnuViewDetail] = true;
    sheet->deactivateSheet();
    for (C command : commands) QVERIFY(!main.enabled[command]);
    QVERIFY(!main.buttonVisible[QStringLiteral("Add")]);
    QVERIFY(!main.buttonVisible[QStringLiteral("Delete")]);
    QVERIFY(!main.buttonEnabled[QStringLiteral("Filter")]);
    QVERIFY(!main.checked[C::mnuViewDetail]);
    QCOMPARE(main.filterWindowClosed, 1);

    // Without the filter window open there is nothing to close.
    sheet->activateSheet();
    sheet->deactivateSheet();
    QCOMPARE(main.filterWindowClosed, 1);
  }

  void theActiveMdiChildOwnsTheCommands() {
    SheetsFixture fixture(false);
    writeInitialRows(fixture.connection(), 3);
    QMdiArea area;
    area.resize(800, 600);
    area.show();
    QVERIFY(QTest::qWaitForWindowExposed(&area));
    auto* first = openInitialSheet(fixture, true).release();
    auto* second = openInitialSheet(fixture, true).release();
    QMdiSubWindow* firstWindow = area.addSubWindow(first);
    QMdiSubWindow* secondWindow = area.addSubWindow(second);
    firstWindow->show();
    secondWindow->show();
    using C = MainWindowLink::Command;

    area.setActiveSubWindow(firstWindow);
    QVERIFY(first->isActiveSheet());
    QVERIFY(!second->isActiveSheet());
    area.setActiveSubWindow(secondWindow);
    QVERIFY(!first->isActiveSheet());
    QVERIFY(second->isActiveSheet());
    QVERIFY(fixture.mainWindow.enabled[C::mnuEdit]);
  }

  void closingADirtySheetAsksToSave_data() {
    QTest::addColumn<int>("answerCode");
    QTest::addColumn<bool>("rowRejected");
    QTest::addColumn<bool>("closes");
    QTest::addColumn<double>("storedLevel");
    // A rejected row 2 still leaves row 1 written.
    QTest::newRow("Yes saves and closes") << int(MessageAnswer::Yes) << false << true << 7.0;
    QTest::newRow("Yes with a rejected row stays open")
        << int(MessageAnswer::Yes) << true << false << 7.0;
    QTest::newRow("No closes without saving") << int(MessageAnswer::No) << false << true << 100.0;
    QTest::newRow("Cancel stays open") << int(MessageAnswer::Cancel) << false << false << 100.0;
  }
  void closingADirtySheetAsksToSave() {
    QFETCH(int, answerCode);
    QFETCH(bool, rowRejected);
    QFETCH(bool, closes);
    QFETCH(double, storedLevel);
    SheetsFixture fixture(false);
    writeInitialRows(fixture.connection(), 3);
    auto sheet = openInitialSheet(fixture);
    sheet->show();
    sheet->grid().Text(0, kLevelCol, QStringLiteral("7"));
    if (rowRejected) sheet->grid().Text(1, kOffsetCol, QStringLiteral("left"));
    sheet->setDirty(true);
    const auto answer = static_cast<MessageAnswer>(answerCode);
    fixture.answers = {answer};

    QCOMPARE(sheet->close(), closes);

    QCOMPARE(fixture.messages.front().text,
             QStringLiteral("The db has changed since it was last saved. Do you wish to save "
                            "changes before closing ?"));
    QCOMPARE(fixture.messages.front().title, QStringLiteral("Save Changes"));
    QCOMPARE(fixture.messages.front().buttons, sheets::MessageButtons::YesNoCancel);
    QCOMPARE(sheet->isDirty(), !closes || answer == MessageAnswer::No);
    QCOMPARE(levelAtOffset(fixture.connection(), 0).value_or(0), storedLevel);
  }

  void closingACleanSheetAsksNothing() {
    SheetsFixture fixture(false);
    writeInitialRows(fixture.connection(), 3);
    auto sheet = openInitialSheet(fixture);
    sheet->show();

    QVERIFY(sheet->close());
    QVERIFY(fixture.messages.isEmpty());
  }
};

DELVANE_QTEST(TestFrmDataGrid)

#include "test_frmdatagrid.moc"
