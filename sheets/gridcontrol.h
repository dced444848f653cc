#pragma once

#include <QChar>
#include <QPointer>
#include <QRect>
#include <QString>
#include <QWidget>

#include <cstdint>
#include <functional>
#include <vector>

class QHeaderView;

namespace db {
class ResultSet;
}

namespace sheets {

class GridModel;
class GridView;
class GridDelegate;
class GridHeader;

// A colour as the sheets store it: 0x00BBGGRR.
using GridColor = std::uint32_t;
constexpr GridColor RGB(int red, int green, int blue) {
  return static_cast<GridColor>((red & 0xff) | ((green & 0xff) << 8) | ((blue & 0xff) << 16));
}

// The grid every sheet and report window shows its rows in. Bound to a db::ResultSet (one
// column per result column, one row per visible record, edits written back row by row) or
// unbound (rows made with SetRowCount, cells written as text). Rows and columns count from 0;
// row -1 is the column-header row, column -1 the row-header column; in a per-row or per-column
// setting -1 means all of them. Colours are 0x00BBGGRR.
//
// Beside the current cell (Row, Col) there is a selection of whole rows or whole columns made
// by clicking their headers (Ctrl toggles, Shift extends; a click on a cell clears it); the
// sheet's own cell rectangle is shown by colouring cells. Key events reach keyDown and keyPress
// before the grid handles them; a slot that sets handled keeps the grid from acting on the key.
// The up-and-down mouse wheel does not scroll the grid: the window holding it scrolls it with
// TopRow and BottomRow.
class GridControl : public QWidget {
  Q_OBJECT

 public:
  // Grid-line styles (ColLineStyle, RowLineStyle).
  enum LineStyle { kLineNone = 0, kLineDotted = 1, kLineDashed = 2, kLineSolid = 3 };
  // Cell style codes (CellStyle): 0 plain; 3 filled with CellStyleColor, drawn raised.
  enum CellStyleCode { kStylePlain = 0, kStyleRaised = 3 };
  // Cell states (CellState).
  enum CellStateCode { kCellNormal = 0, kCellEditing = 3 };
  // Column kinds (ColKind): 0 text, 1 check box (yes/no columns).
  enum ColumnKind { kKindText = 0, kKindCheck = 1 };
  // Text alignments (ColTextAlign): 0 left, 1 right, 2 centred.
  enum Align { kAlignLeft = 0, kAlignRight = 1, kAlignCenter = 2 };

  explicit GridControl(QWidget* parent = nullptr);
  ~GridControl() override;

  // ---- Shape and contents
  int Cols() const;
  // Unbound: adds empty columns or drops trailing ones. Bound: drops trailing columns, or adds
  // empty columns that belong to no result column.
  void Cols(int count);
  int Rows() const;
  // Cell text; row -1 is the header. Out-of-range cells read as empty and ignore writes.
  QString Text(int row, int col) const;
  void Text(int row, int col, const QString& text);
  // Removes count columns starting at first (bound: they are hidden from the grid, the result
  // set keeps them).
  void DeleteCols(int first, int count);
  // Unbound: the number of data rows; 0 leaves the header alone. Ignored when bound.
  void SetRowCount(int count);

  // ---- Binding (the result set is the caller's and must outlive the binding)
  void DataSource(db::ResultSet* resultSet);
  db::ResultSet* DataSource() const;
  // Writes the row's edited cells to the database; throws db::Error. Unbound: nothing.
  void UpdateRow(int row);
  // Deletes the row (and, bound, its record); throws db::Error. Later rows move up by one.
  void DeleteRow(int row);
  // Deletes the rows (any order; rows outside the grid are skipped) and, bound, their records in
  // one transaction; onRecord hears how many records are gone so far. Throws db::Error, and then
  // nothing is deleted. Later rows move up.
  void deleteRows(std::vector<int> rows, const std::function<void(int done)>& onRecord = {});
  // Re-reads the bound rows (row count, columns' contents) and repaints; keeps the current
  // cell and the scroll position where they still exist.
  void Refresh();

  // ---- Repainting
  bool Redraw() const;
  // Off: changes are not painted (nor announced to the view) until it is switched on again.
  void Redraw(bool on);

  // ---- Columns
  int ColWidth(int col) const;
  // Pixels; -1 all columns; an index at or past Cols changes nothing.
  void ColWidth(int col, int pixels);
  // A share of the grid's client width, kept when the grid is resized; -1 all columns.
  void ColWidthPercent(int col, int percent);
  int ColTextAlign(int col) const;
  void ColTextAlign(int col, int align);
  bool ColEditable(int col) const;
  void ColEditable(int col, bool editable);
  int ColKind(int col) const;
  void ColKind(int col, int kind);
  int ColLineStyle(int col) const;
  void ColLineStyle(int col, int style);
  GridColor ColLineColor(int col) const;
  void ColLineColor(int col, GridColor color);
  int RowLineStyle(int row) const;
  void RowLineStyle(int row, int style);
  GridColor RowLineColor(int row) const;
  void RowLineColor(int row, GridColor color);
  int HeaderHeight() const;
  // Header texts wrap onto further lines when the height allows.
  void HeaderHeight(int pixels);
  int FrozenCols() const;
  void FrozenCols(int count);
  bool Frozen() const;
  // On: the first FrozenCols columns stay in view when the grid scrolls sideways.
  void Frozen(bool on);

