#pragma once

#include "db/connection.h"
#include "db/tablesource.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace db {

// What copying a table source into a new project file did.
struct ProjectCopy {
  struct Table {
    QString name;  // as the project spells it
    int rows = 0;
  };
  // The project tables the source holds, in the project's order, with the rows copied.
  std::vector<Table> copied;
  // The project tables the source lacks: created empty.
  QStringList emptyTables;
  // One sentence for each table and column of the source that a project has no place for.
  QStringList skipped;
  // One sentence for each value stored as it came because it does not fit its column (text in
  // a number column, a fraction in a key), naming table, row, column and value.
  QStringList problems;
};

// The source's data cannot make a project: it holds none of a project's tables, the project's
// tables refuse a row (a key used twice), or the copy would not open as a project. Nothing was
// written.
class CopyRefused : public Error {
 public:
  using Error::Error;
};

// Writes a new project file at path holding every project table and column that source holds,
// row for row: names match whatever their case, numbers go in as the project stores them
// (measures as singles), NULLs stay NULL. Project tables the source lacks are created empty;
// its other tables and columns are skipped and listed. accept, when given, sees the finished
// file before it takes the name and returns why it is refused, or the empty text. On any
// failure nothing is left at path; throws Error naming the file and the reason (buildNewFile),
// CopyRefused when the data was the reason.
ProjectCopy copyIntoNewProject(TableSource& source, const QString& path,
                               const std::function<QString(Connection&)>& accept = {});

}  // namespace db
