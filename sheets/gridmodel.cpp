#include "sheets/gridmodel.h"

#include "db/resultset.h"
#include "drawing/paintersurface.h"

#include <QColor>
#include <QFont>

#include <algorithm>
#include <optional>

namespace sheets {

namespace {

Qt::Alignment alignmentOf(int align) {
  switch (align) {
    case GridControl::kAlignRight:
      return Qt::AlignRight | Qt::AlignVCenter;
    case GridControl::kAlignCenter:
      return Qt::AlignCenter;
    default:
      return Qt::AlignLeft | Qt::AlignVCenter;
  }
}

bool isYesNoType(const QString& declaredType) {
  return declaredType.contains(QLatin1String("BOOL")) || declaredType == QLatin1String("BIT") ||
         declaredType.contains(QLatin1String("YESNO"));
}

}  // namespace

GridModel::GridModel(QObject* parent) : QAbstractTableModel(parent) {}

int GridModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : m_rows; }

int GridModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
}

QVariant GridModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  return cellData(index.row(), index.column(), role);
}

QVariant GridModel::cellData(int row, int col, int role) const {
  switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
      return text(row, col);
    case Qt::TextAlignmentRole:
      return QVariant::fromValue(alignmentOf(column(col).align));
    case Qt::BackgroundRole: {
      const CellFormat* f = format(row, col);
      if (!f) return {};
      if (f->style != GridControl::kStylePlain) return drawing::colourOf(f->styleColor);
      if (f->hasBack) return drawing::colourOf(f->back);
      return {};
    }
    case Qt::ForegroundRole: {
      const CellFormat* f = format(row, col);
      if (f && f->hasFore) return drawing::colourOf(f->fore);
      const GridColor fore = rowFore(row);
      return fore == kBlack ? QVariant() : QVariant(drawing::colourOf(fore));
    }
    case Qt::FontRole: {
      const CellFormat* f = format(row, col);
      if (!f || !f->bold) return {};
      QFont font;
      font.setBold(true);
      return font;
    }
    default:
      return {};
  }
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation == Qt::Vertical) return {};
  if (section < 0 || section >= columnCount()) return {};
  switch (role) {
    case Qt::DisplayRole:
      return text(-1, section);
    case Qt::BackgroundRole:
    case Qt::ForegroundRole:
    case Qt::FontRole:
      return cellData(-1, section, role);
    default:
      return {};
  }
}

Qt::ItemFlags GridModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable;
}

GridModel::Column GridModel::newColumn(int source) const {
  Column c;
  c.source = source;
  c.lineStyle = m_defaultColumn.lineStyle;
  c.lineColor = m_defaultColumn.lineColor;
  if (source >= 0 && m_resultSet && isYesNoType(m_resultSet->column(source).declaredType))
    c.kind = GridControl::kKindCheck;
  return c;
}

void GridModel::bind(db::ResultSet* resultSet) {
  beginResetModel();
  m_resultSet = resultSet;
  m_columns.clear();
  m_cells.clear();
  m_formats.clear();
  m_rowFore.clear();
  m_rowLines.clear();
  if (resultSet) {
    for (int c = 0; c < resultSet->columnCount(); ++c) m_columns.push_back(newColumn(c));
    m_rows = resultSet->rowCount();
  } else {
    m_rows = 0;
  }
  endResetModel();
}

void GridModel::setColumnCount(int count) {
  count = std::max(count, 0);
  const int old = columnCount();
  if (count < old) {
    removeColumns(count, old - count);
    return;
  }
  if (count == old) return;
  beginInsertColumns(QModelIndex(), old, count - 1);
  if (!m_resultSet && m_rows > 0) {
    std::vector<QString> cells(static_cast<std::size_t>(m_rows) * static_cast<std::size_t>(count));
    for (int r = 0; r < m_rows; ++r)
      for (int c = 0; c < old; ++c)
        cells[static_cast<std::size_t>(r * count + c)] =
            std::move(m_cells[static_cast<std::size_t>(r * old + c)]);
    m_cells = std::move(cells);
  }
  for (int c = old; c < count; ++c) m_columns.push_back(newColumn(-1));
  endInsertColumns();
}

void GridModel::removeColumns(int first, int count) {
  const int old = columnCount();
  if (first < 0 || first >= old || count <= 0) return;
  count = std::min(count, old - first);
  const int remaining = old - count;
  beginRemoveColumns(QModelIndex(), first, first + count - 1);
  if (!m_resultSet && m_rows > 0) {
    std::vector<QString> cells(static_cast<std::size_t>(m_rows) *
                               static_cast<std::size_t>(remaining));
    for (int r = 0; r < m_rows; ++r)
      for (int c = 0, to = 0; c < old; ++c)
        if (c < first || c >= first + count)
          cells[static_cast<std::size_t>(r * remaining + to++)] =
              std::move(m_cells[static_cast<std::size_t>(r * old + c)]);
    m_cells = std::move(cells);
  }
  m_columns.erase(m_columns.begin() + first, m_columns.begin() + first + count);
  if (!m_formats.empty()) {
    std::unordered_map<std::int64_t, CellFormat> formats;
    for (const auto& [k, f] : m_formats) {
      const int row = static_cast<int>((k >> 24) - 1);
      const int col = static_cast<int>(k & 0xffffff);
      if (col < first)
        formats.emplace(k, f);
      else if (col >= first + count)
        formats.emplace(key(row, col - count), f);
    }
    m_formats = std::move(formats);
  }
  endRemoveColumns();
}

