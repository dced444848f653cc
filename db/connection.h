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
  // Binds measureRange(value) to index (low) and index + 1 (high), for a lookup such as
  // "Chainage BETWEEN ? AND ?": it finds the stored measures equal to value at single precision
  // and keeps an index on the column in use.
  Statement& bindMeasureRange(int index, float value);
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
  // A stored number narrowed to single; 0 when null. Text that reads as a number counts ("152.4"
  // in a TEXT column); anything that is not a finite single (other text, a blob, NaN, ±∞, a value
  // beyond the single range) reads as null, so no such value reaches a computation.
  float measure(int column) const;
  std::optional<float> optionalMeasure(int column) const;
  // The stored value as a finite double: a number, or text that reads as one; nullopt for null,
  // other text, a blob, NaN and ±∞.
  std::optional<double> number(int column) const;
  bool isBlob(int column) const;
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
  // ReadOnly opens an existing file for reading only: no statement can change it.
  enum class Mode { OpenExisting, Create, ReadOnly };

  // Opens (or with Create, creates) the file. The path is always a plain file name, never an
  // SQLite URI or ":memory:". Throws Error naming the file and the reason: no name, missing
  // file, a folder, not an SQLite database, locked by another program.
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
  // Whether statements that write are refused: opened ReadOnly, or a file the user may not write.
  bool isReadOnly() const;
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

// The absolute path of a file name as the file system reads it: a name starting with ':' is a
// file in the current folder, not a Qt resource, and the result is never an SQLite ":memory:"
// name or "file:" URI.
QString fileSystemPath(const QString& path);

// "[name]" with any ']' doubled: a table or column name that is safe inside a statement.
QString quoteName(const QString& name);

}  // namespace db
