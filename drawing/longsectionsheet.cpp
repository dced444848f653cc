#include "drawing/longsectionsheet.h"

#include "engine/numberformat.h"

#include <QPointF>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <utility>

namespace drawing {

namespace {

// The sheet's layout, in sheet units (6 mm) unless the name says millimetres.
//
// A3 landscape is the largest ISO sheet whose sides both stay within the page engine's 577 mm
// (A2's 594 mm does not), so every output path takes it. Its width, less the margins and the
// legend column, carries one page's metres of chainage; its height grows when a page's level
// range does not fit at the vertical scale, so the scales the title states always hold. The
// legend column is the cross-section sheets' (3.75, box 3.5) and the band rows the
// longitudinal view's (1.75), so the drawings read alike.
constexpr int kPageWidthMm = 420;
constexpr int kMinPageHeightMm = 297;
constexpr int kMaxPageHeightMm = std::numeric_limits<std::int16_t>::max();  // what pSetPage takes
constexpr float kMargin = 1.0f;  // page edge to the legend, the title and the band
constexpr float kTitleTop = 0.2f;
constexpr float kTitleBottom = 0.8f;
constexpr float kDrawingTop = 1.5f;  // the highest the level scale reaches: below the title
constexpr float kLegendColumn = 3.75f;
constexpr float kLegendBox = 3.5f;
constexpr float kRowHeight = 1.75f;
constexpr float kLabelGap = 0.27f;    // a value closer than this to the previous one in its row
                                      // is left out, as in the cross-section band
constexpr float kLabelShift = 0.25f;  // an upright label's reference point left of its chainage,
                                      // which centres the text on it
constexpr float kLabelLift = 0.12f;   // an upright label starts this far above its row's floor
// Values are a point smaller than the captions: a level of 100 to 999 m at 7 points (1.5 units)
// then stands clear of both lines of its 1.75-unit row.
constexpr std::uint8_t kCaptionPoints = 8;
constexpr std::uint8_t kValuePoints = 7;
constexpr float kTickLength = 0.15f;       // level scale ticks at the legend box's right edge
constexpr float kScaleLabelHeight = 0.6f;  // a scale label's box, and the least spacing of two
constexpr float kDatumLabelX = 0.25f;      // "DATUM" and its value, over the datum line
constexpr float kDatumValueX = 2.2f;
constexpr float kDatumLabelRise = 0.6f;
constexpr int kHeadroomMetres = 1;  // the level scale goes on this far above the highest level

// Between the band's ends and the first and last chainage: the labels there stay in the band.
constexpr float kEndRoom = 0.5f;

constexpr float kBandLeft = kMargin + kLegendColumn;
constexpr float kDrawingLeft = kBandLeft + kEndRoom;  // where a page's first chainage stands
// On an A3 sheet.
constexpr float kSheetDrawingWidth =
    static_cast<float>(kPageWidthMm / kMmPerUnit) - kMargin - kEndRoom - kDrawingLeft;

constexpr double kDefaultMetresPerPage = 1000.0;
constexpr double kDefaultVerticalScale = 100.0;
// Chainages are kilometres in floats: a boundary chainage may be off by far less than this.
constexpr double kChainageTolerance = 1e-3;  // metres
// A datum is a 16-bit number of whole metres; levels beyond this range are not real ones.
constexpr double kLevelLimit = 32000.0;

enum LayerRole { kFrame, kDesign, kExisting, kExecuted, kExistingLeft, kExistingRight, kRoles };

struct LayerDefinition {
  std::uint32_t line;  // 0x00BBGGRR
  std::uint32_t fill;
  std::int16_t style;  // 0 solid, 1 dash, 2 dot
};

// The cross-section sheets' four layers, then the left and right ground in the existing
// ground's blue with their own pens.
constexpr LayerDefinition kLayers[kRoles] = {
    {0x000000, 0xFFFF00, 0}, {0x0000FF, 0, 0}, {0xFF0000, 0, 0},
    {0x00FF00, 0, 0},        {0xFF0000, 0, 1}, {0xFF0000, 0, 2},
};

struct Series {
  const char* caption;
  std::optional<float> engine::LongProfileRow::*value;
  LayerRole layer;
};

// The value rows of the band, top to bottom; the chainage row follows them.
constexpr Series kGround[] = {
    {"OGL (RIGHT)", &engine::LongProfileRow::rightGround, kExistingRight},
    {"OGL (LEFT)", &engine::LongProfileRow::leftGround, kExistingLeft},
    {"OGL (CENTRE)", &engine::LongProfileRow::centreGround, kExisting},
    {"DESIGN LEVEL (M)", &engine::LongProfileRow::designLevel, kDesign},
};
constexpr Series kFinal = {"FINAL LEVEL (M)", &engine::LongProfileRow::finalLevel, kExecuted};
constexpr const char* kChainageCaption = "CHAINAGE(KM)";

std::vector<const Series*> shownSeries(bool executed) {
  std::vector<const Series*> shown;
  for (const Series& s : kGround) shown.push_back(&s);
  if (executed) shown.push_back(&kFinal);
  return shown;
}

double metresOf(const engine::LongProfileRow& row) {
  return static_cast<double>(row.chainage) * 1000.0;
}

int wholeMetres(double level) {
  return static_cast<int>(std::floor(std::clamp(level, -kLevelLimit, kLevelLimit)));
}

// Vertices of (chainage in metres, level).
using Line = std::vector<QPointF>;

// The lines of one value over [from, to] metres, where rows [first, last] lie: a missing value
// ends a line, and a line that goes on to a row off the page is cut at the page's edge.
std::vector<Line> linesOf(const std::vector<engine::LongProfileRow>& rows, const Series& series,
                          int first, int last, double from, double to) {
  std::vector<Line> lines;
  Line line;
  const auto endLine = [&] {
    if (line.size() >= 2) lines.push_back(std::move(line));
    line.clear();
  };
  const int begin = std::max(0, first - 1);
  const int end = std::min(static_cast<int>(rows.size()) - 1, last + 1);
  for (int i = begin; i < end; ++i) {
    const std::optional<float>& a = rows[i].*series.value;
    const std::optional<float>& b = rows[i + 1].*series.value;
    const double ca = metresOf(rows[i]);
    const double cb = metresOf(rows[i + 1]);
    const double lo = std::max(ca, from);
    const double hi = std::min(cb, to);
    // A piece that only touches the page's edge is no line on it.
    if (!a || !b || hi < lo || (hi == lo && ca != cb)) {
      endLine();
      continue;
    }
    const auto levelAt = [&](double c) {
      if (c == ca) return static_cast<double>(*a);
      if (c == cb) return static_cast<double>(*b);
      return *a + (static_cast<double>(*b) - *a) * (c - ca) / (cb - ca);
    };
    const QPointF start(lo, levelAt(lo));
    if (line.empty() || line.back() != start) {
      endLine();
      line.push_back(start);
    }
    line.emplace_back(hi, levelAt(hi));
  }
  endLine();
  return lines;
}

struct LevelRange {
  double lowest = std::numeric_limits<double>::infinity();
  double highest = -std::numeric_limits<double>::infinity();

