#include "engine/typicalsection.h"

#include "db/connection.h"
#include "engine/designlevels.h"
#include "engine/designsection.h"
#include "engine/session.h"

#include <cmath>

namespace engine {

namespace {

// Stretches shorter than this are not dimensioned: they would be a dimension of nothing.
constexpr float kShortest = 1e-4f;

// The details columns that are not formula variables, as the design section leaves them out.
bool isDetailsKey(const QString& name) {
  for (const char* key : {"SectionID", "ID", "Chainage"})
    if (name.compare(QLatin1String(key), Qt::CaseInsensitive) == 0) return true;
  return false;
}

QString withoutDollars(QString formula) { return formula.remove(QLatin1Char('$')).trimmed(); }

// How a formula stands to a reference value ($CL, $LP_Off, ...): the same value, the reference
// plus or minus a stretch (the formula's text after the sign), or something else.
struct Increment {
  enum Kind { Same, Stretch, Other } kind = Other;
  QString stretch;
};

Increment incrementOver(const QString& formula, const QString& reference) {
  if (formula.compare(reference, Qt::CaseInsensitive) == 0) return {Increment::Same, {}};
  if (formula.size() <= reference.size() + 1 || !formula.startsWith(reference, Qt::CaseInsensitive))
    return {};
  const QChar sign = formula.at(reference.size());
  const QString rest = formula.mid(reference.size() + 1);
  // The evaluator works subtractions before additions and both before '#': "$CL+$A-$B" rises
  // by A-B, but "$CL-$A+$B" falls by A-B, not by A+B, and '#' rounds the whole sum.
  if (rest.contains(QLatin1Char('#'))) return {};
  if (sign == QLatin1Char('-') && rest.contains(QLatin1Char('+'))) return {};
  if (sign != QLatin1Char('+') && sign != QLatin1Char('-')) return {};
  return {Increment::Stretch, withoutDollars(rest)};
}

// Where the last point of a side stands while the profile is walked.
struct SideState {
  bool left = false;
  QString offsetName;  // "$LP_Off"
  QString valueName;   // "$LP_Val"
  float offset = 0.0f;
  float level = 0.0f;
};

void addWidth(TypicalSection& typical, const SideState& side, const QString& formula,
              ProfilePoint end) {
  const Increment over = incrementOver(formula, side.offsetName);
  if (over.kind == Increment::Same) return;
  // A formula that does not build on the side's last point measures from the centre line.
  const bool stretch = over.kind == Increment::Stretch;
  const ProfilePoint start =
      stretch ? ProfilePoint{side.offset, side.level} : ProfilePoint{0.0f, typical.centreLevel};
  if (std::fabs(end.Offset - start.Offset) < kShortest) return;
  typical.dimensions.push_back({DimensionKind::Width, side.left, start, end,
                                stretch ? over.stretch : withoutDollars(formula)});
}

// The height of the point end: over the side's last point, over the centre-line level, or a
// level of its own.
void addHeight(TypicalSection& typical, const SideState& side, const QString& formula,
               ProfilePoint end) {
  Increment over = incrementOver(formula, side.valueName);
  ProfilePoint start{side.offset, side.level};
  if (over.kind == Increment::Other) {
    over = incrementOver(formula, QStringLiteral("$CL"));
    start = {0.0f, typical.centreLevel};
  }
  if (over.kind == Increment::Same) return;
  if (over.kind == Increment::Other) {
    typical.dimensions.push_back(
        {DimensionKind::Level, side.left, end, end, withoutDollars(formula)});
  } else if (std::fabs(end.Level - start.Level) >= kShortest) {
    typical.dimensions.push_back({DimensionKind::Height, side.left, start, end, over.stretch});
  }
}

// Reads the first details row of the current section: its chainage and its variables.
bool readFirstDetails(EngineSession& session, TypicalSection& typical) {
  db::Statement st = session.connection().prepare(
      QStringLiteral("SELECT * FROM DesignDetails WHERE SectionID=? ORDER BY Chainage LIMIT 1"),
      QStringLiteral("Reading the first design details of section %1").arg(session.sectionId()));
  st.bindKey(1, session.sectionId());
  if (!st.step()) return false;
  for (int i = 0; i < st.columnCount(); ++i) {
    const QString name = st.columnName(i);
    if (name.compare(QLatin1String("Chainage"), Qt::CaseInsensitive) == 0)
      typical.chainage = st.measure(i);
    if (isDetailsKey(name)) continue;
    const FormulaVariable variable{name, st.measure(i)};
    typical.details.push_back(variable);
    if (variable.Value == 0.0f) continue;
    if (name.compare(QLatin1String("SRS_LEFT"), Qt::CaseInsensitive) == 0)
      typical.outerSlopeLeft = variable;
    if (name.compare(QLatin1String("SRS_RIGHT"), Qt::CaseInsensitive) == 0)
      typical.outerSlopeRight = variable;
  }
  return true;
}

QString designName(db::Connection& connection) {
  db::Statement st = connection.prepare(QStringLiteral("SELECT [Name] FROM DesignList WHERE ID=1"),
                                        QStringLiteral("Reading the name of design 1"));
  return st.step() ? st.text(0) : QString();
}

}  // namespace

std::int32_t sectionWithDesignDetails(db::Connection& connection, std::int32_t preferred) {
  db::Statement own = connection.prepare(
      QStringLiteral("SELECT 1 FROM DesignDetails WHERE SectionID=? LIMIT 1"),
      QStringLiteral("Looking for the design details of section %1").arg(preferred));
  own.bindKey(1, preferred);
  if (own.step()) return preferred;
  const auto first = connection.scalar(QStringLiteral("SELECT min(SectionID) FROM DesignDetails"),
                                       QStringLiteral("Looking for a section with design details"));
  return first ? static_cast<std::int32_t>(*first) : 0;
}

std::optional<TypicalSection> computeTypicalSection(EngineSession& session) {
  TypicalSection typical;
  typical.sectionId = session.sectionId();
  if (!readFirstDetails(session, typical)) return std::nullopt;
  typical.designName = designName(session.connection());

  // The first details row may lie before whatever chainage the caches hold.
  session.design().DetailsReload = true;
  session.levels().Reload = true;
  bool interpolated = false;
  typical.centreLevel = DesignLevelAt(session, typical.chainage, interpolated, true);
  float LP_Off = 0.0f, LP_Val = 0.0f, RP_Off = 0.0f, RP_Val = 0.0f;
  int nLeft = 0, nRight = 0;
  GetDesignSection(session, typical.chainage, typical.centreLevel, LP_Off, LP_Val, RP_Off, RP_Val,
                   nLeft, nRight);
  session.design().DetailsReload = true;
  session.levels().Reload = true;
  if (nLeft == 0 && nRight == 0) return std::nullopt;

  // The profile again, to pair each point with the formulas that gave it.
  const DesignState& design = session.design();
  SideState left{true, QStringLiteral("$LP_Off"), QStringLiteral("$LP_Val"), 0.0f,
                 typical.centreLevel};
  SideState right{false, QStringLiteral("$RP_Off"), QStringLiteral("$RP_Val"), 0.0f,
                  typical.centreLevel};
  std::size_t nextLeft = 0;
  std::size_t nextRight = 0;
  for (const DesignProfileRow& row : session.designProfile()) {
    const bool onLeft = row.LCR == QLatin1String("L") || row.LCR == QLatin1String("C");
    const bool onRight = row.LCR == QLatin1String("R") || row.LCR == QLatin1String("C");
    if (onLeft && nextLeft < design.LeftDesignPoints.size()) {
      const DesignPoint p = design.LeftDesignPoints[nextLeft++];
      typical.left.push_back({p.Offset, p.Level});
    }
    if (onRight && nextRight < design.RightDesignPoints.size()) {
      const DesignPoint p = design.RightDesignPoints[nextRight++];
      typical.right.push_back({p.Offset, p.Level});
    }
    if (row.LCR == QLatin1String("C")) {
      // A centre point has no offset formula of its own; its height is dimensioned once, on
      // the left.
      if (typical.left.empty()) continue;
      const ProfilePoint point = typical.left.back();
      addHeight(typical, left, row.Value, point);
      left.level = right.level = point.Level;
      continue;
    }
    if (!onLeft && !onRight) continue;
    SideState& side = onLeft ? left : right;
    const ProfilePoint point = onLeft ? typical.left.back() : typical.right.back();
    addWidth(typical, side, row.Offset, point);
    addHeight(typical, side, row.Value, point);
    side.offset = point.Offset;
    side.level = point.Level;
  }
  return typical;
}

}  // namespace engine
