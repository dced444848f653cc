#include "sheets/sheetediting.h"

#include "sheets/cellnumbers.h"
#include "sheets/gridcontrol.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QMouseEvent>

#include <algorithm>
#include <optional>
#include <utility>

namespace sheets {

namespace {

constexpr GridColor kHighlightBack = RGB(0, 128, 192);
constexpr GridColor kHighlightText = RGB(255, 255, 255);
constexpr GridColor kPlainBack = RGB(255, 255, 255);
constexpr GridColor kPlainText = RGB(0, 0, 0);

const QString kTab = QStringLiteral("\t");
const QString kLineBreak = QStringLiteral("\r\n");

// Switches the grid's repainting off for the life of the guard.
class RedrawOff {
 public:
  explicit RedrawOff(GridControl& grid) : m_grid(grid) { m_grid.Redraw(false); }
  ~RedrawOff() { m_grid.Redraw(true); }
  RedrawOff(const RedrawOff&) = delete;
  RedrawOff& operator=(const RedrawOff&) = delete;

 private:
  GridControl& m_grid;
};

// The first line break in text from position from: CR LF, or a bare LF as other programs put
// on the clipboard. Returns its position and length; position -1 when there is none.
std::pair<qsizetype, qsizetype> findLineBreak(const QString& text, qsizetype from) {
  const qsizetype lf = text.indexOf(QLatin1Char('\n'), from);
  if (lf < 0) return {-1, 0};
  if (lf > from && text[lf - 1] == QLatin1Char('\r')) return {lf - 1, 2};
  return {lf, 1};
}

bool isArrowKey(int key) {
  return key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up || key == Qt::Key_Down;
}

}  // namespace

SheetEditing::SheetEditing(GridControl& grid, Hooks hooks, QObject* parent)
    : QObject(parent), m_grid(grid), m_hooks(std::move(hooks)) {
  connect(&m_grid, &GridControl::cellClicked, this, &SheetEditing::onCellClicked);
  connect(&m_grid, &GridControl::mouseDown, this,
          [this](int row, int col, Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers) {
            m_modifiers = modifiers;
            if (buttons & Qt::LeftButton) onMouseDown(row, col);
          });
  connect(
      &m_grid, &GridControl::mouseMove, this,
      [this](int row, int col, Qt::MouseButtons, Qt::KeyboardModifiers) { onMouseMove(row, col); });
  connect(&m_grid, &GridControl::mouseUp, this,
          [this](int row, int col, Qt::MouseButtons, Qt::KeyboardModifiers modifiers) {
            m_modifiers = modifiers;
            onMouseUp(row, col);
          });
  connect(&m_grid, &GridControl::currentCellChanged, this, &SheetEditing::onCurrentCellChanged);
  connect(&m_grid, &GridControl::editorOpened, this, [this](int, int) { onEditorOpened(); });
  connect(&m_grid, &GridControl::editorClosed, this, &SheetEditing::onEditorClosed);
  connect(&m_grid, &GridControl::cellValueChanged, this,
          [this](int, int) { onCellValueChanged(); });
  connect(&m_grid, &GridControl::keyDown, this, &SheetEditing::onKeyDown);
  connect(&m_grid, &GridControl::keyPress, this, &SheetEditing::onKeyPress);
  connect(&m_grid, &GridControl::doubleClicked, this, &SheetEditing::onDoubleClick);
  m_grid.columnHeader()->viewport()->installEventFilter(this);
  m_grid.rowHeader()->viewport()->installEventFilter(this);
}

SheetEditing::~SheetEditing() = default;

// ---- Selection and highlighting

SheetEditing::Ordered SheetEditing::ordered() const {
  return {std::min(m_selection.firstRow, m_selection.lastRow),
          std::max(m_selection.firstRow, m_selection.lastRow),
          std::min(m_selection.firstCol, m_selection.lastCol),
          std::max(m_selection.firstCol, m_selection.lastCol)};
}

void SheetEditing::paintRange(bool highlighted) {
  const Ordered range = ordered();
  const int lastRow = std::min(range.row1, m_grid.Rows() - 1);
  for (int row = std::max(range.row0, 0); row <= lastRow; ++row) {
    for (int col = std::max(range.col0, 0); col <= range.col1; ++col) {
      m_grid.CellBackColor(row, col, highlighted ? kHighlightBack : kPlainBack);
      m_grid.CellForeColor(row, col, highlighted ? kHighlightText : kPlainText);
    }
  }
}

void SheetEditing::highlight() { paintRange(true); }

void SheetEditing::unhighlight() { paintRange(false); }

void SheetEditing::resetSelection() {
  m_rangeSelected = false;
  m_caretMode = false;
  m_snapshotTaken = false;
  m_mouseHeld = false;
  m_dragging = false;
  m_selection = {};
}

void SheetEditing::selectRange(int firstRow, int firstCol, int lastRow, int lastCol) {
  RedrawOff redraw(m_grid);
  if (m_rangeSelected) unhighlight();
  m_selection = {firstCol, lastCol, firstRow, lastRow};
  m_rangeSelected = true;
  highlight();
}

void SheetEditing::selectByClick(int row, int col, bool extend) {
  RedrawOff redraw(m_grid);
  const int lastCol = m_grid.Cols() - 1;
  const int lastRow = m_grid.Rows() - 1;
  if (!extend) {
    if (m_rangeSelected) {
      unhighlight();
      m_rangeSelected = false;
    }
    if (col < 0) {  // row header: the whole row
      m_selection = {0, lastCol, row, row};
    } else if (row < 0) {  // column header: the whole column
      m_selection = {col, col, 0, lastRow};
    } else {
      m_selection = {col, col, row, row};
      if (m_grid.ColKind(col) == GridControl::kKindCheck && row < m_grid.Rows()) {
        try {
          m_grid.UpdateRow(row);
        } catch (...) {
          // The sheet's save reports a row that cannot be written; a click only tries early.
        }
      }
    }
    return;
  }
  if (m_rangeSelected) unhighlight();
  m_rangeSelected = true;
  m_selection.lastCol = col < 0 ? lastCol : col;
  m_selection.lastRow = row < 0 ? lastRow : row;
  highlight();
}

void SheetEditing::onMouseDown(int row, int col) {
  m_mouseHeld = true;
  m_dragging = false;
  m_clickEndsDrag = false;
  m_pressRow = row;
  m_pressCol = col;
  // A drag starts from the pressed cell, even when it was already the current cell.
  if (!shiftHeld() && row >= 0 && col >= 0) {
    if (m_rangeSelected) {
      RedrawOff redraw(m_grid);
      unhighlight();
      m_rangeSelected = false;
    }
    m_selection = {col, col, row, row};
  }
}

void SheetEditing::onMouseMove(int row, int col) {
  if (!m_mouseHeld || row < 0 || col < 0) return;
  const bool sameCorner = row == m_selection.lastRow && col == m_selection.lastCol;
  if (!m_dragging && row == m_pressRow && col == m_pressCol) return;
  if (m_dragging && sameCorner) return;
  m_dragging = true;
  selectByClick(row, col, true);
}

void SheetEditing::onMouseUp(int, int) {
  m_mouseHeld = false;
  m_clickEndsDrag = m_dragging;
  m_dragging = false;
}

void SheetEditing::onCellClicked(int row, int col) {
  if (row < 0 && col < 0) return;
  // The click that ends a drag keeps the dragged rectangle.
  if (m_clickEndsDrag) {
    m_clickEndsDrag = false;
    return;
  }
  selectByClick(row, col, shiftHeld());
}

bool SheetEditing::eventFilter(QObject* watched, QEvent* event) {
  // The headers report no mouse-down of their own; their clicks need the Shift key too.
  if (event->type() == QEvent::MouseButtonPress)
    m_modifiers = static_cast<QMouseEvent*>(event)->modifiers();
  return QObject::eventFilter(watched, event);
}

void SheetEditing::onCurrentCellChanged(int row, int col) {
  if (row >= 0 && m_hooks.isDirty && m_hooks.isDirty() && m_hooks.autoSave && m_hooks.autoSave() &&
      m_hooks.rowEdited)
    m_hooks.rowEdited(row);
  if (shiftHeld() || m_dragging) return;
  if (m_rangeSelected) {  // the collapsed selection is not highlighted
    RedrawOff redraw(m_grid);
    unhighlight();
    m_rangeSelected = false;
  }
  const int r = std::max(row, 0);
  const int c = std::max(col, 0);
  m_selection = {c, c, r, r};
}

bool SheetEditing::shiftHeld() const { return m_modifiers.testFlag(Qt::ShiftModifier); }

// ---- Undo

void SheetEditing::pushUndo(const QString& text, int col, int row) {
  m_previousUndo = m_undo;
  m_undo = {text, col, row, true};
}

void SheetEditing::takeUndoSnapshot() {
  pushUndo(m_grid.Text(m_grid.Row(), m_grid.Col()), m_grid.Col(), m_grid.Row());
}

void SheetEditing::notifyCellsChanged() {
  if (m_hooks.cellsChanged) m_hooks.cellsChanged();
}

void SheetEditing::undo() {
  if (m_hooks.readOnly) return;
  UndoRecord* record = m_undo.valid ? &m_undo : (m_previousUndo.valid ? &m_previousUndo : nullptr);
  if (!record) return;
  record->valid = false;
  {
    RedrawOff redraw(m_grid);
    m_grid.SetCurrentCell(record->row, record->col);
    pasteAt(record->text, record->row, record->col);
  }
  notifyCellsChanged();
}

// ---- Clipboard

void SheetEditing::copyCutClear(ClipMode mode) {
  if (m_hooks.readOnly && mode != ClipMode::Copy) return;
  const Ordered range = ordered();
  QString collected;
  {
    std::optional<RedrawOff> redraw;
    if (mode != ClipMode::Copy) redraw.emplace(m_grid);
    for (int row = range.row0; row <= range.row1; ++row) {
      for (int col = range.col0; col <= range.col1; ++col) {
        collected += m_grid.Text(row, col);
        if (mode != ClipMode::Copy) m_grid.Text(row, col, QString());
        if (col < range.col1) collected += kTab;
      }
      if (row < range.row1) collected += kLineBreak;
    }
  }
  if (mode != ClipMode::Clear) {
    QClipboard* clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    clipboard->setText(collected);
  }
  if (mode != ClipMode::Copy) {
    pushUndo(collected, range.col0, range.row0);
    notifyCellsChanged();
  }
}

void SheetEditing::copy() { copyCutClear(ClipMode::Copy); }

void SheetEditing::cut() { copyCutClear(ClipMode::Cut); }

void SheetEditing::paste() {
  if (m_hooks.readOnly) return;
  const int row = m_grid.Row();
  const int col = m_grid.Col();
  if (row < 0 || col < 0) return;
  {
    RedrawOff redraw(m_grid);
    pushUndo(QString(), col, row);
    m_undo.text = pasteAt(QGuiApplication::clipboard()->text(), row, col);
  }
  notifyCellsChanged();
}

QString SheetEditing::pasteAtCurrentCell(const QString& text) {
  return pasteAt(text, m_grid.Row(), m_grid.Col());
}

QString SheetEditing::pasteAt(const QString& text, int startRow, int startCol) {
  const int rows = m_grid.Rows();
  const int cols = m_grid.Cols();
  QString collected;
  int row = startRow;
  int col = startCol;
  // Writes one field and collects the text it replaces, followed by separator; a field
  // outside the grid is dropped.
  auto put = [&](QStringView field, const QString& separator) {
    if (row < 0 || col < 0 || row >= rows) return;
    if (col >= cols) {
      // The row's last fields fall beyond the last column. Its collected cells still end the
      // row, or undo would put the next row's cells on this one.
      if (separator == kLineBreak && collected.endsWith(kTab)) {
        collected.chop(1);
        collected += kLineBreak;
      }
      return;
    }
    collected += m_grid.Text(row, col);
    collected += separator;
    m_grid.Text(row, col, field.toString());
  };
  qsizetype at = 0;
  const qsizetype end = text.size();
  while (at < end) {
    const qsizetype tab = text.indexOf(QLatin1Char('\t'), at);
    const auto [lineBreak, breakLength] = findLineBreak(text, at);
    if (tab < 0 && lineBreak < 0) {  // the last field
      put(QStringView(text).mid(at), kLineBreak);
      break;
    }
    if (tab >= 0 && (lineBreak < 0 || tab < lineBreak)) {
      put(QStringView(text).mid(at, tab - at), kTab);
      ++col;
      at = tab + 1;
    } else {
      put(QStringView(text).mid(at, lineBreak - at), kLineBreak);
      ++row;
      col = startCol;
      at = lineBreak + breakLength;
    }
  }
  return collected;
}

// ---- Transform

void SheetEditing::transform() {
  if (!m_rangeSelected) return;
  const TransformRequest request =
      m_hooks.askTransform ? m_hooks.askTransform() : askTransform(m_grid.window());
  applyTransform(request);
}

void SheetEditing::applyTransform(const TransformRequest& request) {
  if (m_hooks.readOnly) return;
  if (!m_rangeSelected || request.operation == TransformRequest::Cancelled) return;
  const Ordered range = ordered();
  const double operand = request.value;  // widened from the single the user gave
  const QString setText = generalText7(request.value);
  QString collected;
  {
    RedrawOff redraw(m_grid);
    for (int row = range.row0; row <= range.row1; ++row) {
      for (int col = range.col0; col <= range.col1; ++col) {
        const QString old = m_grid.Text(row, col);
        collected += old;
        if (col < range.col1) collected += kTab;
        switch (request.operation) {
          case TransformRequest::Set:
            m_grid.Text(row, col, setText);
            break;
          case TransformRequest::Add:
            m_grid.Text(row, col, generalText15(leadingNumber(old) + operand));
            break;
          case TransformRequest::Subtract:
            m_grid.Text(row, col, generalText15(leadingNumber(old) - operand));
            break;
          case TransformRequest::Multiply:
            m_grid.Text(row, col, generalText15(leadingNumber(old) * operand));
            break;
          default:
            break;
        }
      }
      collected += kLineBreak;
    }
    pushUndo(collected, range.col0, range.row0);
  }
  notifyCellsChanged();
}

// ---- Editor

void SheetEditing::onEditorOpened() {
  if (m_snapshotTaken)
    m_snapshotTaken = false;
  else
    takeUndoSnapshot();
}

void SheetEditing::onEditorClosed(int row, int col) {
  m_grid.CellState(row, col, GridControl::kCellNormal);
  m_caretMode = false;
  if (m_hooks.autoSave && m_hooks.autoSave() && m_hooks.isDirty && m_hooks.isDirty() &&
      m_hooks.rowEdited)
    m_hooks.rowEdited(row);
}

void SheetEditing::onCellValueChanged() { setDirty(); }

void SheetEditing::setDirty() {
  if (m_hooks.setDirty) m_hooks.setDirty(true);
}

void SheetEditing::openEditor(bool caretMode) {
  if (m_hooks.readOnly) return;
  const int row = m_grid.Row();
  const int col = m_grid.Col();
  m_grid.CellState(row, col, GridControl::kCellEditing);
  takeUndoSnapshot();
  m_snapshotTaken = true;  // the editor opening below must not take a second one
  m_grid.BeginEdit();
  if (caretMode) {
    m_caretMode = true;
    m_grid.CellSelStart(static_cast<int>(editorText().size()));
    m_grid.CellSelLength(0);
  }
}

QString SheetEditing::editorText() const {
  if (const auto* line = qobject_cast<const QLineEdit*>(m_grid.editor())) return line->text();
  return m_grid.Text(m_grid.Row(), m_grid.Col());
}

void SheetEditing::onKeyPress(QChar character, bool& handled) {
  if (m_hooks.readOnly) return;
  const int row = m_grid.Row();
  const int col = m_grid.Col();
  if (row < 0 || col < 0 || m_grid.IsEditing()) return;
  if (character.unicode() <= 30) return;
  handled = true;
  if (!m_grid.ColEditable(col)) return;
  if (m_rangeSelected) {
    unhighlight();
    m_rangeSelected = false;
  }
  m_grid.CellState(row, col, GridControl::kCellEditing);
  setDirty();
  takeUndoSnapshot();
  m_snapshotTaken = true;
  m_grid.Text(row, col, QString(character));
  m_grid.BeginEdit();
  m_grid.CellSelStart(1);
  m_grid.CellSelLength(0);
}

void SheetEditing::onDoubleClick(int row, int col) {
  if (row >= 0 && col >= 0) {
    if (m_hooks.readOnly) return;
    m_grid.CellState(row, col, GridControl::kCellEditing);
    m_grid.BeginEdit();
  } else if (row >= 0 && col < 0 && m_hooks.rowHeaderDoubleClicked) {
    m_hooks.rowHeaderDoubleClicked(row);
  }
}

// ---- Keys

void SheetEditing::onKeyDown(int key, Qt::KeyboardModifiers modifiers, bool& handled) {
  m_modifiers = modifiers;
  const int row = m_grid.Row();
  const int col = m_grid.Col();
  if (row < 0 || col < 0 || key == Qt::Key_Shift) return;
  const bool shift = modifiers.testFlag(Qt::ShiftModifier);
  const bool ctrl = modifiers.testFlag(Qt::ControlModifier);
  const bool alt = modifiers.testFlag(Qt::AltModifier);
  const bool editing = m_grid.IsEditing();

  if (key != Qt::Key_Delete && !shift && !ctrl && !alt && m_rangeSelected) {
    RedrawOff redraw(m_grid);
    unhighlight();
    m_rangeSelected = false;
  }

  if (m_caretMode && editing && (key == Qt::Key_Left || key == Qt::Key_Right)) {
    const int caret = m_grid.CellSelStart();
    const int length = static_cast<int>(editorText().size());
    if (key == Qt::Key_Right && caret < length) {
      m_grid.CellSelStart(caret + 1);
      m_grid.CellSelLength(0);
      handled = true;
    } else if (key == Qt::Key_Left && caret > 0) {
      m_grid.CellSelStart(caret - 1);
      m_grid.CellSelLength(0);
      handled = true;
    }
    return;
  }

  // The table view would copy the current cell alone: the highlighted block goes instead.
  if (ctrl && !editing && key == Qt::Key_C) {
    copy();
    handled = true;
    return;
  }

  if (shift && (isArrowKey(key) || key == Qt::Key_Home || key == Qt::Key_End)) {
    extendByKey(key);
    handled = true;
    return;
  }

  // An edit opened by typing or a double-click is left with the arrow keys.
  if (editing && isArrowKey(key) && !ctrl && !alt) {
    int r = row;
    int c = col;
    if (key == Qt::Key_Left) c = std::max(col - 1, 0);
    if (key == Qt::Key_Right) c = std::min(col + 1, m_grid.Cols() - 1);
    if (key == Qt::Key_Up) r = std::max(row - 1, 0);
    if (key == Qt::Key_Down) r = std::min(row + 1, m_grid.Rows() - 1);
    m_grid.EndEdit();
    m_grid.SetCurrentCell(r, c);
    handled = true;
    return;
  }

  switch (key) {
    case Qt::Key_PageUp:
      if (m_caretMode || shift || ctrl) return;
      if (m_grid.TopRow() != 0) m_grid.BottomRow(m_grid.TopRow());
      handled = true;
      return;
    case Qt::Key_PageDown:
      if (m_caretMode || shift || ctrl) return;
      if (m_grid.BottomRow() != m_grid.Rows() - 1) m_grid.TopRow(m_grid.BottomRow());
      handled = true;
      return;
    case Qt::Key_Home:
      if (m_caretMode) return;
      if (ctrl)
        m_grid.SetCurrentCell(0, 0);
      else if (col != 0)
        m_grid.SetCurrentCell(row, 0);
      handled = true;
      return;
    case Qt::Key_End:
      if (m_caretMode) return;
      if (ctrl)
        m_grid.SetCurrentCell(m_grid.Rows() - 1, m_grid.Cols() - 1);
      else
        m_grid.SetCurrentCell(row, m_grid.Cols() - 1);
      handled = true;
      return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      enterKey();
      handled = true;
      return;
    case Qt::Key_Escape:
      if (!editing) return;
      escapeEdit();
      handled = true;
      return;
    case Qt::Key_F2:
      if (editing) return;
      openEditor(true);
      handled = true;
      return;
    case Qt::Key_Delete:
      if (editing || !m_grid.ColEditable(col) || m_hooks.readOnly) return;
      handled = true;
      if (m_rangeSelected) {
        copyCutClear(ClipMode::Clear);
        return;
      }
      takeUndoSnapshot();
      m_grid.Text(row, col, QString());
      notifyCellsChanged();
      return;
    default:
      return;
  }
}

void SheetEditing::extendByKey(int key) {
  RedrawOff redraw(m_grid);
  if (!m_rangeSelected) {
    const int r = m_grid.Row();
    const int c = m_grid.Col();
    m_selection = {c, c, r, r};
  } else {
    unhighlight();
  }
  const int lastCol = m_grid.Cols() - 1;
  const int lastRow = m_grid.Rows() - 1;
  int farCol = m_selection.lastCol;
  int farRow = m_selection.lastRow;
  switch (key) {
    case Qt::Key_Left:
      farCol = std::max(farCol - 1, 0);
      break;
    case Qt::Key_Right:
      farCol = std::min(farCol + 1, lastCol);
      break;
    case Qt::Key_Up:
      farRow = std::max(farRow - 1, 0);
      break;
    case Qt::Key_Down:
      farRow = std::min(farRow + 1, lastRow);
      break;
    case Qt::Key_Home:
      farCol = 0;
      break;
    case Qt::Key_End:
      farCol = lastCol;
      break;
    default:
      break;
  }
  m_selection.lastCol = farCol;
  m_selection.lastRow = farRow;
  m_rangeSelected = true;
  highlight();
}

void SheetEditing::enterKey() {
  if (m_grid.IsEditing()) m_grid.EndEdit();
  const int row = m_grid.Row();
  const int col = m_grid.Col();
  const int rows = m_grid.Rows();
  const int cols = m_grid.Cols();
  if (!(m_hooks.enterRight && m_hooks.enterRight())) {
    if (row < rows - 1) m_grid.SetCurrentCell(row + 1, col);
    return;
  }
  // The next editable cell to the right, wrapping to the start of the next row.
  int r = row;
  int c = col;
  for (;;) {
    if (++c >= cols) {
      c = 0;
      if (++r >= rows) return;  // past the last cell: the edit only ends
    }
    if (m_grid.ColEditable(c)) break;
    if (r == row && c == col) return;
  }
  m_grid.SetCurrentCell(r, c);
}

void SheetEditing::escapeEdit() {
  const UndoRecord snapshot = m_undo;
  const int row = m_grid.Row();
  const int col = m_grid.Col();
  // Put the former text into the editor as well, so closing it keeps that text.
  if (auto* line = qobject_cast<QLineEdit*>(m_grid.editor())) line->setText(snapshot.text);
  m_undo.valid = false;
  m_caretMode = false;
  m_grid.EndEdit();
  m_grid.Text(snapshot.row, snapshot.col, snapshot.text);
  m_grid.CellState(row, col, GridControl::kCellNormal);
}

}  // namespace sheets
