#include "sheets/gridcontrol.h"

#include "db/resultset.h"
#include "drawing/paintersurface.h"
#include "sheets/gridmodel.h"

#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QToolTip>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <algorithm>

namespace sheets {

namespace {

constexpr int kRowHeaderWidth = 16;
constexpr int kMinColumnWidth = 4;
// Header-selected rows and columns are shaded with this over their own colours.
const QColor kSelectionShade(0, 0, 128, 60);

Qt::PenStyle penStyle(int lineStyle) {
  switch (lineStyle) {
    case GridControl::kLineDotted:
      return Qt::DotLine;
    case GridControl::kLineDashed:
      return Qt::DashLine;
    case GridControl::kLineSolid:
      return Qt::SolidLine;
    default:
      return Qt::NoPen;
  }
}

bool contains(const std::vector<int>& sorted, int value) {
  return std::binary_search(sorted.begin(), sorted.end(), value);
}

// Header selection after a click on section: alone, Ctrl toggles, Shift extends from anchor.
void selectSection(std::vector<int>& selection, int& anchor, int section,
                   Qt::KeyboardModifiers modifiers) {
  if ((modifiers & Qt::ShiftModifier) && anchor >= 0) {
    if (!(modifiers & Qt::ControlModifier)) selection.clear();
    for (int s = std::min(anchor, section); s <= std::max(anchor, section); ++s)
      selection.push_back(s);
    std::sort(selection.begin(), selection.end());
    selection.erase(std::unique(selection.begin(), selection.end()), selection.end());
    return;
  }
  anchor = section;
  if (modifiers & Qt::ControlModifier) {
    const auto it = std::lower_bound(selection.begin(), selection.end(), section);
    if (it != selection.end() && *it == section)
      selection.erase(it);
    else
      selection.insert(it, section);
    return;
  }
  selection.assign(1, section);
}

// Shows the whole text of a cell (or header section) that its width cuts off, as a tooltip.
// True when the event was a tooltip request, handled either way.
bool showClippedText(QEvent* event, QWidget* over, const QString& text, const QRect& cell,
                     const QFont& font) {
  if (event->type() != QEvent::ToolTip) return false;
  const auto* help = static_cast<QHelpEvent*>(event);
  constexpr int kPadding = 8;  // the cell's own margins
  if (!text.isEmpty() && QFontMetrics(font).horizontalAdvance(text) + kPadding > cell.width())
    QToolTip::showText(help->globalPos(), text, over, cell);
  else
    QToolTip::hideText();
  return true;
}

}  // namespace

// A header that reports clicks on its sections to the grid instead of selecting through the
// view, and shades the sections of the header selection. Presses on a column's edge still
// resize it.
class GridHeader : public QHeaderView {
 public:
  GridHeader(Qt::Orientation orientation, GridControl* grid, QWidget* parent)
      : QHeaderView(orientation, parent), m_grid(grid) {}

  // Between a press on a column's edge and the release: widths set now are the user's own.
  bool resizingByUser() const { return m_byUser; }

 protected:
  void mousePressEvent(QMouseEvent* event) override {
    const int section = sectionAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && section >= 0) {
      m_grid->headerPressed(orientation(), section, event->modifiers());
      event->accept();
      return;
    }
    m_byUser = event->button() == Qt::LeftButton;
    QHeaderView::mousePressEvent(event);
  }

  void mouseReleaseEvent(QMouseEvent* event) override {
    QHeaderView::mouseReleaseEvent(event);
    m_byUser = false;
  }

