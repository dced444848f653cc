#include "db/projectcopy.h"

#include "db/numbers.h"
#include "db/project.h"
#include "db/schema.h"

#include <QLocale>

#include <cmath>
#include <optional>
#include <set>

namespace db {

namespace {

// A file with a column of numbers typed as text could list every row; the first ones tell the
// user what to look at.
constexpr int kListedProblems = 100;

// How a project column stores its values, from its declared type.
enum class Storage { Integer, Measure, Text };

Storage storageOf(const ColumnInfo& column) {
  if (column.declaredType.contains(QLatin1String("INT"))) return Storage::Integer;
  if (column.isNumeric()) return Storage::Measure;
  return Storage::Text;
}

QString doubleText(double value) {
  return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

// The value as the user would write it, for messages.
QString valueText(const SourceValue& value) {
  if (const auto* i = std::get_if<std::int64_t>(&value)) return QString::number(*i);
  if (const auto* f = std::get_if<float>(&value)) return floatText(*f);
  if (const auto* d = std::get_if<double>(&value)) return doubleText(*d);
  if (const auto* s = std::get_if<QString>(&value)) return QLatin1Char('"') + *s + QLatin1Char('"');
  return QStringLiteral("NULL");
}

// The number a value holds: a number, or text that reads as one with a '.' decimal point.
std::optional<double> numberIn(const SourceValue& value) {
  if (const auto* i = std::get_if<std::int64_t>(&value)) return static_cast<double>(*i);
  if (const auto* f = std::get_if<float>(&value)) return *f;
  if (const auto* d = std::get_if<double>(&value)) return *d;
  if (const auto* s = std::get_if<QString>(&value)) {
    bool ok = false;
    const double number = s->trimmed().toDouble(&ok);
    if (ok) return number;
  }
  return std::nullopt;
}

// Binds value as it came, for a value that does not fit its column: SQLite keeps any value in
// any column, so nothing is lost and the user can correct it in the sheets.
void bindAsItCame(Statement& st, int index, const SourceValue& value) {
  if (const auto* i = std::get_if<std::int64_t>(&value))
    st.bindInt64(index, *i);
  else if (const auto* f = std::get_if<float>(&value))
    st.bindDouble(index, measureToDouble(*f));
  else if (const auto* d = std::get_if<double>(&value))
    st.bindDouble(index, *d);
  else if (const auto* s = std::get_if<QString>(&value))
    st.bindText(index, *s);
  else
    st.bindNull(index);
}

// Binds value for a column stored as storage. Returns why the value does not fit, after
// binding it as it came; nothing when it went in as the project stores it.
std::optional<QString> bindValue(Statement& st, int index, Storage storage,
                                 const SourceValue& value) {
  if (std::holds_alternative<std::monostate>(value)) {
    st.bindNull(index);
    return std::nullopt;
  }
  if (storage == Storage::Text) {
    if (const auto* s = std::get_if<QString>(&value))
      st.bindText(index, *s);
    else
      st.bindText(index, valueText(value));
    return std::nullopt;
  }
  if (const auto* i = std::get_if<std::int64_t>(&value); i && storage == Storage::Integer) {
    st.bindInt64(index, *i);
    return std::nullopt;
  }
  const std::optional<double> number = numberIn(value);
  if (!number || !std::isfinite(*number)) {
    bindAsItCame(st, index, value);
    return QStringLiteral("is not a number");
  }
  if (storage == Storage::Integer) {
    // Beyond ±2^63 a double no longer converts to a 64-bit integer.
    if (*number != std::trunc(*number) || std::fabs(*number) >= 9.2e18) {
      bindAsItCame(st, index, value);
      return QStringLiteral("is not a whole number");
    }
    st.bindInt64(index, static_cast<std::int64_t>(*number));
    return std::nullopt;
  }
  const float measure = doubleToMeasure(*number);
  if (!std::isfinite(measure)) {
    bindAsItCame(st, index, value);
    return QStringLiteral("is beyond the range of a single");
  }
  st.bindMeasure(index, measure);
  return std::nullopt;
}

int indexOfName(const QStringList& names, const QString& name) {
  for (int i = 0; i < names.size(); ++i)
    if (names[i].compare(name, Qt::CaseInsensitive) == 0) return i;
  return -1;
}

class Copier {
 public:
  Copier(TableSource& source, Connection& connection, ProjectCopy& result, bool& refused)
      : m_source(source), m_connection(connection), m_result(result), m_refused(refused) {}

  void copyAll() {
    const QStringList sourceTables = m_source.tableNames();
    std::set<int> used;
    for (const QString& table : requiredTables()) {
      const int at = indexOfName(sourceTables, table);
      if (at < 0) {
        m_result.emptyTables.append(table);
        continue;
      }
      used.insert(at);
      m_result.copied.push_back({table, copyTable(sourceTables[at], table)});
    }
    for (int i = 0; i < sourceTables.size(); ++i)
      if (!used.count(i))
        m_result.skipped.append(
            QStringLiteral("The table %1 is not part of a project; skipped.").arg(sourceTables[i]));
    if (m_unlisted > 0)
      m_result.problems.append(
          QStringLiteral("%1 more values do not fit their columns.").arg(m_unlisted));
  }

 private:
  // Copies the rows of the source's table `from` into the project's table `into`; returns
  // their number.
  int copyTable(const QString& from, const QString& into) {
    std::vector<ColumnInfo> projectColumns = m_connection.columns(into);
    QStringList projectNames;
    for (const ColumnInfo& c : projectColumns) projectNames.append(c.name);

    QStringList read;
    QStringList written;
    std::vector<Storage> storage;
    for (const SourceColumn& column : m_source.columns(from)) {
      const int at = indexOfName(projectNames, column.name);
      if (at < 0) {
        m_result.skipped.append(
            QStringLiteral("The column %1.%2 is not part of a project; skipped.")
                .arg(from, column.name));
      } else if (column.type == SourceType::Other) {
        m_result.skipped.append(
            QStringLiteral("The column %1.%2 holds pictures, documents or raw bytes, which a "
                           "project has no place for; skipped.")
                .arg(from, column.name));
      } else {
        read.append(column.name);
        written.append(projectNames[at]);
        storage.push_back(storageOf(projectColumns[static_cast<std::size_t>(at)]));
      }
    }

    QString sql = QStringLiteral("INSERT INTO ") + quoteName(into);
    if (written.isEmpty()) {
      sql += QStringLiteral(" DEFAULT VALUES");
    } else {
      QStringList names;
      for (const QString& name : written) names.append(quoteName(name));
      sql += QStringLiteral(" (") + names.join(QLatin1Char(',')) + QStringLiteral(") VALUES (") +
             QStringList(written.size(), QStringLiteral("?")).join(QLatin1Char(',')) +
             QLatin1Char(')');
    }
    Statement insert = m_connection.prepare(sql, QStringLiteral("Copying table %1").arg(into));
    int rows = 0;
    m_source.readRows(from, read, [&](const std::vector<SourceValue>& row) {
      ++rows;
      for (int i = 0; i < written.size(); ++i) {
        const SourceValue& value = row[static_cast<std::size_t>(i)];
        if (const auto why = bindValue(insert, i + 1, storage[static_cast<std::size_t>(i)], value))
          addProblem(QStringLiteral("Table %1, row %2, column %3: %4 %5; kept as it was.")
                         .arg(from, QString::number(rows), read[i], valueText(value), *why));
      }
      try {
        insert.run();
      } catch (const Error& e) {
        m_refused = true;
        throw Error(QStringLiteral("Table %1, row %2: %3").arg(from).arg(rows).arg(e.message()));
      }
      insert.reset();
    });
    return rows;
  }

  void addProblem(const QString& text) {
    if (m_result.problems.size() < kListedProblems)
      m_result.problems.append(text);
    else
      ++m_unlisted;
  }

  TableSource& m_source;
  Connection& m_connection;
  ProjectCopy& m_result;
  bool& m_refused;
  int m_unlisted = 0;
};

}  // namespace

ProjectCopy copyIntoNewProject(TableSource& source, const QString& path,
                               const std::function<QString(Connection&)>& accept) {
  ProjectCopy result;
  bool refused = false;
  try {
    buildNewFile(path, [&](Connection& connection) {
      createSchema(connection);
      Transaction copy(connection);
      Copier(source, connection, result, refused).copyAll();
      if (result.copied.empty()) {
        refused = true;
        throw Error(QStringLiteral("\"%1\" holds none of a project's tables; its tables are %2.")
                        .arg(source.name(), source.tableNames().join(QStringLiteral(", "))));
      }
      copy.commit();
      if (accept) {
        const QString why = accept(connection);
        refused = !why.isEmpty();
        if (refused) throw Error(why);
      }
    });
  } catch (const Error& e) {
    if (refused) throw CopyRefused(e.message());
    throw;
  }
  return result;
}

}  // namespace db
