#include "cli/command.h"
#include "cli/json.h"
#include "cli/session.h"
#include "db/jetsource.h"
#include "engine/projectimport.h"

#include <memory>

namespace cli {

namespace {

void importMdbOptions(QCommandLineParser& parser) {
  parser.addPositionalArgument(QStringLiteral("OLD"),
                               QStringLiteral("The older project file (Jet 3 or Jet 4, .mdb)."));
  parser.addPositionalArgument(QStringLiteral("NEW"),
                               QStringLiteral("The project file to create (.delvane)."));
  addJson(parser);
}

int importMdb(Context& context) {
  const QStringList files = context.parser.positionalArguments();
  if (files.size() != 2 || files[0].isEmpty() || files[1].isEmpty())
    return usageError(context, QStringLiteral("give the older file OLD.mdb and the new project "
                                              "file NEW.delvane."));
  const QString& oldFile = files[0];
  const QString& newFile = files[1];
  db::ProjectCopy copy;
  try {
    db::JetSource source(oldFile);
    copy = engine::importProject(source, newFile);
  } catch (const db::CopyRefused& e) {
    context.err << e.message() << "\n";
    return kDataProblems;
  } catch (const db::Error& e) {
    context.err << e.message() << "\n";
    return kCannotOpen;
  }

  // Values kept as they came are the error list: the user checks them in the sheets.
  for (const QString& line : copy.problems) context.err << line << "\n";
  if (context.parser.isSet(kJson)) {
    QJsonObject tables;
    for (const db::ProjectCopy::Table& table : copy.copied) tables[table.name] = table.rows;
    writeJson(context.out, {{QStringLiteral("file"), newFile},
                            {QStringLiteral("source"), oldFile},
                            {QStringLiteral("tables"), tables},
                            {QStringLiteral("empty_tables"), jsonLines(copy.emptyTables)},
                            {QStringLiteral("skipped"), jsonLines(copy.skipped)},
                            {QStringLiteral("errors"), jsonLines(copy.problems)}});
  } else {
    context.out << "Created " << newFile << " from " << oldFile << "\n";
    for (const db::ProjectCopy::Table& table : copy.copied)
      context.out << "  " << table.name << ": " << table.rows
                  << (table.rows == 1 ? " row\n" : " rows\n");
    if (!copy.emptyTables.isEmpty())
      context.out << "Created empty: " << copy.emptyTables.join(QStringLiteral(", ")) << "\n";
    for (const QString& line : copy.skipped) context.out << line << "\n";
  }
  return copy.problems.isEmpty() ? kOk : kDataProblems;
}

}  // namespace

const Command kLegacyCommands[] = {
    {"import-mdb",
     "Copy an older project file (Jet .mdb) into a new project file; lists what it skips.",
     importMdbOptions, importMdb},
};
const int kLegacyCommandCount = std::size(kLegacyCommands);

}  // namespace cli
