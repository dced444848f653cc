#pragma once

#include "engine/areas.h"
#include "engine/designlevels.h"
#include "engine/designprofile.h"
#include "engine/designsection.h"
#include "engine/modvariables.h"
#include "engine/numberformat.h"
#include "engine/quantities.h"
#include "engine/reporter.h"
#include "engine/validation.h"

#include <cstdint>
#include <vector>

namespace db {
class Connection;
}

namespace engine {

// Everything the engine keeps between calls for one open project: the design profile, and the
// caches and result tables of the design and quantity computations. One per open project, so
// two projects can be computed side by side; the caller passes in the current section and the
// executed-levels switch.
class EngineSession {
 public:
  EngineSession(db::Connection& connection, Reporter& reporter);

  db::Connection& connection() const { return m_connection; }
  Reporter& reporter() const { return m_reporter; }

  // Loads design 1's profile; true when it failed (the user has been told why).
  bool LoadDesignProfile();
  const std::vector<DesignProfileRow>& designProfile() const { return m_profile; }

  // The current section, 0 for none. Choosing a section marks its quantity chainages as out
  // of date, as the main window's drill-down does.
  void setSection(std::int32_t sectionId);
  std::int32_t sectionId() const { return m_sectionId; }

  // Whether areas are computed against the executed levels rather than the initial ground.
  void setUseExecutedLevel(bool on) { m_useExecutedLevel = on; }
  bool useExecutedLevel() const { return m_useExecutedLevel; }

  // Level data changed: the next quantity run brings DesignQty's chainages in line first.
  void markQuantityChainagesOutOfDate() { m_quantityChainagesOutOfDate = true; }
  bool quantityChainagesOutOfDate() const { return m_quantityChainagesOutOfDate; }
  void clearQuantityChainagesMark() { m_quantityChainagesOutOfDate = false; }
  // Every writer of level data calls this: the design caches and the quantity chainages are
  // out of date until the next computation.
  void levelDataChanged();

  // The symbols of formatted numbers in report cells and status texts.
  void setNumberSymbols(const NumberSymbols& symbols) { m_symbols = symbols; }
  const NumberSymbols& numberSymbols() const { return m_symbols; }

  modVariables& variables() { return m_variables; }

  // The design section with its details cache, the design-level cache, the level checks.
  DesignState& design() { return m_design; }
  DesignLevelState& levels() { return m_levels; }
  ValidationState& validation() { return m_validation; }

  // What the last area computation and the last quantity run left.
  AreaState& areas() { return m_areas; }
  QuantityRunState& quantityRun() { return m_run; }

 private:
  db::Connection& m_connection;
  Reporter& m_reporter;
  std::vector<DesignProfileRow> m_profile;
  std::int32_t m_sectionId = 0;
  bool m_useExecutedLevel = false;
  bool m_quantityChainagesOutOfDate = false;
  NumberSymbols m_symbols;
  modVariables m_variables;
  DesignState m_design;
  DesignLevelState m_levels;
  ValidationState m_validation;
  AreaState m_areas;
  QuantityRunState m_run;
};

}  // namespace engine
