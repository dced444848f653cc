#include "cli/command.h"
#include "cli/json.h"
#include "cli/session.h"
#include "db/connection.h"
#include "db/numbers.h"
#include "db/project.h"
#include "engine/designlevels.h"
#include "engine/designsection.h"
#include "engine/initialorder.h"
#include "engine/session.h"
#include "engine/validation.h"

#include <memory>

namespace cli {

namespace {

const QString kQuiet = QStringLiteral("quiet");

void addChainage(QCommandLineParser& parser, const QString& description) {
  parser.addOption({kChainage, description, QStringLiteral("C")});
}

// An open project with an engine session on the chosen section and the design profile loaded.
struct Run : ProjectSession<> {
  std::int32_t sectionId = 0;
  float chainage = -1;
};

// Checks the arguments and opens the project. Returns the exit code when the command cannot go
// on, or -1 when run is ready. chainageRequired: --chainage must be given; otherwise it is
// optional and defaults to -1.
int start(Context& context, Run& run, bool chainageRequired, bool takesChainage,
          db::ProjectAccess access) {
  int code = -1;
  const auto file = fileArgument(context, code);
  if (!file) return code;
  const auto section = sectionOption(context, code);
  if (!section) return code;
  run.sectionId = *section;
  if (takesChainage && context.parser.isSet(kChainage)) {
    const auto chainage = chainageOption(context, -1.0f, code);
    if (!chainage) return code;
    run.chainage = *chainage;
  } else if (chainageRequired) {
    return usageError(context, QStringLiteral("give the chainage with --chainage C."));
  }

  if (int failed = run.open(context, *file, true, access); failed >= 0) return failed;
  return run.useSection(context, run.sectionId);
}

int finish(const Run& run, bool dataProblems) {
  return dataProblems || !run.reporter->errors().isEmpty() ? kDataProblems : kOk;
}

void designLevelOptions(QCommandLineParser& parser) {
  addFileAndSection(parser);
  addChainage(parser, QStringLiteral("The chainage in kilometres."));
  parser.addOption({kQuiet, QStringLiteral("Leave out the 'Insufficient levels' and 'Unknown "
                                           "Error' lines.")});
  addJson(parser);
}

int designLevel(Context& context) {
  Run run;
  if (int code = start(context, run, true, true, db::ProjectAccess::Read); code >= 0) return code;
  return run.guarded(context, [&] {
    bool interpolated = false;
    const float level = engine::DesignLevelAt(*run.engine, run.chainage, interpolated,
                                              context.parser.isSet(kQuiet));
    if (context.parser.isSet(kJson)) {
      writeJson(context.out, {{QStringLiteral("chainage"), jsonNumber(run.chainage)},
                              {QStringLiteral("level"), jsonNumber(level)},
                              {QStringLiteral("interpolated"), interpolated},
                              {QStringLiteral("errors"), jsonLines(run.reporter->errors())}});
    } else {
      context.out << db::floatText(run.chainage) << '\t' << db::floatText(level) << '\t'
                  << (interpolated ? "interpolated" : "stored") << '\n';
    }
    return finish(run, false);
  });
}

void designSectionOptions(QCommandLineParser& parser) {
  addFileAndSection(parser);
  addChainage(parser, QStringLiteral("The chainage in kilometres."));
  addJson(parser);
}

QJsonArray jsonPoints(const std::vector<engine::DesignPoint>& points, int count) {
  QJsonArray array;
  for (int i = 0; i < count && i < static_cast<int>(points.size()); ++i)
    array.append(QJsonArray{jsonNumber(points[i].Offset), jsonNumber(points[i].Level)});
  return array;
}

int designSection(Context& context) {
  Run run;
  if (int code = start(context, run, true, true, db::ProjectAccess::Read); code >= 0) return code;
  return run.guarded(context, [&] {
    engine::EngineSession& session = *run.engine;
    engine::ResetDesignCache(session);
    bool interpolated = false;
    const float centreLevel = engine::DesignLevelAt(session, run.chainage, interpolated, false);
    float lpOff = 0, lpVal = 0, rpOff = 0, rpVal = 0;
    int nLeft = 0, nRight = 0;
    engine::GetDesignSection(session, run.chainage, centreLevel, lpOff, lpVal, rpOff, rpVal, nLeft,
                             nRight);
    const engine::DesignState& design = session.design();
    if (context.parser.isSet(kJson)) {
      writeJson(context.out,
                {{QStringLiteral("chainage"), jsonNumber(run.chainage)},
                 {QStringLiteral("centre_level"), jsonNumber(centreLevel)},
                 {QStringLiteral("left"), jsonPoints(design.LeftDesignPoints, nLeft)},
                 {QStringLiteral("right"), jsonPoints(design.RightDesignPoints, nRight)},
                 {QStringLiteral("errors"), jsonLines(run.reporter->errors())}});
    } else {
      context.out << "centre level\t" << db::floatText(centreLevel) << '\n';
      const auto print = [&](const char* side, const std::vector<engine::DesignPoint>& points,
                             int count) {
        for (int i = 0; i < count && i < static_cast<int>(points.size()); ++i)
          context.out << side << '\t' << db::floatText(points[i].Offset) << '\t'
                      << db::floatText(points[i].Level) << '\n';
      };
      print("L", design.LeftDesignPoints, nLeft);
      print("R", design.RightDesignPoints, nRight);
    }
    return finish(run, false);
  });
}

void validateOptions(QCommandLineParser& parser) {
  addFileAndSection(parser);
  addChainage(parser, QStringLiteral("Check only the rows at this chainage (default: all)."));
  addJson(parser);
}

int validate(Context& context) {
  Run run;
  if (int code = start(context, run, false, true, db::ProjectAccess::Read); code >= 0) return code;
  return run.guarded(context, [&] {
    const bool bad = engine::ValidateLevels(*run.engine, run.chainage);
    if (context.parser.isSet(kJson)) {
      writeJson(context.out, {{QStringLiteral("bad"), bad},
                              {QStringLiteral("errors"), jsonLines(run.reporter->errors())}});
    } else if (bad) {
      context.out << "Section " << run.sectionId
                  << " has levels that are missing or out of range; the lines above name them.\n";
    } else {
      context.out << "The levels of section " << run.sectionId << " are acceptable.\n";
    }
    return finish(run, bad);
  });
}

int orderInitial(Context& context) {
  Run run;
  if (int code = start(context, run, false, false, db::ProjectAccess::Edit); code >= 0) return code;
  return run.guarded(context, [&] {
    engine::FormatInitialTable(*run.engine);
    context.out << "Formatted the Initial table and checked the levels of section " << run.sectionId
                << ".\n";
    return finish(run, false);
  });
}

int syncChainages(Context& context) {
  Run run;
  if (int code = start(context, run, false, false, db::ProjectAccess::Edit); code >= 0) return code;
  return run.guarded(context, [&] {
    engine::SyncQuantityChainages(*run.engine);
    context.out << "DesignQty of section " << run.sectionId << " holds "
                << db::quantityChainageCount(*run.connection, run.sectionId) << " chainages.\n";
    return finish(run, false);
  });
}

}  // namespace

const Command kDesignCommands[] = {
    {"design-level", "The centre-line design level of a section at a chainage.", designLevelOptions,
     designLevel},
    {"design-section", "The design section (left and right points) at a chainage.",
     designSectionOptions, designSection},
    {"validate", "Check the initial and design levels of a section for bad values.",
     validateOptions, validate},
    {"order-initial",
     "Fill the chainages of Initial and make left offsets negative; check the section.",
     addFileAndSection, orderInitial},
    {"sync-chainages", "Make DesignQty hold one row per Initial chainage of the section.",
     addFileAndSection, syncChainages},
};
const int kDesignCommandCount = std::size(kDesignCommands);

}  // namespace cli