  void mouseDoubleClickEvent(QMouseEvent* event) override {
    const int section = sectionAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && section >= 0) {
      m_grid->headerDoubleClicked(orientation(), section);
      event->accept();
      return;
    }
    // On a column's edge: the table view fits the column to its contents.
    m_byUser = event->button() == Qt::LeftButton;
    QHeaderView::mouseDoubleClickEvent(event);
  }

  void paintSection(QPainter* painter, const QRect& rect, int section) const override {
    QHeaderView::paintSection(painter, rect, section);
    const bool selected = orientation() == Qt::Horizontal ? m_grid->isColSelected(section)
                                                          : m_grid->isRowSelected(section);
    if (selected) painter->fillRect(rect, kSelectionShade);
  }

  bool viewportEvent(QEvent* event) override {
    if (event->type() == QEvent::ToolTip && orientation() == Qt::Horizontal) {
      const int section = logicalIndexAt(static_cast<QHelpEvent*>(event)->pos());
      if (section >= 0) {
        const QRect rect(sectionViewportPosition(section), 0, sectionSize(section), height());
        // A caption wraps onto the lines the header's height allows; one that needs more
        // lines than that is cut off.
        const QFontMetrics metrics(font());
        const QString text = m_grid->Text(-1, section);
        const QRect needed = metrics.boundingRect(rect.adjusted(4, 0, -4, 0),
                                                  Qt::AlignCenter | Qt::TextWordWrap, text);
        if (needed.height() > rect.height() || needed.width() > rect.width() - 8)
          QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text, this, rect);
        else
          QToolTip::hideText();
        return true;
      }
    }
    return QHeaderView::viewportEvent(event);
  }

 private:
  // The section under pos, or -1 when pos is off the sections or on a resize handle.
  int sectionAt(const QPoint& pos) const {
    const int along = orientation() == Qt::Horizontal ? pos.x() : pos.y();
    const int section = logicalIndexAt(along);
    if (section < 0) return -1;
    if (orientation() == Qt::Horizontal && sectionResizeMode(section) == QHeaderView::Interactive) {
      const int grip = style()->pixelMetric(QStyle::PM_HeaderGripMargin, nullptr, this);
      const int start = sectionViewportPosition(section);
      const int end = start + sectionSize(section);
      if ((along - start < grip && visualIndex(section) > 0) || end - along <= grip) return -1;
    }
    return section;
  }

  GridControl* m_grid;
  bool m_byUser = false;
};

// Paints cells with the grid's lines and header-selection shading, and makes the in-cell
// editors; keys typed into an open editor reach the grid's keyDown first.
class GridDelegate : public QStyledItemDelegate {
 public:
  explicit GridDelegate(GridControl* grid) : QStyledItemDelegate(grid), m_grid(grid) {}

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override {
    QStyledItemDelegate::paint(painter, option, index);
    const int row = index.row();
    const int col = index.column();
    const QRect& r = option.rect;
    if (m_grid->isRowSelected(row) || m_grid->isColSelected(col))
      painter->fillRect(r, kSelectionShade);
    const GridModel::Column& column = m_grid->m_model->column(col);
    if (column.lineStyle != GridControl::kLineNone) {
      painter->setPen(QPen(drawing::colourOf(column.lineColor), 0, penStyle(column.lineStyle)));
      painter->drawLine(r.topRight(), r.bottomRight());
    }
    const GridModel::RowLine line = m_grid->m_model->rowLine(row);
    if (line.style != GridControl::kLineNone) {
      painter->setPen(QPen(drawing::colourOf(line.color), 0, penStyle(line.style)));
      painter->drawLine(r.bottomLeft(), r.bottomRight());
    }
  }

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&,
                        const QModelIndex& index) const override {
    auto* editor = new QLineEdit(parent);
    editor->setFrame(false);
    const int align = m_grid->m_model->column(index.column()).align;
    editor->setAlignment(align == GridControl::kAlignRight    ? Qt::AlignRight
                         : align == GridControl::kAlignCenter ? Qt::AlignHCenter
                                                              : Qt::AlignLeft);
    m_grid->editorWasCreated(editor, index.row(), index.column());
    return editor;
  }

  void setModelData(QWidget* editor, QAbstractItemModel*, const QModelIndex& index) const override {
    const auto* lineEdit = qobject_cast<QLineEdit*>(editor);
    if (!lineEdit) return;
    const QString text = lineEdit->text();
    if (text == m_grid->Text(index.row(), index.column())) return;
    m_grid->Text(index.row(), index.column(), text);
    emit m_grid->cellValueChanged(index.row(), index.column());
  }

 protected:
  bool eventFilter(QObject* object, QEvent* event) override {
    if (event->type() == QEvent::KeyPress) {
      const auto* key = static_cast<QKeyEvent*>(event);
      if (m_grid->deliverKey(key->key(), key->modifiers())) return true;
    }
    return QStyledItemDelegate::eventFilter(object, event);
  }

 private:
  GridControl* m_grid;
};

