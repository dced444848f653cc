#include "tests/testsupport.h"

#include "db/project.h"

#include <clocale>

namespace testsupport {

TempProject::TempProject() = default;

db::Connection& TempProject::create(bool demo, const QString& name) {
  db::createProject(path(name), demo);
  m_connection = db::openProject(path(name));
  return *m_connection;
}

QString TempProject::path(const QString& name) const { return m_dir.filePath(name); }

CommaDecimalLocale::CommaDecimalLocale() {
  const char* previous = std::setlocale(LC_NUMERIC, nullptr);
  m_saved = previous ? previous : "C";
  for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8"})
    if (std::setlocale(LC_NUMERIC, name)) {
      m_active = true;
      break;
    }
}

CommaDecimalLocale::~CommaDecimalLocale() { std::setlocale(LC_NUMERIC, m_saved.c_str()); }

int rowCount(db::Connection& connection, const QString& table, const QString& where) {
  QString sql = QStringLiteral("SELECT COUNT(*) FROM ") + table;
  if (!where.isEmpty()) sql += QStringLiteral(" WHERE ") + where;
  return static_cast<int>(connection.scalar(sql).value_or(0));
}

}  // namespace testsupport
