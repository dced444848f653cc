#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <variant>
#include <vector>

namespace db {

// What a column of a foreign table holds, as far as a copy into a project cares.
enum class SourceType {
  Integer,  // whole numbers and yes/no
  Single,
  Double,  // also currency and fixed-point decimals
  Text,    // also memos, dates ("1981-12-12 00:00:00") and identifiers
  Other,   // pictures, documents, raw bytes: nothing a project holds; its values cannot be read
};

struct SourceColumn {
  QString name;
  SourceType type = SourceType::Text;
};

// One value of a row: null, or a value of its column's type.
using SourceValue = std::variant<std::monostate, std::int64_t, float, double, QString>;

// The tables of a database another program wrote, read-only: what a new project is copied from.
// Every function throws Error naming the file, the table and what failed.
class TableSource {
 public:
  virtual ~TableSource() = default;

  // The file or database the tables come from, for messages.
  virtual QString name() const = 0;
  // The user's tables, without the database's own system tables.
  virtual QStringList tableNames() = 0;
  virtual std::vector<SourceColumn> columns(const QString& table) = 0;
  // Calls onRow for every row of table in stored order with the values of columns (named as
  // columns() names them, none of type Other), in that order.
  virtual void readRows(const QString& table, const QStringList& columns,
                        const std::function<void(const std::vector<SourceValue>& row)>& onRow) = 0;
};

}  // namespace db
