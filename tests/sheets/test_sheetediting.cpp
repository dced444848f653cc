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

const std::uint32_t kHighlight = sheets::RGB(0, 128, 192);
const std::uint32_t kWhite = sheets::RGB(255, 255, 255);

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
    if (!key(character.unicode())) {
      bool handled = false;
      emit grid.keyPress(character, handled);
    }
  }
  // Every cell: cells joined by blanks, rows by slashes.
  QString all() const {
    QStringList rows;
    for (int r = 0; r < grid.Rows(); ++r) {
      QStringList cells;
      for (int c = 0; c < grid.Cols(); ++c) cells << grid.Text(r, c);
      rows << cells.join(QLatin1Char(' '));
    }
    return rows.join(QLatin1Char('/'));
  }
  // Every cell's colour: x highlighted, . white, ? anything else; rows joined by slashes.
  QString highlight() const {
    QString mask;
    for (int r = 0; r < grid.Rows(); ++r) {
      if (r > 0) mask += QLatin1Char('/');
      for (int c = 0; c < grid.Cols(); ++c) {
        const std::uint32_t back = grid.CellBackColor(r, c);
        mask += back == kHighlight ? 'x' : back == kWhite ? '.' : '?';
      }
    }
    return mask;
  }
  QString copied() {
    editing->copy();
    return QApplication::clipboard()->text();
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

// A key pressed on a cell; points are (column, row).
struct KeyCase {
  int key;
  Qt::KeyboardModifiers modifiers;
  bool enterRight;
  QList<int> locked;
  QPoint from;
  QPoint to;
};

const QString kUntouched = QStringLiteral("0,0 0,1 0,2/1,0 1,1 1,2/2,0 2,1 2,2");

}  // namespace

Q_DECLARE_METATYPE(KeyCase)

class TestSheetEditing : public QObject {
  Q_OBJECT

 private slots:
  void pasteOverwritesFromTheCurrentCellAndUndoRestores_data() {
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("col");
    QTest::addColumn<QString>("clipboard");
    QTest::addColumn<QString>("after");
    QTest::addColumn<QString>("undoText");
    QTest::newRow("at the last row the second line is dropped") << 2 << 1 << "a\tb\r\nc\td\r\n"
                                                                << "0,0 0,1 0,2/1,0 1,1 1,2/2,0 a b"
                                                                << "2,1\t2,2\r\n";
    QTest::newRow("without tab or line break one cell") << 1 << 1 << "12.5"
                                                        << "0,0 0,1 0,2/1,0 12.5 1,2/2,0 2,1 2,2"
                                                        << "1,1\r\n";
    QTest::newRow("bare line feeds") << 0 << 0 << "a\tb\nc\td"
                                     << "a b 0,2/c d 1,2/2,0 2,1 2,2"
                                     << "0,0\t0,1\r\n1,0\t1,1\r\n";
    QTest::newRow("fields beyond the last column dropped") << 0 << 2 << "a\tb\tc\r\nd\te\r\n"
                                                           << "0,0 0,1 a/1,0 1,1 d/2,0 2,1 2,2"
                                                           << "0,2\r\n1,2\r\n";
  }
  void pasteOverwritesFromTheCurrentCellAndUndoRestores() {
    QFETCH(int, row);
    QFETCH(int, col);
    QFETCH(QString, clipboard);
    QFETCH(QString, after);
    QFETCH(QString, undoText);
    EditedGrid g(3, 3);
    g.grid.SetCurrentCell(row, col);
    QApplication::clipboard()->setText(clipboard);
    g.editing->paste();
    QCOMPARE(g.all(), after);
    QCOMPARE(g.grid.Cols(), 3);
    QCOMPARE(g.editing->undoRecord().text, undoText);
    QCOMPARE(g.cellsChanged, 1);
    g.editing->undo();
    QCOMPARE(g.all(), kUntouched);
    QCOMPARE(g.cellsChanged, 2);
  }

