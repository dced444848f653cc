#include "tests/testsupport.h"

#include "db/project.h"

namespace testsupport {

TempProject::TempProject() = default;

db::Connection& TempProject::create(bool demo, const QString& name) {
  db::createProject(path(name), demo);
  m_connection = db::openProject(path(name));
  return *m_connection;
}

QString TempProject::path(const QString& name) const { return m_dir.filePath(name); }

int rowCount(db::Connection& connection, const QString& table, const QString& where) {
  QString sql = QStringLiteral("SELECT COUNT(*) FROM ") + table;
  if (!where.isEmpty()) sql += QStringLiteral(" WHERE ") + where;
  return static_cast<int>(connection.scalar(sql).value_or(0));
}

}  // namespace testsupport
