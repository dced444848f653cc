#include "db/resultset.h"

#include "db/numbers.h"

#include <QLocale>
#include <QRegularExpression>

#include <sqlite3.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace db {

namespace {

// The table a select reads from: the name after the first FROM, brackets removed.
QString sourceTable(const QString& sql) {
  static const QRegularExpression from(
      QStringLiteral(R"(\bFROM\s+(\[([^\]]+)\]|([A-Za-z_][A-Za-z0-9_]*)))"),
      QRegularExpression::CaseInsensitiveOption);
  const QRegularExpressionMatch match = from.match(sql);
  if (!match.hasMatch()) return {};
  return match.captured(2).isEmpty() ? match.captured(3) : match.captured(2);
}

std::optional<double> parseNumber(const QString& text) {
  const QString trimmed = text.trimmed();
  bool ok = false;
  double value = QLocale::c().toDouble(trimmed, &ok);
  if (!ok) value = QLocale().toDouble(trimmed, &ok);
  if (ok && std::isfinite(value)) return value;
  return std::nullopt;
}

bool isIntegerType(const QString& declaredType) {
  return declaredType.contains(QLatin1String("INT"));
}

}  // namespace

void ResultSet::open(Connection& connection, const QString& sql) {
  close();
  m_connection = &connection;
  m_sql = sql;
  m_table = sourceTable(sql);
  try {
    read();
  } catch (...) {
    close();
    throw;
  }
  applyFilter(FilterExpression());
}

void ResultSet::requery() {
  if (!m_connection) return;
  read();
  FilterExpression filter;
  try {
    filter = FilterExpression::parse(m_filter, [this] {
      std::vector<FilterExpression::Field> fields;
      for (const ResultColumn& c : m_columns) fields.push_back({c.name, c.numeric});
      return fields;
    }());
  } catch (const Error&) {
    // The columns changed under the filter; show every row rather than none.
    m_filter.clear();
  }
  applyFilter(filter);
}

void ResultSet::close() {
  m_connection = nullptr;
  m_sql.clear();
  m_table.clear();
  m_filter.clear();
  m_idColumn = -1;
  m_columns.clear();
  m_data.clear();
  m_ids.clear();
  m_deleted.clear();
  m_visible.clear();
  m_changed.clear();
  m_records = 0;
  m_liveRows = 0;
}

void ResultSet::read() {
  Statement statement = m_connection->prepare(
      m_sql, QStringLiteral("Opening the query \"") + m_sql + QStringLiteral("\""));
  const int columns = statement.columnCount();

  std::vector<ColumnInfo> tableColumns;
  if (!m_table.isEmpty() && m_connection->tableExists(m_table))
    tableColumns = m_connection->columns(m_table);

  m_columns.assign(static_cast<std::size_t>(columns), ResultColumn());
  m_data.assign(static_cast<std::size_t>(columns), ColumnData());
  m_ids.clear();
  m_deleted.clear();
  m_changed.clear();
  m_idColumn = -1;
  for (int c = 0; c < columns; ++c) {
    ResultColumn& column = m_columns[static_cast<std::size_t>(c)];
    column.name = statement.columnName(c);
    for (const ColumnInfo& info : tableColumns) {
      if (info.name.compare(column.name, Qt::CaseInsensitive) == 0) {
        column.declaredType = info.declaredType;
        column.numeric = info.isNumeric();
        break;
      }
    }
    if (m_idColumn < 0 && column.name.compare(QLatin1String("ID"), Qt::CaseInsensitive) == 0)
      m_idColumn = c;
  }

  int records = 0;
  while (statement.step()) {
    for (int c = 0; c < columns; ++c) {
      ColumnData& data = m_data[static_cast<std::size_t>(c)];
      switch (statement.storageClass(c)) {
        case SQLITE_NULL:
          data.kinds.push_back(kNull);
          data.numbers.push_back(0);
          break;
        case SQLITE_INTEGER:
          data.kinds.push_back(kInteger);
          data.numbers.push_back(static_cast<double>(statement.int64(c)));
          break;
        case SQLITE_FLOAT:
          data.kinds.push_back(kReal);
          data.numbers.push_back(statement.real(c));
          break;
        default:
          data.kinds.push_back(kText);
          data.numbers.push_back(0);
          data.texts.resize(static_cast<std::size_t>(records));
          data.texts.push_back(statement.text(c));
          break;
      }
    }
    m_ids.push_back(m_idColumn >= 0 ? statement.int64(m_idColumn) : 0);
    ++records;
  }
  m_records = records;
  m_liveRows = records;
  m_deleted.assign(static_cast<std::size_t>(records), 0);

  // A column the table does not declare (an expression, a missing table) counts as numeric
  // when every value it holds is a number.
  for (int c = 0; c < columns; ++c) {
    ResultColumn& column = m_columns[static_cast<std::size_t>(c)];
    if (!column.declaredType.isEmpty()) continue;
    const std::vector<Kind>& kinds = m_data[static_cast<std::size_t>(c)].kinds;
    bool anyNumber = false;
    bool anyText = false;
    for (Kind k : kinds) {
      anyNumber = anyNumber || k == kInteger || k == kReal;
      anyText = anyText || k == kText;
    }
    column.numeric = anyNumber && !anyText;
  }
}

