#pragma once

#include "engine/reporter.h"

#include <QString>

#include <vector>

namespace db {
class Connection;
}

namespace engine {

// One point of the typical design section, as formulas over the design details.
struct DesignProfileRow {
  QString LCR;     // "L", "R" or "C"
  QString Offset;  // formula text
  QString Value;   // formula text
  QString Serial;  // the row's Serial as stored, to name the row in messages
};

// Reads design 1's profile in Serial order into profile, replacing what it held. Returns true
// when it failed, after telling the user why through reporter (no rows; table unreadable).
bool LoadDesignProfile(db::Connection& connection, Reporter& reporter,
                       std::vector<DesignProfileRow>& profile);

}  // namespace engine
