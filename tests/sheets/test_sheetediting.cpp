#include "tests/qtestmain.h"

#include "sheets/gridcontrol.h"
#include "sheets/sheetediting.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QTest>

#include <memory>

using sheets::GridControl;
using sheets::SheetEditing;
using sheets::TransformRequest;

namespace {

// An unbound grid of rows x cols cells holding "r,c", with the editing of a sheet on it and
// a record of what the editing asked of the sheet.
struct EditedGrid {
  EditedGrid(int rows, int cols) {
    grid.Cols(cols);
    grid.SetRowCount(rows);
    for (int r = 0; r < rows; ++r)
      for (int c = 0; c < cols; ++c) grid.Text(r, c, QStringLiteral("%1,%2").arg(r).arg(c));
    SheetEditing::Hooks hooks;
    hooks.cellsChanged = [this] { ++cellsChanged; };
    hooks.rowEdited = [this](int row) {
      rowsWritten.append(row);
      dirty = false;
    };
    hooks.isDirty = [this] { return dirty; };
    hooks.setDirty = [this](bool value) { dirty = value; };
    hooks.autoSave = [this] { return autoSave; };
    hooks.enterRight = [this] { return enterRight; };
    hooks.askTransform = [this] { return transformRequest; };
    editing = std::make_unique<SheetEditing>(grid, std::move(hooks));
    grid.resize(400, 300);
    grid.show();
  }

  // Delivers a key to the editing as the grid does, before its own handling; true when the
  // editing consumed it.
  bool key(int code, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    bool handled = false;
    emit grid.keyDown(code, modifiers, handled);
    return handled;
  }
  void type(QChar character) {
    bool handled = false;
    emit grid.keyDown(character.unicode(), Qt::NoModifier, handled);
    if (!handled) emit grid.keyPress(character, handled);
  }
  QStringList row(int r) const {
    QStringList cells;
    for (int c = 0; c < grid.Cols(); ++c) cells << grid.Text(r, c);
    return cells;
  }

  GridControl grid;
  std::unique_ptr<SheetEditing> editing;
  int cellsChanged = 0;
  QList<int> rowsWritten;
  bool dirty = false;
  bool autoSave = true;
  bool enterRight = false;
  TransformRequest transformRequest;
};

void setClipboard(const QString& text) { QApplication::clipboard()->setText(text); }

}  // namespace

class TestSheetEditing : public QObject {
  Q_OBJECT

 private slots:
  void pasteAtLastRowDropsTheSecondLineAndUndoRestoresOnlyOverwrittenCells();
  void pasteWithoutTabOrLineBreakFillsOneCell();
  void pasteAcceptsBareLineFeeds();
  void pasteDropsFieldsBeyondTheLastColumn();
  void copyJoinsCellsWithTabsAndRowsWithCrLf();
  void cutPasteUndoUndoUndo();
  void enterRightMovesToNextEditableCell_data();
  void enterRightMovesToNextEditableCell();
  void enterDownStopsAtTheLastRow();
  void escapeAfterTypingRestoresTheCellAndUsesUpTheUndoRecord();
  void typingIntoLockedColumnDoesNothing();
  void deleteOnRangeClearsItWithUndo();
  void deleteOnOneCellEmptiesItWithUndo();
  void deleteInLockedColumnDoesNothing();
  void shiftArrowsExtendTheHighlightedRange();
  void plainKeyRemovesTheHighlight();
  void homeEndMoveAlongTheRowAndWithCtrlToTheCorners();
  void pageKeysTurnTheVisibleRowsOver();
  void shiftClickOnColumnHeaderExtendsToTheLastRow();
  void f2OpensCaretModeWhereLeftAndRightStayInTheText();
  void transformRewritesTheRange_data();
  void transformRewritesTheRange();
  void transformUndoRestoresTheRangeIncludingEmptyCells();
  void transformNeedsAHighlightedRangeAndAnAnswer();
  void clickThenShiftClickHighlightsTheRectangle();
  void dragHighlightsTheRectangle();
  void rowHeaderClickSelectsTheWholeRow();
  void typedTextIsCommittedByEnterAndTheRowWritten();
  void doubleClickOnRowHeaderAsksTheMainWindow();
};

