#pragma once

#include "db/connection.h"

namespace engine {

class EngineSession;

// The one interval of DesignLevels last used for interpolation. Rising chainages within it are
// answered without a query; a level of 0 or below at either end disables it.
struct DesignLevelState {
  float LowerChainage = -1;
  float UpperChainage = -1;
  float LowerLevel = -1;
  float UpperLevel = -1;
  bool Reload = true;  // raised by ResetDesignCache, cleared by the next interpolation by query

  // Prepared on first use.
  db::Statement levelAt;
  db::Statement lowerChainage;
  db::Statement upperChainage;
};

// The centre-line design level of the current section at chainage: the stored level when a row
// stands there, else the straight line between the neighbouring rows, the last level held flat
// beyond the last row. Returns 0 when none can be found, after an error-list line starting
// "Chainage : "; quiet suppresses the "Insufficient levels" and "Unknown Error" lines (never the
// null-level one). interpolated is true unless the level is a stored one.
float DesignLevelAt(EngineSession& session, float chainage, bool& interpolated, bool quiet);

// Makes DesignQty hold one row per distinct Initial chainage of the current section: adds the
// missing ones (with null areas) and removes those no longer surveyed. When Initial has no rows
// for the section, nothing is removed.
void SyncQuantityChainages(EngineSession& session);

}  // namespace engine
