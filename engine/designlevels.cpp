#include "engine/designlevels.h"

#include "db/numbers.h"
#include "engine/session.h"
#include "engine/statementcache.h"

#include <optional>

namespace engine {

namespace {

QString chainageLine(float chainage, const QString& text) {
  return QStringLiteral("Chainage : ") + db::floatText(chainage) + QLatin1Char('>') + text;
}

const QString kUnknownError = QStringLiteral("Unknown Error encountered. This is inconceivable");

// The DesignLevels row at a chainage: whether there is one, and its level (nothing when null).
struct LevelRow {
  bool found = false;
  std::optional<float> level;
};

LevelRow levelRowAt(EngineSession& session, float chainage) {
  StatementUse st(cachedStatement(
      session.levels().levelAt, session.connection(),
      QStringLiteral(
          "SELECT [Level] FROM DesignLevels WHERE SectionID=? AND Chainage BETWEEN ? AND ?"),
      QStringLiteral("Reading the design level")));
  st->bindKey(1, session.sectionId()).bindMeasureRange(2, chainage);
  LevelRow row;
  if (st->step()) {
    row.found = true;
    row.level = st->optionalMeasure(0);
  }
  return row;
}

// The nearest stored chainage beyond bound, one end of the doubles of a chainage's single, so
// that a stored chainage equal to it as a single is never its own neighbour.
std::optional<float> neighbour(EngineSession& session, db::Statement& slot, const QString& sql,
                               double bound) {
  StatementUse st(cachedStatement(slot, session.connection(), sql,
                                  QStringLiteral("Finding the neighbouring design levels")));
  st->bindKey(1, session.sectionId()).bindDouble(2, bound);
  if (!st->step()) return std::nullopt;
  return st->optionalMeasure(0);
}

float interpolate(const DesignLevelState& c, float chainage) {
  const double slope = (static_cast<double>(c.UpperLevel) - c.LowerLevel) /
                       (static_cast<double>(c.UpperChainage) - c.LowerChainage);
  return static_cast<float>(slope * (static_cast<double>(chainage) - c.LowerChainage) +
                            c.LowerLevel);
}

}  // namespace

float DesignLevelAt(EngineSession& session, float chainage, bool& interpolated, bool quiet) {
  DesignLevelState& c = session.levels();
  Reporter& reporter = session.reporter();
  interpolated = false;

  if (!c.Reload && c.LowerLevel > 0 && c.UpperLevel > 0 && c.LowerChainage <= chainage &&
      chainage <= c.UpperChainage && c.UpperChainage != c.LowerChainage) {
    interpolated = chainage != c.LowerChainage && chainage != c.UpperChainage;
    return interpolate(c, chainage);
  }

  // A stored level is returned as it is; the cache keeps its interval.
  const LevelRow exact = levelRowAt(session, chainage);
  if (exact.found) {
    if (!exact.level) {
      reporter.ShowError(
          chainageLine(chainage, QStringLiteral("Design level cannot be a NUL value.")));
      return 0;
    }
    return *exact.level;
  }
  interpolated = true;

  const auto lower = neighbour(
      session, c.lowerChainage,
      QStringLiteral("SELECT max(Chainage) FROM DesignLevels WHERE SectionID=? AND Chainage<?"),
      db::measureRange(chainage).low);
  if (!lower) {
    if (!quiet)
      reporter.ShowError(chainageLine(
          chainage, QStringLiteral("Insufficient levels in design. Lower Design level not found")));
    return 0;
  }
  c.LowerChainage = *lower;
  const LevelRow lowerRow = levelRowAt(session, c.LowerChainage);
  if (!lowerRow.found || !lowerRow.level) {
    if (!quiet) reporter.ShowError(chainageLine(chainage, kUnknownError));
    return 0;
  }
  c.LowerLevel = *lowerRow.level;

  const auto upper = neighbour(
      session, c.upperChainage,
      QStringLiteral("SELECT min(Chainage) FROM DesignLevels WHERE SectionID=? AND Chainage>?"),
      db::measureRange(chainage).high);
  // Beyond the last design level the last level is held flat.
  if (!upper) return c.LowerLevel;
  c.UpperChainage = *upper;
  const LevelRow upperRow = levelRowAt(session, c.UpperChainage);
  if (!upperRow.found || !upperRow.level) {
    if (!quiet) reporter.ShowError(chainageLine(chainage, kUnknownError));
    return 0;
  }
  c.UpperLevel = *upperRow.level;
  c.Reload = false;
  return interpolate(c, chainage);
}

void SyncQuantityChainages(EngineSession& session) {
  db::Connection& connection = session.connection();
  Reporter& reporter = session.reporter();
  const std::int32_t section = session.sectionId();

  reporter.progressStart(QStringLiteral("Inserting new chainages in Quantity..."), 0, false);
  bool haveQuantities = false;
  {
    db::Statement st =
        connection.prepare(QStringLiteral("SELECT Chainage FROM DesignQty WHERE SectionID=?"),
                           QStringLiteral("Reading the quantity chainages"));
    st.bindKey(1, section);
    haveQuantities = st.step();
  }
  // Chainages are compared as singles (the SQL function single), so one another program wrote
  // as 12.39999999999999 is the 12.4 of the other table. Null chainages take no part in the
  // lists.
  QString sql = QStringLiteral(
      "INSERT INTO DesignQty (Chainage, SectionID) SELECT min(Chainage), SectionID FROM Initial "
      "WHERE SectionID=?1");
  if (haveQuantities)
    sql += QStringLiteral(
        " AND single(Chainage) NOT IN (SELECT single(Chainage) FROM DesignQty WHERE SectionID=?1 "
        "AND single(Chainage) IS NOT NULL)");
  sql += QStringLiteral(" GROUP BY single(Chainage)");
  connection.prepare(sql, QStringLiteral("Inserting new chainages in DesignQty"))
      .bindKey(1, section)
      .run();

  reporter.progressStart(QStringLiteral("Deleting old chainages from Quantity..."), 0, false);
  if (haveQuantities) {
    db::Statement surveyed = connection.prepare(
        QStringLiteral(
            "SELECT DISTINCT Chainage FROM Initial WHERE SectionID=? AND Chainage IS NOT NULL"),
        QStringLiteral("Reading the surveyed chainages"));
    surveyed.bindKey(1, section);
    const bool haveSurveyed = surveyed.step();
    surveyed.reset();
    // With no survey left, the quantity chainages are kept rather than all deleted.
    if (haveSurveyed)
      connection
          .prepare(QStringLiteral("DELETE FROM DesignQty WHERE SectionID=?1 AND single(Chainage) "
                                  "NOT IN (SELECT single(Chainage) FROM Initial WHERE "
                                  "SectionID=?1 AND single(Chainage) IS NOT NULL)"),
                   QStringLiteral("Deleting old chainages from DesignQty"))
          .bindKey(1, section)
          .run();
  }
  reporter.progressEnd();
}

}  // namespace engine