void TestSheetEditing::pasteAtLastRowDropsTheSecondLineAndUndoRestoresOnlyOverwrittenCells() {
  EditedGrid g(3, 3);
  g.grid.SetCurrentCell(2, 1);
  setClipboard(QStringLiteral("a\tb\r\nc\td\r\n"));
  g.editing->paste();

  QCOMPARE(g.row(2), QStringList({"2,0", "a", "b"}));
  QCOMPARE(g.row(1), QStringList({"1,0", "1,1", "1,2"}));
  QCOMPARE(g.grid.Rows(), 3);
  QCOMPARE(g.editing->undoRecord().text, QStringLiteral("2,1\t2,2\r\n"));
  QCOMPARE(g.cellsChanged, 1);

  g.editing->undo();
  QCOMPARE(g.row(2), QStringList({"2,0", "2,1", "2,2"}));
  QCOMPARE(g.cellsChanged, 2);
}

void TestSheetEditing::pasteWithoutTabOrLineBreakFillsOneCell() {
  EditedGrid g(3, 3);
  g.grid.SetCurrentCell(1, 1);
  setClipboard(QStringLiteral("12.5"));
  g.editing->paste();
  QCOMPARE(g.row(1), QStringList({"1,0", "12.5", "1,2"}));
  QCOMPARE(g.row(2), QStringList({"2,0", "2,1", "2,2"}));
  QCOMPARE(g.editing->undoRecord().text, QStringLiteral("1,1\r\n"));
}

void TestSheetEditing::pasteAcceptsBareLineFeeds() {
  EditedGrid g(3, 3);
  g.grid.SetCurrentCell(0, 0);
  setClipboard(QStringLiteral("a\tb\nc\td"));
  g.editing->paste();
  QCOMPARE(g.row(0), QStringList({"a", "b", "0,2"}));
  QCOMPARE(g.row(1), QStringList({"c", "d", "1,2"}));
  QCOMPARE(g.editing->undoRecord().text, QStringLiteral("0,0\t0,1\r\n1,0\t1,1\r\n"));
}

void TestSheetEditing::pasteDropsFieldsBeyondTheLastColumn() {
  EditedGrid g(2, 3);
  g.grid.SetCurrentCell(0, 2);
  setClipboard(QStringLiteral("a\tb\tc\r\nd\te\r\n"));
  g.editing->paste();
  QCOMPARE(g.row(0), QStringList({"0,0", "0,1", "a"}));
  QCOMPARE(g.row(1), QStringList({"1,0", "1,1", "d"}));
  QCOMPARE(g.grid.Cols(), 3);
  QCOMPARE(g.editing->undoRecord().text, QStringLiteral("0,2\r\n1,2\r\n"));
  g.editing->undo();
  QCOMPARE(g.row(0), QStringList({"0,0", "0,1", "0,2"}));
  QCOMPARE(g.row(1), QStringList({"1,0", "1,1", "1,2"}));
}

void TestSheetEditing::copyJoinsCellsWithTabsAndRowsWithCrLf() {
  EditedGrid g(3, 3);
  g.editing->selectRange(2, 2, 1, 1);  // dragged from bottom right to top left
  g.editing->copy();
  QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("1,1\t1,2\r\n2,1\t2,2"));
  QCOMPARE(g.cellsChanged, 0);
  QVERIFY(!g.editing->undoRecord().valid);
}

void TestSheetEditing::cutPasteUndoUndoUndo() {
  EditedGrid g(3, 3);
  g.editing->selectRange(0, 0, 0, 1);
  g.editing->cut();
  QCOMPARE(g.row(0), QStringList({"", "", "0,2"}));
  QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("0,0\t0,1"));

  g.grid.SetCurrentCell(1, 1);
  g.editing->paste();
  QCOMPARE(g.row(1), QStringList({"1,0", "0,0", "0,1"}));

  g.editing->undo();  // takes the paste back
  QCOMPARE(g.row(1), QStringList({"1,0", "1,1", "1,2"}));
  QCOMPARE(g.row(0), QStringList({"", "", "0,2"}));

  g.editing->undo();  // restores the cut cells
  QCOMPARE(g.row(0), QStringList({"0,0", "0,1", "0,2"}));

  g.grid.Text(0, 0, QStringLiteral("later"));
  g.editing->undo();  // nothing left to undo
  QCOMPARE(g.grid.Text(0, 0), QStringLiteral("later"));
  QCOMPARE(g.row(1), QStringList({"1,0", "1,1", "1,2"}));
  QCOMPARE(g.cellsChanged, 4);
}

