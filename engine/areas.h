#pragma once

#include "db/connection.h"

#include <QString>

#include <array>
#include <set>
#include <vector>

namespace engine {

class EngineSession;

// A point of a ground, executed or design profile: distance from the centre line (positive on
// both sides) and level. A level of 0 or below is no point; profiles are zero-filled after
// their last point.
struct ProfilePoint {
  float Offset = 0.0f;
  float Level = 0.0f;
};

// One row of a side where the three profiles meet: their levels at one distance from the
// centre line, 0 where a profile has no level there.
struct MergedRow {
  float Offset = 0.0f;
  float Ground = 0.0f;
  float Design = 0.0f;
  float Executed = 0.0f;
};

// The sizes the profiles, rows and tables start with. They grow when a cross-section needs
// more; within them nothing is allocated per chainage.
inline constexpr int kGroundPointCapacity = 36;
inline constexpr int kDesignPointCapacity = 21;
inline constexpr int kMergedRowCapacity = 71;
inline constexpr int kAreaTableRowCapacity = 200;
inline constexpr int kAreaTableColumns = 57;
inline constexpr int kAreaSlotCount = 42;

// Columns of the area-details table.
enum AreaColumn : int {
  kColDistance = 0,
  kColOGL = 1,
  kColDesignLevel = 2,
  kColExecutedLevel = 3,
  kColDepthOfCut = 4,
  kColDepthOfFill = 5,
  kColAvgDepthOfCut = 6,
  kColAvgDepthOfFill = 7,
  kColHorizDistance = 8,
  kColQtyBase = 8,  // + ColNo: the strip area of that quantity column (9 and 10)
  kColExecDepthOfCut = 11,
  kColExecDepthOfFill = 12,
  kColExecAvgDepthOfCut = 13,
  kColExecAvgDepthOfFill = 14,
  kColExecCutArea = 15,
  kColExecFillArea = 16,
  kColExecCutWithinDesign = 17,
  kColExecFillWithinDesign = 18,
};

// The area-details table: cells that hold the text of a number or nothing. A cell keeps the
// single it was given; its text is that single's shortest round-trip text, so reading the text
// back gives the same number.
class AreaDetailsTable {
 public:
  AreaDetailsTable();

  bool isEmpty(int row, int column) const;
  // The number in the cell, 0 for an empty cell.
  float value(int row, int column) const;
  // The cell's text, empty for an empty cell.
  QString text(int row, int column) const;
  void set(int row, int column, float value);
  // Empties columns 0 to 54 of every row written since the last clear.
  void clear();
  // Rows that can be written without growing; grows by whole rows when row is beyond them.
  void ensureRow(int row);
  int capacity() const { return static_cast<int>(m_rows.size()); }

 private:
  struct Cell {
    float value = 0.0f;
    bool set = false;
  };
  std::vector<std::array<Cell, kAreaTableColumns>> m_rows;
  int m_used = 0;  // rows below this may hold values
};

// One side of the cross-section as the area computation leaves it, for the reports and the
// section viewer.
struct AreaSide {
  // Surveyed ground, nearest the centre line first, zero-filled after nGround points.
  std::vector<ProfilePoint> Ground;
  int nGround = 0;
  // Executed levels (only when executed levels are in use), nearest first.
  std::vector<ProfilePoint> Executed;
  int nExecuted = 0;
  // The design section's points of this side followed, in slot nDesign, by the catch point
  // when one was found; zero-filled after.
  std::vector<ProfilePoint> Design;
  int nDesign = 0;
  bool HasCatchPoint = false;
  // The ground has more than one point and the design reaches out from the centre line.
  bool Present = false;
  // The merged rows, from the centre line (row 0, distance 0) outward.
  std::vector<MergedRow> Rows;
  int nRows = 0;
};

// Everything the last ComputeSectionAreas left: the profiles of both sides, the area-details
// table and its row count, and the area table. Lives in the EngineSession.
struct AreaState {
  float Chainage = 0.0f;  // the chainage last computed, rounded to 3 decimals
  AreaSide Left;
  AreaSide Right;
  AreaDetailsTable Table;
  // Number of table rows − 1 (the last row's index); kept when a chainage is not computed.
  int RowCount = 0;
  // Slot ColNo − 1: total of QtyDefine column ColNo; 2 and 3: executed cut and fill;
  // 4 and 5: executed cut and fill counted up to the design cut and fill.
  std::array<float, kAreaSlotCount> Area{};

  // QtyDefine column numbers already reported as unusable in this run.
  std::set<int> ReportedColumns;

  // Prepared on first use, kept for every later chainage.
  db::Statement leftGround;
  db::Statement rightGround;
  db::Statement executedRows;
  db::Statement updateAreas;
};

// Computes the cut and fill areas of the current section at chainage, which is rounded to 3
// decimals first (the caller's variable receives the rounded value), writes AreaCut and
// AreaFill of that chainage's DesignQty row and leaves everything else in session.areas().
// Data problems go to the error list; nothing is computed when no design reaches out on
// either side or the executed levels asked for are missing.
void ComputeSectionAreas(EngineSession& session, float& chainage);

// The same computation; with storeAreas false DesignQty is left as it is, for callers that
// only look (the drawings).
void computeSectionAreas(EngineSession& session, float& chainage, bool storeAreas);

// chainage rounded to 3 decimals, halves to even, as the area computation stores it.
float RoundChainage(float chainage);

// Where the lines through (x1, y1)-(x2, y2) and (x3, y3)-(x4, y4) cross, in single precision;
// false when they are parallel. The callers check the segments' ends.
bool IntersectLines(float x1, float y1, float x2, float y2, float x3, float y3, float x4, float y4,
                    float& x, float& y);

}  // namespace engine
