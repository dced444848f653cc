#pragma once

#include "db/connection.h"

#include <QString>

#include <functional>
#include <memory>

namespace db {

// What the opener of a project file will do with it.
enum class ProjectAccess {
  // Edit it: the per-chainage indexes a foreign file lacks are added on open.
  Edit,
  // Only read it: the connection is read-only, so the file stays byte for byte as it was.
  Read,
};

// Opens an existing project file: checks that it is an SQLite database holding every project
// table, and, for editing, adds the per-chainage indexes it lacks. Throws Error naming the file
// and what is wrong ("... is not a Delvane project file: the table DesignExp is missing.").
std::unique_ptr<Connection> openProject(const QString& path,
                                        ProjectAccess access = ProjectAccess::Edit);

// Writes a new project file at path: the tables, the earthen-canal design template (design 1)
// and its quantity columns. With demo, also one package of two surveyed sections, generated
// from a fixed seed so that every demo project is identical. Refuses to overwrite an existing
// file; throws Error naming the file and the reason. The project is built in a temporary file
// beside path and takes the name only once complete, so path never holds half a project.
void createProject(const QString& path, bool demo);

// Makes a new SQLite file at path through build, which gets it open and empty. path takes the
// file only once build has returned, so it never holds half a file: build writes under a
// scratch name beside path, removed again when build throws. Refuses an existing file and a
// missing folder; throws Error naming the file and the reason ("The project file ... could not
// be written: ...", with build's own message).
void buildNewFile(const QString& path, const std::function<void(Connection&)>& build);

// Whether a and b name the same existing file, through any spelling, symbolic or hard link.
bool isSameFile(const QString& a, const QString& b);

// The file name of the demo project in the data folder.
QString demoProjectFileName();

}  // namespace db
