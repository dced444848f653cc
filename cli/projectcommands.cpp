#include "cli/command.h"
#include "cli/session.h"
#include "db/connection.h"
#include "db/project.h"

namespace cli {

namespace {

void newOptions(QCommandLineParser& parser) {
  parser.addOption({QStringLiteral("demo"),
                    QStringLiteral("Also add the demo package with two surveyed sections.")});
  parser.addPositionalArgument(QStringLiteral("FILE"),
                               QStringLiteral("The project file to create (.delvane)."));
}

int newProject(Context& context) {
  int code = -1;
  const auto file = fileArgument(context, code);
  if (!file) return code;
  try {
    db::createProject(*file, context.parser.isSet(QStringLiteral("demo")));
  } catch (const db::Error& e) {
    context.err << e.message() << "\n";
    return kCannotOpen;
  }
  context.out << "Created " << *file << "\n";
  return kOk;
}

void fileOption(QCommandLineParser& parser) {
  parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The project file."));
}

int listSections(Context& context) {
  int code = -1;
  const auto file = fileArgument(context, code);
  if (!file) return code;
  auto connection = openProjectOrReport(context, *file, db::ProjectAccess::Read);
  if (!connection) return kCannotOpen;
  try {
    for (const db::SectionEntry& e : db::listSections(*connection))
      context.out << e.packageId << '\t' << e.packageName << '\t' << e.sectionId << '\t'
                  << e.description << '\n';
  } catch (const db::Error& e) {
    context.err << *file << ": " << e.message() << "\n";
    return kCannotOpen;
  }
  return kOk;
}

}  // namespace

const Command kProjectCommands[] = {
    {"new", "Create a project file with the canal design template (and the demo data).", newOptions,
     newProject},
    {"sections", "List the sections: package ID, package name, section ID, description.",
     fileOption, listSections},
};
const int kProjectCommandCount = std::size(kProjectCommands);

}  // namespace cli