// The table view inside the grid: the main one, or the overlay that shows the frozen columns.
// It turns the view's own mouse, key, current-cell and editor events into the grid's.
class GridView : public QTableView {
 public:
  GridView(GridControl* grid, bool frozen, QWidget* parent)
      : QTableView(parent), m_grid(grid), m_frozen(frozen) {
    setHorizontalHeader(new GridHeader(Qt::Horizontal, grid, this));
    setVerticalHeader(new GridHeader(Qt::Vertical, grid, this));
    setModel(grid->m_model);
    setItemDelegate(grid->m_delegate);
    setSelectionMode(QAbstractItemView::NoSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setShowGrid(false);
    setWordWrap(false);
    setCornerButtonEnabled(false);
    setMouseTracking(true);
    setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    verticalHeader()->setFixedWidth(kRowHeaderWidth);
    horizontalHeader()->setDefaultAlignment(
        Qt::Alignment::fromInt(static_cast<int>(Qt::AlignCenter) | Qt::TextWordWrap));
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setMinimumSectionSize(kMinColumnWidth);
  }

  // Commits the open editor's text and closes it.
  void finishEdit(QWidget* editor) {
    commitData(editor);
    closeEditor(editor, QAbstractItemDelegate::NoHint);
  }

  void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override {
    if (m_frozen || !index.isValid() || m_grid->frozenWidth() == 0) {
      QTableView::scrollTo(index, hint);
      return;
    }
    // A frozen cell is always in view sideways; any other must not hide behind the overlay.
    const int horizontal = horizontalScrollBar()->value();
    QTableView::scrollTo(index, hint);
    if (m_grid->isFrozenColumn(index.column())) {
      horizontalScrollBar()->setValue(horizontal);
      return;
    }
    const int left = visualRect(index).left();
    if (left < m_grid->frozenWidth())
      horizontalScrollBar()->setValue(horizontalScrollBar()->value() + left -
                                      m_grid->frozenWidth());
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    if (m_grid->deliverKey(event->key(), event->modifiers())) {
      event->accept();
      return;
    }
    const QString text = event->text();
    if (!text.isEmpty() && text.at(0).unicode() > 30 && text.at(0).isPrint() &&
        !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier))) {
      bool handled = false;
      emit m_grid->keyPress(text.at(0), handled);
      if (handled) {
        event->accept();
        return;
      }
    }
    QTableView::keyPressEvent(event);
  }

  void keyboardSearch(const QString&) override {}

  // The window holding the grid scrolls it by its own wheel rule (two rows a notch); the view
  // scrolling as well would double every step. Sideways wheels still scroll the columns.
  void wheelEvent(QWheelEvent* event) override {
    if (event->angleDelta().x() != 0 && event->angleDelta().y() == 0) {
      QTableView::wheelEvent(event);
      return;
    }
    event->accept();
  }

  void mousePressEvent(QMouseEvent* event) override {
    const QModelIndex index = indexAt(event->position().toPoint());
    m_pressed = index;
    // Choosing a cell ends a choice of rows or columns made on the headers, so that a command
    // never acts on rows the user has since moved away from.
    if (index.isValid() && (m_grid->SelectedRowCount() > 0 || m_grid->SelectedColCount() > 0))
      m_grid->ClearSelection();
    emit m_grid->mouseDown(rowOf(index), colOf(index), event->buttons(), event->modifiers());
    QTableView::mousePressEvent(event);
  }

  void mouseMoveEvent(QMouseEvent* event) override {
    const QModelIndex index = indexAt(event->position().toPoint());
    emit m_grid->mouseMove(rowOf(index), colOf(index), event->buttons(), event->modifiers());
    QTableView::mouseMoveEvent(event);
  }

  void mouseReleaseEvent(QMouseEvent* event) override {
    const QModelIndex index = indexAt(event->position().toPoint());
    QTableView::mouseReleaseEvent(event);
    emit m_grid->mouseUp(rowOf(index), colOf(index), event->buttons(), event->modifiers());
    if (event->button() == Qt::LeftButton && index.isValid() && index == m_pressed)
      emit m_grid->cellClicked(index.row(), index.column());
    m_pressed = QModelIndex();
  }

  void mouseDoubleClickEvent(QMouseEvent* event) override {
    const QModelIndex index = indexAt(event->position().toPoint());
    QTableView::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton && index.isValid())
      emit m_grid->doubleClicked(index.row(), index.column());
  }

  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override {
    QTableView::currentChanged(current, previous);
    if (!m_frozen) m_grid->currentWasChanged(rowOf(current), colOf(current));
  }

  void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override {
    // Moving on to the next cell is the sheet's business (Enter, Tab through keyDown).
    if (hint == QAbstractItemDelegate::EditNextItem ||
        hint == QAbstractItemDelegate::EditPreviousItem)
      hint = QAbstractItemDelegate::NoHint;
    QTableView::closeEditor(editor, hint);
    m_grid->editorWasClosed(editor);
  }

  bool viewportEvent(QEvent* event) override {
    if (event->type() == QEvent::ToolTip) {
      const QModelIndex index = indexAt(static_cast<QHelpEvent*>(event)->pos());
      if (index.isValid()) {
        const QVariant bold = index.data(Qt::FontRole);
        return showClippedText(event, viewport(), index.data(Qt::DisplayRole).toString(),
                               visualRect(index), bold.isValid() ? bold.value<QFont>() : font());
      }
    }
    return QTableView::viewportEvent(event);
  }

  void resizeEvent(QResizeEvent* event) override {
    QTableView::resizeEvent(event);
    if (!m_frozen) {
      m_grid->applyPercentWidths();
      m_grid->updateFrozenGeometry();
    }
  }

 private:
  static int rowOf(const QModelIndex& index) { return index.isValid() ? index.row() : -1; }
  static int colOf(const QModelIndex& index) { return index.isValid() ? index.column() : -1; }

  GridControl* m_grid;
  bool m_frozen;
  QPersistentModelIndex m_pressed;
};

