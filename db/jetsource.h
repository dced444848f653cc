#pragma once

#include "db/tablesource.h"

#include <memory>

namespace db {

// The tables of a Microsoft Jet database, the file format of Access and of older project
// files (.mdb): Jet 3 and Jet 4, a Jet 4 file protected by a database password included, which
// is read without the password. Read-only; the file is never changed.
class JetSource : public TableSource {
 public:
  // Opens path for reading. Throws Error naming the file when it is missing, a folder, or not a
  // Jet database that can be read.
  explicit JetSource(const QString& path);
  ~JetSource() override;
  JetSource(const JetSource&) = delete;
  JetSource& operator=(const JetSource&) = delete;

  QString name() const override { return m_path; }
  QStringList tableNames() override;
  std::vector<SourceColumn> columns(const QString& table) override;
  // Also throws Error when the file holds fewer rows than the table says it has: a damaged
  // file loses no row unnoticed.
  void readRows(const QString& table, const QStringList& columns,
                const std::function<void(const std::vector<SourceValue>& row)>& onRow) override;

 private:
  struct Database;
  QString m_path;
  std::unique_ptr<Database> m_database;
};

}  // namespace db