int ResultSet::columnIndex(const QString& name) const {
  for (std::size_t c = 0; c < m_columns.size(); ++c)
    if (m_columns[c].name.compare(name, Qt::CaseInsensitive) == 0) return static_cast<int>(c);
  return -1;
}

QVariant ResultSet::storedValue(int record, int column) const {
  const ColumnData& data = m_data[static_cast<std::size_t>(column)];
  const auto r = static_cast<std::size_t>(record);
  switch (data.kinds[r]) {
    case kNull:
      return {};
    case kInteger:
      return QVariant(static_cast<qint64>(data.numbers[r]));
    case kReal:
      return QVariant(data.numbers[r]);
    case kText:
      return QVariant(data.texts[r]);
  }
  return {};
}

void ResultSet::store(int record, int column, const QVariant& value) {
  ColumnData& data = m_data[static_cast<std::size_t>(column)];
  const auto r = static_cast<std::size_t>(record);
  switch (value.typeId()) {
    case QMetaType::UnknownType:
      data.kinds[r] = kNull;
      break;
    case QMetaType::LongLong:
    case QMetaType::Int:
      data.kinds[r] = kInteger;
      data.numbers[r] = static_cast<double>(value.toLongLong());
      break;
    case QMetaType::Double:
      data.kinds[r] = kReal;
      data.numbers[r] = value.toDouble();
      break;
    default:
      data.kinds[r] = kText;
      if (data.texts.size() < static_cast<std::size_t>(m_records))
        data.texts.resize(static_cast<std::size_t>(m_records));
      data.texts[r] = value.toString();
      break;
  }
}

QVariant ResultSet::value(int row, int column) const {
  if (row < 0 || row >= rowCount() || column < 0 || column >= columnCount()) return {};
  return storedValue(record(row), column);
}

bool ResultSet::isNull(int row, int column) const { return !value(row, column).isValid(); }

QString ResultSet::text(int row, int column) const {
  if (row < 0 || row >= rowCount() || column < 0 || column >= columnCount()) return {};
  const ColumnData& data = m_data[static_cast<std::size_t>(column)];
  const auto r = static_cast<std::size_t>(record(row));
  switch (data.kinds[r]) {
    case kNull:
      return {};
    case kInteger:
      return QString::number(static_cast<qint64>(data.numbers[r]));
    case kReal:
      return floatText(static_cast<float>(data.numbers[r]));
    case kText:
      return data.texts[r];
  }
  return {};
}

void ResultSet::setText(int row, int column, const QString& text) {
  if (row < 0 || row >= rowCount() || column < 0 || column >= columnCount()) return;
  if (!isChanged(row, column) && text == this->text(row, column)) return;
  const int rec = record(row);
  store(rec, column, text.isEmpty() ? QVariant() : QVariant(text));
  std::vector<int>& changed = m_changed[rec];
  if (std::find(changed.begin(), changed.end(), column) == changed.end()) changed.push_back(column);
}

