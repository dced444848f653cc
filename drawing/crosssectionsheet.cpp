#include "drawing/crosssectionsheet.h"

#include "engine/numberformat.h"

#include <algorithm>
#include <cmath>

namespace drawing {

namespace {

// The sheet's layout, in sheet units (6 mm) unless said. The demo canal's widest section
// reaches 34 m either side of the centre line: 71 units with its legend, 427 mm at the native
// scale. A2 landscape (594 x 420 mm) holds it with its margins, and four such sections one
// above the other. A page grows to hold a section that is wider or taller than that (a wide
// section at 1:100); the scale never shrinks to fit the paper.
constexpr int kPageWidthMm = 594;
constexpr int kPageHeightMm = 420;
constexpr float kLeftMargin = 1.5f;
constexpr float kRightMargin = 1.5f;
constexpr float kTopPosition = 3.0f;   // the title line stands above it
constexpr float kBottomMargin = 1.5f;  // the column bound is the page height less this
constexpr float kGap = 1.0f;           // between columns and between sections
constexpr int kSectionsPerPage = 12;
constexpr float kTitleTop = 0.9f;
constexpr float kTitleBottom = 2.4f;

// Fixed by the sheet's design.
constexpr float kLegendColumn = 3.75f;
constexpr float kLegendBox = 3.5f;
constexpr float kBand = 8.0f;
constexpr float kExecutedBand = 10.5f;
constexpr float kBandPair = 4.0f;
constexpr float kLabelSpacing = 0.27f;
constexpr float kTitleInset = 0.3f;
constexpr float kScaleTickStart = 3.35f;
// Level-scale labels closer than this are left out (at small scales a metre is a few mm).
constexpr float kScaleLabelSpacing = 0.6f;

constexpr std::uint32_t kBlack = 0x000000;
constexpr std::uint32_t kFrameFill = 0xFFFF00;
constexpr std::uint32_t kRed = 0x0000FF;
constexpr std::uint32_t kBlue = 0xFF0000;
constexpr std::uint32_t kGreen = 0x00FF00;

enum Layer : std::int16_t { kFrameLayer, kDesignLayer, kExistingLayer, kExecutedLayer };

float unitsOfMm(int mm) { return static_cast<float>(mm / kMmPerUnit); }

int mmToHold(float units, int atLeast) {
  const int mm = static_cast<int>(std::ceil(units * kMmPerUnit / 10.0) * 10.0);
  return std::max(atLeast, mm);
}

float highestOf(const engine::CrossSection& s) { return s.hasPoints() ? s.highest : 0.0f; }

}  // namespace

CrossSectionFigure::CrossSectionFigure(float unitsPerMetre, bool executed, BandCaptions captions,
                                       engine::NumberSymbols symbols)
    : m_unitsPerMetre(unitsPerMetre),
      m_executed(executed),
      m_captions(captions),
      m_symbols(std::move(symbols)),
      m_bandHeight(executed ? kExecutedBand : kBand) {}

void CrossSectionFigure::createLayers(PageEngine& engine) {
  const QString font = QStringLiteral("Arial");
  engine.pCreateLayer(kBlack, kFrameFill, 0, 1, 0, font, 8);
  engine.pCreateLayer(kRed, 0, 0, 1, 0, font, 8);
  engine.pCreateLayer(kBlue, 0, 0, 1, 0, font, 8);
  engine.pCreateLayer(kGreen, 0, 0, 1, 0, font, 8);
}

float CrossSectionFigure::height(const engine::CrossSection& s) const {
  const float rise = std::floor(highestOf(s)) - static_cast<float>(s.datum());
  return rise * m_unitsPerMetre + m_bandHeight + kGap + 1.0f;
}

float CrossSectionFigure::width(const engine::CrossSection& s) const {
  return (s.largestLeft + s.largestRight) * m_unitsPerMetre + kLegendColumn;
}

QPointF CrossSectionFigure::positionOf(const engine::CrossSection& s, float x, float y,
                                       double offset, double level) const {
  const double cx = x + kLegendColumn + double{s.largestLeft} * m_unitsPerMetre;
  const double yd = y - m_bandHeight;
  return {cx + offset * m_unitsPerMetre, yd - (level - s.datum()) * m_unitsPerMetre};
}

QPointF CrossSectionFigure::valueAt(const engine::CrossSection& s, float x, float y,
                                    QPointF position) const {
  const double cx = x + kLegendColumn + double{s.largestLeft} * m_unitsPerMetre;
  const double yd = y - m_bandHeight;
  return {(position.x() - cx) / m_unitsPerMetre, s.datum() + (yd - position.y()) / m_unitsPerMetre};
}

CrossSectionSheet::CrossSectionSheet(std::vector<engine::CrossSection> sections,
                                     CrossSectionSheetOptions options)
    : m_sections(std::move(sections)),
      m_options(std::move(options)),
      m_figure(
          m_options.scale > 0 ? static_cast<float>(1000.0 / (kMmPerUnit * m_options.scale)) : 1.0f,
          m_options.executed, BandCaptions::Sheet, m_options.title.symbols) {
  layOut();
}

void CrossSectionSheet::layOut() {
  float widest = 0.0f;
  float tallest = 0.0f;
  for (const engine::CrossSection& s : m_sections) {
    widest = std::max(widest, m_figure.width(s));
    tallest = std::max(tallest, m_figure.height(s));
  }
  m_pageWidthMm = mmToHold(kLeftMargin + widest + kRightMargin, kPageWidthMm);
  m_pageHeightMm = mmToHold(kTopPosition + tallest + kBottomMargin, kPageHeightMm);
  const float pageRight = unitsOfMm(m_pageWidthMm) - kRightMargin;
  const float columnLimit = unitsOfMm(m_pageHeightMm) - kBottomMargin;

  int page = -1;
  int counter = 0;
  float x = kLeftMargin;
  float y = kTopPosition;
  float columnWidth = 0.0f;
  auto startPage = [&](int index) {
    ++page;
    counter = 0;
    x = kLeftMargin;
    y = kTopPosition;
    columnWidth = 0.0f;
    m_firstOnPage.push_back(index);
  };
  for (int i = 0; i < static_cast<int>(m_sections.size()); ++i) {
    const engine::CrossSection& s = m_sections[i];
    if (page < 0 || counter % kSectionsPerPage == 0) startPage(i);
    const float height = m_figure.height(s);
    const float width = m_figure.width(s);
    if (counter > 0 && y + height > columnLimit) {
      const float nextX = x + columnWidth + kGap;
      if (nextX + width > pageRight) {
        startPage(i);
      } else {
        y = kTopPosition;
        x = nextX;
        columnWidth = 0.0f;
      }
    }
    y += height;
    columnWidth = std::max(columnWidth, width);
    ++counter;
    m_placements.push_back({page, x, y});
  }
  // A section without chainages still gives its (empty) page.
  m_pageCount = std::max(1, page + 1);
}

int CrossSectionSheet::sectionsOn(int first, int last) const {
  int n = 0;
  for (const SectionPlacement& p : m_placements) n += p.page >= first && p.page <= last;
  return n;
}

void CrossSectionSheet::drawPage(PageEngine& engine, int page) const {
  engine.pSetPage(static_cast<std::int16_t>(m_pageWidthMm),
                  static_cast<std::int16_t>(m_pageHeightMm));
  CrossSectionFigure::createLayers(engine);
  if (page < 0 || page >= static_cast<int>(m_firstOnPage.size())) return;

  const int first = m_firstOnPage[page];
  const int end = page + 1 < static_cast<int>(m_firstOnPage.size())
                      ? m_firstOnPage[page + 1]
                      : static_cast<int>(m_sections.size());
  for (int i = first; i < end; ++i) {
    engine.pSetLayer(kFrameLayer);
    if (i == first) {
      const float w = unitsOfMm(m_pageWidthMm);
      const float h = unitsOfMm(m_pageHeightMm);
      engine.pDrawPolyLine({0, 0, 0, w, 0, 0, w, h, 0, 0, h, 0, 0, 0, 0});
      drawTitle(engine, page);
    }
    m_figure.draw(engine, m_sections[i], m_placements[i].x, m_placements[i].y);
  }
}

void CrossSectionSheet::drawTitle(PageEngine& engine, int page) const {
  const engine::NumberSymbols& symbols = m_options.title.symbols;
  const double n = m_options.scale > 0 ? m_options.scale : 1000.0 / kMmPerUnit;
  QString scale = QStringLiteral("Scale ") + scaleText(n, symbols);
  if (m_options.scale <= 0) scale += QStringLiteral(" (1 m = 6 mm)");
  if (m_options.printFactor > 0.0 && std::fabs(m_options.printFactor - 1.0) > 1e-6)
    scale += QStringLiteral(", printed at %1 %: %2")
                 .arg(engine::formatNumber(m_options.printFactor * 100.0, 0, symbols),
                      scaleText(n / m_options.printFactor, symbols));
  const QString text = titleLead(m_options.title) + QStringLiteral(" - Cross sections - ") + scale +
                       QStringLiteral(" - Page %1 of %2").arg(page + 1).arg(m_pageCount);
  engine.pDrawHText(kLeftMargin, kTitleTop, unitsOfMm(m_pageWidthMm) - kRightMargin, kTitleBottom,
                    text, kTextBottom);
}

void CrossSectionFigure::draw(PageEngine& engine, const engine::CrossSection& s, float x,
                              float y) const {
  const int datum = s.datum();
  const float bandWidth = (s.largestLeft + s.largestRight) * m_unitsPerMetre;
  const engine::NumberSymbols& symbols = m_symbols;

  // What the section is: its chainage and areas, at the top of its slot.
  const float slotTop = y - height(s);
  engine.pDrawText(x + kLegendColumn, slotTop + 0.2f,
                   QStringLiteral("CHAINAGE %1 KM    CUT %2 Sqm.    FILL %3 Sqm.")
                       .arg(engine::formatNumber(s.chainage, 3, symbols),
                            engine::formatNumber(s.areaCut, 2, symbols),
                            engine::formatNumber(s.areaFill, 2, symbols)),
                   0);
  drawLegend(engine, x, y, static_cast<float>(datum), highestOf(s), bandWidth);

  const float cx = x + kLegendColumn + s.largestLeft * m_unitsPerMetre;
  const float yd = y - m_bandHeight;
  engine.pSetLayer(kDesignLayer);
  drawSectionLine(engine, cx, yd, y, static_cast<float>(datum), s.designLeft, s.designRight);
  engine.pSetLayer(kExistingLayer);
  drawSectionLine(engine, cx, yd, y - kBandPair, static_cast<float>(datum), s.groundLeft,
                  s.groundRight);
  if (m_executed) {
    engine.pSetLayer(kExecutedLayer);
    drawSectionLine(engine, cx, yd, y - 2.0f * kBandPair, static_cast<float>(datum), s.executedLeft,
                    s.executedRight);
  }
}

void CrossSectionFigure::drawLegend(PageEngine& engine, float x, float y, float datum,
                                    float highest, float bandWidth) const {
  const engine::NumberSymbols& symbols = m_symbols;
  const float yd = y - m_bandHeight;
  std::vector<float> lines = {y - 2.0f, y - 4.0f, y - 6.0f};
  if (m_executed) lines.insert(lines.end(), {y - 7.0f, y - 8.5f});

  engine.pSetLayer(kFrameLayer);
  engine.pDrawBox(x, y, x + kLegendBox, yd);
  for (float ly : lines) engine.pDrawLine(x, ly, x + kLegendBox, ly);

  const float left = x + kTitleInset;
  const float right = x + kScaleTickStart - 0.05f;
  const int wrapCentred = kTextCentre | kTextWordWrap;
  if (m_captions == BandCaptions::Sheet) {
    engine.pDrawHText(left, y - 1.8f, right, y, QStringLiteral("DISTANCE IN METER"), wrapCentred);
    engine.pDrawHText(left, y - 3.8f, right, y - 1.8f, QStringLiteral("DESIGNED LEVEL IN METER"),
                      wrapCentred);
    engine.pDrawHText(left, y - 5.8f, right, y - 3.8f, QStringLiteral("DISTANCE IN METER"),
                      wrapCentred);
    engine.pDrawHText(left, y - 7.8f, right, y - 5.8f, QStringLiteral("EXISTING LEVEL IN METER"),
                      wrapCentred);
  } else {
    // The viewer's captions, one line each in the middle of its row; the rows of final levels
    // are named too.
    struct Row {
      float bottom;
      float top;
      const char* caption;
    };
    std::vector<Row> rows = {{y, y - 2.0f, "DISTANCE (M)"},
                             {y - 2.0f, y - 4.0f, "DESIGNED LEVEL (M)"},
                             {y - 4.0f, y - 6.0f, "DISTANCE (M)"},
                             {y - 6.0f, y - 8.0f, "EXISTING LEVEL (M)"}};
    if (m_executed) {
      rows.back().top = y - 7.0f;
      rows.push_back({y - 7.0f, y - 8.5f, "DISTANCE (M)"});
      rows.push_back({y - 8.5f, yd, "FINAL LEVEL (M)"});
    }
    for (const Row& row : rows)
      engine.pDrawHText(left, row.top, right, row.bottom, QString::fromLatin1(row.caption),
                        kTextCentre | kTextMiddle | kTextWordWrap);
  }

  engine.pDrawText(x + 0.25f, yd - 0.6f, QStringLiteral("DATUM"), 0);
  engine.pDrawText(x + 2.2f, yd - 0.6f, engine::formatNumber(datum, 1, symbols), 0);

  // Level scale: a tick at every whole metre above the datum up to the highest level.
  const int top = static_cast<int>(std::floor(highest));
  float lastLabel = yd;
  for (int level = static_cast<int>(datum) + 1; level <= top; ++level) {
    const float ty = yd - (static_cast<float>(level) - datum) * m_unitsPerMetre;
    engine.pDrawLine(x + kScaleTickStart, ty, x + kLegendBox, ty);
    if (lastLabel - ty < kScaleLabelSpacing) continue;
    lastLabel = ty;
    engine.pDrawHText(x + 1.0f, ty - 0.3f, x + kScaleTickStart - 0.05f, ty + 0.3f,
                      engine::formatNumber(level, 1, symbols), kTextRight | kTextMiddle);
  }

  // The band's lines carried across the section.
  const float from = x + kLegendColumn;
  const float to = from + bandWidth;
  engine.pDrawLine(from, yd, to, yd);
  for (float ly : lines) engine.pDrawLine(from, ly, to, ly);
  engine.pDrawLine(from, y, to, y);
}

void CrossSectionFigure::drawSectionLine(PageEngine& engine, float cx, float yd, float yb,
                                         float datum, const std::vector<engine::ProfilePoint>& left,
                                         const std::vector<engine::ProfilePoint>& right) const {
  struct Point {
    float x;
    float y;
    engine::ProfilePoint value;
  };
  std::vector<Point> points;
  points.reserve(left.size() + right.size());
  for (auto it = left.rbegin(); it != left.rend(); ++it)
    points.push_back(
        {cx - it->Offset * m_unitsPerMetre, yd - (it->Level - datum) * m_unitsPerMetre, *it});
  for (const engine::ProfilePoint& p : right)
    points.push_back(
        {cx + p.Offset * m_unitsPerMetre, yd - (p.Level - datum) * m_unitsPerMetre, p});

  std::vector<float> line;
  line.reserve(points.size() * 3);
  for (const Point& p : points) line.insert(line.end(), {p.x, p.y, 0.0f});
  engine.pDrawPolyLine(line);

  const engine::NumberSymbols& symbols = m_symbols;
  float lastLabelled = -99.0f;
  for (const Point& p : points) {
    const float lx = p.x - 0.25f;
    if (!(std::fabs(lx - lastLabelled) > kLabelSpacing)) continue;
    lastLabelled = lx;
    engine.pDrawText(lx, yb - 0.15f, engine::formatNumber(p.value.Offset, 3, symbols), 90);
    engine.pDrawLine(p.x, yb - 1.8f, p.x, yb - 2.0f);
    engine.pDrawText(lx, yb - 2.15f, engine::formatNumber(p.value.Level, 3, symbols), 90);
    engine.pDrawLine(p.x, yb - 3.8f, p.x, yb - 4.0f);
  }
}

}  // namespace drawing