// ---- GridControl ---------------------------------------------------------------------------

GridControl::GridControl(QWidget* parent) : QWidget(parent) {
  m_model = new GridModel(this);
  m_delegate = new GridDelegate(this);
  m_view = new GridView(this, false, this);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(m_view);
  setFocusProxy(m_view);
  connect(m_view->horizontalHeader(), &QHeaderView::sectionResized, this,
          [this](int section, int, int size) {
            // A width the user set by hand stays; it no longer follows the grid's width.
            if (static_cast<GridHeader*>(m_view->horizontalHeader())->resizingByUser())
              m_model->column(section).percent = 0;
            if (m_frozenView && m_frozenView->columnWidth(section) != size)
              m_frozenView->setColumnWidth(section, size);
            updateFrozenGeometry();
          });
  connect(m_view->horizontalHeader(), &QHeaderView::geometriesChanged, this,
          [this] { updateFrozenGeometry(); });
}

GridControl::~GridControl() {
  // Tearing down the children hides them, which resizes the header; the frozen view must not
  // follow it into a grid that is already half destroyed.
  m_view->horizontalHeader()->disconnect(this);
}

void GridControl::forEachView(const std::function<void(GridView*)>& action) const {
  action(m_view);
  if (m_frozenView) action(m_frozenView);
}

void GridControl::repaintAll() {
  if (!m_redraw) return;
  forEachView([](GridView* view) {
    view->viewport()->update();
    view->horizontalHeader()->viewport()->update();
    view->verticalHeader()->viewport()->update();
  });
}

// ---- Shape and contents

int GridControl::Cols() const { return m_model->columnCount(); }

void GridControl::Cols(int count) {
  m_model->setColumnCount(count);
  updateFrozenView();
  applyPercentWidths();
}

int GridControl::Rows() const { return m_model->rowCount(); }

QString GridControl::Text(int row, int col) const { return m_model->text(row, col); }

void GridControl::Text(int row, int col, const QString& text) { m_model->setText(row, col, text); }

void GridControl::DeleteCols(int first, int count) {
  if (first < 0 || count <= 0 || first >= Cols()) return;
  const int last = std::min(first + count, Cols());
  std::erase_if(m_selectedCols, [first](int c) { return c >= first; });
  m_model->removeColumns(first, last - first);
  updateFrozenView();
}

void GridControl::SetRowCount(int count) {
  if (m_model->resultSet()) return;
  if (IsEditing() && m_editRow >= count) EndEdit();
  m_model->setRows(count);
  std::erase_if(m_selectedRows, [count](int r) { return r >= count; });
}

// ---- Binding

void GridControl::DataSource(db::ResultSet* resultSet) {
  if (IsEditing()) EndEdit();
  m_selectedRows.clear();
  m_selectedCols.clear();
  m_quietCurrent = true;
  m_model->bind(resultSet);
  m_quietCurrent = false;
  updateFrozenView();
  applyPercentWidths();
}

db::ResultSet* GridControl::DataSource() const { return m_model->resultSet(); }

void GridControl::UpdateRow(int row) { m_model->updateRow(row); }

void GridControl::DeleteRow(int row) { deleteRows({row}); }

void GridControl::deleteRows(std::vector<int> rows, const std::function<void(int done)>& onRecord) {
  std::erase_if(rows, [this](int row) { return row < 0 || row >= Rows(); });
  if (rows.empty()) return;
  std::sort(rows.begin(), rows.end());
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  if (IsEditing() && std::binary_search(rows.begin(), rows.end(), m_editRow)) EndEdit();
  m_quietCurrent = true;
  try {
    m_model->deleteRows(rows, onRecord);
  } catch (...) {
    m_quietCurrent = false;
    throw;
  }
  m_quietCurrent = false;
  std::vector<int> selected;
  for (int r : m_selectedRows) {
    const auto it = std::lower_bound(rows.begin(), rows.end(), r);
    if (it == rows.end() || *it != r) selected.push_back(r - static_cast<int>(it - rows.begin()));
  }
  m_selectedRows = std::move(selected);
}

