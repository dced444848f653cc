#pragma once

#include "db/connection.h"

#include <QString>

#include <cstdint>
#include <set>
#include <vector>

namespace engine {

class EngineSession;

// One point of the design section: the distance from the centre line (positive on both sides)
// and the level, in metres.
struct DesignPoint {
  float Offset = 0;
  float Level = 0;
};

// One quantity column: which strips of a side count, and whether as cut or fill. The offsets are
// the values of the stored formulas at the time the details row was loaded.
struct QtyDefineRow {
  std::int16_t ColNo = 0;
  QString QType;  // "CUT", anything else is fill
  float StartOffset = 0;
  float EndOffset = 0;
  QString LRB;  // "L", "R" or "B"
};

// Keeps the design section of one chainage and the cache that avoids re-reading the details row.
//
// The details row is a step function of chainage: a row applies from its own chainage up to, not
// including, the next row's; before the first row the first row applies; the last row applies to
// the end of the section. The cache is only refreshed when the chainage moves forward to
// NextDetailsChainage or beyond, or when DetailsReload is set, so a caller stepping backwards
// calls ResetDesignCache first.
//
// The points are growable: after GetDesignSection each side holds exactly its nLeft / nRight
// points in profile order (the area computation appends its catch point after them), so a
// profile with more than 21 points on a side is computed rather than written out of bounds.
struct DesignState {
  float DetailsChainage = -1;      // the DesignDetails row in force; -1 when none
  float NextDetailsChainage = -1;  // where the next row takes over; -1 when none
  bool DetailsReload = true;

  // Loaded with every details row, in the order the table returns them. All rows are kept;
  // stored designs have at most 16.
  std::vector<QtyDefineRow> QtyDefine;

  // The stored formulas whose length the evaluator refused, each named once per run.
  std::set<QString> RefusedFormulas;

  std::vector<DesignPoint> LeftDesignPoints;
  std::vector<DesignPoint> RightDesignPoints;
  int nLeft = 0;
  int nRight = 0;

  // Prepared on first use.
  db::Statement detailsAtOrBefore;
  db::Statement detailsAfter;
  db::Statement lastQuantityChainage;
  db::Statement lastSurveyedChainage;
  db::Statement detailsRow;
  db::Statement qtyDefineRows;
};

// Raises the details and design-level reload flags; when level data changed since the last run
// (the session's quantity-chainages mark), brings DesignQty's chainages in line with Initial
// and clears the mark — unless the connection is read-only: then the stored chainages stay as
// they are and the mark stays raised.
void ResetDesignCache(EngineSession& session);

// Builds the design section of the current section at chainage, hung from centreLevel (the
// formulas' $CL). LP_Off, LP_Val, RP_Off, RP_Val are in-out: callers pass 0 for each; on return
// they hold the last left and right points. nLeft / nRight receive the point counts. When the
// section has no design details the error list says so and neither the points nor the counts
// are touched.
void GetDesignSection(EngineSession& session, float chainage, float centreLevel, float& LP_Off,
                      float& LP_Val, float& RP_Off, float& RP_Val, int& nLeft, int& nRight);

}  // namespace engine
