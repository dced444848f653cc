#pragma once

#include "db/connection.h"
#include "db/tablesource.h"

#include <vector>

namespace testsupport {

// A table source held in memory, so that copies into a project are tested without a Jet file.
struct FakeTable {
  QString name;
  std::vector<db::SourceColumn> columns;
  std::vector<std::vector<db::SourceValue>> rows;
};

class FakeSource : public db::TableSource {
 public:
  explicit FakeSource(std::vector<FakeTable> tables) : m_tables(std::move(tables)) {}

  // Reading table fails after it handed over this many rows (a file that breaks mid-way).
  void failReading(const QString& table, int afterRows) {
    m_failingTable = table;
    m_failAfter = afterRows;
  }

  QString name() const override { return QStringLiteral("old.mdb"); }
  QStringList tableNames() override {
    QStringList names;
    for (const FakeTable& t : m_tables) names.append(t.name);
    return names;
  }
  std::vector<db::SourceColumn> columns(const QString& table) override {
    return find(table).columns;
  }
  void readRows(const QString& table, const QStringList& columns,
                const std::function<void(const std::vector<db::SourceValue>&)>& onRow) override {
    const FakeTable& t = find(table);
    std::vector<std::size_t> at;
    for (const QString& name : columns) {
      std::size_t i = 0;
      while (i < t.columns.size() && t.columns[i].name != name) ++i;
      if (i == t.columns.size() || t.columns[i].type == db::SourceType::Other)
        throw db::Error(QStringLiteral("unreadable column ") + name);
      at.push_back(i);
    }
    int handed = 0;
    for (const auto& row : t.rows) {
      if (table == m_failingTable && handed == m_failAfter)
        throw db::Error(QStringLiteral("The file \"old.mdb\" is damaged."));
      std::vector<db::SourceValue> values;
      for (std::size_t i : at) values.push_back(row[i]);
      onRow(values);
      ++handed;
    }
  }

 private:
  const FakeTable& find(const QString& table) const {
    for (const FakeTable& t : m_tables)
      if (t.name == table) return t;
    throw db::Error(QStringLiteral("no table ") + table);
  }

  std::vector<FakeTable> m_tables;
  QString m_failingTable;
  int m_failAfter = -1;
};

// The smallest design profile a project opens with: one DesignExp row of design 1.
inline FakeTable designProfileTable() {
  using db::SourceType;
  return {QStringLiteral("DesignExp"),
          {{QStringLiteral("DesignID"), SourceType::Integer},
           {QStringLiteral("Serial"), SourceType::Integer},
           {QStringLiteral("LCR"), SourceType::Text},
           {QStringLiteral("Offset"), SourceType::Text},
           {QStringLiteral("Value"), SourceType::Text}},
          {{std::int64_t{1}, std::int64_t{1}, QStringLiteral("C"), QStringLiteral("0"),
            QStringLiteral("$CL")}}};
}

}  // namespace testsupport
