#pragma once

#include "db/connection.h"
#include "db/filterexpression.h"

#include <QString>
#include <QVariant>

#include <cstdint>
#include <functional>
#include <unordered_map>
#include <vector>

namespace db {

// A column of a result set.
struct ResultColumn {
  QString name;
  QString declaredType;  // from the source table when the column is one of its columns
  bool numeric = false;  // declared numeric, or (type unknown) holding numbers only
};

// The rows of one query held in memory, for a data sheet to show and edit. Cells are kept
// typed and compact; edits are held per cell until updateRow writes them to the source table
// (the table named after FROM) by the row's ID. An in-program filter chooses the visible rows;
// every row number below counts visible rows from 0.
class ResultSet {
 public:
  ResultSet() = default;
  ResultSet(const ResultSet&) = delete;
  ResultSet& operator=(const ResultSet&) = delete;

  // Runs sql on connection and reads every row; any filter is removed. Throws Error naming the
  // query when it fails (the set is then closed). The connection must outlive the set.
  void open(Connection& connection, const QString& sql);
  // Runs the same query again and re-applies the filter; pending edits are dropped.
  void requery();
  void close();
  bool isOpen() const { return m_connection != nullptr; }

  const QString& sql() const { return m_sql; }
  // The table after FROM, without brackets; empty when the query names none.
  const QString& table() const { return m_table; }
  Connection* connection() const { return m_connection; }

  int columnCount() const { return static_cast<int>(m_columns.size()); }
  const ResultColumn& column(int column) const { return m_columns[column]; }
  // Column index by name (case ignored), -1 when absent.
  int columnIndex(const QString& name) const;

  // Visible rows.
  int rowCount() const { return static_cast<int>(m_visible.size()); }
  // All rows read, filtered out or not, less deleted ones.
  int totalRowCount() const { return m_liveRows; }

  // The cell as stored or as edited: invalid QVariant for NULL, qint64, double or QString.
  QVariant value(int row, int column) const;
  bool isNull(int row, int column) const;
  // The cell as the grid shows it: integers in full, reals as the shortest text of their
  // single, edited cells as typed, NULL as empty text.
  QString text(int row, int column) const;
  // Replaces the cell's contents with text, to be written by updateRow. Empty text is NULL.
  void setText(int row, int column, const QString& text);
  bool isChanged(int row, int column) const;
  bool rowChanged(int row) const;
  // Whether any row, visible or filtered out, holds edits not yet written.
  bool anyRowChanged() const { return !m_changed.empty(); }

  // The row's key (its ID column as read), 0 when the query has no ID column.
  std::int64_t id(int row) const;
  // The visible row holding the key, -1 when none.
  int findId(std::int64_t id) const;

  // Writes the row's edited cells with one UPDATE by ID; does nothing when none was edited.
  // Empty cells store NULL; numbers are bound as measures (integers in integer columns). Throws
  // Error when a cell does not fit its column ("... the column Chainage holds numbers, not
  // "abc".") or the statement fails; the edits are then kept.
  void updateRow(int row);
  // Deletes the row's record by ID and drops it from the set. Throws Error on failure.
  void deleteRow(int row);
  // Deletes the records of rows (visible row numbers in any order; others are skipped) by ID in
  // one transaction and drops them from the set. onRecord, when given, hears the number deleted
  // so far after each. Throws Error on failure, and then nothing is deleted.
  void deleteRows(std::vector<int> rows, const std::function<void(int done)>& onRecord = {});

  // Shows only the rows that match expression (FilterExpression grammar); empty shows all.
  // Throws Error with a description when the expression is malformed, and then keeps the
  // visible rows and the previous filter.
  void setFilter(const QString& expression);
  const QString& filter() const { return m_filter; }

 private:
  enum Kind : std::uint8_t { kNull, kInteger, kReal, kText };
  struct ColumnData {
    std::vector<Kind> kinds;
    std::vector<double> numbers;  // sized on the first number
    std::vector<QString> texts;   // sized on the first text
  };

  void read();
  void applyFilter(const FilterExpression& filter);
  QVariant storedValue(int record, int column) const;
  void store(int record, int column, const QVariant& value);
  int record(int row) const { return m_visible[static_cast<std::size_t>(row)]; }

  Connection* m_connection = nullptr;
  QString m_sql;
  QString m_table;
  QString m_filter;
  int m_idColumn = -1;
  std::vector<ResultColumn> m_columns;
  std::vector<ColumnData> m_data;
  std::vector<std::int64_t> m_ids;      // per record
  std::vector<std::uint8_t> m_deleted;  // per record
  std::vector<int> m_visible;           // records shown, in query order
  int m_records = 0;
  int m_liveRows = 0;
  // Edited columns of each edited record.
  std::unordered_map<int, std::vector<int>> m_changed;
};

}  // namespace db
