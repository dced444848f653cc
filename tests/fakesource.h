#pragma once

#include "db/connection.h"
#include "db/tablesource.h"

#include <vector>

namespace testsupport {

// A table source held in memory, so that copies into a project are tested without a Jet file.
// An empty row stands for a place where the file is damaged: reading fails there.
struct FakeTable {
  QString name;
  std::vector<db::SourceColumn> columns;
  std::vector<std::vector<db::SourceValue>> rows;
};

class FakeSource : public db::TableSource {
 public:
  explicit FakeSource(std::vector<FakeTable> tables) : m_tables(std::move(tables)) {}

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
    for (const auto& row : t.rows) {
      if (row.empty()) throw db::Error(QStringLiteral("The file \"old.mdb\" is damaged."));
      std::vector<db::SourceValue> values;
      for (const QString& name : columns)
        for (std::size_t i = 0; i < t.columns.size(); ++i)
          if (t.columns[i].name == name && t.columns[i].type != db::SourceType::Other)
            values.push_back(row[i]);
      if (values.size() != static_cast<std::size_t>(columns.size()))
        throw db::Error(QStringLiteral("Unreadable columns asked for."));
      onRow(values);
    }
  }

 private:
  const FakeTable& find(const QString& table) const {
    for (const FakeTable& t : m_tables)
      if (t.name == table) return t;
    throw db::Error(QStringLiteral("no table ") + table);
  }

  std::vector<FakeTable> m_tables;
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