void GridControl::Refresh() {
  const int row = Row();
  const int col = Col();
  const int top = TopRow();
  m_quietCurrent = true;
  m_model->reread();
  if (row >= 0 && Rows() > 0 && Cols() > 0)
    SetCurrentCell(std::min(row, Rows() - 1), std::clamp(col, 0, Cols() - 1));
  m_quietCurrent = false;
  std::erase_if(m_selectedRows, [this](int r) { return r >= Rows(); });
  TopRow(top);
  repaintAll();
}

// ---- Repainting

bool GridControl::Redraw() const { return m_redraw; }

void GridControl::Redraw(bool on) {
  if (on == m_redraw) return;
  m_redraw = on;
  m_model->setAnnouncing(on);
  setUpdatesEnabled(on);
  if (on) repaintAll();
}

// ---- Columns

int GridControl::ColWidth(int col) const {
  if (col < 0 || col >= Cols()) return 0;
  return m_view->columnWidth(col);
}

void GridControl::ColWidth(int col, int pixels) {
  if (col < -1 || col >= Cols() || pixels < 0) return;
  const int first = col < 0 ? 0 : col;
  const int last = col < 0 ? Cols() - 1 : col;
  for (int c = first; c <= last; ++c) {
    m_model->column(c).percent = 0;
    forEachView([c, pixels](GridView* view) { view->setColumnWidth(c, pixels); });
  }
  updateFrozenGeometry();
}

void GridControl::ColWidthPercent(int col, int percent) {
  if (col < -1 || col >= Cols() || percent < 0) return;
  const int first = col < 0 ? 0 : col;
  const int last = col < 0 ? Cols() - 1 : col;
  for (int c = first; c <= last; ++c) m_model->column(c).percent = percent;
  applyPercentWidths();
}

void GridControl::applyPercentWidths() {
  const int width = m_view->viewport()->width();
  for (int c = 0; c < Cols(); ++c) {
    const int percent = m_model->column(c).percent;
    if (percent <= 0) continue;
    const int pixels = std::max(kMinColumnWidth, width * percent / 100);
    forEachView([c, pixels](GridView* view) {
      if (view->columnWidth(c) != pixels) view->setColumnWidth(c, pixels);
    });
  }
  updateFrozenGeometry();
}

int GridControl::ColTextAlign(int col) const {
  return col >= 0 && col < Cols() ? m_model->column(col).align : kAlignLeft;
}

void GridControl::ColTextAlign(int col, int align) {
  if (col < -1 || col >= Cols()) return;
  if (col < 0) {
    for (int c = 0; c < Cols(); ++c) m_model->column(c).align = align;
  } else {
    m_model->column(col).align = align;
  }
  m_model->cellChanged(GridModel::kAllRows, -1);
}

bool GridControl::ColEditable(int col) const {
  return col >= 0 && col < Cols() && m_model->column(col).editable;
}

void GridControl::ColEditable(int col, bool editable) {
  if (col < -1 || col >= Cols()) return;
  if (col < 0) {
    for (int c = 0; c < Cols(); ++c) m_model->column(c).editable = editable;
  } else {
    m_model->column(col).editable = editable;
  }
}

int GridControl::ColKind(int col) const {
  return col >= 0 && col < Cols() ? m_model->column(col).kind : kKindText;
}

void GridControl::ColKind(int col, int kind) {
  if (col < 0 || col >= Cols()) return;
  m_model->column(col).kind = kind;
}

int GridControl::ColLineStyle(int col) const {
  return col >= 0 && col < Cols() ? m_model->column(col).lineStyle
                                  : m_model->defaultColumn().lineStyle;
}

void GridControl::ColLineStyle(int col, int style) {
  if (col < -1 || col >= Cols()) return;
  if (col < 0) {
    m_model->defaultColumn().lineStyle = style;
    for (int c = 0; c < Cols(); ++c) m_model->column(c).lineStyle = style;
  } else {
    m_model->column(col).lineStyle = style;
  }
  repaintAll();
}

GridColor GridControl::ColLineColor(int col) const {
  return col >= 0 && col < Cols() ? m_model->column(col).lineColor
                                  : m_model->defaultColumn().lineColor;
}

void GridControl::ColLineColor(int col, GridColor color) {
  if (col < -1 || col >= Cols()) return;
  if (col < 0) {
    m_model->defaultColumn().lineColor = color;
    for (int c = 0; c < Cols(); ++c) m_model->column(c).lineColor = color;
  } else {
    m_model->column(col).lineColor = color;
  }
  repaintAll();
}

int GridControl::RowLineStyle(int row) const { return m_model->rowLine(row).style; }

void GridControl::RowLineStyle(int row, int style) {
  if (row < -1 || row >= Rows()) return;
  m_model->setRowLineStyle(row, style);
  repaintAll();
}

