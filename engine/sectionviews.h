#pragma once

#include "engine/areas.h"

#include <cmath>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace engine {

class EngineSession;

// A cross-section as the drawings show it: six point tables of (distance from the centre line,
// positive on both sides; level), each ordered outward from the centre line and ending before
// the first level of 0 or less; the design tables end with their catch point when one was found.
struct CrossSection {
  float chainage = 0.0f;  // rounded to 3 decimals, as computed
  std::vector<ProfilePoint> designLeft;
  std::vector<ProfilePoint> designRight;
  std::vector<ProfilePoint> groundLeft;
  std::vector<ProfilePoint> groundRight;
  std::vector<ProfilePoint> executedLeft;  // empty unless executed levels are in use
  std::vector<ProfilePoint> executedRight;
  float areaCut = 0.0f;
  float areaFill = 0.0f;
  // Over the ground tables and the first 13 points of the design tables; 9999 and 0 when no
  // table holds a point.
  float lowest = 9999.0f;
  float highest = 0.0f;
  // The outermost ground distance of each side, raised to any larger design distance.
  float largestLeft = 0.0f;
  float largestRight = 0.0f;

  bool hasPoints() const { return lowest <= highest; }
  // The whole metre below the lowest level, the line the drawings stand on; 0 without points.
  int datum() const { return hasPoints() ? static_cast<int>(std::floor(lowest)) - 1 : 0; }
};

// Computes the cross-section of the current section at chainage, as the area computation does,
// writing the areas to the chainage's DesignQty row only when storeAreas is true. Data problems
// go to the session's reporter. Call ResetDesignCache first when the chainages do not rise from
// the previous call.
CrossSection computeCrossSection(EngineSession& session, float chainage, bool storeAreas = false);

// The cross-sections of every quantity chainage of the current section, in chainage order,
// after ResetDesignCache (which brings the quantity chainages in line with the levels when they
// changed). onChainage, when given, hears (index, count) before each chainage and may stop the
// run by returning false; what was computed until then is returned.
std::vector<CrossSection> computeCrossSections(
    EngineSession& session, const std::function<bool(int, int)>& onChainage = {});

// The quantity chainages of the current section in order: the rows the sheets and views walk.
// On a read-only connection, while the quantity chainages are out of date, the chainages
// SyncQuantityChainages would leave, read without writing them.
std::vector<float> quantityChainages(EngineSession& session);

// One chainage of a longitudinal profile. A missing value is nullopt.
struct LongProfileRow {
  float chainage = 0.0f;
  std::optional<float> leftGround;    // the outermost left reading
  std::optional<float> centreGround;  // the reading at offset 0
  std::optional<float> rightGround;   // the outermost right reading
  std::optional<float> designLevel;   // the centre-line design level
  std::optional<float> finalLevel;    // the executed level at offset 0, when asked for
};

// The longitudinal profile of the current section between two chainages (inclusive).
struct LongProfile {
  float fromChainage = 0.0f;
  float toChainage = 0.0f;
  std::vector<LongProfileRow> rows;
  // Lowest and highest level of DesignLevels and Initial within the range; nullopt when the
  // range holds no level.
  std::optional<float> lowest;
  std::optional<float> highest;
};

// Reads the longitudinal profile of the current section over [from, to]; the executed levels
// are read when withExecuted is true.
LongProfile computeLongProfile(EngineSession& session, float from, float to, bool withExecuted);

}  // namespace engine