void GridModel::setRows(int count) {
  if (m_resultSet) return;
  count = std::max(count, 0);
  const std::size_t cols = m_columns.size();
  if (count < m_rows) {
    beginRemoveRows(QModelIndex(), count, m_rows - 1);
    m_cells.resize(static_cast<std::size_t>(count) * cols);
    std::erase_if(m_formats, [count](const auto& entry) {
      return static_cast<int>((entry.first >> 24) - 1) >= count;
    });
    std::erase_if(m_rowFore, [count](const auto& entry) { return entry.first >= count; });
    std::erase_if(m_rowLines, [count](const auto& entry) { return entry.first >= count; });
    m_rows = count;
    endRemoveRows();
  } else if (count > m_rows) {
    beginInsertRows(QModelIndex(), m_rows, count - 1);
    m_cells.resize(static_cast<std::size_t>(count) * cols);
    m_rows = count;
    endInsertRows();
  }
}

QString GridModel::text(int row, int col) const {
  if (col < 0 || col >= columnCount() || row < -1 || row >= m_rows) return {};
  const Column& c = column(col);
  if (row < 0) {
    if (c.headerSet || !m_resultSet || c.source < 0) return c.header;
    return m_resultSet->column(c.source).name;
  }
  if (m_resultSet) return c.source >= 0 ? m_resultSet->text(row, c.source) : QString();
  return m_cells[static_cast<std::size_t>(row) * m_columns.size() + static_cast<std::size_t>(col)];
}

void GridModel::setText(int row, int col, const QString& text) {
  if (col < 0 || col >= columnCount() || row < -1 || row >= m_rows) return;
  Column& c = column(col);
  if (row < 0) {
    c.header = text;
    c.headerSet = true;
    headerChanged(col, col);
    return;
  }
  if (m_resultSet) {
    if (c.source < 0) return;
    m_resultSet->setText(row, c.source, text);
  } else {
    m_cells[static_cast<std::size_t>(row) * m_columns.size() + static_cast<std::size_t>(col)] =
        text;
  }
  cellChanged(row, col);
}

void GridModel::updateRow(int row) {
  if (!m_resultSet || row < 0 || row >= m_rows || !m_resultSet->rowChanged(row)) return;
  m_resultSet->updateRow(row);
  cellChanged(row, -1);
}

void GridModel::deleteRow(int row) { deleteRows({row}); }

void GridModel::deleteRows(std::vector<int> rows, const std::function<void(int done)>& onRecord) {
  std::erase_if(rows, [this](int row) { return row < 0 || row >= m_rows; });
  if (rows.empty()) return;
  std::sort(rows.begin(), rows.end());
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  if (m_resultSet) m_resultSet->deleteRows(rows, onRecord);  // throws before the grid changes

  // Runs of neighbouring rows from the bottom up, so that the rows still to go keep their
  // numbers.
  const auto cols = static_cast<std::ptrdiff_t>(m_columns.size());
  for (std::size_t end = rows.size(); end > 0;) {
    std::size_t begin = end - 1;
    while (begin > 0 && rows[begin - 1] == rows[begin] - 1) --begin;
    const int first = rows[begin];
    const int last = rows[end - 1];
    beginRemoveRows(QModelIndex(), first, last);
    if (!m_resultSet)
      m_cells.erase(m_cells.begin() + first * cols, m_cells.begin() + (last + 1) * cols);
    m_rows -= last - first + 1;
    endRemoveRows();
    end = begin;
  }
  shiftRowsAfterRemoval(rows);
}

void GridModel::shiftRowsAfterRemoval(const std::vector<int>& removed) {
  // The row's number once the removed rows are gone; none for a removed row. The header row
  // (-1) stays.
  const auto moved = [&removed](int row) -> std::optional<int> {
    const auto it = std::lower_bound(removed.begin(), removed.end(), row);
    if (it != removed.end() && *it == row) return std::nullopt;
    return row - static_cast<int>(it - removed.begin());
  };
  if (!m_formats.empty()) {
    std::unordered_map<std::int64_t, CellFormat> formats;
    for (const auto& [k, f] : m_formats) {
      const int r = static_cast<int>((k >> 24) - 1);
      const int c = static_cast<int>(k & 0xffffff);
      if (const std::optional<int> to = moved(r)) formats.emplace(key(*to, c), f);
    }
    m_formats = std::move(formats);
  }
  const auto shift = [&moved](auto& map) {
    std::remove_reference_t<decltype(map)> shifted;
    for (const auto& [r, value] : map)
      if (const std::optional<int> to = moved(r)) shifted.emplace(*to, value);
    map = std::move(shifted);
  };
  shift(m_rowFore);
  shift(m_rowLines);
}

