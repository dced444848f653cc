#include "db/connection.h"

#include "db/numbers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include <sqlite3.h>

#include <cmath>
#include <limits>

namespace db {

namespace {

constexpr int kBusyTimeoutMs = 2000;

QString describe(const QString& what, const QString& sqliteMessage) {
  return what.isEmpty() ? sqliteMessage : what + QStringLiteral(": ") + sqliteMessage;
}

}  // namespace

Error::Error(const QString& message) : std::runtime_error(message.toStdString()) {}

bool ColumnInfo::isNumeric() const {
  const QString t = declaredType;
  return t.contains(QLatin1String("INT")) || t.contains(QLatin1String("REAL")) ||
         t.contains(QLatin1String("FLOA")) || t.contains(QLatin1String("DOUB")) ||
         t.contains(QLatin1String("NUM")) || t.contains(QLatin1String("DEC")) ||
         t.contains(QLatin1String("SINGLE")) || t.contains(QLatin1String("CURRENCY"));
}

// ---- Statement ------------------------------------------------------------------------------

Statement::Statement(Connection* connection, sqlite3_stmt* statement, QString sql, QString what)
    : m_connection(connection), m_stmt(statement), m_sql(std::move(sql)), m_what(std::move(what)) {}

Statement::Statement(Statement&& other) noexcept
    : m_connection(other.m_connection),
      m_stmt(other.m_stmt),
      m_sql(std::move(other.m_sql)),
      m_what(std::move(other.m_what)) {
  other.m_stmt = nullptr;
}

Statement& Statement::operator=(Statement&& other) noexcept {
  if (this != &other) {
    sqlite3_finalize(m_stmt);
    m_connection = other.m_connection;
    m_stmt = other.m_stmt;
    m_sql = std::move(other.m_sql);
    m_what = std::move(other.m_what);
    other.m_stmt = nullptr;
  }
  return *this;
}

Statement::~Statement() { sqlite3_finalize(m_stmt); }

void Statement::fail(int rc) const {
  QString message =
      m_connection ? m_connection->lastErrorText() : QString::fromUtf8(sqlite3_errstr(rc));
  throw Error(describe(m_what.isEmpty() ? m_sql : m_what, message));
}

Statement& Statement::bindMeasure(int index, float value) {
  return bindDouble(index, measureToDouble(value));
}

Statement& Statement::bindMeasure(int index, std::optional<float> value) {
  return value ? bindMeasure(index, *value) : bindNull(index);
}

Statement& Statement::bindMeasureRange(int index, float value) {
  const MeasureRange range = measureRange(value);
  return bindDouble(index, range.low).bindDouble(index + 1, range.high);
}

Statement& Statement::bindKey(int index, std::int32_t value) { return bindInt64(index, value); }

Statement& Statement::bindInt64(int index, std::int64_t value) {
  if (int rc = sqlite3_bind_int64(m_stmt, index, value); rc != SQLITE_OK) fail(rc);
  return *this;
}

Statement& Statement::bindDouble(int index, double value) {
  if (int rc = sqlite3_bind_double(m_stmt, index, value); rc != SQLITE_OK) fail(rc);
  return *this;
}

Statement& Statement::bindText(int index, const QString& value) {
  const QByteArray utf8 = value.toUtf8();
  if (int rc = sqlite3_bind_text(m_stmt, index, utf8.constData(), static_cast<int>(utf8.size()),
                                 SQLITE_TRANSIENT);
      rc != SQLITE_OK)
    fail(rc);
  return *this;
}

Statement& Statement::bindNull(int index) {
  if (int rc = sqlite3_bind_null(m_stmt, index); rc != SQLITE_OK) fail(rc);
  return *this;
}

bool Statement::step() {
  int rc = sqlite3_step(m_stmt);
  if (rc == SQLITE_ROW) return true;
  if (rc == SQLITE_DONE) return false;
  fail(rc);
}

void Statement::run() {
  while (step()) {
  }
}

void Statement::reset() {
  sqlite3_reset(m_stmt);
  sqlite3_clear_bindings(m_stmt);
}

int Statement::columnCount() const { return sqlite3_column_count(m_stmt); }

QString Statement::columnName(int column) const {
  return QString::fromUtf8(sqlite3_column_name(m_stmt, column));
}

bool Statement::isNull(int column) const {
  return sqlite3_column_type(m_stmt, column) == SQLITE_NULL;
}

int Statement::storageClass(int column) const { return sqlite3_column_type(m_stmt, column); }

float Statement::measure(int column) const { return optionalMeasure(column).value_or(0.0f); }

std::optional<float> Statement::optionalMeasure(int column) const {
  const std::optional<double> v = number(column);
  if (!v) return std::nullopt;
  const float measure = doubleToMeasure(*v);
  if (!std::isfinite(measure)) return std::nullopt;
  return measure;
}

std::optional<double> Statement::number(int column) const {
  double v = 0.0;
  switch (sqlite3_column_type(m_stmt, column)) {
    case SQLITE_INTEGER:
    case SQLITE_FLOAT:
      v = sqlite3_column_double(m_stmt, column);
      break;
    case SQLITE_TEXT: {
      bool ok = false;
      v = text(column).trimmed().toDouble(&ok);
      if (!ok) return std::nullopt;
      break;
    }
    default:  // null, blob
      return std::nullopt;
  }
  if (!std::isfinite(v)) return std::nullopt;
  return v;
}

bool Statement::isBlob(int column) const {
  return sqlite3_column_type(m_stmt, column) == SQLITE_BLOB;
}

double Statement::real(int column) const { return sqlite3_column_double(m_stmt, column); }

std::int32_t Statement::key(int column) const {
  const std::int64_t v = sqlite3_column_int64(m_stmt, column);
  if (v > std::numeric_limits<std::int32_t>::max() || v < std::numeric_limits<std::int32_t>::min())
    return 0;
  return static_cast<std::int32_t>(v);
}

std::int64_t Statement::int64(int column) const { return sqlite3_column_int64(m_stmt, column); }

QString Statement::text(int column) const {
  switch (sqlite3_column_type(m_stmt, column)) {
    case SQLITE_NULL:
      return {};
    case SQLITE_INTEGER:
      return QString::number(sqlite3_column_int64(m_stmt, column));
    case SQLITE_FLOAT: {
      // A double in its shortest round-trip form.
      const double v = sqlite3_column_double(m_stmt, column);
      // As SQLite itself writes an infinity when it turns one into text.
      if (std::isinf(v)) return v > 0 ? QStringLiteral("Inf") : QStringLiteral("-Inf");
      if (std::isfinite(v) && v == std::floor(v) && std::fabs(v) < 1e15)
        return QString::number(static_cast<qint64>(v));
      return QString::number(v, 'g', QLocale::FloatingPointShortest);
    }
    default: {
      const auto* p = reinterpret_cast<const char*>(sqlite3_column_text(m_stmt, column));
      return QString::fromUtf8(p, sqlite3_column_bytes(m_stmt, column));
    }
  }
}

// ---- Connection -----------------------------------------------------------------------------

Connection::Connection(sqlite3* db, QString path) : m_db(db), m_path(std::move(path)) {}

Connection::~Connection() { sqlite3_close_v2(m_db); }

namespace {

// single(x): the number x narrowed to a single and widened again, so that a statement compares
// measures as the program holds them; null for null and for what is no number.
void singleOf(sqlite3_context* context, int, sqlite3_value** arguments) {
  const int type = sqlite3_value_numeric_type(arguments[0]);
  if (type != SQLITE_INTEGER && type != SQLITE_FLOAT) {
    sqlite3_result_null(context);
    return;
  }
  const float narrowed = static_cast<float>(sqlite3_value_double(arguments[0]));
  sqlite3_result_double(context, static_cast<double>(narrowed));
}

// Opens path and reads its schema. sqlite3_open_v2 is lazy: reading the schema is what tells a
// database from any other file, and taking a shared lock is what tells that another program
// holds it. Returns SQLite's code of the first failure, SQLITE_OK when the file can be read.
int openAndProbe(const QByteArray& fileName, int flags, sqlite3*& db) {
  int rc = sqlite3_open_v2(fileName.constData(), &db, flags, nullptr);
  if (rc != SQLITE_OK) return rc;
  sqlite3_busy_timeout(db, kBusyTimeoutMs);
  sqlite3_extended_result_codes(db, 1);
  sqlite3_create_function_v2(db, "single", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr,
                             &singleOf, nullptr, nullptr, nullptr);
  sqlite3_stmt* probe = nullptr;
  rc = sqlite3_prepare_v2(db, "SELECT count(*) FROM sqlite_master", -1, &probe, nullptr);
  if (rc == SQLITE_OK) rc = sqlite3_step(probe);
  sqlite3_finalize(probe);
  return rc == SQLITE_ROW ? SQLITE_OK : rc;
}

}  // namespace

std::unique_ptr<Connection> Connection::open(const QString& path, Mode mode) {
  if (path.isEmpty()) throw Error(QStringLiteral("No project file was named."));
  const QFileInfo info(fileSystemPath(path));
  if (info.isDir())
    throw Error(QStringLiteral("The project file \"%1\" is a folder, not a file.").arg(path));
  if (mode != Mode::Create && !info.isFile())
    throw Error(QStringLiteral("The project file \"%1\" does not exist.").arg(path));
  if (mode == Mode::Create && (info.exists() || info.isSymLink()))
    throw Error(QStringLiteral("The file \"%1\" already exists.").arg(path));

  const QByteArray fileName = QFile::encodeName(info.filePath());
  int flags = SQLITE_OPEN_READWRITE;
  if (mode == Mode::Create) flags |= SQLITE_OPEN_CREATE;
  if (mode == Mode::ReadOnly) flags = SQLITE_OPEN_READONLY;
  sqlite3* raw = nullptr;
  int rc = openAndProbe(fileName, flags, raw);
  if (rc == SQLITE_READONLY_ROLLBACK) {
    // A writer was stopped half-way: its journal must be played back before anyone reads the
    // file, and only a connection that may write can do that.
    sqlite3_close_v2(raw);
    raw = nullptr;
    rc = openAndProbe(fileName, SQLITE_OPEN_READWRITE, raw);
    if (rc == SQLITE_OK) {
      sqlite3_close_v2(raw);
      raw = nullptr;
      rc = openAndProbe(fileName, flags, raw);
    }
  }
  std::unique_ptr<Connection> connection(new Connection(raw, path));
  if (rc != SQLITE_OK) {
    const int primary = rc & 0xff;
    QString reason;
    if (primary == SQLITE_NOTADB)
      reason = QStringLiteral("it is not a Delvane project file (not an SQLite database)");
    else if (primary == SQLITE_BUSY || primary == SQLITE_LOCKED)
      reason = QStringLiteral("it is locked by another program");
    else
      reason = QString::fromUtf8(raw ? sqlite3_errmsg(raw) : sqlite3_errstr(rc));
    throw Error(QStringLiteral("The project file \"%1\" cannot be opened: %2.").arg(path, reason));
  }
  return connection;
}

bool Connection::isReadOnly() const { return sqlite3_db_readonly(m_db, "main") == 1; }

QString Connection::lastErrorText() const { return QString::fromUtf8(sqlite3_errmsg(m_db)); }

Statement Connection::prepare(const QString& sql, const QString& what) {
  sqlite3_stmt* stmt = nullptr;
  const QByteArray utf8 = sql.toUtf8();
  int rc =
      sqlite3_prepare_v2(m_db, utf8.constData(), static_cast<int>(utf8.size()), &stmt, nullptr);
  if (rc != SQLITE_OK) {
    sqlite3_finalize(stmt);
    throw Error(describe(what.isEmpty() ? sql : what, lastErrorText()));
  }
  return Statement(this, stmt, sql, what);
}

void Connection::exec(const QString& sql, const QString& what) { prepare(sql, what).run(); }

std::optional<double> Connection::scalar(const QString& sql, const QString& what) {
  Statement st = prepare(sql, what);
  if (!st.step() || st.isNull(0)) return std::nullopt;
  return st.real(0);
}

bool Connection::tableExists(const QString& table) {
  Statement st = prepare(
      QStringLiteral("SELECT 1 FROM sqlite_master WHERE type IN ('table','view') AND name=? "
                     "COLLATE NOCASE"),
      QStringLiteral("Looking for table %1").arg(table));
  st.bindText(1, table);
  return st.step();
}

std::vector<ColumnInfo> Connection::columns(const QString& table) {
  std::vector<ColumnInfo> out;
  Statement st = prepare(QStringLiteral("SELECT name, type FROM pragma_table_info(?)"),
                         QStringLiteral("Reading the columns of %1").arg(table));
  st.bindText(1, table);
  while (st.step()) out.push_back({st.text(0), st.text(1).toUpper()});
  return out;
}

std::int64_t Connection::changes() const { return sqlite3_changes64(m_db); }

std::int64_t Connection::lastInsertRowId() const { return sqlite3_last_insert_rowid(m_db); }

// ---- Transaction / Savepoint ------------------------------------------------------------------

Transaction::Transaction(Connection& connection) : m_connection(connection) {
  m_connection.exec(QStringLiteral("BEGIN"), QStringLiteral("Starting a transaction"));
}

Transaction::~Transaction() {
  if (m_open) sqlite3_exec(m_connection.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Transaction::commit() {
  m_connection.exec(QStringLiteral("COMMIT"), QStringLiteral("Committing the transaction"));
  m_open = false;
}

Savepoint::Savepoint(Connection& connection, QString name)
    : m_connection(connection), m_name(std::move(name)) {
  m_connection.exec(QStringLiteral("SAVEPOINT ") + quoteName(m_name));
}

Savepoint::~Savepoint() {
  if (m_open) {
    try {
      rollback();
    } catch (const Error&) {
      // The enclosing transaction is gone; nothing is left to undo.
    }
  }
}

void Savepoint::release() {
  m_connection.exec(QStringLiteral("RELEASE ") + quoteName(m_name));
  m_open = false;
}

void Savepoint::rollback() {
  m_open = false;
  m_connection.exec(QStringLiteral("ROLLBACK TO ") + quoteName(m_name));
  m_connection.exec(QStringLiteral("RELEASE ") + quoteName(m_name));
}

QString fileSystemPath(const QString& path) {
  if (path.startsWith(QLatin1Char('/'))) return path;
  return QDir::currentPath() + QLatin1Char('/') + path;
}

QString quoteName(const QString& name) {
  QString escaped = name;
  escaped.replace(QLatin1Char(']'), QLatin1String("]]"));
  return QLatin1Char('[') + escaped + QLatin1Char(']');
}

}  // namespace db
