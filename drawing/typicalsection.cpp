#include "drawing/typicalsection.h"

#include "engine/numberformat.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace drawing {

namespace {

// The sheet's layout, in sheet units (6 mm) unless said. The page is as wide as A4 landscape
// at least, wider for a section with many dimensions, and as high as its drawing: it is shown
// in a window beside the design details more often than printed.
constexpr int kPageWidthMm = 297;
constexpr int kPageHeightMm = 60;
constexpr float kMargin = 1.5f;
constexpr float kTitleTop = 0.9f;
constexpr float kTitleBottom = 2.4f;
constexpr float kHeadingTop = 2.7f;
constexpr float kContentTop = 4.4f;
// The largest drawing of the section itself before a smaller scale is taken.
constexpr float kWidthBudget = 60.0f;
constexpr float kHeightBudget = 24.0f;

// No font is measured, so every surface gets the same layout: the capitals, digits and signs of
// formula names in 8-point Arial take about 1.7 mm a character, and the layout reserves 1.8 mm.
constexpr float kCharWidth = 0.3f;
constexpr float kTextHeight = 0.5f;
constexpr float kLineHeight = 0.55f;

constexpr float kFirstRowGap = 1.2f;  // from the highest point up to the first dimension row
constexpr float kRowHeight = 1.1f;
constexpr float kColumnGap = 1.2f;  // from the outermost drawing out to the first column
constexpr float kColumnWidth = 1.1f;
constexpr float kTick = 0.15f;
constexpr float kOvershoot = 0.2f;  // how far a guide line runs past its dimension line
constexpr float kTextGap = 0.1f;
// Two stretches on one row or column may touch, not overlap by more than this.
constexpr float kTouch = 0.05f;
// An outer slope is drawn down this far at least, in metres.
constexpr float kLeastSlopeDrop = 1.0f;

constexpr std::uint32_t kBlack = 0x000000;
constexpr std::uint32_t kRed = 0x0000FF;
constexpr std::uint32_t kBlue = 0xFF0000;
constexpr std::uint32_t kGrey = 0x808080;
constexpr std::int16_t kSolid = 0;
constexpr std::int16_t kDash = 1;
constexpr std::int16_t kDashDot = 3;

enum Layer : std::int16_t {
  kFrameLayer,
  kHeadingLayer,
  kSectionLayer,
  kSlopeLayer,
  kDimensionLayer,
  kGuideLayer,
  kCentreLayer,
};

float textWidth(const QString& text) { return static_cast<float>(text.size()) * kCharWidth; }
// The box a text is drawn in: twice its reserved width, so that a text wider than reserved is
// never cut; the page holds the boxes.
float boxWidth(const QString& text) { return 2.0f * textWidth(text); }

float unitsOfMm(int mm) { return static_cast<float>(mm / kMmPerUnit); }

int mmToHold(float units, int atLeast) {
  const int mm = static_cast<int>(std::ceil(units * kMmPerUnit / 10.0) * 10.0);
  return std::max(atLeast, mm);
}

// A stretch of a row or column that a dimension and its label take.
struct Span {
  float low = 0.0f;
  float high = 0.0f;
};

// Puts span on the first track (row or column) where it overlaps nothing; returns the track.
int pack(std::vector<std::vector<Span>>& tracks, Span span) {
  for (std::size_t t = 0; t < tracks.size(); ++t) {
    const bool free = std::none_of(tracks[t].begin(), tracks[t].end(), [&](const Span& s) {
      return span.low < s.high - kTouch && s.low < span.high - kTouch;
    });
    if (free) {
      tracks[t].push_back(span);
      return static_cast<int>(t);
    }
  }
  tracks.push_back({span});
  return static_cast<int>(tracks.size()) - 1;
}

// A dimension line with its label centred on it, as one span along the line.
Span spanOf(float a, float b, const QString& label) {
  const float middle = (a + b) / 2.0f;
  const float half = textWidth(label) / 2.0f;
  return {std::min({a, b, middle - half}), std::max({a, b, middle + half})};
}

QString slopeLabel(const engine::FormulaVariable& slope) {
  return slope.Name + QStringLiteral(" : 1");
}

}  // namespace

TypicalSectionSheet::TypicalSectionSheet(engine::TypicalSection section, SheetTitle title)
    : m_section(std::move(section)), m_title(std::move(title)) {
  layOut();
}