GridColor GridControl::RowLineColor(int row) const { return m_model->rowLine(row).color; }

void GridControl::RowLineColor(int row, GridColor color) {
  if (row < -1 || row >= Rows()) return;
  m_model->setRowLineColor(row, color);
  repaintAll();
}

int GridControl::HeaderHeight() const {
  return m_headerHeight >= 0 ? m_headerHeight : m_view->horizontalHeader()->sizeHint().height();
}

void GridControl::HeaderHeight(int pixels) {
  if (pixels < 0) return;
  m_headerHeight = pixels;
  forEachView([pixels](GridView* view) { view->horizontalHeader()->setFixedHeight(pixels); });
  updateFrozenGeometry();
}

int GridControl::FrozenCols() const { return m_frozenCols; }

void GridControl::FrozenCols(int count) {
  m_frozenCols = std::max(count, 0);
  updateFrozenView();
}

bool GridControl::Frozen() const { return m_frozen; }

void GridControl::Frozen(bool on) {
  m_frozen = on;
  updateFrozenView();
}

bool GridControl::isFrozenColumn(int col) const {
  return m_frozenView && m_frozenView->isVisible() && col >= 0 && col < m_frozenCols;
}

int GridControl::frozenWidth() const {
  if (!m_frozenView || m_frozenView->isHidden()) return 0;
  int width = 0;
  for (int c = 0; c < std::min(m_frozenCols, Cols()); ++c) width += m_view->columnWidth(c);
  return width;
}

void GridControl::updateFrozenView() {
  const bool wanted = m_frozen && m_frozenCols > 0 && Cols() > 0;
  if (!wanted) {
    if (m_frozenView) {
      if (m_editorView == m_frozenView) EndEdit();
      m_frozenView->hide();
    }
    return;
  }
  if (!m_frozenView) {
    m_frozenView = new GridView(this, true, m_view);
    m_frozenView->setSelectionModel(m_view->selectionModel());
    m_frozenView->setFocusPolicy(Qt::NoFocus);
    m_frozenView->verticalHeader()->hide();
    m_frozenView->setFrameShape(QFrame::NoFrame);
    m_frozenView->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_frozenView->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_frozenView->horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    connect(m_view->verticalScrollBar(), &QAbstractSlider::valueChanged,
            m_frozenView->verticalScrollBar(), &QAbstractSlider::setValue);
    connect(m_frozenView->verticalScrollBar(), &QAbstractSlider::valueChanged,
            m_view->verticalScrollBar(), &QAbstractSlider::setValue);
    m_view->viewport()->stackUnder(m_frozenView);
  }
  for (int c = 0; c < Cols(); ++c) {
    m_frozenView->setColumnHidden(c, c >= m_frozenCols);
    m_frozenView->setColumnWidth(c, m_view->columnWidth(c));
  }
  if (m_headerHeight >= 0) m_frozenView->horizontalHeader()->setFixedHeight(m_headerHeight);
  m_frozenView->verticalHeader()->setDefaultSectionSize(
      m_view->verticalHeader()->defaultSectionSize());
  m_frozenView->show();
  m_frozenView->verticalScrollBar()->setValue(m_view->verticalScrollBar()->value());
  updateFrozenGeometry();
}

void GridControl::updateFrozenGeometry() {
  if (!m_frozenView || m_frozenView->isHidden()) return;
  const int frame = m_view->frameWidth();
  m_frozenView->setGeometry(m_view->verticalHeader()->width() + frame, frame, frozenWidth(),
                            m_view->viewport()->height() + m_view->horizontalHeader()->height());
}

// ---- Cell appearance

GridColor GridControl::CellBackColor(int row, int col) const {
  const GridModel::CellFormat* f = m_model->format(row, col);
  return f && f->hasBack ? f->back : GridModel::kWhite;
}

void GridControl::CellBackColor(int row, int col, GridColor color) {
  if (row < -1 || row >= Rows() || col < 0 || col >= Cols()) return;
  GridModel::CellFormat& f = m_model->editFormat(row, col);
  f.back = color;
  f.hasBack = true;
  f.style = kStylePlain;
  m_model->cellChanged(row, col);
}

GridColor GridControl::CellForeColor(int row, int col) const {
  const GridModel::CellFormat* f = m_model->format(row, col);
  return f && f->hasFore ? f->fore : m_model->rowFore(row);
}

void GridControl::CellForeColor(int row, int col, GridColor color) {
  if (row < -1 || row >= Rows() || col < 0 || col >= Cols()) return;
  GridModel::CellFormat& f = m_model->editFormat(row, col);
  f.fore = color;
  f.hasFore = true;
  m_model->cellChanged(row, col);
}