bool ResultSet::isChanged(int row, int column) const {
  if (row < 0 || row >= rowCount()) return false;
  const auto it = m_changed.find(record(row));
  return it != m_changed.end() &&
         std::find(it->second.begin(), it->second.end(), column) != it->second.end();
}

bool ResultSet::rowChanged(int row) const {
  return row >= 0 && row < rowCount() && m_changed.count(record(row)) > 0;
}

std::int64_t ResultSet::id(int row) const {
  if (row < 0 || row >= rowCount()) return 0;
  return m_ids[static_cast<std::size_t>(record(row))];
}

int ResultSet::findId(std::int64_t id) const {
  if (m_idColumn < 0) return -1;
  for (std::size_t row = 0; row < m_visible.size(); ++row)
    if (m_ids[static_cast<std::size_t>(m_visible[row])] == id) return static_cast<int>(row);
  return -1;
}

void ResultSet::updateRow(int row) {
  if (row < 0 || row >= rowCount()) return;
  const int rec = record(row);
  const auto it = m_changed.find(rec);
  if (it == m_changed.end()) return;
  if (m_table.isEmpty() || m_idColumn < 0)
    throw Error(QStringLiteral("The rows of \"") + m_sql +
                QStringLiteral("\" cannot be written back: the query reads no table by ID."));

  // Check every cell before writing any, so a bad cell leaves the record untouched.
  struct Binding {
    int column;
    QVariant value;  // invalid: NULL; qint64, float or QString otherwise
  };
  std::vector<Binding> bindings;
  for (int c : it->second) {
    const ResultColumn& column = m_columns[static_cast<std::size_t>(c)];
    const QVariant cell = storedValue(rec, c);
    if (!cell.isValid() || !column.numeric || cell.typeId() != QMetaType::QString) {
      bindings.push_back({c, cell});
      continue;
    }
    const QString text = cell.toString();
    if (text.trimmed().isEmpty()) {
      bindings.push_back({c, QVariant()});
      continue;
    }
    const auto refuse = [&](const QString& holds) {
      return Error(QStringLiteral("The column ") + column.name + QStringLiteral(" of ") + m_table +
                   QStringLiteral(" holds ") + holds + QStringLiteral(", not \"") + text +
                   QStringLiteral("\"."));
    };
    const std::optional<double> number = parseNumber(text);
    if (!number) throw refuse(QStringLiteral("numbers"));
    if (isIntegerType(column.declaredType) && *number == std::floor(*number) &&
        std::fabs(*number) < 9e15) {
      bindings.push_back({c, QVariant(static_cast<qint64>(*number))});
      continue;
    }
    // A single beyond its range is infinite, which no measure may be.
    if (std::fabs(*number) > std::numeric_limits<float>::max())
      throw refuse(QStringLiteral("numbers from -") + floatText(std::numeric_limits<float>::max()) +
                   QStringLiteral(" to ") + floatText(std::numeric_limits<float>::max()));
    bindings.push_back({c, QVariant(static_cast<float>(*number))});
  }

  QString sql = QStringLiteral("UPDATE ") + quoteName(m_table) + QStringLiteral(" SET ");
  for (std::size_t i = 0; i < bindings.size(); ++i) {
    if (i > 0) sql += QStringLiteral(", ");
    sql += quoteName(m_columns[static_cast<std::size_t>(bindings[i].column)].name) +
           QStringLiteral("=?");
  }
  sql += QStringLiteral(" WHERE ") +
         quoteName(m_columns[static_cast<std::size_t>(m_idColumn)].name) + QStringLiteral("=?");
  const std::int64_t key = m_ids[static_cast<std::size_t>(rec)];
  Statement statement =
      m_connection->prepare(sql, QStringLiteral("Writing the row with ID ") + QString::number(key) +
                                     QStringLiteral(" of ") + m_table);
  int index = 1;
  for (const Binding& b : bindings) {
    switch (b.value.typeId()) {
      case QMetaType::UnknownType:
        statement.bindNull(index);
        break;
      case QMetaType::LongLong:
        statement.bindInt64(index, b.value.toLongLong());
        break;
      case QMetaType::Float:
        statement.bindMeasure(index, b.value.toFloat());
        break;
      case QMetaType::Double:
        statement.bindDouble(index, b.value.toDouble());
        break;
      default:
        statement.bindText(index, b.value.toString());
        break;
    }
    ++index;
  }
  statement.bindInt64(index, key);
  statement.run();
  // An UPDATE that finds no row succeeds; the edit must not pass for written.
  if (m_connection->changes() == 0)
    throw Error(QStringLiteral("The row with ID ") + QString::number(key) + QStringLiteral(" of ") +
                m_table +
                QStringLiteral(" is no longer in the project file; it was deleted after the sheet "
                               "was opened."));

  // Keep the cells as the table now holds them.
  for (const Binding& b : bindings) {
    QVariant stored = b.value;
    if (stored.typeId() == QMetaType::Float) stored = QVariant(measureToDouble(stored.toFloat()));
    store(rec, b.column, stored);
    if (b.column == m_idColumn && stored.isValid())
      m_ids[static_cast<std::size_t>(rec)] = stored.toLongLong();
  }
  m_changed.erase(rec);
}