std::optional<engine::ProfilePoint> TypicalSectionSheet::slopeEnd(bool left) const {
  const auto& points = left ? m_section.left : m_section.right;
  const auto& slope = left ? m_section.outerSlopeLeft : m_section.outerSlopeRight;
  if (points.empty() || !slope) return std::nullopt;
  const engine::ProfilePoint edge = points.back();
  float lowest = edge.Level;
  for (const auto* side : {&m_section.left, &m_section.right})
    for (const engine::ProfilePoint& p : *side) lowest = std::min(lowest, p.Level);
  // Down to the lowest point of the section, as a bank stands on ground about the bed's level.
  const float drop = std::max(kLeastSlopeDrop, edge.Level - lowest);
  return engine::ProfilePoint{edge.Offset + drop * std::fabs(slope->Value), edge.Level - drop};
}

float TypicalSectionSheet::xOf(float distance, bool left) const {
  return m_centreX + (left ? -distance : distance) * m_unitsPerMetre;
}

float TypicalSectionSheet::yOf(float level) const {
  return m_centreY - (level - m_section.centreLevel) * m_unitsPerMetre;
}

float TypicalSectionSheet::rowY(int row) const {
  return m_topY - kFirstRowGap - static_cast<float>(row) * kRowHeight;
}

float TypicalSectionSheet::columnX(int column, bool left) const {
  const float out = kColumnGap + static_cast<float>(column) * kColumnWidth;
  return left ? m_leftX - out : m_rightX + out;
}

void TypicalSectionSheet::layOut() {
  // The extent of the drawing in metres: every point and the ends of the outer slopes.
  float leftExtent = 0.0f, rightExtent = 0.0f;
  float highest = m_section.centreLevel, lowest = m_section.centreLevel;
  const auto widen = [&](const engine::ProfilePoint& p, bool left) {
    (left ? leftExtent : rightExtent) = std::max(left ? leftExtent : rightExtent, p.Offset);
    highest = std::max(highest, p.Level);
    lowest = std::min(lowest, p.Level);
  };
  for (bool left : {true, false}) {
    for (const engine::ProfilePoint& p : left ? m_section.left : m_section.right) widen(p, left);
    if (const auto end = slopeEnd(left)) widen(*end, left);
  }

  m_scale = std::end(kTypicalScales)[-1];
  for (int n : kTypicalScales) {
    const float perMetre = static_cast<float>(1000.0 / (kMmPerUnit * n));
    if ((leftExtent + rightExtent) * perMetre <= kWidthBudget &&
        (highest - lowest) * perMetre <= kHeightBudget) {
      m_scale = n;
      break;
    }
  }
  m_unitsPerMetre = static_cast<float>(1000.0 / (kMmPerUnit * m_scale));

  // Laid out about the centre line and the centre-line level at (0, 0), then moved onto the page.
  m_centreX = m_centreY = 0.0f;
  m_topY = yOf(highest);
  m_lowestY = yOf(lowest);
  m_leftX = xOf(leftExtent, true);
  m_rightX = xOf(rightExtent, false);
  for (bool left : {true, false}) {
    const auto end = slopeEnd(left);
    if (!end) continue;
    // The slope's name stands outside its middle.
    const auto& edge = (left ? m_section.left : m_section.right).back();
    const float middle = xOf((edge.Offset + end->Offset) / 2.0f, left);
    const float width =
        textWidth(slopeLabel(*(left ? m_section.outerSlopeLeft : m_section.outerSlopeRight)));
    if (left) m_leftX = std::min(m_leftX, middle - kTextGap - width);
    if (!left) m_rightX = std::max(m_rightX, middle + kTextGap + width);
  }

  std::vector<std::vector<Span>> rows, leftColumns, rightColumns;
  float top = m_topY - kTextHeight;
  float leftmost = m_leftX, rightmost = m_rightX;
  for (std::size_t i = 0; i < m_section.dimensions.size(); ++i) {
    const engine::TypicalDimension& d = m_section.dimensions[i];
    if (d.kind == engine::DimensionKind::Width) {
      const Span span = spanOf(xOf(d.start.Offset, d.left), xOf(d.end.Offset, d.left), d.label);
      const int row = pack(rows, span);
      m_widths.push_back({i, row});
      top = std::min(top, rowY(row) - kTextGap - kTextHeight);
      const float middle = (span.low + span.high) / 2.0f;
      leftmost = std::min({leftmost, span.low, middle - boxWidth(d.label) / 2.0f});
      rightmost = std::max({rightmost, span.high, middle + boxWidth(d.label) / 2.0f});
    } else if (d.kind == engine::DimensionKind::Height) {
      const Span span = spanOf(yOf(d.start.Level), yOf(d.end.Level), d.label);
      const int column = pack(d.left ? leftColumns : rightColumns, span);
      m_heights.push_back({i, column});
      const float x = columnX(column, d.left);
      leftmost = std::min(leftmost, x - kTextGap - kTextHeight);
      rightmost = std::max(rightmost, x + kTextGap + kTextHeight);
      top = std::min(top, span.low);
    } else {
      const float x = xOf(d.end.Offset, d.left);
      const float half = boxWidth(d.label) / 2.0f;
      leftmost = std::min(leftmost, x - half);
      rightmost = std::max(rightmost, x + half);
      top = std::min(top, yOf(d.end.Level) - kTextGap - kTextHeight);
    }
  }
  // Below the section: the centre-line level written under the centre.
  const float bottom = std::max(m_lowestY, kTextGap + kTextHeight) + kTextHeight;

  const float width = rightmost - leftmost;
  const float pageWidth = unitsOfMm(m_pageWidthMm = mmToHold(width + 2.0f * kMargin, kPageWidthMm));
  const float detailsWidth = pageWidth - 2.0f * kMargin;
  const int detailsLines = static_cast<int>(std::ceil(textWidth(detailsText()) / detailsWidth)) + 1;
  const float height =
      kContentTop + (bottom - top) + kRowHeight + detailsLines * kLineHeight + kMargin;
  m_pageHeightMm = mmToHold(height, kPageHeightMm);

  const float dx = (pageWidth - width) / 2.0f - leftmost;
  const float dy = kContentTop - top;
  m_centreX += dx;
  m_leftX += dx;
  m_rightX += dx;
  m_centreY += dy;
  m_topY += dy;
  m_lowestY = bottom + dy;
}

