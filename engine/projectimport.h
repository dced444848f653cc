#pragma once

#include "db/projectcopy.h"
#include "db/tablesource.h"

#include <QString>

namespace engine {

// Copies source into a new project file at path (db::copyIntoNewProject) and keeps the file
// only when it opens as a project does in File > Open: with the design profile of design 1.
// Otherwise nothing is left at path and db::CopyRefused says why.
db::ProjectCopy importProject(db::TableSource& source, const QString& path);

}  // namespace engine