bool GridModel::reread() {
  if (!m_resultSet) {
    cellChanged(kAllRows, -1);
    return false;
  }
  for (const Column& c : m_columns) {
    if (c.source >= m_resultSet->columnCount()) {
      // The query's columns changed under the grid: start again from the result set.
      bind(m_resultSet);
      return true;
    }
  }
  const int rows = m_resultSet->rowCount();
  const bool changed = rows != m_rows;
  // Rows are removed or added at the end rather than by a reset, which would also throw away
  // the column widths.
  if (rows < m_rows) {
    beginRemoveRows(QModelIndex(), rows, m_rows - 1);
    m_rows = rows;
    endRemoveRows();
  } else if (rows > m_rows) {
    beginInsertRows(QModelIndex(), m_rows, rows - 1);
    m_rows = rows;
    endInsertRows();
  }
  cellChanged(kAllRows, -1);
  headerChanged(0, columnCount() - 1);
  return changed;
}

GridModel::RowLine GridModel::rowLine(int row) const {
  const auto it = m_rowLines.find(row);
  return it == m_rowLines.end() ? m_defaultRowLine : it->second;
}

void GridModel::setRowLineStyle(int row, int style) {
  if (row < 0) {
    m_defaultRowLine.style = style;
    for (auto& [r, line] : m_rowLines) line.style = style;
  } else {
    RowLine line = rowLine(row);
    line.style = style;
    m_rowLines[row] = line;
  }
  cellChanged(row < 0 ? kAllRows : row, -1);
}

void GridModel::setRowLineColor(int row, GridColor color) {
  if (row < 0) {
    m_defaultRowLine.color = color;
    for (auto& [r, line] : m_rowLines) line.color = color;
  } else {
    RowLine line = rowLine(row);
    line.color = color;
    m_rowLines[row] = line;
  }
  cellChanged(row < 0 ? kAllRows : row, -1);
}

const GridModel::CellFormat* GridModel::format(int row, int col) const {
  if (m_formats.empty()) return nullptr;
  const auto it = m_formats.find(key(row, col));
  return it == m_formats.end() ? nullptr : &it->second;
}

GridModel::CellFormat& GridModel::editFormat(int row, int col) { return m_formats[key(row, col)]; }

GridColor GridModel::rowFore(int row) const {
  if (m_rowFore.empty()) return m_defaultFore;
  const auto it = m_rowFore.find(row);
  return it == m_rowFore.end() ? m_defaultFore : it->second;
}

void GridModel::setRowFore(int row, GridColor color) {
  if (row < 0) {
    m_rowFore.clear();
    m_defaultFore = color;
    for (auto& [k, f] : m_formats)
      if (k >> 24 > 0) f.hasFore = false;
    cellChanged(kAllRows, -1);
    return;
  }
  bool changed = rowFore(row) != color;
  if (color == m_defaultFore)
    m_rowFore.erase(row);
  else
    m_rowFore[row] = color;
  if (!m_formats.empty()) {
    for (int c = 0; c < columnCount(); ++c) {
      const auto it = m_formats.find(key(row, c));
      if (it != m_formats.end() && it->second.hasFore) {
        it->second.hasFore = false;
        changed = true;
      }
    }
  }
  if (changed) cellChanged(row, -1);
}

void GridModel::cellChanged(int row, int col) {
  if (row == -1 && col < 0) row = kAllRows;
  if (!m_announcing) {
    m_pending = true;
    return;
  }
  if (row == -1 && col >= 0) {
    headerChanged(col, col);
    return;
  }
  if (row < 0) {
    if (m_rows > 0 && columnCount() > 0)
      emit dataChanged(index(0, 0), index(m_rows - 1, columnCount() - 1));
    return;
  }
  if (row >= m_rows || columnCount() == 0) return;
  if (col < 0)
    emit dataChanged(index(row, 0), index(row, columnCount() - 1));
  else
    emit dataChanged(index(row, col), index(row, col));
}

void GridModel::headerChanged(int first, int last) {
  if (!m_announcing) {
    m_pending = true;
    return;
  }
  if (first <= last && last >= 0) emit headerDataChanged(Qt::Horizontal, first, last);
}

void GridModel::setAnnouncing(bool on) {
  m_announcing = on;
  if (on && m_pending) {
    m_pending = false;
    cellChanged(kAllRows, -1);
    headerChanged(0, columnCount() - 1);
  }
}

}  // namespace sheets
