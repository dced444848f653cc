#include "cli/command.h"
#include "cli/json.h"
#include "cli/session.h"
#include "db/connection.h"
#include "db/project.h"
#include "drawing/crosssectionsheet.h"
#include "drawing/longsectionsheet.h"
#include "drawing/pageoutput.h"
#include "drawing/sheettitle.h"
#include "drawing/typicalsection.h"
#include "engine/designsection.h"
#include "engine/sectionviews.h"
#include "engine/session.h"
#include "engine/typicalsection.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>

namespace cli {

namespace {

const QString kLong = QStringLiteral("long");
const QString kTypical = QStringLiteral("typical");
const QString kScale = QStringLiteral("scale");
const QString kOutput = QStringLiteral("output");
const QString kPages = QStringLiteral("pages");
const QString kMetresPerPage = QStringLiteral("metres-per-page");
const QString kVerticalScale = QStringLiteral("vertical-scale");
const QString kDatum = QStringLiteral("datum");

void plotOptions(QCommandLineParser& parser) {
  addFileAndSection(parser, QStringLiteral("The section to draw (its ID)."));
  parser.addOption({kOutput,
                    QStringLiteral("The file to write: .pdf (one file), .png or .svg (a file per "
                                   "page, OUT-1, OUT-2, ... when there are several) or .json "
                                   "(the drawn primitives)."),
                    QStringLiteral("OUT")});
  parser.addOption({kLong, QStringLiteral("Draw the longitudinal section instead of the cross "
                                          "sections.")});
  parser.addOption({kTypical, QStringLiteral("Draw the typical section of the design instead, "
                                             "as at the section's first design details, on one "
                                             "page.")});
  parser.addOption({kExecuted, QStringLiteral("Draw the executed levels too, as the main "
                                              "window's 'use executed levels' switch does.")});
  parser.addOption({kScale,
                    QStringLiteral("Cross sections at 1:N, N one of 100, 200, 250 or 500 "
                                   "(default: one metre is 6 mm)."),
                    QStringLiteral("N")});
  parser.addOption({kPages,
                    QStringLiteral("Write only these pages: FROM-TO or N, counted from 1 "
                                   "(default: every page)."),
                    QStringLiteral("FROM-TO")});
  parser.addOption({kMetresPerPage,
                    QStringLiteral("With --long: metres of chainage across a page (default "
                                   "1000)."),
                    QStringLiteral("M")});
  parser.addOption({kVerticalScale,
                    QStringLiteral("With --long: levels drawn at 1:V (default 100)."),
                    QStringLiteral("V")});
  parser.addOption({kDatum,
                    QStringLiteral("With --long: a fixed datum level D in metres (default: each "
                                   "page's datum follows its lowest level)."),
                    QStringLiteral("D")});
  addJson(parser);
}

// What one plot command line asks for, checked before the project is opened.
struct PlotRequest {
  QString file;
  std::int32_t section = 0;
  QString output;
  drawing::PageFormat format = drawing::PageFormat::Pdf;
  bool longSection = false;
  bool typical = false;
  bool executed = false;
  int scale = drawing::kNativeScale;
  drawing::LongSectionSheetOptions longOptions;
  // The pages asked for, 1-based and inclusive; a last of 0 means to the end.
  int firstPage = 1;
  int lastPage = 0;
};

// A positive number option; nullopt (after the usage message) on bad text.
std::optional<float> positiveOption(Context& context, const QString& name, int& code) {
  const QString text = context.parser.value(name);
  const auto value = parseMeasure(text);
  if (!value || !std::isfinite(*value) || *value <= 0.0f) {
    code = usageError(context,
                      QStringLiteral("--%1 needs a positive number, not '%2'.").arg(name, text));
    return std::nullopt;
  }
  return value;
}

bool parseLongOptions(Context& context, PlotRequest& request, int& code) {
  drawing::LongSectionSheetOptions& options = request.longOptions;
  if (context.parser.isSet(kMetresPerPage)) {
    const auto metres = positiveOption(context, kMetresPerPage, code);
    if (!metres) return false;
    options.metresPerPage = *metres;
  }
  if (context.parser.isSet(kVerticalScale)) {
    const auto scale = positiveOption(context, kVerticalScale, code);
    if (!scale) return false;
    options.verticalScale = *scale;
  }
  if (context.parser.isSet(kDatum)) {
    const QString text = context.parser.value(kDatum);
    const auto datum = parseMeasure(text);
    if (!datum || !std::isfinite(*datum)) {
      code = usageError(context,
                        QStringLiteral("--datum needs a level in metres, not '%1'.").arg(text));
      return false;
    }
    options.fixedDatum = true;
    options.fixedDatumValue = *datum;
  }
  options.executed = request.executed;
  return true;
}

bool parseScale(Context& context, PlotRequest& request, int& code) {
  if (!context.parser.isSet(kScale)) return true;
  const QString text = context.parser.value(kScale);
  const auto scale = parseKey(text);
  const auto& offered = drawing::kStandardScales;
  if (!scale || std::find(std::begin(offered), std::end(offered), *scale) == std::end(offered)) {
    code = usageError(context,
                      QStringLiteral("--scale must be 100, 200, 250 or 500, not '%1'.").arg(text));
    return false;
  }
  request.scale = *scale;
  return true;
}

bool parsePages(Context& context, PlotRequest& request, int& code) {
  if (!context.parser.isSet(kPages)) return true;
  const QString text = context.parser.value(kPages);
  static const QRegularExpression range(QStringLiteral("^\\s*(\\d+)\\s*(?:-\\s*(\\d+))?\\s*$"));
  const QRegularExpressionMatch m = range.match(text);
  const int first = m.hasMatch() ? m.captured(1).toInt() : 0;
  const int last = m.hasMatch() && m.hasCaptured(2) ? m.captured(2).toInt() : first;
  if (first < 1 || last < first) {
    code = usageError(context, QStringLiteral("--pages needs FROM-TO or N, pages counted from 1 "
                                              "and FROM not after TO, not '%1'.")
                                   .arg(text));
    return false;
  }
  request.firstPage = first;
  request.lastPage = last;
  return true;
}

std::optional<PlotRequest> parseRequest(Context& context, int& code) {
  PlotRequest request;
  const auto file = fileArgument(context, code);
  if (!file) return std::nullopt;
  request.file = *file;
  const auto section = sectionOption(context, code);
  if (!section) return std::nullopt;
  request.section = *section;
  if (!context.parser.isSet(kOutput) || context.parser.value(kOutput).isEmpty()) {
    code = usageError(context, QStringLiteral("give the file to write with --output OUT."));
    return std::nullopt;
  }
  request.output = context.parser.value(kOutput);
  const auto format = drawing::pageFormatOf(request.output);
  if (!format) {
    code = usageError(context, QStringLiteral("--output must end in .pdf, .png, .svg or .json, "
                                              "not '%1'.")
                                   .arg(request.output));
    return std::nullopt;
  }
  request.format = *format;
  request.longSection = context.parser.isSet(kLong);
  request.typical = context.parser.isSet(kTypical);
  request.executed = context.parser.isSet(kExecuted);

  // The typical section is one page of the design alone: no levels, scale or pages to choose.
  if (request.typical)
    for (const QString& name :
         {kLong, kExecuted, kScale, kPages, kMetresPerPage, kVerticalScale, kDatum})
      if (context.parser.isSet(name)) {
        code = usageError(context, QStringLiteral("--%1 does not apply to --typical.").arg(name));
        return std::nullopt;
      }

  for (const QString& name : {kMetresPerPage, kVerticalScale, kDatum})
    if (!request.longSection && context.parser.isSet(name)) {
      code = usageError(context, QStringLiteral("--%1 applies to --long only.").arg(name));
      return std::nullopt;
    }
  if (request.longSection && context.parser.isSet(kScale)) {
    code = usageError(context, QStringLiteral("--scale applies to the cross sections only; the "
                                              "longitudinal section takes --vertical-scale."));
    return std::nullopt;
  }
  if (!parseScale(context, request, code) || !parsePages(context, request, code) ||
      !parseLongOptions(context, request, code))
    return std::nullopt;
  return request;
}

QString pagesText(int count) {
  return count == 1 ? QStringLiteral("1 page") : QStringLiteral("%1 pages").arg(count);
}

QString filesText(const QStringList& files) {
  QStringList shown;
  for (const QString& f : files) shown.append(QDir::toNativeSeparators(QDir::cleanPath(f)));
  if (shown.size() <= 1) return shown.join(QString());
  const QString last = shown.takeLast();
  return shown.join(QStringLiteral(", ")) + QStringLiteral(" and ") + last;
}

// The kind of sheet as the JSON names it and as the summary line describes it.
struct SheetKind {
  const char* name;
  const char* described;
};
constexpr SheetKind kCrossKind{"cross", "cross sections"};
constexpr SheetKind kLongKind{"long", "the longitudinal section"};
constexpr SheetKind kTypicalKind{"typical", "the typical section"};

// Writes the asked pages of sheet and reports them. sectionsDrawn(first, last) counts what the
// 0-based pages hold. Returns the exit code: kOk, or kDataProblems when the engine reported
// problems on the way (dataProblems).
int writeSheet(Context& context, const PlotRequest& request, const drawing::SheetProducer& sheet,
               const SheetKind& kind, const std::function<int(int, int)>& sectionsDrawn,
               const drawing::SheetTitle& title, bool dataProblems) {
  const int count = sheet.pageCount();
  const int last = request.lastPage > 0 ? request.lastPage : count;
  if (last > count)
    return usageError(context, QStringLiteral("--pages %1 asks for pages the sheet does not have: "
                                              "it has %2.")
                                   .arg(context.parser.value(kPages), pagesText(count)));
  const int first = request.firstPage - 1;
  const int written = last - first;
  const bool filePerPage =
      request.format == drawing::PageFormat::Png || request.format == drawing::PageFormat::Svg;
  for (int page = 1; page <= (filePerPage ? written : 1); ++page) {
    const QString file = drawing::pageFilePath(request.output, page, filePerPage ? written : 1);
    if (db::isSameFile(file, request.file))
      return usageError(context, QStringLiteral("--output would write '%1', which is the project "
                                                "file itself: give another file.")
                                     .arg(file));
  }
  const drawing::PageOutputResult result = drawing::writePages(
      sheet, request.output, request.format, first, last - 1, drawing::titleLead(title));
  if (!result.ok) {
    context.err << result.message << "\n";
    return kCannotOpen;
  }
  if (context.parser.isSet(kJson)) {
    QJsonArray outputs;
    for (const QString& f : result.written) outputs.append(QDir::cleanPath(f));
    writeJson(context.out, {{QStringLiteral("file"), request.file},
                            {QStringLiteral("section"), request.section},
                            {QStringLiteral("kind"), QLatin1String(kind.name)},
                            {QStringLiteral("pages"), written},
                            {QStringLiteral("sections_drawn"), sectionsDrawn(first, last - 1)},
                            {QStringLiteral("outputs"), outputs}});
  } else {
    context.out << "Wrote " << pagesText(written) << " of " << kind.described << " of section "
                << request.section << " to " << filesText(result.written) << ".\n";
  }
  return dataProblems ? kDataProblems : kOk;
}

int plotCrossSections(Context& context, const PlotRequest& request, engine::EngineSession& session,
                      const ConsoleReporter& reporter, const drawing::SheetTitle& title) {
  session.setUseExecutedLevel(request.executed);
  drawing::CrossSectionSheetOptions options;
  options.executed = request.executed;
  options.scale = request.scale;
  options.title = title;
  std::vector<engine::CrossSection> sections = engine::computeCrossSections(session);
  const bool empty = sections.empty();
  if (empty)
    context.err << "Section " << request.section
                << " has no chainages to draw: its cross-section sheet is an empty page.\n";
  const drawing::CrossSectionSheet sheet(std::move(sections), options);
  if (sheet.pageCount() == 0) return kDataProblems;
  return writeSheet(
      context, request, sheet, kCrossKind,
      [&sheet](int first, int last) { return sheet.sectionsOn(first, last); }, title,
      empty || !reporter.errors().isEmpty());
}

int plotLongSection(Context& context, const PlotRequest& request, engine::EngineSession& session,
                    const ConsoleReporter& reporter, const drawing::SheetTitle& title) {
  engine::ResetDesignCache(session);
  const std::vector<float> chainages = engine::quantityChainages(session);
  engine::LongProfile profile;
  if (chainages.size() >= 2)
    profile =
        engine::computeLongProfile(session, chainages.front(), chainages.back(), request.executed);
  drawing::LongSectionSheetOptions options = request.longOptions;
  options.title = title;
  const drawing::LongSectionSheet sheet(std::move(profile), options);
  if (sheet.pageCount() == 0) {
    context.err << "Insufficient levels to plot L-Section. Atleast 2 sections are required.\n";
    return kDataProblems;
  }
  return writeSheet(
      context, request, sheet, kLongKind,
      [&sheet](int first, int last) { return sheet.chainagesOn(first, last); }, title,
      !reporter.errors().isEmpty());
}

int plotTypicalSection(Context& context, const PlotRequest& request, engine::EngineSession& session,
                       const ConsoleReporter& reporter, const drawing::SheetTitle& title) {
  std::optional<engine::TypicalSection> typical = engine::computeTypicalSection(session);
  if (!typical) {
    // Without details nothing was reported; a design section that failed has said why.
    if (reporter.errors().isEmpty())
      context.err << "Section " << request.section
                  << " has no design details, so it has no typical section to draw.\n";
    return kDataProblems;
  }
  const drawing::TypicalSectionSheet sheet(std::move(*typical), title);
  return writeSheet(
      context, request, sheet, kTypicalKind, [](int, int) { return 1; }, title,
      !reporter.errors().isEmpty());
}

// Exit codes: 0 written, 1 the data had problems (an empty sheet, too few chainages for the
// longitudinal section, no design details for the typical section, or error-list lines while
// computing), 2 usage, including pages the
// sheet does not have, 3 the project cannot be opened or the output cannot be written.
int plot(Context& context) {
  int code = -1;
  const auto request = parseRequest(context, code);
  if (!request) return code;

  ProjectSession<> project;
  if (int failed = project.open(context, request->file, true, db::ProjectAccess::Read); failed >= 0)
    return failed;
  return project.guarded(context, [&]() -> int {
    if (int failed = project.useSection(context, request->section); failed >= 0) return failed;
    const drawing::SheetTitle title =
        drawing::sheetTitleOf(*project.connection, request->file, request->section);
    if (request->typical)
      return plotTypicalSection(context, *request, *project.engine, *project.reporter, title);
    return request->longSection
               ? plotLongSection(context, *request, *project.engine, *project.reporter, title)
               : plotCrossSections(context, *request, *project.engine, *project.reporter, title);
  });
}

}  // namespace

const Command kPlotCommands[] = {
    {"plot",
     "Draw a section's cross sections, longitudinal section or typical section to .pdf, .png, "
     ".svg or .json.",
     plotOptions, plot},
};
const int kPlotCommandCount = static_cast<int>(std::size(kPlotCommands));

}  // namespace cli
