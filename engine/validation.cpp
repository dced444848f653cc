#include "engine/validation.h"

#include "db/numbers.h"
#include "engine/session.h"
#include "engine/statementcache.h"

namespace engine {

namespace {

// A value as it appears between the brackets of a line: nothing for null.
QString valueText(const db::Statement& st, int column) {
  if (st.isNull(column)) return {};
  if (const auto v = st.optionalMeasure(column)) return db::floatText(*v);
  return st.text(column);
}

}  // namespace

bool ValidateLevels(EngineSession& session, float chainage) {
  ValidationState& state = session.validation();
  db::Connection& connection = session.connection();
  Reporter& reporter = session.reporter();
  const bool wholeSection = chainage == -1;
  const QString filter =
      wholeSection ? QStringLiteral(" ORDER BY Chainage") : QStringLiteral(" AND Chainage=?");
  const QString lowest = QString::number(kMinLevel);
  const QString highest = QString::number(kMaxLevel);
  bool bad = false;

  {
    const QString sql =
        QStringLiteral(
            "SELECT Chainage, Offset, [Level] FROM Initial WHERE ([Level] IS NULL or [Offset] IS "
            "NULL or abs(Offset) > ") +
        QString::number(kMaxGroundOffset) + QStringLiteral(" or [Level] < ") + lowest +
        QStringLiteral(" or [Level] > ") + highest + QStringLiteral(") AND SectionID=?") + filter;
    StatementUse st(cachedStatement(wholeSection ? state.initialAll : state.initialAt, connection,
                                    sql, QStringLiteral("Checking the initial levels")));
    st->bindKey(1, session.sectionId());
    if (!wholeSection) st->bindMeasure(2, chainage);
    while (st->step()) {
      bad = true;
      reporter.ShowError(QStringLiteral("Chainage [") + valueText(*st, 0) +
                         QStringLiteral("], Offset [") + valueText(*st, 1) +
                         QStringLiteral("], Level [") + valueText(*st, 2) +
                         QStringLiteral("]: Null, Negative, Zero Values or Values not in "
                                        "acceptable range in Initial Levels."));
    }
  }
  {
    const QString sql =
        QStringLiteral(
            "SELECT Chainage, [Level] FROM DesignLevels WHERE ([Level] IS NULL or [Level] < ") +
        lowest + QStringLiteral(" or [Level] > ") + highest + QStringLiteral(") AND SectionID=?") +
        filter;
    StatementUse st(cachedStatement(wholeSection ? state.designAll : state.designAt, connection,
                                    sql, QStringLiteral("Checking the design levels")));
    st->bindKey(1, session.sectionId());
    if (!wholeSection) st->bindMeasure(2, chainage);
    while (st->step()) {
      bad = true;
      reporter.ShowError(QStringLiteral("Chainage [") + valueText(*st, 0) +
                         QStringLiteral("], Level [") + valueText(*st, 1) +
                         QStringLiteral("]: Null, Negative, Zero Values or Values not in "
                                        "acceptable range in Design Levels."));
    }
  }
  return bad;
}

}  // namespace engine