QString TypicalSectionSheet::detailsText() const {
  const engine::NumberSymbols& symbols = m_title.symbols;
  QStringList values;
  for (const engine::FormulaVariable& v : m_section.details)
    values << v.Name + QStringLiteral(" = ") + engine::formatNumber(v.Value, 3, symbols);
  return QStringLiteral(
             "Drawn from the design details of section %1 at chainage %2 km, where the "
             "centre-line design level CL = %3: %4. Distances and levels in metres; "
             "slopes horizontal : vertical.")
      .arg(m_section.sectionId)
      .arg(engine::formatNumber(m_section.chainage, 3, symbols),
           engine::formatNumber(m_section.centreLevel, 3, symbols),
           values.join(QStringLiteral(", ")));
}

void TypicalSectionSheet::drawPage(PageEngine& engine, int page) const {
  engine.pSetPage(static_cast<std::int16_t>(m_pageWidthMm),
                  static_cast<std::int16_t>(m_pageHeightMm));
  const QString font = QStringLiteral("Arial");
  engine.pCreateLayer(kBlack, 0, 0, 1, kSolid, font, 8);
  engine.pCreateLayer(kBlack, 0, 0, 1, kSolid, font, 12);
  engine.pCreateLayer(kRed, 0, 0, 2, kSolid, font, 8);
  engine.pCreateLayer(kRed, 0, 0, 1, kDash, font, 8);
  engine.pCreateLayer(kBlue, 0, 0, 1, kSolid, font, 8);
  engine.pCreateLayer(kGrey, 0, 0, 1, kDash, font, 8);
  engine.pCreateLayer(kGrey, 0, 0, 1, kDashDot, font, 8);
  if (page != 0) return;

  const float w = unitsOfMm(m_pageWidthMm);
  const float h = unitsOfMm(m_pageHeightMm);
  engine.pSetLayer(kFrameLayer);
  engine.pDrawPolyLine({0, 0, 0, w, 0, 0, w, h, 0, 0, h, 0, 0, 0, 0});
  const QString title = titleLead(m_title) + QStringLiteral(" - Typical section - Scale ") +
                        scaleText(m_scale, m_title.symbols);
  engine.pDrawHText(kMargin, kTitleTop, w - kMargin, kTitleBottom, title, kTextBottom);
  engine.pDrawHText(kMargin, m_lowestY + kRowHeight, w - kMargin, h - kMargin, detailsText(),
                    kTextWordWrap);
  engine.pSetLayer(kHeadingLayer);
  engine.pDrawText(kMargin, kHeadingTop,
                   m_section.designName.isEmpty()
                       ? QStringLiteral("Typical section")
                       : QStringLiteral("Typical section of ") + m_section.designName,
                   0);

  // The section last, over the guide lines that meet it.
  for (const Placed& placed : m_widths) drawWidth(engine, placed);
  for (const Placed& placed : m_heights) drawHeight(engine, placed);
  engine.pSetLayer(kDimensionLayer);
  for (const engine::TypicalDimension& d : m_section.dimensions)
    if (d.kind == engine::DimensionKind::Level) drawLevel(engine, d);
  drawSection(engine);
}