void TestSheetEditing::enterRightMovesToNextEditableCell_data() {
  QTest::addColumn<int>("row");
  QTest::addColumn<int>("col");
  QTest::addColumn<QList<int>>("locked");
  QTest::addColumn<int>("expectedRow");
  QTest::addColumn<int>("expectedCol");
  QTest::newRow("next column") << 0 << 0 << QList<int>{} << 0 << 1;
  QTest::newRow("end of row wraps") << 0 << 2 << QList<int>{} << 1 << 0;
  QTest::newRow("locked column skipped") << 0 << 0 << QList<int>{1} << 0 << 2;
  QTest::newRow("wrap skips locked first column") << 1 << 2 << QList<int>{0} << 2 << 1;
  QTest::newRow("last cell stays") << 2 << 2 << QList<int>{} << 2 << 2;
  QTest::newRow("only locked cells follow") << 2 << 1 << QList<int>{2} << 2 << 1;
}

void TestSheetEditing::enterRightMovesToNextEditableCell() {
  QFETCH(int, row);
  QFETCH(int, col);
  QFETCH(QList<int>, locked);
  QFETCH(int, expectedRow);
  QFETCH(int, expectedCol);
  EditedGrid g(3, 3);
  g.enterRight = true;
  for (int c : locked) g.grid.ColEditable(c, false);
  g.grid.SetCurrentCell(row, col);
  g.grid.BeginEdit();
  QVERIFY(g.grid.IsEditing());

  QVERIFY(g.key(Qt::Key_Return));
  QVERIFY(!g.grid.IsEditing());
  QCOMPARE(g.grid.Row(), expectedRow);
  QCOMPARE(g.grid.Col(), expectedCol);
}

void TestSheetEditing::enterDownStopsAtTheLastRow() {
  EditedGrid g(3, 3);
  g.grid.SetCurrentCell(1, 2);
  QVERIFY(g.key(Qt::Key_Return));
  QCOMPARE(g.grid.Row(), 2);
  QCOMPARE(g.grid.Col(), 2);
  g.grid.BeginEdit();
  QVERIFY(g.key(Qt::Key_Enter));
  QVERIFY(!g.grid.IsEditing());
  QCOMPARE(g.grid.Row(), 2);
  QCOMPARE(g.grid.Col(), 2);
}

void TestSheetEditing::escapeAfterTypingRestoresTheCellAndUsesUpTheUndoRecord() {
  EditedGrid g(3, 3);
  g.autoSave = false;
  g.grid.SetCurrentCell(0, 0);
  QVERIFY(g.key(Qt::Key_Delete));  // an earlier change, to be undone later
  QCOMPARE(g.grid.Text(0, 0), QString());

  g.grid.SetCurrentCell(1, 1);
  g.type(QLatin1Char('7'));
  QVERIFY(g.grid.IsEditing());
  QCOMPARE(g.grid.CellState(1, 1), int(GridControl::kCellEditing));
  QCOMPARE(g.grid.CellSelStart(), 1);
  QVERIFY(g.dirty);
  QCOMPARE(g.editing->undoRecord().text, QStringLiteral("1,1"));

  QVERIFY(g.key(Qt::Key_Escape));
  QVERIFY(!g.grid.IsEditing());
  QCOMPARE(g.grid.Text(1, 1), QStringLiteral("1,1"));
  QCOMPARE(g.grid.CellState(1, 1), int(GridControl::kCellNormal));
  QVERIFY(!g.editing->undoRecord().valid);

  g.editing->undo();  // goes on to the Delete
  QCOMPARE(g.grid.Text(0, 0), QStringLiteral("0,0"));
  QCOMPARE(g.grid.Text(1, 1), QStringLiteral("1,1"));
}

void TestSheetEditing::typingIntoLockedColumnDoesNothing() {
  EditedGrid g(2, 2);
  g.grid.ColEditable(1, false);
  g.grid.SetCurrentCell(0, 1);
  g.type(QLatin1Char('x'));
  QVERIFY(!g.grid.IsEditing());
  QCOMPARE(g.grid.Text(0, 1), QStringLiteral("0,1"));
  QVERIFY(!g.dirty);
}