GridColor GridControl::RowForeColor(int row) const { return m_model->rowFore(row); }

void GridControl::RowForeColor(int row, GridColor color) {
  if (row < -1 || row >= Rows()) return;
  m_model->setRowFore(row, color);
}

bool GridControl::CellBold(int row, int col) const {
  const GridModel::CellFormat* f = m_model->format(row, col);
  return f && f->bold;
}

void GridControl::CellBold(int row, int col, bool bold) {
  if (row < -1 || row >= Rows() || col < 0 || col >= Cols()) return;
  m_model->editFormat(row, col).bold = bold;
  m_model->cellChanged(row, col);
}

int GridControl::CellStyle(int row, int col) const {
  const GridModel::CellFormat* f = m_model->format(row, col);
  return f ? f->style : static_cast<int>(kStylePlain);
}

void GridControl::CellStyle(int row, int col, int style) {
  if (row < -1 || row >= Rows() || col < 0 || col >= Cols()) return;
  m_model->editFormat(row, col).style = static_cast<std::uint8_t>(style);
  m_model->cellChanged(row, col);
}

GridColor GridControl::CellStyleColor(int row, int col) const {
  const GridModel::CellFormat* f = m_model->format(row, col);
  return f ? f->styleColor : GridModel::kWhite;
}

void GridControl::CellStyleColor(int row, int col, GridColor color) {
  if (row < -1 || row >= Rows() || col < 0 || col >= Cols()) return;
  m_model->editFormat(row, col).styleColor = color;
  m_model->cellChanged(row, col);
}

int GridControl::CellState(int row, int col) const {
  const GridModel::CellFormat* f = m_model->format(row, col);
  return f ? f->state : static_cast<int>(kCellNormal);
}

void GridControl::CellState(int row, int col, int state) {
  if (row < 0 || row >= Rows() || col < 0 || col >= Cols()) return;
  if (state == kCellNormal && !m_model->format(row, col)) return;
  m_model->editFormat(row, col).state = static_cast<std::uint8_t>(state);
}

// ---- Current cell and scrolling

int GridControl::Row() const {
  const QModelIndex current = m_view->currentIndex();
  return current.isValid() ? current.row() : -1;
}

int GridControl::Col() const {
  const QModelIndex current = m_view->currentIndex();
  return current.isValid() ? current.column() : -1;
}

void GridControl::SetCurrentCell(int row, int col) {
  if (row < 0 || row >= Rows() || col < 0 || col >= Cols()) return;
  const QModelIndex index = m_model->index(row, col);
  m_view->setCurrentIndex(index);
  m_view->scrollTo(index);
}

void GridControl::currentWasChanged(int row, int col) {
  if (m_frozenView) m_frozenView->viewport()->update();
  if (!m_quietCurrent) emit currentCellChanged(row, col);
}

int GridControl::visibleRowCount() const {
  const int rowHeight = std::max(1, m_view->verticalHeader()->defaultSectionSize());
  return std::max(1, m_view->viewport()->height() / rowHeight);
}

int GridControl::TopRow() const {
  if (Rows() == 0) return 0;
  return std::clamp(m_view->verticalScrollBar()->value(), 0, Rows() - 1);
}

void GridControl::TopRow(int row) {
  if (Rows() == 0) return;
  m_view->verticalScrollBar()->setValue(std::clamp(row, 0, Rows() - 1));
}

int GridControl::BottomRow() const {
  return std::min(Rows() - 1, TopRow() + visibleRowCount() - 1);
}

void GridControl::BottomRow(int row) { TopRow(row - visibleRowCount() + 1); }

// ---- Header selection

bool GridControl::isRowSelected(int row) const { return contains(m_selectedRows, row); }

bool GridControl::isColSelected(int col) const { return contains(m_selectedCols, col); }

int GridControl::SelectedRowCount() const { return static_cast<int>(m_selectedRows.size()); }

int GridControl::SelectedColCount() const { return static_cast<int>(m_selectedCols.size()); }

int GridControl::SelectedIndex(int i) const {
  return m_selectedRows.empty() ? SelectedCol(i) : SelectedRow(i);
}

int GridControl::SelectedRow(int i) const {
  return i >= 1 && i <= SelectedRowCount() ? m_selectedRows[static_cast<std::size_t>(i - 1)] : -1;
}

int GridControl::SelectedCol(int i) const {
  return i >= 1 && i <= SelectedColCount() ? m_selectedCols[static_cast<std::size_t>(i - 1)] : -1;
}

void GridControl::ClearSelection() {
  m_selectedRows.clear();
  m_selectedCols.clear();
  m_anchorRow = -1;
  m_anchorCol = -1;
  repaintAll();
}

