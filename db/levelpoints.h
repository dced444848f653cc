#pragma once

#include <cstdint>
#include <optional>

namespace db {

class Connection;

// The statements of the section viewer: the surveyed points and design levels it picks, adds,
// changes and deletes one at a time. Chainages, offsets and levels are singles as the project
// stores them; a stored value matches a given one at single precision.

// The nearest stored values at or below and above a position.
struct Neighbours {
  std::optional<float> below;  // the greatest at or below
  std::optional<float> above;  // the least above
  // The nearer of the two (the one below when both are as near); nullopt when neither exists.
  std::optional<float> nearestTo(double position) const;
};

// The ground readings of a chainage of section, around offset.
Neighbours groundOffsetsAround(Connection& connection, std::int32_t section, float chainage,
                               double offset);
// The level of the first reading at offset of that chainage; nullopt when there is none.
std::optional<float> groundLevelAt(Connection& connection, std::int32_t section, float chainage,
                                   float offset);
// The quantity chainages of section around chainage.
Neighbours quantityChainagesAround(Connection& connection, std::int32_t section, double chainage);

struct LevelPoint {
  float position = 0.0f;  // an offset, or for a design level its chainage
  float level = 0.0f;
};

// Ground readings of a chainage. A change or delete touches only the rows whose offset and level
// both match was: a second reading at the same offset keeps its own level.
void addGroundPoint(Connection& connection, std::int32_t section, float chainage, LevelPoint point);
void changeGroundPoint(Connection& connection, std::int32_t section, float chainage, LevelPoint was,
                       LevelPoint now);
void deleteGroundPoint(Connection& connection, std::int32_t section, float chainage,
                       LevelPoint point);

// Centre-line design levels, by chainage and level in the same way.
void addDesignLevel(Connection& connection, std::int32_t section, LevelPoint point);
void changeDesignLevel(Connection& connection, std::int32_t section, LevelPoint was,
                       LevelPoint now);
void deleteDesignLevel(Connection& connection, std::int32_t section, LevelPoint point);

}  // namespace db
