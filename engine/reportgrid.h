#pragma once

#include <QString>

#include <map>
#include <set>
#include <utility>

namespace engine {

// The report grid the quantity run writes into: the desktop's report window and the command
// line each give one. Rows and columns are 0-based; all cells are text.
class ReportGrid {
 public:
  virtual ~ReportGrid() = default;
  virtual void SetRowCount(int rows) = 0;
  virtual int RowCount() const = 0;
  virtual void setText(int row, int column, const QString& text) = 0;
  virtual void setCellBold(int row, int column, bool bold) = 0;
};

// A grid kept in memory, for the command line and tests.
class MemoryReportGrid : public ReportGrid {
 public:
  void SetRowCount(int rows) override { m_rows = rows; }
  int RowCount() const override { return m_rows; }
  void setText(int row, int column, const QString& text) override {
    m_cells[{row, column}] = text;
  }
  void setCellBold(int row, int column, bool bold) override {
    if (bold)
      m_bold.insert({row, column});
    else
      m_bold.erase({row, column});
  }
  QString text(int row, int column) const {
    auto it = m_cells.find({row, column});
    return it == m_cells.end() ? QString() : it->second;
  }
  bool bold(int row, int column) const { return m_bold.count({row, column}) > 0; }

 private:
  int m_rows = 0;
  std::map<std::pair<int, int>, QString> m_cells;
  std::set<std::pair<int, int>> m_bold;
};

}  // namespace engine