void GridControl::SelectRow(int row, bool add) {
  if (row < 0 || row >= Rows()) return;
  m_selectedCols.clear();
  if (!add) m_selectedRows.clear();
  if (!isRowSelected(row))
    m_selectedRows.insert(std::lower_bound(m_selectedRows.begin(), m_selectedRows.end(), row), row);
  m_anchorRow = row;
  repaintAll();
}

void GridControl::SelectCol(int col, bool add) {
  if (col < 0 || col >= Cols()) return;
  m_selectedRows.clear();
  if (!add) m_selectedCols.clear();
  if (!isColSelected(col))
    m_selectedCols.insert(std::lower_bound(m_selectedCols.begin(), m_selectedCols.end(), col), col);
  m_anchorCol = col;
  repaintAll();
}

void GridControl::headerPressed(Qt::Orientation orientation, int section,
                                Qt::KeyboardModifiers modifiers) {
  if (orientation == Qt::Horizontal) {
    if (section >= Cols()) return;
    m_selectedRows.clear();
    m_anchorRow = -1;
    selectSection(m_selectedCols, m_anchorCol, section, modifiers);
    repaintAll();
    emit cellClicked(-1, section);
  } else {
    if (section >= Rows()) return;
    m_selectedCols.clear();
    m_anchorCol = -1;
    selectSection(m_selectedRows, m_anchorRow, section, modifiers);
    repaintAll();
    emit cellClicked(section, -1);
  }
}

void GridControl::headerDoubleClicked(Qt::Orientation orientation, int section) {
  if (orientation == Qt::Horizontal)
    emit doubleClicked(-1, section);
  else
    emit doubleClicked(section, -1);
}

bool GridControl::deliverKey(int key, Qt::KeyboardModifiers modifiers) {
  bool handled = false;
  emit keyDown(key, modifiers, handled);
  return handled;
}

// ---- In-cell editor

void GridControl::BeginEdit() {
  if (IsEditing()) return;
  const QModelIndex index = m_view->currentIndex();
  if (!index.isValid()) return;
  GridView* view = isFrozenColumn(index.column()) ? m_frozenView : m_view;
  m_view->scrollTo(index);
  view->edit(index);
  if (m_editor) {
    m_editorView = view;
    emit editorOpened(m_editRow, m_editCol);
  }
}

void GridControl::EndEdit() {
  if (!m_editor || !m_editorView) return;
  m_editorView->finishEdit(m_editor);
}

bool GridControl::IsEditing() const { return !m_editor.isNull(); }

void GridControl::editorWasCreated(QWidget* editor, int row, int col) {
  m_editor = editor;
  m_editRow = row;
  m_editCol = col;
}

void GridControl::editorWasClosed(QWidget* editor) {
  if (!editor || editor != m_editor) return;
  m_editor = nullptr;
  m_editorView = nullptr;
  emit editorClosed(m_editRow, m_editCol);
}

int GridControl::CellSelStart() const {
  const auto* lineEdit = qobject_cast<QLineEdit*>(m_editor.data());
  if (!lineEdit) return -1;
  return lineEdit->hasSelectedText() ? lineEdit->selectionStart() : lineEdit->cursorPosition();
}

void GridControl::CellSelStart(int position) {
  if (auto* lineEdit = qobject_cast<QLineEdit*>(m_editor.data()))
    lineEdit->setCursorPosition(position);
}

int GridControl::CellSelLength() const {
  const auto* lineEdit = qobject_cast<QLineEdit*>(m_editor.data());
  return lineEdit ? static_cast<int>(lineEdit->selectedText().size()) : 0;
}

void GridControl::CellSelLength(int length) {
  auto* lineEdit = qobject_cast<QLineEdit*>(m_editor.data());
  if (!lineEdit) return;
  const int start = CellSelStart();
  if (length <= 0)
    lineEdit->setCursorPosition(start);
  else
    lineEdit->setSelection(start, length);
}

// ---- Geometry

QRect GridControl::cellRect(int row, int col) const {
  if (row < 0 || row >= Rows() || col < 0 || col >= Cols()) return {};
  return m_view->visualRect(m_model->index(row, col));
}

QWidget* GridControl::cellArea() const { return m_view->viewport(); }

QHeaderView* GridControl::columnHeader() const { return m_view->horizontalHeader(); }

QHeaderView* GridControl::rowHeader() const { return m_view->verticalHeader(); }

QWidget* GridControl::editor() const { return m_editor.data(); }

void GridControl::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  applyPercentWidths();
}

void GridControl::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  applyPercentWidths();
}

}  // namespace sheets
