#pragma once

#include "db/connection.h"

#include <QString>
#include <QTemporaryDir>

#include <memory>
#include <string>

namespace testsupport {

// A temporary folder that lives as long as the test, with helpers to make project files in it.
class TempProject {
 public:
  TempProject();
  // A fresh project file (schema and design template; demo data when asked), opened.
  db::Connection& create(bool demo = false, const QString& name = QStringLiteral("test.delvane"));
  QString path(const QString& name = QStringLiteral("test.delvane")) const;
  db::Connection& connection() { return *m_connection; }
  const QTemporaryDir& dir() const { return m_dir; }

 private:
  QTemporaryDir m_dir;
  std::unique_ptr<db::Connection> m_connection;
};

// Switches the C library's number format to a comma-decimal locale for the life of the object,
// as Qt does for a German user; active() is false when no such locale is installed.
class CommaDecimalLocale {
 public:
  CommaDecimalLocale();
  ~CommaDecimalLocale();
  bool active() const { return m_active; }

 private:
  std::string m_saved;
  bool m_active = false;
};

// The number of rows of table, optionally restricted by a WHERE clause.
int rowCount(db::Connection& connection, const QString& table, const QString& where = {});

}  // namespace testsupport