void TestSheetEditing::deleteOnRangeClearsItWithUndo() {
  EditedGrid g(3, 3);
  g.grid.SetCurrentCell(0, 0);
  QVERIFY(g.key(Qt::Key_Down, Qt::ShiftModifier));
  QVERIFY(g.key(Qt::Key_Right, Qt::ShiftModifier));
  setClipboard(QStringLiteral("untouched"));
  QVERIFY(g.key(Qt::Key_Delete));
  QCOMPARE(g.row(0), QStringList({"", "", "0,2"}));
  QCOMPARE(g.row(1), QStringList({"", "", "1,2"}));
  QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("untouched"));
  QCOMPARE(g.cellsChanged, 1);
  g.editing->undo();
  QCOMPARE(g.row(0), QStringList({"0,0", "0,1", "0,2"}));
  QCOMPARE(g.row(1), QStringList({"1,0", "1,1", "1,2"}));
}

void TestSheetEditing::deleteOnOneCellEmptiesItWithUndo() {
  EditedGrid g(2, 2);
  g.grid.SetCurrentCell(1, 0);
  QVERIFY(g.key(Qt::Key_Delete));
  QCOMPARE(g.grid.Text(1, 0), QString());
  QCOMPARE(g.cellsChanged, 1);
  g.editing->undo();
  QCOMPARE(g.grid.Text(1, 0), QStringLiteral("1,0"));
}

void TestSheetEditing::deleteInLockedColumnDoesNothing() {
  EditedGrid g(2, 2);
  g.grid.ColEditable(0, false);
  g.grid.SetCurrentCell(1, 0);
  g.key(Qt::Key_Delete);
  QCOMPARE(g.grid.Text(1, 0), QStringLiteral("1,0"));
  QCOMPARE(g.cellsChanged, 0);
}

void TestSheetEditing::shiftArrowsExtendTheHighlightedRange() {
  EditedGrid g(4, 4);
  g.grid.SetCurrentCell(1, 1);
  QVERIFY(g.key(Qt::Key_Right, Qt::ShiftModifier));
  QVERIFY(g.key(Qt::Key_Down, Qt::ShiftModifier));
  QVERIFY(g.key(Qt::Key_Down, Qt::ShiftModifier));
  QVERIFY(g.key(Qt::Key_Down, Qt::ShiftModifier));  // stops at the last row
  QVERIFY(g.editing->rangeSelected());
  const auto s = g.editing->selection();
  QCOMPARE(int(s.firstRow), 1);
  QCOMPARE(int(s.firstCol), 1);
  QCOMPARE(int(s.lastRow), 3);
  QCOMPARE(int(s.lastCol), 2);
  QCOMPARE(g.grid.CellBackColor(3, 2), sheets::RGB(0, 128, 192));
  QCOMPARE(g.grid.CellForeColor(3, 2), sheets::RGB(255, 255, 255));
  QVERIFY(g.grid.CellBackColor(0, 0) != sheets::RGB(0, 128, 192));

  QVERIFY(g.key(Qt::Key_Home, Qt::ShiftModifier));
  QCOMPARE(int(g.editing->selection().lastCol), 0);
  QCOMPARE(g.grid.CellBackColor(3, 2), sheets::RGB(255, 255, 255));
  QCOMPARE(g.grid.CellBackColor(3, 0), sheets::RGB(0, 128, 192));
  QVERIFY(g.key(Qt::Key_End, Qt::ShiftModifier));
  QCOMPARE(int(g.editing->selection().lastCol), 3);
}

void TestSheetEditing::plainKeyRemovesTheHighlight() {
  EditedGrid g(3, 3);
  g.editing->selectRange(0, 0, 1, 1);
  QCOMPARE(g.grid.CellBackColor(1, 1), sheets::RGB(0, 128, 192));
  g.grid.SetCurrentCell(0, 0);
  g.key(Qt::Key_Down);
  QVERIFY(!g.editing->rangeSelected());
  QCOMPARE(g.grid.CellBackColor(1, 1), sheets::RGB(255, 255, 255));
  QCOMPARE(g.grid.CellForeColor(1, 1), sheets::RGB(0, 0, 0));
}

