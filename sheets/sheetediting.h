#pragma once

#include "sheets/dlgselecttransform.h"

#include <QObject>
#include <QString>

#include <functional>

namespace sheets {

class GridControl;

// The editing behaviour of one data sheet on its grid: the highlighted cell rectangle, typing
// and the in-cell editor, the keyboard, copy, cut, paste and clear through the clipboard, the
// value transform, and a two-step undo (the last change and the one before it, no more).
class SheetEditing : public QObject {
  Q_OBJECT

 public:
  // What the editing needs from its sheet. Unset functions read as "no" and do nothing.
  struct Hooks {
    // After an operation changed cells (cut, paste, undo, clear, transform): the sheet saves at
    // once with AutoSave on, otherwise marks itself dirty.
    std::function<void()> cellsChanged;
    // A row whose edit ended while the sheet was dirty with AutoSave on: the sheet writes that
    // row alone (colour reset, UpdateRow) and clears dirty.
    std::function<void(int row)> rowEdited;
    std::function<bool()> isDirty;
    std::function<void(bool dirty)> setDirty;
    std::function<bool()> autoSave;
    std::function<bool()> enterRight;
    // A double-click on the header of row (the main window's DoubleClickHandler).
    std::function<void(int row)> rowHeaderDoubleClicked;
    // Asks for the transform (dlgSelectTransform); unset shows the dialog over the grid.
    std::function<TransformRequest()> askTransform;
    // Cells are picked out and copied, never changed (a report): no editor opens, and cut,
    // paste, clear, undo and transform do nothing.
    bool readOnly = false;
  };

  // The highlighted rectangle as clicked: first and last may be in either order.
  struct Selection {
    int firstCol = 0;
    int lastCol = 0;
    int firstRow = 0;
    int lastRow = 0;
  };

  // The former contents of the cells a change overwrote, as tab and CR LF separated text,
  // anchored at their top-left cell.
  struct UndoRecord {
    QString text;
    int col = 0;
    int row = 0;
    bool valid = false;
  };

  // Clear modes of copyCutClear.
  enum class ClipMode { Copy = 0, Cut = 1, Clear = 2 };

  // Hooks itself to the grid's events; the grid must outlive it.
  SheetEditing(GridControl& grid, Hooks hooks, QObject* parent = nullptr);
  ~SheetEditing() override;

  // Commands 1, 2, 3, 5 and 6 of the sheet's menu.
  void copy();
  void cut();
  void paste();
  void undo();
  // Asks for a transform and applies it to the highlighted rectangle; nothing without one.
  void transform();
  // Applies a transform request to the highlighted rectangle, with undo; nothing without a
  // highlighted rectangle or for a cancelled request.
  void applyTransform(const TransformRequest& request);

  // Copy, cut or clear of the highlighted rectangle. Cut and clear change cells and tell the
  // sheet; copy puts the text on the clipboard and changes nothing.
  void copyCutClear(ClipMode mode);
  // Writes text (tab and line separated) into the grid from the current cell on, dropping
  // fields outside the grid, and returns the former texts of the cells it overwrote.
  QString pasteAtCurrentCell(const QString& text);
  // Records the current cell's text as the undo record before it is edited.
  void takeUndoSnapshot();

  // After the sheet (re)loads its rows: no range, no editing flags. The undo records stay.
  void resetSelection();

  bool rangeSelected() const { return m_rangeSelected; }
  bool caretMode() const { return m_caretMode; }
  Selection selection() const { return m_selection; }
  // Highlights a rectangle as if it had been dragged out, from (firstRow, firstCol) to
  // (lastRow, lastCol).
  void selectRange(int firstRow, int firstCol, int lastRow, int lastCol);
  void highlight();
  void unhighlight();

  const UndoRecord& undoRecord() const { return m_undo; }
  const UndoRecord& previousUndoRecord() const { return m_previousUndo; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct Ordered {
    int row0, row1, col0, col1;
  };
  Ordered ordered() const;
  void paintRange(bool highlighted);
  void pushUndo(const QString& text, int col, int row);
  void notifyCellsChanged();
  void setDirty();
  bool shiftHeld() const;
  QString pasteAt(const QString& text, int startRow, int startCol);
  void openEditor(bool caretMode);
  QString editorText() const;
  void escapeEdit();

  // Grid events.
  void onCellClicked(int row, int col);
  void onMouseDown(int row, int col);
  void onMouseMove(int row, int col);
  void onMouseUp(int row, int col);
  void onCurrentCellChanged(int row, int col);
  void onEditorOpened();
  void onEditorClosed(int row, int col);
  void onCellValueChanged();
  void onKeyDown(int key, Qt::KeyboardModifiers modifiers, bool& handled);
  void onKeyPress(QChar character, bool& handled);
  void onDoubleClick(int row, int col);

  void selectByClick(int row, int col, bool extend);
  void extendByKey(int key);
  void enterKey();

  GridControl& m_grid;
  Hooks m_hooks;
  bool m_rangeSelected = false;
  bool m_caretMode = false;
  bool m_snapshotTaken = false;
  bool m_mouseHeld = false;
  // The mouse moved to another cell while held; the click that ends it keeps the rectangle.
  bool m_dragging = false;
  // The button came up after a drag; the click the grid reports next keeps the rectangle.
  bool m_clickEndsDrag = false;
  int m_pressRow = -1;
  int m_pressCol = -1;
  // Modifier keys of the last key or mouse event, to tell Shift-clicks and Shift-moves.
  Qt::KeyboardModifiers m_modifiers;
  Selection m_selection;
  UndoRecord m_undo;
  UndoRecord m_previousUndo;
};

}  // namespace sheets
