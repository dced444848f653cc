#include "cli/command.h"
#include "cli/session.h"
#include "db/project.h"
#include "engine/quantityexport.h"
#include "engine/session.h"

#include <QDir>

#include <iterator>
#include <memory>

namespace cli {

namespace {

const QString kOutput = QStringLiteral("output");

void exportOptions(QCommandLineParser& parser) {
  addFileAndSection(parser, QStringLiteral("The section to export (its ID)."));
  parser.addOption({kOutput,
                    QStringLiteral("The file to write: a workbook (.xlsx) or comma-separated "
                                   "text (.csv)."),
                    QStringLiteral("OUT")});
  parser.addOption({kExecuted, QStringLiteral("Compute the areas against the executed levels.")});
}

// Exit codes: 0 written, 1 invalid levels stopped the run (nothing written) or the sheet was
// written with error-list lines, 2 usage, 3 the project cannot be opened or the output cannot be
// written.
int exportQuantity(Context& context) {
  int code = -1;
  const auto file = fileArgument(context, code);
  if (!file) return code;
  const auto section = sectionOption(context, code);
  if (!section) return code;
  if (!context.parser.isSet(kOutput) || context.parser.value(kOutput).isEmpty())
    return usageError(context, QStringLiteral("give the file to write with --output OUT."));
  const QString output = context.parser.value(kOutput);
  const auto format = engine::QuantitySheetFormatOf(output);
  if (!format)
    return usageError(context, QStringLiteral("--output must end in .xlsx or .csv, not '") +
                                   output + QStringLiteral("'."));

  if (db::isSameFile(output, *file))
    return usageError(context, QStringLiteral("--output '") + output +
                                   QStringLiteral("' is the project file itself: give another "
                                                  "file."));

  ProjectSession<> project;
  if (int failed = project.open(context, *file, false, db::ProjectAccess::Edit); failed >= 0)
    return failed;
  engine::EngineSession& session = *project.engine;
  return project.guarded(context, [&]() -> int {
    if (int failed = project.useSection(context, *section); failed >= 0) return failed;
    if (session.LoadDesignProfile()) return kCannotOpen;
    session.setUseExecutedLevel(context.parser.isSet(kExecuted));

    const engine::QuantityExportResult result =
        engine::ExportQuantitySheet(session, output, *format);
    switch (result.status) {
      case engine::QuantityExportResult::Status::StoppedByInvalidLevels:
        context.err << "Nothing was exported: section " << *section
                    << " has levels that are missing or out of range; the lines above name "
                       "them.\n";
        return kDataProblems;
      case engine::QuantityExportResult::Status::Cancelled:  // the console never cancels
        context.err << "Nothing was exported: the run was cancelled.\n";
        return kDataProblems;
      case engine::QuantityExportResult::Status::CannotWrite:
        context.err << result.message << "\n";
        return kCannotOpen;
      case engine::QuantityExportResult::Status::Written:
        break;
    }
    context.out << "Wrote the quantity sheet of section " << *section << " (" << result.rowCount
                << " chainages) to " << QDir::toNativeSeparators(output) << ".\n";
    // Written, but with error-list lines (a refused formula, missing levels): as quantities.
    return project.reporter->errors().isEmpty() ? kOk : kDataProblems;
  });
}

}  // namespace

const Command kExportCommands[] = {
    {"export", "Export the quantity summary of a section as .xlsx or .csv.", exportOptions,
     exportQuantity},
};
const int kExportCommandCount = static_cast<int>(std::size(kExportCommands));

}  // namespace cli