void TestSheetEditing::homeEndMoveAlongTheRowAndWithCtrlToTheCorners() {
  EditedGrid g(4, 3);
  g.grid.SetCurrentCell(2, 1);
  QVERIFY(g.key(Qt::Key_End));
  QCOMPARE(g.grid.Row(), 2);
  QCOMPARE(g.grid.Col(), 2);
  QVERIFY(g.key(Qt::Key_Home));
  QCOMPARE(g.grid.Row(), 2);
  QCOMPARE(g.grid.Col(), 0);
  QVERIFY(g.key(Qt::Key_End, Qt::ControlModifier));
  QCOMPARE(g.grid.Row(), 3);
  QCOMPARE(g.grid.Col(), 2);
  QVERIFY(g.key(Qt::Key_Home, Qt::ControlModifier));
  QCOMPARE(g.grid.Row(), 0);
  QCOMPARE(g.grid.Col(), 0);
}

void TestSheetEditing::pageKeysTurnTheVisibleRowsOver() {
  EditedGrid g(200, 2);
  g.grid.SetCurrentCell(0, 0);
  QVERIFY(g.key(Qt::Key_PageUp));  // already at the top
  QCOMPARE(g.grid.TopRow(), 0);
  const int bottom = g.grid.BottomRow();
  QVERIFY(bottom > 0 && bottom < 199);
  QVERIFY(g.key(Qt::Key_PageDown));
  QCOMPARE(g.grid.TopRow(), bottom);
  const int top = g.grid.TopRow();
  QVERIFY(g.key(Qt::Key_PageUp));
  QCOMPARE(g.grid.BottomRow(), top);
  QCOMPARE(g.grid.TopRow(), 0);
  QVERIFY(!g.key(Qt::Key_PageDown, Qt::ControlModifier));  // left to the grid
}

void TestSheetEditing::shiftClickOnColumnHeaderExtendsToTheLastRow() {
  EditedGrid g(4, 4);
  g.grid.SetCurrentCell(1, 1);
  QTest::mouseClick(g.grid.cellArea(), Qt::LeftButton, Qt::NoModifier,
                    g.grid.cellRect(1, 1).center());
  QHeaderView* columns = g.grid.columnHeader();
  const QPoint inColumn2(columns->sectionViewportPosition(2) + columns->sectionSize(2) / 2,
                         columns->height() / 2);
  QTest::mouseClick(columns->viewport(), Qt::LeftButton, Qt::ShiftModifier, inColumn2);
  QVERIFY(g.editing->rangeSelected());
  QCOMPARE(int(g.editing->selection().lastRow), 3);
  QCOMPARE(int(g.editing->selection().lastCol), 2);
  QCOMPARE(g.grid.CellBackColor(3, 2), sheets::RGB(0, 128, 192));
}

void TestSheetEditing::f2OpensCaretModeWhereLeftAndRightStayInTheText() {
  EditedGrid g(2, 2);
  g.grid.Text(0, 1, QStringLiteral("abc"));
  g.grid.SetCurrentCell(0, 1);
  QVERIFY(g.key(Qt::Key_F2));
  QVERIFY(g.grid.IsEditing());
  QVERIFY(g.editing->caretMode());
  QCOMPARE(g.grid.CellSelStart(), 3);
  QVERIFY(!g.key(Qt::Key_Right));  // at the end: the grid gets the key
  QVERIFY(g.key(Qt::Key_Left));
  QCOMPARE(g.grid.CellSelStart(), 2);
  QVERIFY(g.key(Qt::Key_Left));
  QVERIFY(g.key(Qt::Key_Left));
  QCOMPARE(g.grid.CellSelStart(), 0);
  QVERIFY(!g.key(Qt::Key_Left));
  QVERIFY(g.key(Qt::Key_Right));
  QCOMPARE(g.grid.CellSelStart(), 1);
  // One snapshot for the edit: the record before it is still there.
  QCOMPARE(g.editing->undoRecord().text, QStringLiteral("abc"));
  QVERIFY(!g.editing->previousUndoRecord().valid);
}

