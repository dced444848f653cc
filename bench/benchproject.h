#pragma once

#include "engine/reporter.h"

#include <QString>

namespace bench {

// Writes a project file for timing runs: the canal design template of a new project and one
// section (ID 1) of `chainages` cross-sections 20 m apart, each with `readings` ground levels
// across the canal, a design level, a design details row and a DesignQty row. The ground is
// the same for every file, so a 10,000-chainage file starts with the 1,000-chainage one.
void writeBenchProject(const QString& path, int chainages, int readings);

// Counts error-list lines and drops everything else.
class QuietReporter : public engine::Reporter {
 public:
  void ShowError(const QString&) override { ++errors; }
  void messageBox(const QString&, Icon) override {}
  void progressStart(const QString&, int, bool) override {}
  void progressValue(int) override {}
  void progressEnd() override {}
  void statusText(int, const QString&) override {}
  int errors = 0;
};

}  // namespace bench