void TypicalSectionSheet::drawSection(PageEngine& engine) const {
  const engine::NumberSymbols& symbols = m_title.symbols;
  const float highest = m_widths.empty() ? m_topY : rowY(0);
  engine.pSetLayer(kCentreLayer);
  engine.pDrawLine(m_centreX, highest - kRowHeight, m_centreX, m_lowestY);
  engine.pSetLayer(kFrameLayer);
  engine.pDrawText(
      m_centreX + kTextGap, m_centreY + kTextGap,
      QStringLiteral("CL = ") + engine::formatNumber(m_section.centreLevel, 3, symbols), 0);

  std::vector<float> line;
  for (auto p = m_section.left.rbegin(); p != m_section.left.rend(); ++p)
    line.insert(line.end(), {xOf(p->Offset, true), yOf(p->Level), 0.0f});
  for (const engine::ProfilePoint& p : m_section.right)
    line.insert(line.end(), {xOf(p.Offset, false), yOf(p.Level), 0.0f});
  engine.pSetLayer(kSectionLayer);
  engine.pDrawPolyLine(line);

  for (bool left : {true, false}) {
    const auto end = slopeEnd(left);
    if (!end) continue;
    const engine::ProfilePoint edge = (left ? m_section.left : m_section.right).back();
    const float x1 = xOf(edge.Offset, left), y1 = yOf(edge.Level);
    const float x2 = xOf(end->Offset, left), y2 = yOf(end->Level);
    engine.pSetLayer(kSlopeLayer);
    engine.pDrawLine(x1, y1, x2, y2);
    // Above the slope, on its outer side, where the line has already fallen away.
    const QString label =
        slopeLabel(*(left ? m_section.outerSlopeLeft : m_section.outerSlopeRight));
    const float mx = (x1 + x2) / 2.0f, my = (y1 + y2) / 2.0f;
    const float x = left ? mx - kTextGap - textWidth(label) : mx + kTextGap;
    engine.pSetLayer(kDimensionLayer);
    engine.pDrawText(x, my - kTextHeight - kTextGap, label, 0);
  }
}

void TypicalSectionSheet::drawWidth(PageEngine& engine, const Placed& placed) const {
  const engine::TypicalDimension& d = m_section.dimensions[placed.dimension];
  const float y = rowY(placed.track);
  const float x1 = xOf(d.start.Offset, d.left), x2 = xOf(d.end.Offset, d.left);
  engine.pSetLayer(kGuideLayer);
  engine.pDrawLine(x1, yOf(d.start.Level) - kTextGap, x1, y - kOvershoot);
  engine.pDrawLine(x2, yOf(d.end.Level) - kTextGap, x2, y - kOvershoot);
  engine.pSetLayer(kDimensionLayer);
  engine.pDrawLine(x1, y, x2, y);
  for (float x : {x1, x2}) engine.pDrawLine(x - kTick, y + kTick, x + kTick, y - kTick);
  const float middle = (x1 + x2) / 2.0f;
  const float half = boxWidth(d.label) / 2.0f;
  engine.pDrawHText(middle - half, y - kTextGap - kTextHeight, middle + half, y - kTextGap, d.label,
                    kTextCentre | kTextBottom);
}

void TypicalSectionSheet::drawHeight(PageEngine& engine, const Placed& placed) const {
  const engine::TypicalDimension& d = m_section.dimensions[placed.dimension];
  const float x = columnX(placed.track, d.left);
  const float y1 = yOf(d.start.Level), y2 = yOf(d.end.Level);
  const float out = d.left ? -kOvershoot : kOvershoot;
  const float away = d.left ? -kTextGap : kTextGap;
  engine.pSetLayer(kGuideLayer);
  engine.pDrawLine(xOf(d.start.Offset, d.left) + away, y1, x + out, y1);
  engine.pDrawLine(xOf(d.end.Offset, d.left) + away, y2, x + out, y2);
  engine.pSetLayer(kDimensionLayer);
  engine.pDrawLine(x, y1, x, y2);
  for (float y : {y1, y2}) engine.pDrawLine(x - kTick, y + kTick, x + kTick, y - kTick);
  // Along the line, reading upward, on its outer side.
  const float length = textWidth(d.label);
  engine.pDrawText(d.left ? x - kTextGap - kTextHeight : x + kTextGap,
                   (y1 + y2) / 2.0f + length / 2.0f, d.label, 90);
}

void TypicalSectionSheet::drawLevel(PageEngine& engine, const engine::TypicalDimension& d) const {
  const float x = xOf(d.end.Offset, d.left), y = yOf(d.end.Level);
  const float half = boxWidth(d.label) / 2.0f;
  engine.pDrawLine(x - kTick, y - kTick, x, y);
  engine.pDrawLine(x, y, x + kTick, y - kTick);
  engine.pDrawHText(x - half, y - kTextGap - kTextHeight, x + half, y - kTextGap, d.label,
                    kTextCentre | kTextBottom);
}

}  // namespace drawing