void TestSheetEditing::transformRewritesTheRange_data() {
  QTest::addColumn<int>("operation");
  QTest::addColumn<float>("value");
  QTest::addColumn<QString>("before");
  QTest::addColumn<QString>("after");
  QTest::newRow("set writes the single") << 0 << 0.1f << "5"
                                         << "0.1";
  QTest::newRow("set zero") << 0 << 0.0f << "5"
                            << "0";
  QTest::newRow("add widens the single") << 1 << 0.1f << "1"
                                         << "1.10000000149012";
  QTest::newRow("add to empty") << 1 << 5.0f << ""
                                << "5";
  QTest::newRow("subtract") << 2 << 2.0f << "10.5"
                            << "8.5";
  QTest::newRow("multiply") << 3 << 2.0f << "1.25"
                            << "2.5";
  QTest::newRow("multiply text") << 3 << 3.0f << "abc"
                                 << "0";
  QTest::newRow("multiply leading number") << 3 << 2.0f << "4 m"
                                           << "8";
  QTest::newRow("unknown operation") << 7 << 2.0f << "4"
                                     << "4";
}

void TestSheetEditing::transformRewritesTheRange() {
  QFETCH(int, operation);
  QFETCH(float, value);
  QFETCH(QString, before);
  QFETCH(QString, after);
  EditedGrid g(3, 3);
  for (int r = 0; r < 2; ++r)
    for (int c = 1; c < 3; ++c) g.grid.Text(r, c, before);
  g.editing->selectRange(1, 2, 0, 1);
  g.transformRequest = {static_cast<std::int16_t>(operation), value};
  g.editing->transform();
  for (int r = 0; r < 2; ++r)
    for (int c = 1; c < 3; ++c) QCOMPARE(g.grid.Text(r, c), after);
  QCOMPARE(g.grid.Text(2, 1), QStringLiteral("2,1"));
  QCOMPARE(g.grid.Text(0, 0), QStringLiteral("0,0"));
  QCOMPARE(g.cellsChanged, 1);
}

void TestSheetEditing::transformUndoRestoresTheRangeIncludingEmptyCells() {
  EditedGrid g(3, 3);
  g.grid.Text(0, 1, QString());
  g.grid.Text(1, 2, QString());
  g.editing->selectRange(0, 1, 1, 2);
  g.editing->applyTransform({TransformRequest::Add, 1});
  QCOMPARE(g.row(0), QStringList({"0,0", "1", "1"}));
  QCOMPARE(g.row(1), QStringList({"1,0", "2", "1"}));
  QCOMPARE(g.editing->undoRecord().text, QStringLiteral("\t0,2\r\n1,1\t\r\n"));
  QCOMPARE(int(g.editing->undoRecord().col), 1);
  QCOMPARE(int(g.editing->undoRecord().row), 0);

  g.editing->undo();
  QCOMPARE(g.row(0), QStringList({"0,0", "", "0,2"}));
  QCOMPARE(g.row(1), QStringList({"1,0", "1,1", ""}));
  QCOMPARE(g.row(2), QStringList({"2,0", "2,1", "2,2"}));
}

void TestSheetEditing::transformNeedsAHighlightedRangeAndAnAnswer() {
  EditedGrid g(2, 2);
  g.grid.SetCurrentCell(0, 0);
  g.transformRequest = {TransformRequest::Set, 9};
  g.editing->transform();  // no range highlighted
  QCOMPARE(g.grid.Text(0, 0), QStringLiteral("0,0"));
  g.editing->selectRange(0, 0, 1, 1);
  g.transformRequest = {};
  g.editing->transform();  // cancelled
  QCOMPARE(g.grid.Text(0, 0), QStringLiteral("0,0"));
  QCOMPARE(g.cellsChanged, 0);
  QVERIFY(!g.editing->undoRecord().valid);
}