  // ---- Cell appearance (row -1 addresses header cells)
  GridColor CellBackColor(int row, int col) const;
  // Also returns the cell to the plain style.
  void CellBackColor(int row, int col, GridColor color);
  GridColor CellForeColor(int row, int col) const;
  void CellForeColor(int row, int col, GridColor color);
  GridColor RowForeColor(int row) const;
  // Text colour of the whole row; replaces the row's cell text colours.
  void RowForeColor(int row, GridColor color);
  bool CellBold(int row, int col) const;
  void CellBold(int row, int col, bool bold);
  int CellStyle(int row, int col) const;
  void CellStyle(int row, int col, int style);
  GridColor CellStyleColor(int row, int col) const;
  void CellStyleColor(int row, int col, GridColor color);
  int CellState(int row, int col) const;
  void CellState(int row, int col, int state);

  // ---- Current cell and scrolling
  int Row() const;  // -1 when there is no current cell
  int Col() const;
  void SetCurrentCell(int row, int col);
  int TopRow() const;
  void TopRow(int row);
  // The last row wholly in view (the last row when all fit).
  int BottomRow() const;
  void BottomRow(int row);

  // ---- Header selection
  int SelectedRowCount() const;
  int SelectedColCount() const;
  // The i-th selected row, or column when no row is selected, i from 1, in ascending order;
  // -1 when out of range.
  int SelectedIndex(int i) const;
  int SelectedRow(int i) const;
  int SelectedCol(int i) const;
  void ClearSelection();
  // What a header click does, for code that selects on the user's behalf.
  void SelectRow(int row, bool add = false);
  void SelectCol(int col, bool add = false);

  // ---- In-cell editor
  // Opens the editor on the current cell, whatever ColEditable says.
  void BeginEdit();
  // Closes the editor, keeping its text in the cell.
  void EndEdit();
  bool IsEditing() const;
  // Caret and selection inside the open editor; -1 / 0 when none is open.
  int CellSelStart() const;
  void CellSelStart(int position);
  int CellSelLength() const;
  void CellSelLength(int length);

  // ---- Geometry, for tests and for code that places things over cells
  // The cell's rectangle in cellArea() coordinates; empty when out of range.
  QRect cellRect(int row, int col) const;
  QWidget* cellArea() const;
  QHeaderView* columnHeader() const;
  QHeaderView* rowHeader() const;
  QWidget* editor() const;

 signals:
  // A click on a cell, on a column header (row -1) or a row header (col -1).
  void cellClicked(int row, int col);
  void mouseDown(int row, int col, Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers);
  // Every move over the cells; row and col are those under the pointer (-1 outside rows).
  void mouseMove(int row, int col, Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers);
  void mouseUp(int row, int col, Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers);
  void currentCellChanged(int row, int col);
  void editorOpened(int row, int col);
  void editorClosed(int row, int col);
  // The editor committed a text that differs from the cell's.
  void cellValueChanged(int row, int col);
  // Before the grid or the open editor handles the key.
  void keyDown(int key, Qt::KeyboardModifiers modifiers, bool& handled);
  // A printable character typed while no editor is open, after keyDown left it unhandled.
  void keyPress(QChar character, bool& handled);
  // On a cell, or on a header (row or col -1).
  void doubleClicked(int row, int col);

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  friend class GridView;
  friend class GridDelegate;
  friend class GridHeader;

  int visibleRowCount() const;
  void applyPercentWidths();
  void updateFrozenView();
  void updateFrozenGeometry();
  int frozenWidth() const;
  bool isFrozenColumn(int col) const;
  void headerPressed(Qt::Orientation orientation, int section, Qt::KeyboardModifiers modifiers);
  void headerDoubleClicked(Qt::Orientation orientation, int section);
  bool deliverKey(int key, Qt::KeyboardModifiers modifiers);
  void editorWasCreated(QWidget* editor, int row, int col);
  void editorWasClosed(QWidget* editor);
  void currentWasChanged(int row, int col);
  bool isRowSelected(int row) const;
  bool isColSelected(int col) const;
  void repaintAll();
  void forEachView(const std::function<void(GridView*)>& action) const;

  GridModel* m_model = nullptr;
  GridView* m_view = nullptr;
  GridView* m_frozenView = nullptr;
  GridDelegate* m_delegate = nullptr;
  // Header selection, ascending.
  std::vector<int> m_selectedRows;
  std::vector<int> m_selectedCols;
  int m_anchorRow = -1;
  int m_anchorCol = -1;
  int m_frozenCols = 0;
  bool m_frozen = false;
  bool m_redraw = true;
  int m_headerHeight = -1;
  QPointer<QWidget> m_editor;
  GridView* m_editorView = nullptr;
  int m_editRow = -1;
  int m_editCol = -1;
  bool m_quietCurrent = false;
};

}  // namespace sheets
