#pragma once

#include "engine/areas.h"
#include "engine/modvariables.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace db {
class Connection;
}

namespace engine {

class EngineSession;

// What a dimension of the typical section measures.
enum class DimensionKind {
  Width,   // a distance across, between two distances from the centre line
  Height,  // a rise or fall, between two levels at one distance
  Level,   // a level given outright by its formula, at one point
};

// One dimension of the typical section: the stretch one profile formula describes, between two
// points of the section (distances from the centre line, positive on both sides), and the
// formula as the drawing writes it, names without their '$' ("BED_WIDTH/2"). A Width measures
// the distance across from start to end, a Height the rise or fall; a Level stands at end alone.
struct TypicalDimension {
  DimensionKind kind = DimensionKind::Width;
  bool left = false;
  ProfilePoint start;
  ProfilePoint end;
  QString label;
};

// The design section of a section as its design formulas build it, at the first chainage of its
// design details, with the dimension each formula gives: the picture of what the formulas
// describe, for sections that have no picture file.
struct TypicalSection {
  QString designName;  // DesignList row 1; empty when there is none
  std::int32_t sectionId = 0;
  float chainage = 0.0f;     // of the details row drawn
  float centreLevel = 0.0f;  // $CL there
  // The design points of each side in profile order, distances positive on both sides; a
  // centre point stands on both.
  std::vector<ProfilePoint> left;
  std::vector<ProfilePoint> right;
  // The slopes the catch-point search extends each side with, horizontal per vertical, when
  // the details give them (SRS_LEFT, SRS_RIGHT): the names and values.
  std::optional<FormulaVariable> outerSlopeLeft;
  std::optional<FormulaVariable> outerSlopeRight;
  std::vector<TypicalDimension> dimensions;
  // The columns of the details row and their values, in the table's order.
  std::vector<FormulaVariable> details;
};

// The section whose typical section the project shows: preferred when it has design details,
// else the lowest-numbered section that has; 0 when no section has any.
std::int32_t sectionWithDesignDetails(db::Connection& connection, std::int32_t preferred);

// Builds the typical section of the session's current section from its first design details
// row, with the session's design profile (loaded by the caller). nullopt when the section has
// no design details, or when the design section could not be built: the session's reporter
// has then been told why. Only reads the project; the session's design caches are reloaded
// by the next computation.
std::optional<TypicalSection> computeTypicalSection(EngineSession& session);

}  // namespace engine