void TestSheetEditing::clickThenShiftClickHighlightsTheRectangle() {
  EditedGrid g(4, 4);
  QWidget* cells = g.grid.cellArea();
  QTest::mouseClick(cells, Qt::LeftButton, Qt::NoModifier, g.grid.cellRect(1, 1).center());
  QCOMPARE(g.grid.Row(), 1);
  QVERIFY(!g.editing->rangeSelected());
  QTest::mouseClick(cells, Qt::LeftButton, Qt::ShiftModifier, g.grid.cellRect(3, 2).center());
  QVERIFY(g.editing->rangeSelected());
  QCOMPARE(int(g.editing->selection().firstRow), 1);
  QCOMPARE(int(g.editing->selection().firstCol), 1);
  QCOMPARE(int(g.editing->selection().lastRow), 3);
  QCOMPARE(int(g.editing->selection().lastCol), 2);
  QCOMPARE(g.grid.CellBackColor(2, 2), sheets::RGB(0, 128, 192));

  // A plain click elsewhere takes the highlight away.
  QTest::mouseClick(cells, Qt::LeftButton, Qt::NoModifier, g.grid.cellRect(0, 3).center());
  QVERIFY(!g.editing->rangeSelected());
  QCOMPARE(g.grid.CellBackColor(2, 2), sheets::RGB(255, 255, 255));
  g.editing->copy();
  QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("0,3"));
}

void TestSheetEditing::dragHighlightsTheRectangle() {
  EditedGrid g(4, 4);
  QWidget* cells = g.grid.cellArea();
  QTest::mousePress(cells, Qt::LeftButton, Qt::NoModifier, g.grid.cellRect(2, 2).center());
  QTest::mouseMove(cells, g.grid.cellRect(1, 2).center());
  QTest::mouseMove(cells, g.grid.cellRect(0, 1).center());
  QTest::mouseRelease(cells, Qt::LeftButton, Qt::NoModifier, g.grid.cellRect(0, 1).center());
  QVERIFY(g.editing->rangeSelected());
  g.editing->copy();
  QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("0,1\t0,2\r\n1,1\t1,2\r\n2,1\t2,2"));
  QCOMPARE(g.grid.CellBackColor(0, 1), sheets::RGB(0, 128, 192));
  QCOMPARE(g.grid.CellBackColor(2, 2), sheets::RGB(0, 128, 192));
}

void TestSheetEditing::rowHeaderClickSelectsTheWholeRow() {
  EditedGrid g(3, 3);
  QHeaderView* rows = g.grid.rowHeader();
  const QPoint inRow1(rows->width() / 2,
                      rows->sectionViewportPosition(1) + rows->sectionSize(1) / 2);
  QTest::mouseClick(rows->viewport(), Qt::LeftButton, Qt::NoModifier, inRow1);
  QVERIFY(!g.editing->rangeSelected());
  g.editing->copy();
  QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("1,0\t1,1\t1,2"));
}

void TestSheetEditing::typedTextIsCommittedByEnterAndTheRowWritten() {
  EditedGrid g(3, 3);
  g.grid.SetCurrentCell(0, 1);
  QWidget* view = g.grid.cellArea()->parentWidget();
  QTest::keyClick(view, Qt::Key_4);
  QVERIFY(g.grid.IsEditing());
  QTest::keyClicks(g.grid.editor(), QStringLiteral("2"));
  QTest::keyClick(g.grid.editor(), Qt::Key_Return);
  QVERIFY(!g.grid.IsEditing());
  QCOMPARE(g.grid.Text(0, 1), QStringLiteral("42"));
  QCOMPARE(g.rowsWritten, QList<int>({0}));
  QVERIFY(!g.dirty);
  QCOMPARE(g.grid.Row(), 1);
  QCOMPARE(g.grid.Col(), 1);
  g.editing->undo();
  QCOMPARE(g.grid.Text(0, 1), QStringLiteral("0,1"));
}

void TestSheetEditing::doubleClickOnRowHeaderAsksTheMainWindow() {
  EditedGrid g(3, 3);
  int asked = -1;
  SheetEditing::Hooks hooks;
  hooks.rowHeaderDoubleClicked = [&asked](int row) { asked = row; };
  SheetEditing editing(g.grid, hooks);
  emit g.grid.doubleClicked(2, -1);
  QCOMPARE(asked, 2);
  g.grid.SetCurrentCell(1, 1);
  emit g.grid.doubleClicked(1, 1);
  QVERIFY(g.grid.IsEditing());
  QCOMPARE(g.grid.CellState(1, 1), int(GridControl::kCellEditing));
}

DELVANE_QTEST(TestSheetEditing)

#include "test_sheetediting.moc"
