#pragma once

#include "engine/numberformat.h"

#include <QString>

#include <cstdint>

namespace db {
class Connection;
}

namespace drawing {

// What a sheet's title line names, and how its numbers are written.
struct SheetTitle {
  QString projectFile;  // the file name, without its folder
  QString packageName;
  QString sectionDescription;
  std::int32_t sectionId = 0;
  engine::NumberSymbols symbols;
};

// The title of a sheet of section drawn from the project in projectFile: the file's name, the
// section's description and its package's name as stored.
SheetTitle sheetTitleOf(db::Connection& connection, const QString& projectFile,
                        std::int32_t section);

// The common part of every title line: "FILE - PACKAGE - SECTION".
QString titleLead(const SheetTitle& title);

// "1:N" for a true scale of 1 to N, with one decimal when N is not whole ("1:166.7").
QString scaleText(double n, const engine::NumberSymbols& symbols);

}  // namespace drawing
