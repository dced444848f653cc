#pragma once

#include "sheets/gridcontrol.h"

#include <QAbstractTableModel>
#include <QString>

#include <cstdint>
#include <functional>
#include <unordered_map>
#include <vector>

namespace db {
class ResultSet;
}

namespace sheets {

// The cells behind a GridControl: the rows of a bound result set, formatted only when the view
// asks for them, or the texts of an unbound grid; plus the column settings and the sparse
// per-cell formats. Row -1 addresses the header row throughout.
class GridModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  static constexpr GridColor kWhite = 0xFFFFFF;
  static constexpr GridColor kBlack = 0x000000;
  static constexpr GridColor kDefaultLineColor = 0xC0C0C0;

  struct Column {
    int source = -1;  // result column when bound; -1 for a column of the grid's own
    QString header;
    bool headerSet = false;  // header written with Text(-1, col), else the result column's name
    int align = GridControl::kAlignLeft;
    bool editable = true;
    int kind = GridControl::kKindText;
    int lineStyle = GridControl::kLineSolid;
    GridColor lineColor = kDefaultLineColor;
    int percent = 0;  // ColWidthPercent, 0 when the width is in pixels
  };

  struct CellFormat {
    GridColor back = kWhite;
    GridColor fore = kBlack;
    GridColor styleColor = kWhite;
    bool hasBack = false;
    bool hasFore = false;
    bool bold = false;
    std::uint8_t style = GridControl::kStylePlain;
    std::uint8_t state = GridControl::kCellNormal;
  };

  struct RowLine {
    int style = GridControl::kLineSolid;
    GridColor color = kDefaultLineColor;
  };

  explicit GridModel(QObject* parent = nullptr);

  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  int columnCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

  // ---- Contents
  void bind(db::ResultSet* resultSet);
  db::ResultSet* resultSet() const { return m_resultSet; }
  void setColumnCount(int count);
  void removeColumns(int first, int count);
  void setRows(int count);
  QString text(int row, int col) const;
  void setText(int row, int col, const QString& text);
  void updateRow(int row);
  void deleteRow(int row);
  // Deletes the rows (any order; rows outside the grid are skipped) and, bound, their records in
  // one transaction; onRecord hears how many records are gone so far. Throws db::Error before
  // the grid changes.
  void deleteRows(std::vector<int> rows, const std::function<void(int done)>& onRecord = {});
  // Re-reads the bound rows; true when the number of rows changed (the model was reset).
  bool reread();

  // ---- Columns and lines
  Column& column(int col) { return m_columns[static_cast<std::size_t>(col)]; }
  const Column& column(int col) const { return m_columns[static_cast<std::size_t>(col)]; }
  // The settings given to column -1, used for columns made later.
  Column& defaultColumn() { return m_defaultColumn; }
  RowLine rowLine(int row) const;
  void setRowLineStyle(int row, int style);
  void setRowLineColor(int row, GridColor color);

  // ---- Formats
  const CellFormat* format(int row, int col) const;
  CellFormat& editFormat(int row, int col);
  GridColor rowFore(int row) const;
  void setRowFore(int row, GridColor color);
  // Announces a changed cell (with col -1 the whole row, with row kAllRows every cell, with row
  // -1 a header cell) unless announcing is off.
  static constexpr int kAllRows = -2;
  void cellChanged(int row, int col);
  void headerChanged(int first, int last);

  // Off: cell changes are collected silently and announced all at once when switched on.
  void setAnnouncing(bool on);
  bool announcing() const { return m_announcing; }

 private:
  static std::int64_t key(int row, int col) {
    return (static_cast<std::int64_t>(row) + 1) << 24 | static_cast<std::int64_t>(col);
  }
  QVariant cellData(int row, int col, int role) const;
  Column newColumn(int source) const;
  // Moves the row formats and settings up over the removed rows (ascending).
  void shiftRowsAfterRemoval(const std::vector<int>& removed);

  db::ResultSet* m_resultSet = nullptr;
  std::vector<Column> m_columns;
  Column m_defaultColumn;
  int m_rows = 0;                // unbound rows; bound rows come from the result set
  std::vector<QString> m_cells;  // unbound, row-major
  std::unordered_map<std::int64_t, CellFormat> m_formats;
  std::unordered_map<int, GridColor> m_rowFore;
  GridColor m_defaultFore = kBlack;
  RowLine m_defaultRowLine;
  std::unordered_map<int, RowLine> m_rowLines;
  bool m_announcing = true;
  bool m_pending = false;
};

}  // namespace sheets
