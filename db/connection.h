#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace db {

// A failed database operation. what() says what was being done and SQLite's own message,
// for example: "Reading Initial rows of section 3: no such column: Offset".
class Error : public std::runtime_error {
 public:
  explicit Error(const QString& message);
  QString message() const { return QString::fromUtf8(what()); }
};

// A column as the table declares it.
struct ColumnInfo {
  QString name;
  QString declaredType;  // as written in CREATE TABLE, upper-cased; may be empty
  bool isNumeric() const;
};

class Connection;

// A prepared statement with bound parameters (1-based) and null-aware typed reads (0-based),
// as SQLite numbers them. Moves, never copies; finalized on destruction.
class Statement {
 public:
  Statement() = default;
  Statement(Statement&& other) noexcept;
  Statement& operator=(Statement&& other) noexcept;
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;
  ~Statement();

  // Measures are bound through measureToDouble, so 0.1f binds as 0.1.
  Statement& bindMeasure(int index, float value);
  Statement& bindMeasure(int index, std::optional<float> value);
  Statement& bindKey(int index, std::int32_t value);
  Statement& bindInt64(int index, std::int64_t value);
  Statement& bindDouble(int index, double value);
  Statement& bindText(int index, const QString& value);
  Statement& bindNull(int index);

  // Runs one step; true while a row is available. Throws Error on failure.
  bool step();
  // Steps to the end; for statements that return no rows.
  void run();
  void reset();

  int columnCount() const;
  QString columnName(int column) const;
  bool isNull(int column) const;
  // A stored number narrowed to single; 0 when null. Text that reads as a number counts.
  float measure(int column) const;
  std::optional<float> optionalMeasure(int column) const;
  double real(int column) const;
  std::int32_t key(int column) const;
  std::int64_t int64(int column) const;
  // The value as text, whatever its storage class; numbers in their shortest form.
  QString text(int column) const;
  // SQLite storage class of the current value: SQLITE_INTEGER, SQLITE_FLOAT, SQLITE_TEXT, ...
  int storageClass(int column) const;

  const QString& sql() const { return m_sql; }

 private:
  friend class Connection;
  Statement(Connection* connection, sqlite3_stmt* statement, QString sql, QString what);
  [[noreturn]] void fail(int rc) const;

  Connection* m_connection = nullptr;
  sqlite3_stmt* m_stmt = nullptr;
  QString m_sql;
  QString m_what;
};

// The one open project file. Every statement of the program runs on it.
class Connection {
 public:
  enum class Mode { OpenExisting, Create };

  // Opens (or with Create, creates) the file. Throws Error naming the file and the reason:
  // missing file, not an SQLite database, locked by another program.
  static std::unique_ptr<Connection> open(const QString& path, Mode mode = Mode::OpenExisting);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  // what: a short description of the work, used in the error text ("Reading the design profile").
  Statement prepare(const QString& sql, const QString& what = {});
  void exec(const QString& sql, const QString& what = {});
  // The first column of the first row, or nullopt when there is no row or it is null.
  std::optional<double> scalar(const QString& sql, const QString& what = {});

  bool tableExists(const QString& table);
  std::vector<ColumnInfo> columns(const QString& table);
  std::int64_t changes() const;
  std::int64_t lastInsertRowId() const;

  const QString& path() const { return m_path; }
  sqlite3* handle() const { return m_db; }
  QString lastErrorText() const;

 private:
  Connection(sqlite3* db, QString path);
  sqlite3* m_db = nullptr;
  QString m_path;
};

// BEGIN ... COMMIT; rolls back when destroyed without commit().
class Transaction {
 public:
  explicit Transaction(Connection& connection);
  ~Transaction();
  void commit();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

 private:
  Connection& m_connection;
  bool m_open = true;
};

// A named savepoint inside a transaction: release() keeps its work, rollback() undoes it;
// destroyed while open, it rolls back.
class Savepoint {
 public:
  Savepoint(Connection& connection, QString name);
  ~Savepoint();
  void release();
  void rollback();
  Savepoint(const Savepoint&) = delete;
  Savepoint& operator=(const Savepoint&) = delete;

 private:
  Connection& m_connection;
  QString m_name;
  bool m_open = true;
};

// "[name]" with any ']' doubled: a table or column name that is safe inside a statement.
QString quoteName(const QString& name);

}  // namespace db
