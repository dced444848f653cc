#pragma once

#include "sheets/mousewheel.h"
#include "sheets/sheetcontext.h"
#include "sheets/subwindowactivation.h"

#include <QString>
#include <QWidget>

#include <cstdint>
#include <memory>

namespace db {
class Connection;
class ResultSet;
}  // namespace db

namespace sheets {

class GridControl;
class SheetEditing;

// The editor of one table: shows the rows of strSheetQuery in a grid bound to the result set,
// lets the user edit them in place and writes the changed rows back. A layout of modGridStyles
// fills the public members and loads it; the main window then drives it through the named
// operations. It reacts by itself to becoming the active child of a QMdiArea.
class frmDataGrid : public QWidget, public WheelAware {
  Q_OBJECT

 public:
  // The command numbers of HandleMenuEvent.
  enum MenuCommand : std::int16_t {
    kCopy = 1,
    kCut = 2,
    kPaste = 3,
    kSave = 4,
    kUndo = 5,
    kTransform = 6
  };

  explicit frmDataGrid(const SheetContext& context, QWidget* parent = nullptr);
  ~frmDataGrid() override;

  // The select statement; "<paramSectionID>" in it stands for the current section key.
  QString strSheetQuery;
  // The open project connection the query runs on.
  db::Connection* rsConPtr = nullptr;
  // "Package", "Sections", "DesignDetails", "DesignLevels", "Initial", "Executed", "Outlets".
  QString strCurrentDataSheet;

  // Scrolls two rows per event: up while rotation > 0, down otherwise.
  void MouseWheel(int keys, int rotation, int x, int y) override;
  // 1 Copy, 2 Cut, 3 Paste, 4 Save, 5 Undo, 6 Transform; other numbers do nothing.
  void HandleMenuEvent(std::int16_t command);
  void SaveBeforeAdd();
  // The ID of the first row selected by its header, 0 when no row is selected.
  std::int32_t CurrentSelectedRecord();
  // Makes the row with that ID the current cell's row (column 0); nothing when there is none.
  void SeekRecord(std::int32_t id);
  void LockColumns();
  void FreezeCol();
  // Deletes the rows selected by their headers after asking; true when rows were deleted.
  bool DeleteRecord();
  void RefreshData();
  // Restricts the rows to those matching expression ("[Chainage] >= '100' AND ..."); an empty
  // expression shows all rows. A rejected expression is reported and the rows stay as they were.
  void FilterData(const QString& expression);
  void LoadFormData();

  // Opens strSheetQuery on rsConPtr and binds it to the grid (what a layout does when it loads
  // the window). Throws db::Error when the query cannot be opened.
  void load();

  // Writes every changed row in one transaction. On a failing row the rows before it are kept,
  // the user is told which row failed, and the sheet stays dirty. True when all were written.
  bool save();

  // Called after an operation changed cells (paste, cut, undo, clear, transform): saves at
  // once with AutoSave on, otherwise marks the sheet dirty.
  void cellsChanged();
  // Called when the editing of a cell of row ended with a changed value: with AutoSave on only
  // that row is written, otherwise the sheet is marked dirty.
  void rowEdited(int row);

  // Before the sheet closes: with unsaved edits, asks whether to save them ("Save Changes", Yes,
  // No, Cancel) and saves on Yes; a save that fails gives Cancel. A clean sheet asks nothing and
  // gives No. The sheet stays open and dirty after No: whoever closes it discards the edits.
  MessageAnswer askToSaveBeforeClosing();

  bool isDirty() const { return m_dirty; }
  void setDirty(bool dirty) { m_dirty = dirty; }

  // The main window's view of activation; called from the enclosing QMdiSubWindow's state
  // changes, public so that a window outside an MDI area can be driven too.
  void activateSheet();
  void deactivateSheet();
  bool isActiveSheet() const { return m_active; }

  GridControl& grid() const { return *m_grid; }
  db::ResultSet* resultSet() const { return m_resultSet.get(); }
  SheetEditing* editing() const { return m_editing.get(); }
  const SheetContext& context() const { return m_context; }

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  QString resolvedQuery() const;
  void openResultSet();
  void bindGrid();
  bool writeRows(int onlyRow);
  void releaseMainWindow();

  SheetContext m_context;
  GridControl* m_grid = nullptr;
  std::unique_ptr<db::ResultSet> m_resultSet;
  std::unique_ptr<SheetEditing> m_editing;
  SubWindowActivation m_subWindowActivation;
  bool m_dirty = false;
  bool m_active = false;
};

// The wheel rule every grid window shares: rotation > 0 moves the top row up by two (or to
// row 0 from row 1); otherwise the bottom row moves down by two, or by one when only one row
// is left below it.
void scrollGridByWheel(GridControl& grid, int rotation);

}  // namespace sheets
