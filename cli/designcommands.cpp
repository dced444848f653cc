#include "cli/command.h"
#include "cli/json.h"
#include "db/connection.h"
#include "db/numbers.h"
#include "engine/designlevels.h"
#include "engine/designsection.h"
#include "engine/initialorder.h"
#include "engine/session.h"
#include "engine/validation.h"

#include <cmath>
#include <memory>

namespace cli {

namespace {

const QString kSection = QStringLiteral("section");
const QString kChainage = QStringLiteral("chainage");
const QString kJson = QStringLiteral("json");
const QString kQuiet = QStringLiteral("quiet");

void addFileAndSection(QCommandLineParser& parser) {
  parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The project file."));
  parser.addOption(
      {kSection, QStringLiteral("The section to work on (its ID)."), QStringLiteral("ID")});
}

void addChainage(QCommandLineParser& parser, const QString& description) {
  parser.addOption({kChainage, description, QStringLiteral("C")});
}

void addJson(QCommandLineParser& parser) {
  parser.addOption({kJson, QStringLiteral("Write the result as one JSON object.")});
}

// An open project with an engine session on the chosen section and the design profile loaded.
struct Run {
  std::unique_ptr<db::Connection> connection;
  std::unique_ptr<ConsoleReporter> reporter;
  std::unique_ptr<engine::EngineSession> session;
  std::int32_t sectionId = 0;
  float chainage = -1;
};

// Checks the arguments and opens the project. Returns the exit code when the command cannot go
// on, or -1 when run is ready. chainageRequired: --chainage must be given; otherwise it is
// optional and defaults to -1.
int start(Context& context, Run& run, bool chainageRequired, bool takesChainage) {
  const QStringList files = context.parser.positionalArguments();
  if (files.size() != 1) return usageError(context, QStringLiteral("give exactly one FILE."));
  if (!context.parser.isSet(kSection))
    return usageError(context, QStringLiteral("give the section with --section ID."));
  const auto section = parseKey(context.parser.value(kSection));
  if (!section || *section <= 0)
    return usageError(context, QStringLiteral("--section needs a positive whole number, not '") +
                                   context.parser.value(kSection) + QStringLiteral("'."));
  run.sectionId = *section;
  if (takesChainage && context.parser.isSet(kChainage)) {
    const auto chainage = parseMeasure(context.parser.value(kChainage));
    if (!chainage || !std::isfinite(*chainage))
      return usageError(context, QStringLiteral("--chainage needs a number in kilometres, not '") +
                                     context.parser.value(kChainage) + QStringLiteral("'."));
    run.chainage = *chainage;
  } else if (chainageRequired) {
    return usageError(context, QStringLiteral("give the chainage with --chainage C."));
  }

  run.connection = openProjectOrReport(context, files.first());
  if (!run.connection) return kCannotOpen;
  run.reporter = std::make_unique<ConsoleReporter>(context.err);
  run.session = std::make_unique<engine::EngineSession>(*run.connection, *run.reporter);
  if (run.session->LoadDesignProfile()) return kCannotOpen;
  run.session->setSection(run.sectionId);
  return -1;
}

int finish(const Run& run, bool dataProblems) {
  return dataProblems || !run.reporter->errors().isEmpty() ? kDataProblems : kOk;
}

// Runs body, turning a database failure into a message naming the file and exit code 3.
template <typename Body>
int guarded(Context& context, Run& run, Body body) {
  try {
    return body();
  } catch (const db::Error& e) {
    context.err << run.connection->path() << ": " << e.message() << "\n";
    return kCannotOpen;
  }
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
  if (int code = start(context, run, true, true); code >= 0) return code;
  return guarded(context, run, [&] {
    bool interpolated = false;
    const float level = engine::DesignLevelAt(*run.session, run.chainage, interpolated,
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
  if (int code = start(context, run, true, true); code >= 0) return code;
  return guarded(context, run, [&] {
    engine::EngineSession& session = *run.session;
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
  if (int code = start(context, run, false, true); code >= 0) return code;
  return guarded(context, run, [&] {
    const bool bad = engine::ValidateLevels(*run.session, run.chainage);
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
  if (int code = start(context, run, false, false); code >= 0) return code;
  return guarded(context, run, [&] {
    engine::FormatInitialTable(*run.session);
    context.out << "Formatted the Initial table and checked the levels of section " << run.sectionId
                << ".\n";
    return finish(run, false);
  });
}

int syncChainages(Context& context) {
  Run run;
  if (int code = start(context, run, false, false); code >= 0) return code;
  return guarded(context, run, [&] {
    engine::SyncQuantityChainages(*run.session);
    db::Statement rows =
        run.connection->prepare(QStringLiteral("SELECT count(*) FROM DesignQty WHERE SectionID=?"),
                                QStringLiteral("Counting the quantity chainages"));
    rows.bindKey(1, run.sectionId);
    rows.step();
    context.out << "DesignQty of section " << run.sectionId << " holds " << rows.int64(0)
                << " chainages.\n";
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
