#pragma once

#include "db/connection.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>

namespace db {

// The tables every project file must hold, in the order they are checked.
QStringList requiredTables();

// Writes the empty tables of a new project file (no rows). The connection is on a new, empty
// database.
void createSchema(Connection& connection);

// Adds the per-chainage indexes when the file lacks them; harmless on a file that has them.
// Missing tables are skipped: their absence is reported by whoever needs them.
void ensureIndexes(Connection& connection);

// The next free key of Package or Sections: MAX(ID) + 1, or 1 for an empty table.
std::int32_t GetNextID(Connection& connection, const QString& table);

// Removes the rows left without a parent after Package rows were deleted: sections of missing
// packages first, then the data rows of missing sections.
void DeleteOrphansAfterPackages(Connection& connection);
// The same after Sections rows were deleted: data rows of missing sections only.
void DeleteOrphansAfterSections(Connection& connection);

// Whether the project holds a section with this key.
bool sectionExists(Connection& connection, std::int32_t sectionId);

// The rows the main window's Add command inserts. year: the current calendar year.
std::int32_t AddPackage(Connection& connection, int year);
std::int32_t AddSection(Connection& connection, std::int32_t packageId);
// count rows of table ("Initial" or "Executed") at chainage (km), in one transaction. onRow,
// when given, hears the number inserted so far after each. A failing statement ends the work
// with Error; the rows inserted before it stay.
void AddLevelRows(Connection& connection, const QString& table, std::int32_t sectionId,
                  float chainage, int count, const std::function<void(int done)>& onRow = {});
// The same for table "DesignDetails", "DesignLevels" or "Outlets", rows holding the key only.
void AddSectionRows(Connection& connection, const QString& table, std::int32_t sectionId, int count,
                    const std::function<void(int done)>& onRow = {});

}  // namespace db
