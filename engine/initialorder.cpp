#include "engine/initialorder.h"

#include "db/connection.h"
#include "db/numbers.h"
#include "engine/session.h"
#include "engine/validation.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace engine {

namespace {

// One Initial row as read, in order of entry.
struct Reading {
  std::int64_t id = 0;
  std::optional<std::int64_t> sectionId;
  std::optional<double> chainage;  // nothing when null or empty text
  bool centreLine = false;         // the offset is 0 (a null offset is not)
};

int columnIndex(const db::Statement& statement, QLatin1String name) {
  for (int i = 0; i < statement.columnCount(); ++i)
    if (statement.columnName(i).compare(name, Qt::CaseInsensitive) == 0) return i;
  throw db::Error(QStringLiteral("Formatting the Initial table: the column ") + name +
                  QStringLiteral(" is missing"));
}

// A stored number exactly as stored (its text is the shortest round-trip form); text that is no
// number reads as 0.
std::optional<double> number(const db::Statement& st, int column) {
  if (st.isNull(column)) return std::nullopt;
  return st.text(column).trimmed().toDouble();
}

std::vector<Reading> readInOrderOfEntry(db::Connection& connection) {
  db::Statement st =
      connection.prepare(QStringLiteral("SELECT * from Initial ORDER BY SectionID, ID"),
                         QStringLiteral("Reading the Initial table"));
  const int id = columnIndex(st, QLatin1String("ID"));
  const int section = columnIndex(st, QLatin1String("SectionID"));
  const int chainage = columnIndex(st, QLatin1String("Chainage"));
  const int offset = columnIndex(st, QLatin1String("Offset"));
  std::vector<Reading> rows;
  while (st.step()) {
    Reading r;
    r.id = st.int64(id);
    if (!st.isNull(section)) r.sectionId = st.int64(section);
    // Only an empty text reads as empty: a stored number always has digits.
    if (!st.text(chainage).isEmpty()) r.chainage = number(st, chainage);
    const auto off = number(st, offset);
    r.centreLine = off && *off == 0.0;
    rows.push_back(r);
  }
  return rows;
}

}  // namespace

void FormatInitialTable(EngineSession& session) {
  db::Connection& connection = session.connection();
  Reporter& reporter = session.reporter();
  reporter.progressStart(QStringLiteral("Formatting Initial Table..."), 1, false);

  // The rows are taken in order of entry before any is changed; a row's changes only ever touch
  // itself and earlier rows of its section, so the pass sees what a live cursor would. One
  // savepoint keeps a table of many thousand readings from costing a disk sync per row. There is
  // no transaction to undo: on an error the rows visited so far stay corrected, and a rerun
  // completes the work.
  db::Savepoint work(connection, QStringLiteral("format_initial"));
  const std::vector<Reading> rows = readInOrderOfEntry(connection);
  db::Statement fill =
      connection.prepare(QStringLiteral("UPDATE Initial SET Chainage=? WHERE ID=?"),
                         QStringLiteral("Filling the chainage of an Initial row"));
  db::Statement negate = connection.prepare(
      QStringLiteral("UPDATE Initial SET Offset=-Offset WHERE ID < ? AND Offset > 0 AND "
                     "Chainage BETWEEN ? AND ? AND SectionID=?"),
      QStringLiteral("Turning the left-side offsets negative"));

  // Carried across sections: a section whose first reading has no chainage takes the last one
  // of the section before. Kept as stored, so filled rows compare equal to the row they copy.
  double lastChainage = 0;
  try {
    for (const Reading& row : rows) {
      if (!row.chainage) {
        fill.reset();
        fill.bindDouble(1, lastChainage).bindInt64(2, row.id).run();
      } else {
        lastChainage = *row.chainage;
      }
      if (row.centreLine) {
        negate.reset();
        // The readings of the chainage, compared as singles like every chainage lookup.
        negate.bindInt64(1, row.id).bindMeasureRange(2, db::doubleToMeasure(lastChainage));
        if (row.sectionId)
          negate.bindInt64(4, *row.sectionId);
        else
          negate.bindNull(4);
        negate.run();
      }
    }
  } catch (...) {
    fill.reset();
    negate.reset();
    try {
      work.release();
    } catch (const db::Error&) {
      // Nothing left to keep.
    }
    throw;
  }
  fill.reset();
  negate.reset();
  work.release();

  ValidateLevels(session, -1);
  reporter.progressEnd();
}

}  // namespace engine