  void add(double level) {
    lowest = std::min(lowest, level);
    highest = std::max(highest, level);
  }
  bool empty() const { return lowest > highest; }
};

struct BandLabel {
  float x;  // the chainage's x
  QString text;
};

// Writes one band row's values upright at their chainages; a value that would stand within
// kLabelGap of the previous one written is left out, so crowded chainages keep the first.
void writeBandRow(PageEngine& engine, float rowFloor, const std::vector<BandLabel>& labels) {
  float lastX = -99.0f;
  for (const BandLabel& label : labels) {
    const float x = label.x - kLabelShift;
    if (std::fabs(x - lastX) <= kLabelGap) continue;
    lastX = x;
    engine.pDrawText(x, rowFloor - kLabelLift, label.text, 90);
  }
}

}  // namespace

LongSectionSheet::LongSectionSheet(engine::LongProfile profile, LongSectionSheetOptions options)
    : m_profile(std::move(profile)), m_options(std::move(options)) {
  // The settings are stored as typed: a scale of 0 or below falls back to its default.
  const auto usable = [](float value) { return std::isfinite(value) && value > 0; };
  m_metresPerPage =
      usable(m_options.metresPerPage) ? m_options.metresPerPage : kDefaultMetresPerPage;
  m_verticalScale =
      usable(m_options.verticalScale) ? m_options.verticalScale : kDefaultVerticalScale;
  m_unitsPerLevelMetre = static_cast<float>(1000.0 / m_verticalScale / kMmPerUnit);
  if (usable(static_cast<float>(m_options.unitsPerKilometre))) {
    m_drawingWidth = static_cast<float>(m_metresPerPage / 1000.0 * m_options.unitsPerKilometre);
    m_pageWidthMm = static_cast<int>(
        std::ceil((kDrawingLeft + m_drawingWidth + kEndRoom + kMargin) * kMmPerUnit));
  } else {
    m_drawingWidth = kSheetDrawingWidth;
    m_pageWidthMm = kPageWidthMm;
  }
  std::stable_sort(m_profile.rows.begin(), m_profile.rows.end(),
                   [](const auto& a, const auto& b) { return a.chainage < b.chainage; });
  planPages();
}

double LongSectionSheet::metresAcross(double widthUnits, double unitsPerKilometre) {
  return (widthUnits - kDrawingLeft - kEndRoom - kMargin) / unitsPerKilometre * 1000.0;
}

int LongSectionSheet::pageCount() const { return static_cast<int>(m_pages.size()); }

int LongSectionSheet::pageWidthMm() const { return m_pageWidthMm; }

int LongSectionSheet::pageHeightMm() const { return m_pageHeightMm; }

int LongSectionSheet::datumOf(int page) const {
  return page >= 0 && page < pageCount() ? m_pages[page].datum : 0;
}

// Each page gets the datum of its own levels, as the longitudinal view takes the datum of the
// range it shows: a long section that climbs keeps its lines near the band on every page. The
// levels are the ones drawn (the rows' values and where lines cross the page's edges), not the
// profile's lowest and highest, which count readings at every offset.
void LongSectionSheet::planPages() {
  m_pages.clear();
  const int lowestHeightMm = m_options.unitsPerKilometre > 0 ? 0 : kMinPageHeightMm;
  m_pageHeightMm = lowestHeightMm;
  const std::vector<engine::LongProfileRow>& rows = m_profile.rows;
  const int rowCount = static_cast<int>(rows.size());
  if (rowCount < 2) return;

  const std::vector<const Series*> shown = shownSeries(m_options.executed);
  LevelRange sheetRange;  // for a page without a level of its own
  for (const engine::LongProfileRow& row : rows)
    for (const Series* s : shown)
      if (const std::optional<float>& v = row.*s->value) sheetRange.add(*v);

  const double start = metresOf(rows.front());
  const double span = metresOf(rows.back()) - start;
  const int count =
      std::max(1, static_cast<int>(std::ceil((span - kChainageTolerance) / m_metresPerPage)));
  int next = 0;
  double tallest = 0.0;
  for (int k = 0; k < count; ++k) {
    PagePlan plan;
    plan.startMetres = start + k * m_metresPerPage;
    const double end = plan.startMetres + m_metresPerPage;
    while (next < rowCount && metresOf(rows[next]) < plan.startMetres - kChainageTolerance) ++next;
    plan.first = next;
    plan.last = next - 1;
    while (plan.last + 1 < rowCount && metresOf(rows[plan.last + 1]) <= end + kChainageTolerance)
      ++plan.last;

    LevelRange range;
    for (const Series* s : shown) {
      for (const Line& line : linesOf(rows, *s, plan.first, plan.last, plan.startMetres, end))
        for (const QPointF& p : line) range.add(p.y());
      for (int i = plan.first; i <= plan.last; ++i)
        if (const std::optional<float>& v = rows[i].*s->value) range.add(*v);
    }
    if (range.empty()) range = sheetRange;
    if (m_options.fixedDatum)
      plan.datum = wholeMetres(m_options.fixedDatumValue);
    else
      plan.datum = range.empty() ? 0 : wholeMetres(range.lowest) - 1;
    const int highest = range.empty() ? plan.datum : wholeMetres(range.highest);
    plan.topLevel = std::max(highest, plan.datum) + kHeadroomMetres;
    tallest = std::max(tallest, (plan.topLevel - plan.datum) * double{m_unitsPerLevelMetre});
    m_pages.push_back(plan);
  }

  const double band = (shown.size() + 1) * double{kRowHeight};
  const double neededMm = (kDrawingTop + tallest + band + kMargin) * kMmPerUnit;
  // Whole centimetres, as the cross-section sheets grow.
  m_pageHeightMm =
      static_cast<int>(std::clamp(std::ceil(neededMm / 10.0 - 1e-6) * 10.0,
                                  static_cast<double>(lowestHeightMm), double{kMaxPageHeightMm}));
}

QString LongSectionSheet::titleOf(int page) const {
  const engine::NumberSymbols& symbols = m_options.title.symbols;
  const auto scales = [&](double horizontal, double vertical) -> QString {
    return QStringLiteral("Horizontal ") + scaleText(horizontal, symbols) +
           QStringLiteral(" Vertical ") + scaleText(vertical, symbols);
  };
  const double horizontal = m_metresPerPage * 1000.0 / (m_drawingWidth * kMmPerUnit);
  QString text = titleLead(m_options.title) + QStringLiteral(" - Longitudinal section - ") +
                 scales(horizontal, m_verticalScale);
  // A printout fitted to smaller paper names the scales the paper really has.
  const double factor = m_options.printFactor;
  if (std::isfinite(factor) && factor > 0 && std::fabs(factor - 1.0) > 1e-6) {
    text += QStringLiteral(", printed at %1 %: %2")
                .arg(engine::formatNumber(factor * 100.0, 0, symbols),
                     scales(horizontal / factor, m_verticalScale / factor));
  }
  return text + QStringLiteral(" - Page %1 of %2").arg(page + 1).arg(pageCount());
}

// The y of a level over the page's datum, kept between the datum line and the top of the
// drawing: a level below a fixed datum runs along the datum line instead of into the band.
float LongSectionSheet::yOfLevel(double level, const PagePlan& plan) const {
  const std::size_t rowCount = shownSeries(m_options.executed).size() + 1;
  const double datumY = m_pageHeightMm / kMmPerUnit - kMargin - rowCount * double{kRowHeight};
  const double y = datumY - (level - plan.datum) * m_unitsPerLevelMetre;
  return static_cast<float>(std::clamp(y, double{kDrawingTop}, datumY));
}

float LongSectionSheet::xOfChainage(double metres, const PagePlan& plan) const {
  const double across = std::clamp((metres - plan.startMetres) / m_metresPerPage, 0.0, 1.0);
  return static_cast<float>(kDrawingLeft + across * m_drawingWidth);
}

QPointF LongSectionSheet::positionOf(int page, double metres, double level) const {
  if (page < 0 || page >= pageCount()) return {};
  return {xOfChainage(metres, m_pages[page]), yOfLevel(level, m_pages[page])};
}

QPointF LongSectionSheet::valueAt(int page, QPointF position) const {
  if (page < 0 || page >= pageCount()) return {};
  const PagePlan& plan = m_pages[page];
  const double datumY = yOfLevel(plan.datum, plan);
  return {plan.startMetres + (position.x() - kDrawingLeft) / m_drawingWidth * m_metresPerPage,
          plan.datum + (datumY - position.y()) / m_unitsPerLevelMetre};
}

void LongSectionSheet::drawPage(PageEngine& engine, int page) const {
  if (page < 0 || page >= pageCount()) return;
  const PagePlan& plan = m_pages[page];
  const std::vector<engine::LongProfileRow>& rows = m_profile.rows;
  const std::vector<const Series*> shown = shownSeries(m_options.executed);
  const float pageHeight = static_cast<float>(m_pageHeightMm / kMmPerUnit);
  const float pageWidth = static_cast<float>(m_pageWidthMm / kMmPerUnit);
  const float bandRight = kDrawingLeft + m_drawingWidth + kEndRoom;
  const float bandTop = yOfLevel(plan.datum, plan);
  const float rowCount = static_cast<float>(shown.size() + 1);
  const float bandBottom = bandTop + rowCount * kRowHeight;
  const float legendRight = kMargin + kLegendBox;
  const auto rowFloor = [&](std::size_t row) { return bandTop + (row + 1) * kRowHeight; };

  engine.pSetPage(static_cast<std::int16_t>(m_pageWidthMm),
                  static_cast<std::int16_t>(m_pageHeightMm));
  std::array<std::int16_t, kRoles> layer{};
  for (int role = 0; role < kRoles; ++role) {
    layer[role] = engine.pCreateLayer(kLayers[role].line, kLayers[role].fill, 0, 1,
                                      kLayers[role].style, QStringLiteral("Arial"),
                                      role == kFrame ? kCaptionPoints : kValuePoints);
  }

  engine.pSetLayer(layer[kFrame]);
  if (m_options.unitsPerKilometre <= 0) {
    engine.pDrawPolyLine(
        {0, 0, 0, pageWidth, 0, 0, pageWidth, pageHeight, 0, 0, pageHeight, 0, 0, 0, 0});
    engine.pDrawHText(kMargin, kTitleTop, pageWidth - kMargin, kTitleBottom, titleOf(page),
                      kTextMiddle);
  }

  // The legend and the band's rows.
  engine.pDrawBox(kMargin, bandTop, legendRight, bandBottom);
  engine.pDrawBox(kBandLeft, bandTop, bandRight, bandBottom);
  for (std::size_t row = 0; row < shown.size(); ++row) {
    engine.pDrawLine(kMargin, rowFloor(row), legendRight, rowFloor(row));
    engine.pDrawLine(kBandLeft, rowFloor(row), bandRight, rowFloor(row));
  }
  for (std::size_t row = 0; row <= shown.size(); ++row) {
    const char* caption = row < shown.size() ? shown[row]->caption : kChainageCaption;
    // The whole box's width: "CHAINAGE(KM)" has no space to wrap at.
    engine.pDrawHText(kMargin, rowFloor(row) - kRowHeight, legendRight, rowFloor(row),
                      QString::fromLatin1(caption), kTextCentre | kTextMiddle | kTextWordWrap);
  }

  // The datum and the level scale over it; the datum's own tick is named by the datum label.
  const engine::NumberSymbols& symbols = m_options.title.symbols;
  const float datumLabelY = bandTop - kDatumLabelRise;
  engine.pDrawText(kMargin + kDatumLabelX, datumLabelY, QStringLiteral("DATUM"), 0);
  engine.pDrawText(kMargin + kDatumValueX, datumLabelY,
                   engine::formatNumber(plan.datum, 1, symbols), 0);
  engine.pDrawLine(legendRight, bandTop, legendRight, yOfLevel(plan.topLevel, plan));
  float lastLabelY = bandTop;
  for (int level = plan.datum; level <= plan.topLevel; ++level) {
    const float y = yOfLevel(level, plan);
    if (level > plan.datum && y >= yOfLevel(level - 1, plan)) break;  // the page's top is reached
    engine.pDrawLine(legendRight - kTickLength, y, legendRight, y);
    if (lastLabelY - y < kScaleLabelHeight) continue;
    lastLabelY = y;
    engine.pDrawHText(kMargin, y - kScaleLabelHeight / 2, legendRight - kTickLength,
                      y + kScaleLabelHeight / 2, engine::formatNumber(level, 1, symbols),
                      kTextRight | kTextMiddle);
  }

  std::vector<BandLabel> chainages;
  for (int i = plan.first; i <= plan.last; ++i) {
    chainages.push_back(
        {xOfChainage(metresOf(rows[i]), plan), engine::formatNumber(rows[i].chainage, 3, symbols)});
  }
  writeBandRow(engine, rowFloor(shown.size()), chainages);

  const double end = plan.startMetres + m_metresPerPage;
  for (std::size_t row = 0; row < shown.size(); ++row) {
    const Series& series = *shown[row];
    engine.pSetLayer(layer[series.layer]);
    for (const Line& line : linesOf(rows, series, plan.first, plan.last, plan.startMetres, end)) {
      std::vector<float> points;
      for (const QPointF& p : line) {
        points.insert(points.end(), {xOfChainage(p.x(), plan), yOfLevel(p.y(), plan), 0.0f});
      }
      engine.pDrawPolyLine(points);
    }
    std::vector<BandLabel> values;
    for (int i = plan.first; i <= plan.last; ++i) {
      if (const std::optional<float>& v = rows[i].*series.value)
        values.push_back(
            {xOfChainage(metresOf(rows[i]), plan), engine::formatNumber(*v, 3, symbols)});
    }
    writeBandRow(engine, rowFloor(row), values);
  }
}

int LongSectionSheet::chainagesOn(int first, int last) const {
  int lowest = -1;
  int highest = -2;
  for (int page = std::max(first, 0); page <= last && page < pageCount(); ++page) {
    const PagePlan& plan = m_pages[page];
    if (plan.last < plan.first) continue;
    if (lowest < 0) lowest = plan.first;
    highest = plan.last;
  }
  return std::max(0, highest - lowest + 1);
}

}  // namespace drawing
