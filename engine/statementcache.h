#pragma once

#include "db/connection.h"

#include <QString>

namespace engine {

// A statement the engine runs at every chainage: prepared on first use, then kept in the state
// object that owns it for as long as the session lives.
inline db::Statement& cachedStatement(db::Statement& slot, db::Connection& connection,
                                      const QString& sql, const QString& what) {
  if (slot.sql().isEmpty()) slot = connection.prepare(sql, what);
  return slot;
}

// Rewinds a cached statement and drops its bindings when the scope ends, so that a read never
// holds the database open between chainages and the next use starts clean.
class StatementUse {
 public:
  explicit StatementUse(db::Statement& statement) : m_statement(statement) { m_statement.reset(); }
  ~StatementUse() { m_statement.reset(); }
  StatementUse(const StatementUse&) = delete;
  StatementUse& operator=(const StatementUse&) = delete;
  db::Statement* operator->() { return &m_statement; }
  db::Statement& operator*() { return m_statement; }

 private:
  db::Statement& m_statement;
};

}  // namespace engine
