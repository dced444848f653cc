#pragma once

#include "db/connection.h"

#include <QString>

#include <memory>

namespace db {

// Opens an existing project file: checks that it is an SQLite database holding every project
// table, and adds the per-chainage indexes it lacks. Throws Error naming the file and what is
// wrong ("... is not a Delvane project file: the table DesignExp is missing.").
std::unique_ptr<Connection> openProject(const QString& path);

// Writes a new project file at path: the tables, the earthen-canal design template (design 1)
// and its quantity columns. With demo, also one package of two surveyed sections, generated
// from a fixed seed so that every demo project is identical. Refuses to overwrite an existing
// file; throws Error naming the file and the reason. A half-written file is removed.
void createProject(const QString& path, bool demo);

// The file name of the demo project in the data folder.
QString demoProjectFileName();

}  // namespace db
