#include "cli/command.h"
#include "cli/json.h"
#include "cli/session.h"
#include "db/numbers.h"
#include "engine/designsection.h"
#include "engine/sectionviews.h"
#include "engine/session.h"
#include "engine/validation.h"

#include <QStringList>

#include <algorithm>
#include <iterator>
#include <vector>

namespace cli {

namespace {

void sectionPointsOptions(QCommandLineParser& parser) {
  addFileAndSection(parser);
  parser.addOption({kChainage,
                    QStringLiteral("The chainage in kilometres, one of the section's "
                                   "cross-sections."),
                    QStringLiteral("C")});
  parser.addOption({kExecuted, QStringLiteral("Give the executed levels too, as the main "
                                              "window's 'use executed levels' switch does.")});
  addJson(parser);
}

// One point table of a cross-section, its name and side as the output shows them.
struct PointTable {
  const char* kind;
  const char* side;
  const std::vector<engine::ProfilePoint>* points;
};

QJsonArray jsonPoints(const std::vector<engine::ProfilePoint>& points) {
  QJsonArray array;
  for (const engine::ProfilePoint& p : points)
    array.append(QJsonArray{jsonNumber(p.Offset), jsonNumber(p.Level)});
  return array;
}

QJsonObject jsonSides(const std::vector<engine::ProfilePoint>& left,
                      const std::vector<engine::ProfilePoint>& right) {
  return {{QStringLiteral("left"), jsonPoints(left)}, {QStringLiteral("right"), jsonPoints(right)}};
}

void writeSectionJson(QTextStream& out, const engine::CrossSection& s) {
  const QJsonValue none(QJsonValue::Null);
  writeJson(out, {{QStringLiteral("chainage"), jsonNumber(s.chainage)},
                  {QStringLiteral("design"), jsonSides(s.designLeft, s.designRight)},
                  {QStringLiteral("existing"), jsonSides(s.groundLeft, s.groundRight)},
                  {QStringLiteral("executed"), jsonSides(s.executedLeft, s.executedRight)},
                  {QStringLiteral("datum"), s.hasPoints() ? QJsonValue(s.datum()) : none},
                  {QStringLiteral("lowest"), s.hasPoints() ? jsonNumber(s.lowest) : none},
                  {QStringLiteral("highest"), s.hasPoints() ? jsonNumber(s.highest) : none},
                  {QStringLiteral("area_cut"), jsonNumber(s.areaCut)},
                  {QStringLiteral("area_fill"), jsonNumber(s.areaFill)}});
}

// A block per kind of level (design, existing, executed), a row per point, then the areas and
// the levels the drawing stands on.
void writeSectionText(QTextStream& out, std::int32_t section, const engine::CrossSection& s,
                      bool executed) {
  out << "Section " << section << ", chainage " << db::floatText(s.chainage) << '\n';
  const PointTable tables[] = {
      {"Design", "left", &s.designLeft},     {"Design", "right", &s.designRight},
      {"Existing", "left", &s.groundLeft},   {"Existing", "right", &s.groundRight},
      {"Executed", "left", &s.executedLeft}, {"Executed", "right", &s.executedRight},
  };
  const int shown = executed ? 6 : 4;
  for (int i = 0; i < shown; ++i) {
    const PointTable& t = tables[i];
    if (i % 2 == 0) out << '\n' << t.kind << "\nSide\tDistance\tLevel\n";
    for (const engine::ProfilePoint& p : *t.points)
      out << t.side << '\t' << db::floatText(p.Offset) << '\t' << db::floatText(p.Level) << '\n';
  }
  out << "\nCut area\t" << db::floatText(s.areaCut) << "\nFill area\t" << db::floatText(s.areaFill)
      << '\n';
  if (s.hasPoints())
    out << "Datum\t" << s.datum() << "\nLowest\t" << db::floatText(s.lowest) << "\nHighest\t"
        << db::floatText(s.highest) << '\n';
  else
    out << "No levels to draw: the cross-section has no datum.\n";
}

// Names the chainages either side of one that is not in chainages (ascending, not empty).
QString nearestChainages(const std::vector<float>& chainages, float chainage) {
  const auto above = std::lower_bound(chainages.begin(), chainages.end(), chainage);
  QStringList nearest;
  if (above != chainages.begin()) nearest.append(db::floatText(*std::prev(above)));
  if (above != chainages.end()) nearest.append(db::floatText(*above));
  return (nearest.size() == 1 ? QStringLiteral("the nearest is ")
                              : QStringLiteral("the nearest are ")) +
         nearest.join(QStringLiteral(" and "));
}

// Exit codes: 0 printed, 1 the chainage is not one of the section's cross-sections, its levels
// fail the level check (nothing printed), or the computation reported gaps such as missing
// executed levels (printed), 2 usage, 3 the project cannot be opened.
int sectionPoints(Context& context) {
  int code = -1;
  const auto file = fileArgument(context, code);
  if (!file) return code;
  const auto section = sectionOption(context, code);
  if (!section) return code;
  if (!context.parser.isSet(kChainage))
    return usageError(context, QStringLiteral("give the chainage with --chainage C."));
  const auto chainage = chainageOption(context, -1.0f, code);
  if (!chainage) return code;
  const bool executed = context.parser.isSet(kExecuted);

  ProjectSession<> project;
  if (int failed = project.open(context, *file, true, db::ProjectAccess::Read); failed >= 0)
    return failed;
  if (int failed = project.useSection(context, *section); failed >= 0) return failed;
  return project.guarded(context, [&] {
    engine::EngineSession& session = *project.engine;
    session.setUseExecutedLevel(executed);
    engine::ResetDesignCache(session);
    const std::vector<float> chainages = engine::quantityChainages(session);
    if (!std::binary_search(chainages.begin(), chainages.end(), *chainage)) {
      context.err << "Section " << *section << " has no cross-section at chainage "
                  << db::floatText(*chainage);
      if (chainages.empty())
        context.err << ": it has no chainages.\n";
      else
        context.err << "; " << nearestChainages(chainages, *chainage) << ".\n";
      return kDataProblems;
    }
    if (engine::ValidateLevels(session, *chainage)) return kDataProblems;

    const engine::CrossSection points = engine::computeCrossSection(session, *chainage);
    if (context.parser.isSet(kJson))
      writeSectionJson(context.out, points);
    else
      writeSectionText(context.out, *section, points, executed);
    return project.reporter->errors().isEmpty() ? kOk : kDataProblems;
  });
}

}  // namespace

const Command kViewCommands[] = {
    {"section-points",
     "The points, areas and datum of one cross-section, as the section viewer draws them.",
     sectionPointsOptions, sectionPoints},
};
const int kViewCommandCount = static_cast<int>(std::size(kViewCommands));

}  // namespace cli
