#pragma once

#include <QString>

namespace bench {

// Writes a project file for timing runs: the canal design template of a new project and one
// section (ID 1) of `chainages` cross-sections 20 m apart, each with `readings` ground levels
// across the canal, a design level, a design details row and a DesignQty row. The ground is
// the same for every file, so a 10,000-chainage file starts with the 1,000-chainage one.
void writeBenchProject(const QString& path, int chainages, int readings);

}  // namespace bench
