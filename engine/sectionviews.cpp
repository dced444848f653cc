#include "engine/sectionviews.h"

#include "db/numbers.h"
#include "engine/designlevels.h"
#include "engine/designsection.h"
#include "engine/session.h"

#include <algorithm>
#include <map>

namespace engine {

namespace {

// Design points past this many on a side do not count toward the drawing's extent.
constexpr int kDesignPointsForExtent = 13;

// The first count points of profile, up to the first one with no level.
std::vector<ProfilePoint> tableOf(const std::vector<ProfilePoint>& profile, int count) {
  std::vector<ProfilePoint> table;
  const int n = std::min<int>(count, static_cast<int>(profile.size()));
  for (int i = 0; i < n && profile[i].Level > 0.0f; ++i) table.push_back(profile[i]);
  return table;
}

void widenExtent(CrossSection& section, const std::vector<ProfilePoint>& table, int limit) {
  const int n = std::min<int>(limit, static_cast<int>(table.size()));
  for (int i = 0; i < n; ++i) {
    section.lowest = std::min(section.lowest, table[i].Level);
    section.highest = std::max(section.highest, table[i].Level);
  }
}

float largestOffset(const std::vector<ProfilePoint>& ground,
                    const std::vector<ProfilePoint>& design) {
  float largest = ground.empty() ? 0.0f : ground.back().Offset;
  const int n = std::min<int>(kDesignPointsForExtent, static_cast<int>(design.size()));
  for (int i = 0; i < n; ++i) largest = std::max(largest, design[i].Offset);
  return largest;
}

}  // namespace

CrossSection computeCrossSection(EngineSession& session, float chainage, bool storeAreas) {
  computeSectionAreas(session, chainage, storeAreas);
  const AreaState& st = session.areas();
  CrossSection s;
  s.chainage = chainage;
  s.designLeft = tableOf(st.Left.Design, st.Left.nDesign + (st.Left.HasCatchPoint ? 1 : 0));
  s.designRight = tableOf(st.Right.Design, st.Right.nDesign + (st.Right.HasCatchPoint ? 1 : 0));
  s.groundLeft = tableOf(st.Left.Ground, st.Left.nGround);
  s.groundRight = tableOf(st.Right.Ground, st.Right.nGround);
  s.executedLeft = tableOf(st.Left.Executed, st.Left.nExecuted);
  s.executedRight = tableOf(st.Right.Executed, st.Right.nExecuted);
  s.areaCut = st.Area[0];
  s.areaFill = st.Area[1];
  widenExtent(s, s.groundLeft, static_cast<int>(s.groundLeft.size()));
  widenExtent(s, s.groundRight, static_cast<int>(s.groundRight.size()));
  widenExtent(s, s.designLeft, kDesignPointsForExtent);
  widenExtent(s, s.designRight, kDesignPointsForExtent);
  s.largestLeft = largestOffset(s.groundLeft, s.designLeft);
  s.largestRight = largestOffset(s.groundRight, s.designRight);
  return s;
}

std::vector<CrossSection> computeCrossSections(EngineSession& session,
                                               const std::function<bool(int, int)>& onChainage) {
  ResetDesignCache(session);
  const std::vector<float> chainages = quantityChainages(session);
  std::vector<CrossSection> sections;
  sections.reserve(chainages.size());
  const int count = static_cast<int>(chainages.size());
  for (int i = 0; i < count; ++i) {
    if (onChainage && !onChainage(i, count)) break;
    sections.push_back(computeCrossSection(session, chainages[i]));
  }
  return sections;
}

std::vector<float> quantityChainages(EngineSession& session) {
  std::vector<float> chainages;
  if (session.quantityChainagesOutOfDate() && session.connection().isReadOnly()) {
    // The stored chainages cannot be brought in line: take what SyncQuantityChainages would
    // leave, the surveyed chainages, unless nothing is surveyed.
    db::Statement surveyed = session.connection().prepare(
        QStringLiteral("SELECT DISTINCT Chainage FROM Initial WHERE SectionID=? AND Chainage IS "
                       "NOT NULL ORDER BY Chainage"),
        QStringLiteral("Reading the surveyed chainages"));
    surveyed.bindKey(1, session.sectionId());
    while (surveyed.step()) {
      const float chainage = surveyed.measure(0);
      if (chainages.empty() || chainages.back() != chainage) chainages.push_back(chainage);
    }
    if (!chainages.empty()) return chainages;
  }
  db::Statement rows = session.connection().prepare(
      QStringLiteral("SELECT Chainage FROM DesignQty WHERE SectionID=? ORDER BY Chainage"),
      QStringLiteral("Reading the quantity chainages"));
  rows.bindKey(1, session.sectionId());
  while (rows.step()) chainages.push_back(rows.measure(0));
  return chainages;
}

LongProfile computeLongProfile(EngineSession& session, float from, float to, bool withExecuted) {
  db::Connection& c = session.connection();
  const std::int32_t section = session.sectionId();
  LongProfile p;
  p.fromChainage = from;
  p.toChainage = to;

  // Chainages from and to are compared as singles, so the range takes in every double of
  // theirs; ?4 and ?5 hold those of offset 0, the centre line.
  auto rangeQuery = [&](const QString& sql, const QString& what) {
    db::Statement st = c.prepare(sql, what);
    st.bindDouble(1, db::measureRange(from).low)
        .bindDouble(2, db::measureRange(to).high)
        .bindKey(3, section);
    if (sql.contains(QLatin1String("?4"))) st.bindMeasureRange(4, 0.0f);
    return st;
  };
  const QString range = QStringLiteral(" WHERE Chainage>=? AND Chainage<=? AND SectionID=?");
  for (const char* table : {"DesignLevels", "Initial"}) {
    db::Statement st = rangeQuery(
        QStringLiteral("SELECT min([Level]), max([Level]) FROM ") + QLatin1String(table) + range,
        QStringLiteral("Reading the level range of ") + QLatin1String(table));
    if (!st.step() || st.isNull(0)) continue;
    const float low = st.measure(0);
    const float high = st.measure(1);
    p.lowest = p.lowest ? std::min(*p.lowest, low) : low;
    p.highest = p.highest ? std::max(*p.highest, high) : high;
  }

  std::map<float, std::size_t> rowOf;
  for (const float chainage : quantityChainages(session)) {
    if (chainage < from || chainage > to) continue;
    LongProfileRow row;
    row.chainage = chainage;
    rowOf.emplace(row.chainage, p.rows.size());
    p.rows.push_back(row);
  }
  if (p.rows.empty()) return p;

  // Fills one value of each row from a query returning (chainage, level).
  auto fill = [&](db::Statement st, std::optional<float> LongProfileRow::*value) {
    while (st.step()) {
      const auto it = rowOf.find(st.measure(0));
      if (it != rowOf.end() && !st.isNull(1)) p.rows[it->second].*value = st.measure(1);
    }
  };
  const QString onCentreLine = QStringLiteral(" AND Offset BETWEEN ?4 AND ?5");
  fill(rangeQuery(QStringLiteral("SELECT Chainage, [Level] FROM Initial") + range + onCentreLine,
                  QStringLiteral("Reading the centre-line ground levels")),
       &LongProfileRow::centreGround);
  const QString outermost = QStringLiteral(
      "SELECT A.Chainage, A.[Level] FROM Initial A, (SELECT Chainage, %1(Offset) AS edge FROM "
      "Initial WHERE Offset %2 0 AND Chainage>=? AND Chainage<=? AND SectionID=? GROUP BY "
      "Chainage) B WHERE A.Chainage=B.Chainage AND A.Offset=B.edge AND A.SectionID=?3");
  fill(rangeQuery(outermost.arg(QStringLiteral("min"), QStringLiteral("<")),
                  QStringLiteral("Reading the outermost left ground levels")),
       &LongProfileRow::leftGround);
  fill(rangeQuery(outermost.arg(QStringLiteral("max"), QStringLiteral(">")),
                  QStringLiteral("Reading the outermost right ground levels")),
       &LongProfileRow::rightGround);
  if (withExecuted)
    fill(rangeQuery(QStringLiteral("SELECT Chainage, coalesce([Level], Bank) FROM Executed") +
                        range + onCentreLine,
                    QStringLiteral("Reading the centre-line executed levels")),
         &LongProfileRow::finalLevel);

  session.levels().Reload = true;
  for (LongProfileRow& row : p.rows) {
    bool interpolated = false;
    const float level = DesignLevelAt(session, row.chainage, interpolated, true);
    if (level > 0.0f) row.designLevel = level;
  }
  return p;
}

}  // namespace engine
