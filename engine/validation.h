#pragma once

#include "db/connection.h"

namespace engine {

class EngineSession;

// The acceptable ranges of level data; fixed, not settings.
inline constexpr int kMaxGroundOffset = 100;
inline constexpr int kMinLevel = 50;
inline constexpr int kMaxLevel = 200;

// Statements of the level checks, prepared on first use.
struct ValidationState {
  db::Statement initialAll;
  db::Statement initialAt;
  db::Statement designAll;
  db::Statement designAt;
};

// Checks the Initial and DesignLevels rows of the current section (chainage -1: all chainages,
// else only the rows at that chainage) and writes one error-list line per bad row, the Initial
// lines first. Returns true when at least one bad row was found.
bool ValidateLevels(EngineSession& session, float chainage);

}  // namespace engine
