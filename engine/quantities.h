#pragma once

#include "db/connection.h"
#include "engine/reportgrid.h"

#include <QStringList>

#include <functional>
#include <optional>

namespace engine {

class EngineSession;

// One row of the quantity run: the areas at a chainage and the volumes of the stretch from the
// previous chainage up to it (none on the first row). Areas in m², volumes in m³.
struct QuantityRow {
  float Chainage = 0.0f;
  float CutArea = 0.0f;
  float FillArea = 0.0f;
  std::optional<float> CutVolume;
  std::optional<float> FillVolume;
};

// What the last quantity run left, and its prepared statements. Lives in the EngineSession.
struct QuantityRunState {
  float TotalCutVolume = 0.0f;
  float TotalFillVolume = 0.0f;
  // False when the last run was stopped by invalid level data (nothing was computed).
  bool Computed = false;
  int RowCount = 0;  // rows the last run walked
  // A run is under way: the events it lets through must not start another one over it.
  bool Running = false;
  // The user stopped the last run between two chainages: its rows and totals cover only the
  // chainages before the stop, and the areas computed until then are kept.
  bool Cancelled = false;

  // Prepared on first use.
  db::Statement countRows;
  db::Statement readRows;
};

// Headers of the Quantity Summary's five columns.
QStringList QuantitySummaryHeaders();
// Headers of the area calculation's columns 0 to 9 (columns 10 to 18, shown with executed
// levels, have none).
QStringList AreaCalculationHeaders();

// The quantity run over the current section's DesignQty rows in chainage order. chainage −1
// computes the areas of every chainage; any other value computes that chainage only and takes
// the stored areas (null as 0) for the others. sheet, when given, receives the Quantity
// Summary row by row and a bold totals row; onRow, when given, receives every row as numbers.
// Totals end in session.quantityRun(); progress and the status-bar totals go through the
// session's reporter. Stops before changing anything when the level data are invalid, and
// between two chainages when the reporter says the user cancelled (no totals row then). The
// progress window is closed however the run ends.
void ComputeQuantities(EngineSession& session, ReportGrid* sheet, float chainage = -1.0f,
                       const std::function<void(const QuantityRow&)>& onRow = {});

// Computes the areas at chainage and copies the area-details table into sheet: one row per
// table row and a totals row, numbers with 3 decimals, empty where there is no value.
void FillAreaDetails(EngineSession& session, float chainage, ReportGrid& sheet);

}  // namespace engine
