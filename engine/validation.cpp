#include "engine/validation.h"

#include "db/numbers.h"
#include "engine/session.h"
#include "engine/statementcache.h"

#include <optional>

namespace engine {

namespace {

// Longer stored texts are cut to this many characters between the brackets of a line.
constexpr int kShownTextLength = 40;

// A value as it appears between the brackets of a line: nothing for null, a number as a single,
// text as stored (cut short, control characters as '?'), a blob as the word blob.
QString valueText(const db::Statement& st, int column) {
  if (st.isNull(column)) return {};
  if (const auto v = st.optionalMeasure(column)) return db::floatText(*v);
  if (st.isBlob(column)) return QStringLiteral("blob");
  QString text = st.text(column);
  if (text.size() > kShownTextLength) text = text.left(kShownTextLength) + QStringLiteral("...");
  for (QChar& c : text)
    if (c.category() == QChar::Other_Control) c = QLatin1Char('?');
  return text;
}

// Whether a stored value is a finite number (or the text of one) within [lowest, highest].
bool within(const db::Statement& st, int column, double lowest, double highest) {
  const std::optional<double> v = st.number(column);
  return v && *v >= lowest && *v <= highest;
}

// The statements pick every row that may be bad: besides the range checks, any value not
// stored as a number, whose text or blob only within() can judge (in SQL, abs('NaN') is 0 and
// a TEXT column compares '152.4' > '50' as text).
const QString kNotStoredAsNumber = QStringLiteral(" or typeof(%1) NOT IN ('integer', 'real')");

}  // namespace

bool ValidateLevels(EngineSession& session, float chainage) {
  ValidationState& state = session.validation();
  db::Connection& connection = session.connection();
  Reporter& reporter = session.reporter();
  const bool wholeSection = chainage == -1;
  const QString filter = wholeSection ? QStringLiteral(" ORDER BY Chainage")
                                      : QStringLiteral(" AND Chainage BETWEEN ? AND ?");
  const QString lowest = QString::number(kMinLevel);
  const QString highest = QString::number(kMaxLevel);
  bool bad = false;

  {
    const QString sql =
        QStringLiteral(
            "SELECT Chainage, Offset, [Level] FROM Initial WHERE ([Level] IS NULL or [Offset] IS "
            "NULL or abs(Offset) > ") +
        QString::number(kMaxGroundOffset) + QStringLiteral(" or [Level] < ") + lowest +
        QStringLiteral(" or [Level] > ") + highest +
        kNotStoredAsNumber.arg(QStringLiteral("Offset")) +
        kNotStoredAsNumber.arg(QStringLiteral("[Level]")) + QStringLiteral(") AND SectionID=?") +
        filter;
    StatementUse st(cachedStatement(wholeSection ? state.initialAll : state.initialAt, connection,
                                    sql, QStringLiteral("Checking the initial levels")));
    st->bindKey(1, session.sectionId());
    if (!wholeSection) st->bindMeasureRange(2, chainage);
    while (st->step()) {
      if (within(*st, 1, -kMaxGroundOffset, kMaxGroundOffset) &&
          within(*st, 2, kMinLevel, kMaxLevel))
        continue;
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
        lowest + QStringLiteral(" or [Level] > ") + highest +
        kNotStoredAsNumber.arg(QStringLiteral("[Level]")) + QStringLiteral(") AND SectionID=?") +
        filter;
    StatementUse st(cachedStatement(wholeSection ? state.designAll : state.designAt, connection,
                                    sql, QStringLiteral("Checking the design levels")));
    st->bindKey(1, session.sectionId());
    if (!wholeSection) st->bindMeasureRange(2, chainage);
    while (st->step()) {
      if (within(*st, 1, kMinLevel, kMaxLevel)) continue;
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
