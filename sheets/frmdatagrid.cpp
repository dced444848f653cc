#include "sheets/frmdatagrid.h"

#include "db/connection.h"
#include "db/resultset.h"
#include "engine/progress.h"
#include "engine/session.h"
#include "sheets/gridcontrol.h"
#include "sheets/sheetediting.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QVBoxLayout>

namespace sheets {

namespace {

constexpr GridColor kGridLineColor = RGB(130, 162, 255);
constexpr GridColor kLockedHeaderColor = RGB(255, 102, 51);
constexpr GridColor kUnlockedHeaderColor = RGB(255, 162, 130);

const QString kSectionPlaceholder = QStringLiteral("<paramSectionID>");

// The busy pointer for the length of a scope, put back however the scope is left.
class BusyCursor {
 public:
  BusyCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
  ~BusyCursor() { QGuiApplication::restoreOverrideCursor(); }
  BusyCursor(const BusyCursor&) = delete;
  BusyCursor& operator=(const BusyCursor&) = delete;
};

// A row as the delete question names it: its chainage and offset where the sheet has them,
// otherwise its first column ("Chainage 0.1, Offset -5", "Name Canal A").
QString describeRow(const GridControl& grid, int row) {
  const auto part = [&grid, row](int col) -> QString {
    const QString text = grid.Text(row, col);
    return grid.Text(-1, col) + QLatin1Char(' ') +
           (text.isEmpty() ? QStringLiteral("(empty)") : text);
  };
  QStringList parts;
  for (int col = 0; col < grid.Cols(); ++col) {
    const QString header = grid.Text(-1, col);
    if (header.compare(QLatin1String("Chainage"), Qt::CaseInsensitive) == 0 ||
        header.compare(QLatin1String("Offset"), Qt::CaseInsensitive) == 0)
      parts.append(part(col));
  }
  if (parts.isEmpty() && grid.Cols() > 0) parts.append(part(0));
  return parts.join(QStringLiteral(", "));
}

}  // namespace

void scrollGridByWheel(GridControl& grid, int rotation) {
  if (rotation > 0) {
    const int top = grid.TopRow();
    if (top >= 2)
      grid.TopRow(top - 2);
    else if (top == 1)
      grid.TopRow(0);
    return;
  }
  const int bottom = grid.BottomRow();
  const int rows = grid.Rows();
  if (bottom < rows - 2)
    grid.BottomRow(bottom + 2);
  else if (bottom < rows - 1)
    grid.BottomRow(bottom + 1);
}

frmDataGrid::frmDataGrid(const SheetContext& context, QWidget* parent)
    : QWidget(parent),
      m_context(context),
      m_subWindowActivation(
          this, [this] { activateSheet(); }, [this] { deactivateSheet(); }) {
  setObjectName(QStringLiteral("frmDataGrid"));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  m_grid = new GridControl(this);
  layout->addWidget(m_grid);
  m_resultSet = std::make_unique<db::ResultSet>();

  SheetEditing::Hooks hooks;
  hooks.cellsChanged = [this] { cellsChanged(); };
  hooks.rowEdited = [this](int row) { rowEdited(row); };
  hooks.isDirty = [this] { return m_dirty; };
  hooks.setDirty = [this](bool dirty) { m_dirty = dirty; };
  hooks.autoSave = [this] { return m_context.isAutoSave(); };
  hooks.enterRight = [this] { return m_context.isEnterRight(); };
  hooks.rowHeaderDoubleClicked = [this](int row) {
    if (m_context.link) m_context.link->DoubleClickHandler(row);
  };
  m_editing = std::make_unique<SheetEditing>(*m_grid, std::move(hooks));
}

frmDataGrid::~frmDataGrid() {
  // The editing and the grid refer to each other's signals and to the result set; take them
  // apart before the members go.
  m_editing.reset();
  m_grid->DataSource(nullptr);
  if (m_context.mouseWheel) m_context.mouseWheel->UnhookMouseWheel(this);
}

QString frmDataGrid::resolvedQuery() const {
  QString sql = strSheetQuery;
  sql.replace(kSectionPlaceholder, QString::number(m_context.currentSectionId()));
  return sql;
}

void frmDataGrid::openResultSet() {
  if (!rsConPtr) rsConPtr = m_context.currentConnection();
  if (!rsConPtr) throw db::Error(QStringLiteral("No project file is open."));
  m_resultSet->close();
  m_resultSet->open(*rsConPtr, resolvedQuery());
}

void frmDataGrid::bindGrid() {
  m_grid->DataSource(m_resultSet.get());
  m_dirty = false;
  m_editing->resetSelection();
}

void frmDataGrid::load() {
  m_grid->ColLineStyle(-1, GridControl::kLineSolid);
  m_grid->ColLineColor(-1, kGridLineColor);
  m_grid->RowLineStyle(-1, GridControl::kLineSolid);
  m_grid->RowLineColor(-1, kGridLineColor);
  m_grid->DataSource(nullptr);
  openResultSet();
  bindGrid();
}

void frmDataGrid::LoadFormData() {
  try {
    openResultSet();
  } catch (const db::Error& error) {
    m_context.warn(this, error.message());
  }
  m_grid->Refresh();
  m_dirty = false;
  m_editing->resetSelection();
}

void frmDataGrid::RefreshData() {
  if (!m_resultSet->isOpen()) return;
  try {
    m_resultSet->requery();
  } catch (const db::Error& error) {
    m_context.warn(this, error.message());
  }
  m_grid->Refresh();
  m_dirty = false;
}

void frmDataGrid::MouseWheel(int /*keys*/, int rotation, int /*x*/, int /*y*/) {
  scrollGridByWheel(*m_grid, rotation);
}

void frmDataGrid::HandleMenuEvent(std::int16_t command) {
  switch (command) {
    case kCopy:
      m_editing->copy();
      break;
    case kCut:
      m_editing->cut();
      break;
    case kPaste:
      m_editing->paste();
      break;
    case kSave:
      save();
      break;
    case kUndo:
      m_editing->undo();
      break;
    case kTransform:
      if (m_editing->rangeSelected()) m_editing->transform();
      break;
    default:
      break;
  }
}

void frmDataGrid::SaveBeforeAdd() {
  if (m_dirty) save();
}

bool frmDataGrid::save() { return writeRows(-1); }

// Writes the changed rows from onlyRow (all rows when -1) inside one transaction, a savepoint
// per row, so that a failing row leaves the rows before it written and itself untouched.
bool frmDataGrid::writeRows(int onlyRow) {
  if (!m_resultSet->isOpen()) return true;
  if (m_grid->IsEditing()) m_grid->EndEdit();
  BusyCursor busy;
  db::Connection& connection = *m_resultSet->connection();
  const int first = onlyRow >= 0 ? onlyRow : 0;
  const int last = onlyRow >= 0 ? onlyRow : m_grid->Rows() - 1;
  int row = first;
  QString failure;
  try {
    db::Transaction transaction(connection);
    for (; row <= last; ++row) {
      if (m_grid->RowForeColor(row) != 0) m_grid->RowForeColor(row, 0);
      if (!m_resultSet->rowChanged(row)) continue;
      db::Savepoint savepoint(connection, QStringLiteral("sheetrow"));
      try {
        m_grid->UpdateRow(row);
        savepoint.release();
      } catch (const db::Error& error) {
        failure = error.message();
        break;  // the savepoint rolls the row back as it goes
      }
    }
    transaction.commit();
  } catch (const db::Error& error) {
    if (failure.isEmpty()) failure = error.message();
  }
  if (!failure.isEmpty()) {
    m_dirty = true;
    m_context.warn(this, failure + QStringLiteral("\nError encountered while updating row ") +
                             QString::number(row + 1));
    return false;
  }
  // Writing one row leaves the edits of any other row, such as one refused before, unsaved.
  m_dirty = m_resultSet->anyRowChanged();
  m_grid->Refresh();
  // Saved levels, chainages or details change what the engine computes next.
  static const QStringList kLevelSheets = {QStringLiteral("Initial"), QStringLiteral("Executed"),
                                           QStringLiteral("DesignLevels"),
                                           QStringLiteral("DesignDetails")};
  if (engine::EngineSession* session = m_context.currentEngine();
      session && kLevelSheets.contains(strCurrentDataSheet))
    session->levelDataChanged();
  return true;
}

void frmDataGrid::cellsChanged() {
  if (m_context.isAutoSave())
    save();
  else
    m_dirty = true;
}

void frmDataGrid::rowEdited(int row) {
  if (m_context.isAutoSave()) {
    writeRows(row);
  } else {
    m_dirty = true;
  }
}

std::int32_t frmDataGrid::CurrentSelectedRecord() {
  if (m_grid->SelectedRowCount() < 1) return 0;
  const int row = m_grid->SelectedRow(1);
  if (row < 0 || row >= m_resultSet->rowCount()) return 0;
  return static_cast<std::int32_t>(m_resultSet->id(row));
}

void frmDataGrid::SeekRecord(std::int32_t id) {
  if (!m_resultSet->isOpen() || m_resultSet->rowCount() == 0) return;
  const int row = m_resultSet->findId(id);
  if (row >= 0) m_grid->SetCurrentCell(row, 0);
}

void frmDataGrid::LockColumns() {
  const int count = m_grid->SelectedColCount();
  if (count < 1) {
    m_context.warn(this,
                   QStringLiteral("Select a column by clicking on the column header to lock it"));
    return;
  }
  for (int i = 1; i <= count; ++i) {
    const int col = m_grid->SelectedCol(i);
    if (m_grid->ColEditable(col)) {
      m_grid->ColEditable(col, false);
      m_grid->CellBackColor(-1, col, kLockedHeaderColor);
    } else {
      m_grid->ColEditable(col, true);
      m_grid->CellStyle(-1, col, GridControl::kStyleRaised);
      m_grid->CellStyleColor(-1, col, kUnlockedHeaderColor);
    }
  }
}

void frmDataGrid::FreezeCol() {
  if (!m_grid->Frozen()) {
    m_grid->FrozenCols(1);
    m_grid->Frozen(true);
  } else {
    m_grid->Frozen(false);
  }
}

bool frmDataGrid::DeleteRecord() {
  const int count = m_grid->SelectedRowCount();
  if (count < 1) {
    m_context.warn(this,
                   QStringLiteral("No records selected. Select one or more records for deletion!"));
    return false;
  }
  std::vector<int> rows;
  for (int i = 1; i <= count; ++i) rows.push_back(m_grid->SelectedRow(i));
  QString question = QStringLiteral("Surely delete ") + QString::number(count) +
                     QStringLiteral(" record(s) from the database?\n\n");
  if (count == 1)
    question += describeRow(*m_grid, rows.front());
  else
    question += QStringLiteral("First: ") + describeRow(*m_grid, rows.front()) +
                QStringLiteral("\nLast: ") + describeRow(*m_grid, rows.back());
  if (m_context.ask(this, question, QStringLiteral("Delvane"), MessageButtons::YesNo,
                    MessageIcon::Question) != MessageAnswer::Yes)
    return false;

  BusyCursor busy;
  if (m_dirty) save();
  bool deleted = false;
  try {
    engine::EngineSession* session = m_context.currentEngine();
    engine::DelayedProgress progress(session ? &session->reporter() : nullptr,
                                     QStringLiteral("Deleting records..."), count);
    m_grid->deleteRows(rows, [&progress](int done) { progress.step(done); });
    deleted = true;
  } catch (const db::Error& error) {
    m_context.warn(this, error.message());
  }
  m_grid->ClearSelection();
  m_grid->Refresh();
  return deleted;
}

void frmDataGrid::FilterData(const QString& expression) {
  try {
    m_resultSet->setFilter(expression);
  } catch (const db::Error& error) {
    m_context.warn(this, error.message());
    return;
  }
  m_grid->Refresh();
}

void frmDataGrid::activateSheet() {
  if (m_active) return;
  m_active = true;
  if (m_context.mouseWheel) m_context.mouseWheel->HookMouseWheel(this);
  if (MainWindowLink* link = m_context.link) {
    using C = MainWindowLink::Command;
    for (C command :
         {C::mnuEdit, C::mnuViewDetail, C::mnuLockColumn, C::mnuViewFreeze, C::mnuViewRefresh})
      link->setCommandEnabled(command, true);
    link->setToolButtonVisible(QStringLiteral("Add"), true);
    link->setToolButtonVisible(QStringLiteral("Delete"), true);
    link->setToolButtonEnabled(QStringLiteral("Filter"), true);
  }
}

void frmDataGrid::deactivateSheet() {
  if (!m_active) return;
  m_active = false;
  releaseMainWindow();
}

void frmDataGrid::releaseMainWindow() {
  if (MainWindowLink* link = m_context.link) {
    using C = MainWindowLink::Command;
    link->setToolButtonVisible(QStringLiteral("Add"), false);
    link->setToolButtonVisible(QStringLiteral("Delete"), false);
    if (link->isCommandChecked(C::mnuViewDetail)) {
      link->setCommandChecked(C::mnuViewDetail, false);
      link->closeFilterWindow();
    }
    link->setCommandEnabled(C::mnuEdit, false);
    link->setCommandEnabled(C::mnuViewDetail, false);
    link->setToolButtonEnabled(QStringLiteral("Filter"), false);
    link->setCommandEnabled(C::mnuViewRefresh, false);
    link->setCommandEnabled(C::mnuLockColumn, false);
    link->setCommandEnabled(C::mnuViewFreeze, false);
  }
  if (m_context.mouseWheel) m_context.mouseWheel->UnhookMouseWheel(this);
}

MessageAnswer frmDataGrid::askToSaveBeforeClosing() {
  if (!m_dirty) return MessageAnswer::No;
  const MessageAnswer answer = m_context.ask(
      this,
      QStringLiteral("The db has changed since it was last saved. Do you wish to save changes "
                     "before closing ?"),
      QStringLiteral("Save Changes"), MessageButtons::YesNoCancel, MessageIcon::Question);
  if (answer == MessageAnswer::Yes && !save()) return MessageAnswer::Cancel;
  return answer;
}

void frmDataGrid::closeEvent(QCloseEvent* event) {
  if (askToSaveBeforeClosing() == MessageAnswer::Cancel) {
    event->ignore();
    return;
  }
  if (m_active) {
    m_active = false;
    releaseMainWindow();
  } else if (m_context.mouseWheel) {
    m_context.mouseWheel->UnhookMouseWheel(this);
  }
  m_grid->DataSource(nullptr);
  m_resultSet->close();
  event->accept();
}

}  // namespace sheets