void ResultSet::deleteRow(int row) { deleteRows({row}); }

void ResultSet::deleteRows(std::vector<int> rows, const std::function<void(int done)>& onRecord) {
  std::erase_if(rows, [this](int row) { return row < 0 || row >= rowCount(); });
  if (rows.empty()) return;
  if (m_table.isEmpty() || m_idColumn < 0)
    throw Error(QStringLiteral("The rows of \"") + m_sql +
                QStringLiteral("\" cannot be deleted: the query reads no table by ID."));
  std::sort(rows.begin(), rows.end());
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());

  // A savepoint, so that the deletion also joins a transaction that is already open.
  Savepoint work(*m_connection, QStringLiteral("delete_rows"));
  Statement remove = m_connection->prepare(
      QStringLiteral("DELETE FROM ") + quoteName(m_table) + QStringLiteral(" WHERE ") +
          quoteName(m_columns[static_cast<std::size_t>(m_idColumn)].name) + QStringLiteral("=?"),
      QStringLiteral("Deleting rows of ") + m_table);
  int done = 0;
  for (int row : rows) {
    const std::int64_t key = m_ids[static_cast<std::size_t>(record(row))];
    try {
      remove.reset();
      remove.bindInt64(1, key).run();
    } catch (const Error&) {
      throw Error(QStringLiteral("Deleting the row with ID ") + QString::number(key) +
                  QStringLiteral(" of ") + m_table + QStringLiteral(": ") +
                  m_connection->lastErrorText());
    }
    if (onRecord) onRecord(++done);
  }
  remove.reset();
  work.release();

  for (int row : rows) {
    const int rec = record(row);
    m_deleted[static_cast<std::size_t>(rec)] = 1;
    m_changed.erase(rec);
  }
  std::erase_if(m_visible, [this](int rec) { return m_deleted[static_cast<std::size_t>(rec)]; });
  m_liveRows -= static_cast<int>(rows.size());
}

void ResultSet::setFilter(const QString& expression) {
  std::vector<FilterExpression::Field> fields;
  fields.reserve(m_columns.size());
  for (const ResultColumn& c : m_columns) fields.push_back({c.name, c.numeric});
  const FilterExpression filter = FilterExpression::parse(expression, fields);
  applyFilter(filter);
  m_filter = expression;
}

void ResultSet::applyFilter(const FilterExpression& filter) {
  m_visible.clear();
  m_visible.reserve(static_cast<std::size_t>(m_liveRows));
  int rec = 0;
  const auto cell = [this, &rec](int column) { return storedValue(rec, column); };
  for (; rec < m_records; ++rec) {
    if (m_deleted[static_cast<std::size_t>(rec)]) continue;
    if (filter.isEmpty() || filter.matches(cell)) m_visible.push_back(rec);
  }
}

}  // namespace db