  void cutPasteUndoUndoUndo() {
    EditedGrid g(3, 3);
    g.editing->selectRange(0, 0, 0, 1);
    g.editing->cut();
    QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("0,0\t0,1"));
    g.grid.SetCurrentCell(1, 1);
    g.editing->paste();
    QCOMPARE(g.all(), QStringLiteral("  0,2/1,0 0,0 0,1/2,0 2,1 2,2"));  // cut cells empty
    g.editing->undo();                                                   // takes the paste back
    QCOMPARE(g.all(), QStringLiteral("  0,2/1,0 1,1 1,2/2,0 2,1 2,2"));
    g.editing->undo();  // restores the cut cells
    QCOMPARE(g.all(), kUntouched);
    g.grid.Text(0, 0, QStringLiteral("later"));
    g.editing->undo();  // nothing left to undo
    QCOMPARE(g.all(), QStringLiteral("later 0,1 0,2/1,0 1,1 1,2/2,0 2,1 2,2"));
    QCOMPARE(g.cellsChanged, 4);
  }

  // Keys that move the current cell of a 4 x 3 grid.
  void keysMoveTheCurrentCell_data() {
    QTest::addColumn<KeyCase>("c");
    const auto ctrl = Qt::ControlModifier;
    const int ret = Qt::Key_Return;
    QTest::newRow("EnterRight to the next column") << KeyCase{ret, {}, true, {}, {0, 0}, {1, 0}};
    QTest::newRow("EnterRight at the end of a row wraps")
        << KeyCase{ret, {}, true, {}, {2, 0}, {0, 1}};
    QTest::newRow("EnterRight skips a locked column")
        << KeyCase{ret, {}, true, {1}, {0, 0}, {2, 0}};
    QTest::newRow("EnterRight wrap skips a locked first column")
        << KeyCase{ret, {}, true, {0}, {2, 1}, {1, 2}};
    QTest::newRow("EnterRight at the last cell stays")
        << KeyCase{ret, {}, true, {}, {2, 3}, {2, 3}};
    QTest::newRow("EnterRight with only locked cells after stays")
        << KeyCase{ret, {}, true, {2}, {1, 3}, {1, 3}};
    QTest::newRow("Enter down") << KeyCase{ret, {}, false, {}, {2, 2}, {2, 3}};
    QTest::newRow("Enter down at the last row stays")
        << KeyCase{Qt::Key_Enter, {}, false, {}, {2, 3}, {2, 3}};
    QTest::newRow("End") << KeyCase{Qt::Key_End, {}, false, {}, {1, 2}, {2, 2}};
    QTest::newRow("Home") << KeyCase{Qt::Key_Home, {}, false, {}, {1, 2}, {0, 2}};
    QTest::newRow("Ctrl+End") << KeyCase{Qt::Key_End, ctrl, false, {}, {1, 2}, {2, 3}};
    QTest::newRow("Ctrl+Home") << KeyCase{Qt::Key_Home, ctrl, false, {}, {1, 2}, {0, 0}};
  }
  void keysMoveTheCurrentCell() {
    QFETCH(KeyCase, c);
    EditedGrid g(4, 3);
    g.enterRight = c.enterRight;
    for (int col : c.locked) g.grid.ColEditable(col, false);
    g.grid.SetCurrentCell(c.from.y(), c.from.x());
    const bool editing = c.key != Qt::Key_Home && c.key != Qt::Key_End;
    if (editing) g.grid.BeginEdit();  // Enter also closes an open editor
    QCOMPARE(g.grid.IsEditing(), editing);
    QVERIFY(g.key(c.key, c.modifiers));
    QVERIFY(!g.grid.IsEditing());
    QCOMPARE(QPoint(g.grid.Col(), g.grid.Row()), c.to);
  }

  void pageKeysTurnTheVisibleRowsOver() {
    EditedGrid g(200, 2);
    g.grid.SetCurrentCell(0, 0);
    const int bottom = g.grid.BottomRow();
    QVERIFY(bottom > 0 && bottom < 199);
    QVERIFY(g.key(Qt::Key_PageDown));
    QCOMPARE(g.grid.TopRow(), bottom);
    QVERIFY(g.key(Qt::Key_PageUp));
    QVERIFY(g.key(Qt::Key_PageUp));  // already at the top
    QCOMPARE(g.grid.TopRow(), 0);
    QVERIFY(!g.key(Qt::Key_PageDown, Qt::ControlModifier));  // left to the grid
  }

  void escapeAfterTypingRestoresTheCellAndUsesUpTheUndoRecord() {
    EditedGrid g(3, 3);
    g.autoSave = false;
    g.grid.SetCurrentCell(0, 0);
    QVERIFY(g.key(Qt::Key_Delete));  // an earlier change, to be undone later
    g.grid.SetCurrentCell(1, 1);
    g.type(QLatin1Char('7'));
    QCOMPARE(g.grid.CellState(1, 1), int(GridControl::kCellEditing));
    QCOMPARE(g.grid.CellSelStart(), 1);
    QVERIFY(g.dirty);
    QCOMPARE(g.editing->undoRecord().text, QStringLiteral("1,1"));

    QVERIFY(g.key(Qt::Key_Escape));
    QCOMPARE(g.all(), QStringLiteral(" 0,1 0,2/1,0 1,1 1,2/2,0 2,1 2,2"));
    QCOMPARE(g.grid.CellState(1, 1), int(GridControl::kCellNormal));
    QVERIFY(!g.editing->undoRecord().valid);
    g.editing->undo();  // goes on to the Delete
    QCOMPARE(g.all(), kUntouched);
  }

  void typedTextIsCommittedByEnterAndTheRowWritten() {
    EditedGrid g(3, 3);
    g.grid.SetCurrentCell(0, 1);
    QTest::keyClick(g.grid.cellArea()->parentWidget(), Qt::Key_4);
    QTest::keyClicks(g.grid.editor(), QStringLiteral("2"));
    QTest::keyClick(g.grid.editor(), Qt::Key_Return);
    QCOMPARE(g.grid.Text(0, 1), QStringLiteral("42"));
    QCOMPARE(g.rowsWritten, QList<int>({0}));
    QVERIFY(!g.dirty);
    QCOMPARE(QPoint(g.grid.Col(), g.grid.Row()), QPoint(1, 1));
    g.editing->undo();
    QCOMPARE(g.grid.Text(0, 1), QStringLiteral("0,1"));
  }

  void deleteClearsTheHighlightedRangeWithUndo() {
    EditedGrid g(3, 3);
    g.grid.SetCurrentCell(0, 0);
    QVERIFY(g.key(Qt::Key_Down, Qt::ShiftModifier));
    QVERIFY(g.key(Qt::Key_Right, Qt::ShiftModifier));
    QApplication::clipboard()->setText(QStringLiteral("untouched"));
    QVERIFY(g.key(Qt::Key_Delete));
    QCOMPARE(g.all(), QStringLiteral("  0,2/  1,2/2,0 2,1 2,2"));
    QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("untouched"));
    QCOMPARE(g.cellsChanged, 1);
    g.editing->undo();
    QCOMPARE(g.all(), kUntouched);
    // A locked column takes neither typing nor Delete.
    g.grid.ColEditable(1, false);
    g.grid.SetCurrentCell(0, 1);
    g.type(QLatin1Char('x'));
    QVERIFY(!g.grid.IsEditing());
    g.key(Qt::Key_Delete);
    QCOMPARE(g.all(), kUntouched);
    QCOMPARE(g.cellsChanged, 2);
  }

  void shiftArrowsExtendTheHighlightAndAPlainKeyEndsIt() {
    EditedGrid g(4, 4);
    g.grid.SetCurrentCell(1, 1);
    QVERIFY(g.key(Qt::Key_Right, Qt::ShiftModifier));
    for (int i = 0; i < 3; ++i) QVERIFY(g.key(Qt::Key_Down, Qt::ShiftModifier));  // stops at 3
    QCOMPARE(g.highlight(), QStringLiteral("..../.xx./.xx./.xx."));
    QCOMPARE(g.grid.CellForeColor(3, 2), kWhite);
    QVERIFY(g.key(Qt::Key_Home, Qt::ShiftModifier));
    QCOMPARE(g.highlight(), QStringLiteral("..../xx../xx../xx.."));
    QVERIFY(g.key(Qt::Key_End, Qt::ShiftModifier));
    QCOMPARE(g.highlight(), QStringLiteral("..../.xxx/.xxx/.xxx"));
    g.key(Qt::Key_Down);
    QVERIFY(!g.editing->rangeSelected());
    QCOMPARE(g.highlight(), QStringLiteral("..../..../..../...."));
    QCOMPARE(g.grid.CellForeColor(2, 2), sheets::RGB(0, 0, 0));
  }

  void mouseHighlightsRectanglesAndRows() {
    EditedGrid g(4, 4);
    QWidget* cells = g.grid.cellArea();
    const auto at = [&g](int r, int c) { return g.grid.cellRect(r, c).center(); };
    QTest::mouseClick(cells, Qt::LeftButton, Qt::NoModifier, at(1, 1));
    QTest::mouseClick(cells, Qt::LeftButton, Qt::ShiftModifier, at(3, 2));
    QCOMPARE(g.highlight(), QStringLiteral("..../.xx./.xx./.xx."));
    QTest::mouseClick(cells, Qt::LeftButton, Qt::NoModifier, at(0, 3));  // ends the highlight
    QCOMPARE(g.highlight(), QStringLiteral("..../..../..../...."));

    // Shift and a click on a column header extends to the last row of that column.
    QTest::mouseClick(cells, Qt::LeftButton, Qt::NoModifier, at(1, 1));
    QHeaderView* columns = g.grid.columnHeader();
    QTest::mouseClick(columns->viewport(), Qt::LeftButton, Qt::ShiftModifier,
                      QPoint(columns->sectionViewportPosition(2) + columns->sectionSize(2) / 2,
                             columns->height() / 2));
    QCOMPARE(g.highlight(), QStringLiteral("..../.xx./.xx./.xx."));

    // Dragged from bottom right to top left.
    QTest::mousePress(cells, Qt::LeftButton, Qt::NoModifier, at(2, 2));
    QTest::mouseMove(cells, at(1, 2));
    QTest::mouseMove(cells, at(0, 1));
    QTest::mouseRelease(cells, Qt::LeftButton, Qt::NoModifier, at(0, 1));
    QCOMPARE(g.highlight(), QStringLiteral(".xx./.xx./.xx./...."));
    QCOMPARE(g.copied(), QStringLiteral("0,1\t0,2\r\n1,1\t1,2\r\n2,1\t2,2"));

    QTest::mouseClick(cells, Qt::LeftButton, Qt::NoModifier, at(0, 0));
    QHeaderView* rows = g.grid.rowHeader();
    QTest::mouseClick(
        rows->viewport(), Qt::LeftButton, Qt::NoModifier,
        QPoint(rows->width() / 2, rows->sectionViewportPosition(1) + rows->sectionSize(1) / 2));
    QVERIFY(!g.editing->rangeSelected());
    QCOMPARE(g.copied(), QStringLiteral("1,0\t1,1\t1,2\t1,3"));
  }

  void f2OpensCaretModeWhereLeftAndRightStayInTheText() {
    EditedGrid g(2, 2);
    g.grid.Text(0, 1, QStringLiteral("abc"));
    g.grid.SetCurrentCell(0, 1);
    QVERIFY(g.key(Qt::Key_F2));
    QVERIFY(g.editing->caretMode());
    QCOMPARE(g.grid.CellSelStart(), 3);
    QVERIFY(!g.key(Qt::Key_Right));  // at the end: the grid gets the key
    for (int i = 0; i < 3; ++i) QVERIFY(g.key(Qt::Key_Left));
    QCOMPARE(g.grid.CellSelStart(), 0);
    QVERIFY(!g.key(Qt::Key_Left));
    QVERIFY(g.key(Qt::Key_Right));
    QCOMPARE(g.grid.CellSelStart(), 1);
    // One snapshot for the edit: the record before it is still there.
    QCOMPARE(g.editing->undoRecord().text, QStringLiteral("abc"));
    QVERIFY(!g.editing->previousUndoRecord().valid);
  }

  void transformRewritesTheRange_data() {
    QTest::addColumn<int>("operation");
    QTest::addColumn<float>("value");
    QTest::addColumn<QStringList>("beforeAfter");
    QTest::newRow("set writes the single") << 0 << 0.1f << QStringList{"5", "0.1"};
    QTest::newRow("set keeps seven digits") << 0 << (1.0f / 3.0f) << QStringList{"5", "0.3333333"};
    QTest::newRow("set a large single") << 0 << 16777216.0f << QStringList{"5", "1.677722E+07"};
    QTest::newRow("add widens the single") << 1 << 0.1f << QStringList{"1", "1.10000000149012"};
    QTest::newRow("add to empty") << 1 << 5.0f << QStringList{"", "5"};
    QTest::newRow("subtract") << 2 << 2.0f << QStringList{"10.5", "8.5"};
    QTest::newRow("multiply") << 3 << 2.0f << QStringList{"1.25", "2.5"};
    QTest::newRow("multiply text") << 3 << 3.0f << QStringList{"abc", "0"};
    QTest::newRow("unknown operation") << 7 << 2.0f << QStringList{"4", "4"};
    QTest::newRow("cancelled") << -1 << 2.0f << QStringList{"4", "4"};
  }
  void transformRewritesTheRange() {
    QFETCH(int, operation);
    QFETCH(float, value);
    QFETCH(QStringList, beforeAfter);
    const QString before = beforeAfter[0];
    const QString after = beforeAfter[1];
    EditedGrid g(3, 3);
    for (int r = 0; r < 2; ++r)
      for (int c = 1; c < 3; ++c) g.grid.Text(r, c, before);
    g.editing->selectRange(1, 2, 0, 1);
    g.transformRequest = {static_cast<std::int16_t>(operation), value};
    g.editing->transform();
    const QString filled = QStringLiteral("0,0 %1 %1/1,0 %1 %1/2,0 2,1 2,2");
    QCOMPARE(g.all(), filled.arg(after));
    QCOMPARE(g.cellsChanged, operation < 0 ? 0 : 1);
    QCOMPARE(g.editing->undoRecord().valid, operation >= 0);
    g.editing->undo();
    QCOMPARE(g.all(), filled.arg(before));
  }

  void transformUndoRestoresTheRangeIncludingEmptyCells() {
    EditedGrid g(3, 3);
    g.grid.Text(0, 1, QString());
    g.grid.Text(1, 2, QString());
    g.editing->selectRange(0, 1, 1, 2);
    g.editing->applyTransform({TransformRequest::Add, 1});
    QCOMPARE(g.all(), QStringLiteral("0,0 1 1/1,0 2 1/2,0 2,1 2,2"));
    QCOMPARE(g.editing->undoRecord().text, QStringLiteral("\t0,2\r\n1,1\t\r\n"));
    QCOMPARE(QPoint(g.editing->undoRecord().col, g.editing->undoRecord().row), QPoint(1, 0));
    g.editing->undo();
    QCOMPARE(g.all(), QStringLiteral("0,0  0,2/1,0 1,1 /2,0 2,1 2,2"));
  }

  void transformNeedsAHighlightedRange() {
    EditedGrid g(2, 2);
    g.grid.SetCurrentCell(0, 0);
    g.transformRequest = {TransformRequest::Set, 9};
    g.editing->transform();
    QCOMPARE(g.all(), QStringLiteral("0,0 0,1/1,0 1,1"));
  }

  void doubleClickEditsACellAndHandsARowHeaderToTheMainWindow() {
    EditedGrid g(3, 3);
    int asked = -1;
    SheetEditing::Hooks hooks;
    hooks.rowHeaderDoubleClicked = [&asked](int row) { asked = row; };
    SheetEditing editing(g.grid, hooks);
    emit g.grid.doubleClicked(2, -1);
    QCOMPARE(asked, 2);
    g.grid.SetCurrentCell(1, 1);
    emit g.grid.doubleClicked(1, 1);
    QCOMPARE(g.grid.CellState(1, 1), int(GridControl::kCellEditing));
  }
};

DELVANE_QTEST(TestSheetEditing)

#include "test_sheetediting.moc"
