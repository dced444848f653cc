#include "engine/areas.h"

#include "db/numbers.h"
#include "engine/designlevels.h"
#include "engine/designsection.h"
#include "engine/numbertext.h"
#include "engine/session.h"
#include "engine/statementcache.h"

#include <algorithm>
#include <cmath>

namespace engine {

namespace {

// How far the side slopes are drawn out from the design edge to look for the ground.
constexpr float kSlopeReach = 105.0f;

// Columns 55 and 56 belong to no computation and are left alone by a clear.
constexpr int kClearedColumns = 55;

ProfilePoint pointAt(const std::vector<ProfilePoint>& profile, int i) {
  return i >= 0 && i < static_cast<int>(profile.size()) ? profile[i] : ProfilePoint{};
}

// Empties a profile and gives it at least capacity zero slots.
void resetProfile(std::vector<ProfilePoint>& profile, int capacity) {
  profile.assign(std::max<std::size_t>(profile.size(), static_cast<std::size_t>(capacity)),
                 ProfilePoint{});
}

// Stores a point in the next slot of profile, growing it when the slots run out.
void appendPoint(std::vector<ProfilePoint>& profile, int& count, float offset, float level) {
  if (count >= static_cast<int>(profile.size())) profile.resize(count + 1);
  profile[count++] = {offset, level};
}

float interpolate(ProfilePoint a, ProfilePoint b, float x) {
  return a.Level + (b.Level - a.Level) * (x - a.Offset) / (b.Offset - a.Offset);
}

// Reads one side of the ground at the chainage into profile (distance, level), nearest first.
void readGround(db::Statement& query, std::int32_t sectionId, float chainage, AreaSide& side) {
  StatementUse use(query);
  use->bindKey(1, sectionId).bindMeasureRange(2, chainage);
  while (use->step())
    appendPoint(side.Ground, side.nGround, std::fabs(use->measure(0)), use->measure(1));
}

// Reads the executed levels of the chainage into both sides. The left side takes the readings
// left of the centre line, nearest first; the right side the centre reading and those right of
// it. False when the chainage has no executed levels.
bool readExecuted(EngineSession& session, AreaState& st, float chainage) {
  db::Statement& query =
      cachedStatement(st.executedRows, session.connection(),
                      QStringLiteral("SELECT Offset, [Level], Bank FROM Executed WHERE SectionID=? "
                                     "AND Chainage BETWEEN ? AND ? ORDER BY Offset"),
                      QStringLiteral("Reading the executed levels"));
  StatementUse use(query);
  use->bindKey(1, session.sectionId()).bindMeasureRange(2, chainage);
  std::vector<ProfilePoint> left;
  bool any = false;
  bool centre = false;
  while (use->step()) {
    any = true;
    const float offset = use->measure(0);
    const float level = use->isNull(1) ? use->measure(2) : use->measure(1);
    if (offset == 0.0f) centre = true;
    if (offset < 0.0f)
      left.push_back({std::fabs(offset), level});
    else
      appendPoint(st.Right.Executed, st.Right.nExecuted, offset, level);
  }
  if (!any) return false;
  for (auto it = left.rbegin(); it != left.rend(); ++it)
    appendPoint(st.Left.Executed, st.Left.nExecuted, it->Offset, it->Level);
  if (!centre)
    session.reporter().ShowError(QStringLiteral("Chainage ") + db::floatText(chainage) +
                                 QStringLiteral(": The executed levels have no reading on the "
                                                "centre line (offset 0); the readings are split "
                                                "at the centre line by the sign of their offset."));
  return true;
}

// Extends the side's last design point with its side slope s (horizontal per unit of height)
// until it meets the ground, and stores the meeting point after the last design point. Where the
// ground ends first, the slope is carried to the level of the last ground point. A slope of 0
// (or none) leaves the side without slope: the catch point is the edge itself.
void findCatchPoint(AreaSide& side, float s) {
  const ProfilePoint edge = side.Design[side.nDesign - 1];
  ProfilePoint catchPoint = edge;
  if (s != 0.0f) {
    const float fillX2 = edge.Offset + kSlopeReach;
    const float fillY2 = edge.Level - kSlopeReach / s;
    const float cutX2 = edge.Offset + kSlopeReach;
    const float cutY2 = edge.Level + kSlopeReach / s;
    int start = 0;
    while (start < side.nGround && side.Ground[start].Offset < edge.Offset) ++start;
    bool found = false;
    if (start < side.nGround) {
      for (int i = std::max(start, 1);
           i < static_cast<int>(side.Ground.size()) && side.Ground[i].Level > 0.0f && !found; ++i) {
        const ProfilePoint a = side.Ground[i - 1];
        const ProfilePoint b = side.Ground[i];
        float x = 0.0f;
        float y = 0.0f;
        if (IntersectLines(edge.Offset, edge.Level, fillX2, fillY2, a.Offset, a.Level, b.Offset,
                           b.Level, x, y) &&
            edge.Offset <= x && a.Offset <= x && x < b.Offset) {
          found = true;
        } else if (IntersectLines(edge.Offset, edge.Level, cutX2, cutY2, a.Offset, a.Level,
                                  b.Offset, b.Level, x, y) &&
                   edge.Offset < x && a.Offset < x && x < b.Offset) {
          found = true;
        }
        if (found) catchPoint = {x, y};
      }
    }
    if (!found) {
      const ProfilePoint last = side.Ground[side.nGround - 1];
      catchPoint = {std::fabs(edge.Level - last.Level) * s + edge.Offset, last.Level};
    }
  }
  if (side.nDesign >= static_cast<int>(side.Design.size())) side.Design.resize(side.nDesign + 1);
  side.Design[side.nDesign] = catchPoint;
  side.HasCatchPoint = true;
}

// Lays the ground, design and executed profiles of a side over one another: row 0 at the centre
// line, then one row at each next point of any profile, the other profiles interpolated there.
void mergeSide(AreaSide& side) {
  const std::vector<ProfilePoint>* profiles[3] = {&side.Ground, &side.Design, &side.Executed};
  int next[3] = {1, 1, 1};
  side.nRows = 0;
  auto addRow = [&side](const MergedRow& row) {
    if (side.nRows >= static_cast<int>(side.Rows.size())) side.Rows.resize(side.nRows + 1);
    side.Rows[side.nRows++] = row;
  };
  addRow({0.0f, pointAt(side.Ground, 0).Level, pointAt(side.Design, 0).Level,
          pointAt(side.Executed, 0).Level});
  for (;;) {
    int nearest = -1;
    float x = 0.0f;
    for (int p = 0; p < 3; ++p) {
      const ProfilePoint pt = pointAt(*profiles[p], next[p]);
      if (pt.Level > 0.0f && (nearest < 0 || pt.Offset < x)) {
        x = pt.Offset;
        nearest = p;
      }
    }
    if (nearest < 0) break;
    float levels[3] = {0.0f, 0.0f, 0.0f};
    for (int p = 0; p < 3; ++p) {
      const ProfilePoint pt = pointAt(*profiles[p], next[p]);
      // The nearest profile always moves on, so the merge ends even at an offset that equals
      // nothing (NaN).
      if (p == nearest || (pt.Level > 0.0f && pt.Offset == x)) {
        levels[p] = pt.Level;
        ++next[p];
      } else {
        const ProfilePoint before = pointAt(*profiles[p], next[p] - 1);
        if (before.Level > 0.0f && pt.Level > 0.0f && before.Offset != pt.Offset)
          levels[p] = interpolate(before, pt, x);
      }
    }
    addRow({x, levels[0], levels[1], levels[2]});
  }
}

// The side's rows for the table, outward, with a row inserted wherever the ground line crosses
// the design line between two rows, so that no strip has cut at one end and fill at the other.
void tableRowsOfSide(const AreaSide& side, std::vector<MergedRow>& out) {
  out.clear();
  for (int k = 0; k < side.nRows; ++k) {
    const MergedRow& b = side.Rows[k];
    if (k > 0) {
      const MergedRow& a = side.Rows[k - 1];
      if (a.Ground > 0.0f && a.Design > 0.0f && b.Ground > 0.0f && b.Design > 0.0f) {
        const bool cutToFill = a.Ground > a.Design && b.Ground < b.Design;
        const bool fillToCut = a.Ground < a.Design && b.Ground > b.Design;
        float x = 0.0f;
        float y = 0.0f;
        if ((cutToFill || fillToCut) &&
            IntersectLines(a.Offset, a.Ground, b.Offset, b.Ground, a.Offset, a.Design, b.Offset,
                           b.Design, x, y)) {
          float executed = 0.0f;
          if (a.Executed > 0.0f && b.Executed > 0.0f && a.Offset != b.Offset)
            executed = interpolate({a.Offset, a.Executed}, {b.Offset, b.Executed}, x);
          out.push_back({x, y, y, executed});
        }
      }
    }
    out.push_back(b);
  }
}

void writeTableRow(AreaDetailsTable& table, int r, const MergedRow& row) {
  table.ensureRow(r);
  table.set(r, kColDistance, row.Offset);
  table.set(r, kColOGL, row.Ground);
  table.set(r, kColDesignLevel, row.Design);
  table.set(r, kColExecutedLevel, row.Executed);
  if (row.Ground > 0.0f && row.Design > 0.0f) {
    const float cut = row.Ground - row.Design;
    const float fill = row.Design - row.Ground;
    table.set(r, kColDepthOfCut, cut > 0.0f ? cut : 0.0f);
    table.set(r, kColDepthOfFill, fill > 0.0f ? fill : 0.0f);
  }
  if (row.Ground > 0.0f && row.Executed > 0.0f) {
    const float cut = row.Ground - row.Executed;
    const float fill = row.Executed - row.Ground;
    table.set(r, kColExecDepthOfCut, cut > 0.0f ? cut : 0.0f);
    table.set(r, kColExecDepthOfFill, fill > 0.0f ? fill : 0.0f);
  }
}

// The strip between row r and its neighbour toward the centre line: average depths, width,
// the quantity columns whose window holds the strip's outer end, and the executed areas.
void computeStrip(EngineSession& session, AreaState& st, int r, int neighbour, bool left) {
  AreaDetailsTable& t = st.Table;
  auto mean = [&t, r, neighbour](int column) {
    return (t.value(r, column) + t.value(neighbour, column)) / 2.0f;
  };
  const float distance = t.value(r, kColDistance);
  t.set(r, kColAvgDepthOfCut, mean(kColDepthOfCut));
  t.set(r, kColAvgDepthOfFill, mean(kColDepthOfFill));
  t.set(r, kColHorizDistance, distance - t.value(neighbour, kColDistance));
  if (t.value(r, kColOGL) > 0.0f && t.value(r, kColExecutedLevel) > 0.0f) {
    t.set(r, kColExecAvgDepthOfCut, mean(kColExecDepthOfCut));
    t.set(r, kColExecAvgDepthOfFill, mean(kColExecDepthOfFill));
  }
  const QString sideLetter = left ? QStringLiteral("L") : QStringLiteral("R");
  for (const QtyDefineRow& q : session.design().QtyDefine) {
    if (q.ColNo < 1 || q.ColNo > 2) continue;
    if (q.LRB != QLatin1String("B") && q.LRB != sideLetter) continue;
    if (!(q.StartOffset < distance && distance <= q.EndOffset)) continue;
    const float depth = q.QType == QLatin1String("CUT") ? t.value(r, kColAvgDepthOfCut)
                                                        : t.value(r, kColAvgDepthOfFill);
    const float area = depth * t.value(r, kColHorizDistance);
    t.set(r, kColQtyBase + q.ColNo, area);
    st.Area[q.ColNo - 1] += area;
  }
  const float execCut = t.value(r, kColExecAvgDepthOfCut) * t.value(r, kColHorizDistance);
  const float execFill = t.value(r, kColExecAvgDepthOfFill) * t.value(r, kColHorizDistance);
  t.set(r, kColExecCutArea, execCut);
  t.set(r, kColExecFillArea, execFill);
  st.Area[2] += execCut;
  st.Area[3] += execFill;
  const float cutWithin = std::min(t.value(r, kColQtyBase + 1), execCut);
  const float fillWithin = std::min(t.value(r, kColQtyBase + 2), execFill);
  t.set(r, kColExecCutWithinDesign, cutWithin);
  t.set(r, kColExecFillWithinDesign, fillWithin);
  st.Area[4] += cutWithin;
  st.Area[5] += fillWithin;
}

// Quantity columns other than 1 and 2 would share their table column and area slot with the
// executed-level results; they are named once per run and left out.
void reportUnusableColumns(EngineSession& session, AreaState& st) {
  for (const QtyDefineRow& q : session.design().QtyDefine) {
    if (q.ColNo >= 1 && q.ColNo <= 2) continue;
    if (!st.ReportedColumns.insert(q.ColNo).second) continue;
    session.reporter().ShowError(
        QStringLiteral("The quantity column with ColNo ") + QString::number(q.ColNo) +
        QStringLiteral(" is not computed: only the columns 1 and 2 have a place in the area "
                       "table."));
  }
}

void clearSide(AreaSide& side) {
  resetProfile(side.Ground, kGroundPointCapacity);
  side.nGround = 0;
  resetProfile(side.Executed, kGroundPointCapacity);
  side.nExecuted = 0;
  resetProfile(side.Design, kDesignPointCapacity + 1);
  side.nDesign = 0;
  side.HasCatchPoint = false;
  side.Present = false;
  if (side.Rows.size() < static_cast<std::size_t>(kMergedRowCapacity))
    side.Rows.resize(kMergedRowCapacity);
  std::fill(side.Rows.begin(), side.Rows.begin() + side.nRows, MergedRow{});
  side.nRows = 0;
}

void copyDesign(const std::vector<DesignPoint>& points, int count, AreaSide& side) {
  const int n = std::min<int>(count, static_cast<int>(points.size()));
  for (int i = 0; i < n; ++i)
    appendPoint(side.Design, side.nDesign, points[i].Offset, points[i].Level);
}

}  // namespace

AreaDetailsTable::AreaDetailsTable() : m_rows(kAreaTableRowCapacity) {}

bool AreaDetailsTable::isEmpty(int row, int column) const {
  if (row < 0 || row >= capacity() || column < 0 || column >= kAreaTableColumns) return true;
  return !m_rows[row][column].set;
}

float AreaDetailsTable::value(int row, int column) const {
  return isEmpty(row, column) ? 0.0f : m_rows[row][column].value;
}

QString AreaDetailsTable::text(int row, int column) const {
  return isEmpty(row, column) ? QString() : db::floatText(m_rows[row][column].value);
}

void AreaDetailsTable::set(int row, int column, float value) {
  if (column < 0 || column >= kAreaTableColumns || row < 0) return;
  ensureRow(row);
  m_rows[row][column] = {value, true};
  m_used = std::max(m_used, row + 1);
}

void AreaDetailsTable::clear() {
  const int used = m_used;
  m_used = 0;
  for (int r = 0; r < used; ++r) {
    for (int c = 0; c < kClearedColumns; ++c) m_rows[r][c] = Cell{};
    for (int c = kClearedColumns; c < kAreaTableColumns; ++c)
      if (m_rows[r][c].set) m_used = r + 1;
  }
}

void AreaDetailsTable::ensureRow(int row) {
  if (row >= capacity()) m_rows.resize(row + 1);
}

float RoundChainage(float chainage) {
  // Halves go to even, as the stored chainages were rounded.
  return static_cast<float>(std::nearbyint(static_cast<double>(chainage) * 1000.0) / 1000.0);
}

bool IntersectLines(float x1, float y1, float x2, float y2, float x3, float y3, float x4, float y4,
                    float& x, float& y) {
  const float a1 = y2 - y1;
  const float b1 = x1 - x2;
  const float c1 = y1 * x2 - x1 * y2;
  const float a2 = y4 - y3;
  const float b2 = x3 - x4;
  const float c2 = y3 * x4 - x3 * y4;
  const float det = a1 * b2 - a2 * b1;
  if (det == 0.0f) return false;
  x = (c2 * b1 - c1 * b2) / det;
  y = (a2 * c1 - a1 * c2) / det;
  return true;
}

void ComputeSectionAreas(EngineSession& session, float& chainage) {
  computeSectionAreas(session, chainage, true);
}

void computeSectionAreas(EngineSession& session, float& chainage, bool storeAreas) {
  AreaState& st = session.areas();
  Reporter& reporter = session.reporter();
  db::Connection& connection = session.connection();
  const std::int32_t sectionId = session.sectionId();

  st.Table.clear();
  std::fill(st.Area.begin(), st.Area.begin() + 8, 0.0f);
  clearSide(st.Left);
  clearSide(st.Right);

  chainage = RoundChainage(chainage);
  st.Chainage = chainage;

  bool interpolated = false;
  const float centreLevel = DesignLevelAt(session, chainage, interpolated, false);
  float LP_Off = 0.0f;
  float LP_Val = 0.0f;
  float RP_Off = 0.0f;
  float RP_Val = 0.0f;
  int nLeft = 0;
  int nRight = 0;
  GetDesignSection(session, chainage, centreLevel, LP_Off, LP_Val, RP_Off, RP_Val, nLeft, nRight);
  copyDesign(session.design().LeftDesignPoints, nLeft, st.Left);
  copyDesign(session.design().RightDesignPoints, nRight, st.Right);

  readGround(cachedStatement(
                 st.leftGround, connection,
                 QStringLiteral("SELECT Offset, [Level] FROM Initial WHERE SectionID=? "
                                "AND Chainage BETWEEN ? AND ? AND Offset<=0 ORDER BY Offset DESC"),
                 QStringLiteral("Reading the left ground levels")),
             sectionId, chainage, st.Left);
  if (st.Left.nGround == 0)
    reporter.ShowError(QStringLiteral("Chainage ") + db::floatText(chainage) +
                       QStringLiteral(": Left side data not found in Initial Levels"));
  readGround(
      cachedStatement(st.rightGround, connection,
                      QStringLiteral("SELECT Offset, [Level] FROM Initial WHERE SectionID=? "
                                     "AND Chainage BETWEEN ? AND ? AND Offset>=0 ORDER BY Offset"),
                      QStringLiteral("Reading the right ground levels")),
      sectionId, chainage, st.Right);
  if (st.Right.nGround == 0)
    reporter.ShowError(QStringLiteral("Chainage ") + db::floatText(chainage) +
                       QStringLiteral(": Right side data not found in Initial Levels"));

  if (LP_Off == 0.0f && RP_Off == 0.0f) return;
  st.Left.Present = st.Left.nGround > 1 && LP_Off != 0.0f && st.Left.nDesign > 0;
  st.Right.Present = st.Right.nGround > 1 && RP_Off != 0.0f && st.Right.nDesign > 0;

  if (session.useExecutedLevel() && !readExecuted(session, st, chainage)) {
    reporter.ShowError(QStringLiteral("Chainage not found in executed levels : ") +
                       db::floatText(chainage));
    return;
  }

  modVariables& variables = session.variables();
  if (st.Left.Present)
    findCatchPoint(st.Left, static_cast<float>(leadingNumber(variables.SubstituteFormulaVariables(
                                QStringLiteral("$SRS_LEFT")))));
  if (st.Right.Present)
    findCatchPoint(st.Right, static_cast<float>(leadingNumber(variables.SubstituteFormulaVariables(
                                 QStringLiteral("$SRS_RIGHT")))));

  mergeSide(st.Left);
  mergeSide(st.Right);

  // Table rows: the left side from its outer end inward (its centre row left out), then the
  // right side from the centre row outward.
  std::vector<MergedRow> leftRows;
  std::vector<MergedRow> rightRows;
  tableRowsOfSide(st.Left, leftRows);
  tableRowsOfSide(st.Right, rightRows);
  const int leftCount = static_cast<int>(leftRows.size()) - 1;
  int r = 0;
  for (int k = leftCount; k >= 1; --k) writeTableRow(st.Table, r++, leftRows[k]);
  for (const MergedRow& row : rightRows) writeTableRow(st.Table, r++, row);
  const int rows = r;

  reportUnusableColumns(session, st);
  for (int i = 0; i < rows; ++i) {
    const bool left = i < leftCount;
    const int neighbour = left ? i + 1 : i - 1;
    if (neighbour < 0 || st.Table.value(i, kColDistance) == 0.0f) continue;
    if (!(st.Table.value(i, kColOGL) > 0.0f && st.Table.value(i, kColDesignLevel) > 0.0f)) continue;
    computeStrip(session, st, i, neighbour, left);
  }

  st.RowCount = rows - 1;
  if (!storeAreas) return;

  StatementUse update(
      cachedStatement(st.updateAreas, connection,
                      QStringLiteral("UPDATE DesignQty SET AreaCut=?, AreaFill=? WHERE SectionID=? "
                                     "AND Chainage BETWEEN ? AND ?"),
                      QStringLiteral("Writing the areas of a chainage to DesignQty")));
  update->bindMeasure(1, st.Area[0])
      .bindMeasure(2, st.Area[1])
      .bindKey(3, sectionId)
      .bindMeasureRange(4, chainage);
  update->run();
}

}  // namespace engine
