#pragma once

#include "db/connection.h"

#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

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

// What a section is called: its description and its package's name; empty when missing.
struct SectionNames {
  QString description;
  QString packageName;
};
SectionNames sectionNames(Connection& connection, std::int32_t section);

// Whether table holds a row with ID key.
bool keyExists(Connection& connection, const QString& table, std::int32_t key);

// The name of package id; empty when it has none or is missing.
QString packageName(Connection& connection, std::int32_t id);

// The name of the project's design (row 1 of DesignList); nullopt when there is no such row.
std::optional<QString> designName(Connection& connection);

// The sections of every package, in the order the lists show them: by district, package name,
// section description.
struct SectionEntry {
  std::int32_t packageId = 0;
  QString packageName;
  std::int32_t sectionId = 0;
  QString description;
};
std::vector<SectionEntry> listSections(Connection& connection);

// How many quantity chainages section has.
std::int64_t quantityChainageCount(Connection& connection, std::int32_t section);

}  // namespace db
