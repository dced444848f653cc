#include "drawing/typicalsection.h"

#include "drawing/recordingsurface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

using drawing::RecordedPrimitive;
using drawing::TypicalSectionSheet;
using engine::DimensionKind;

// Half a canal, 3 m of bed and a bank 2.6 m up at 6.9 m, as its formulas describe it, with an
// outer slope.
engine::TypicalSection halfCanal(float widthScale = 1.0f) {
  engine::TypicalSection s;
  s.designName = QStringLiteral("EarthenCanal");
  s.sectionId = 1;
  s.centreLevel = 100.0f;
  s.right = {{0, 100}, {3 * widthScale, 100}, {6.9f * widthScale, 102.6f}};
  s.dimensions = {
      {DimensionKind::Width, false, {0, 100}, {3 * widthScale, 100}, QStringLiteral("BED_WIDTH/2")},
      {DimensionKind::Width,
       false,
       {3 * widthScale, 100},
       {6.9f * widthScale, 102.6f},
       QStringLiteral("(FSD+FREEBOARD)*INNER_SLOPE")},
      {DimensionKind::Height,
       false,
       {0, 100},
       {6.9f * widthScale, 102.6f},
       QStringLiteral("FSD+FREEBOARD")}};
  s.outerSlopeRight = engine::FormulaVariable{QStringLiteral("SRS_RIGHT"), 2.0f};
  return s;
}

std::vector<RecordedPrimitive> drawn(const TypicalSectionSheet& sheet) {
  drawing::RecordingSurface surface;
  drawing::renderPages(sheet, surface, 0, 0);
  return surface.pages().at(0).primitives;
}

std::optional<RecordedPrimitive> textOf(const std::vector<RecordedPrimitive>& primitives,
                                        const QString& text) {
  for (const RecordedPrimitive& p : primitives)
    if (p.text == text) return p;
  return std::nullopt;
}

// A line from (x1, y1) to (x2, y2) in either direction, to a hundredth of a unit.
bool hasLine(const std::vector<RecordedPrimitive>& primitives, float x1, float y1, float x2,
             float y2) {
  const auto near = [](float a, float b) { return std::fabs(a - b) < 0.01f; };
  return std::any_of(primitives.begin(), primitives.end(), [&](const RecordedPrimitive& p) {
    if (p.op != QLatin1String("line")) return false;
    const auto& c = p.coords;
    return (near(c[0], x1) && near(c[1], y1) && near(c[2], x2) && near(c[3], y2)) ||
           (near(c[0], x2) && near(c[1], y2) && near(c[2], x1) && near(c[3], y1));
  });
}

// Each formula's names stand centred over a line as long as the stretch they give, or along one
// as high as the rise, at the sheet's scale.
TEST(TypicalSectionSheet, WritesEachFormulaAtItsDimension) {
  const TypicalSectionSheet sheet(halfCanal(), {});
  const std::vector<RecordedPrimitive> primitives = drawn(sheet);
  const float perMetre = static_cast<float>(1000.0 / (drawing::kMmPerUnit * sheet.scale()));

  for (const auto& [label, metres] :
       {std::pair{"BED_WIDTH/2", 3.0f}, std::pair{"(FSD+FREEBOARD)*INNER_SLOPE", 3.9f}}) {
    SCOPED_TRACE(label);
    const auto text = textOf(primitives, QString::fromLatin1(label));
    ASSERT_TRUE(text);
    const float middle = (text->coords[0] + text->coords[2]) / 2.0f;
    const float y = text->coords[3] + 0.1f;  // the line runs just under the text
    const float half = metres * perMetre / 2.0f;
    EXPECT_TRUE(hasLine(primitives, middle - half, y, middle + half, y));
  }

  const auto rise = textOf(primitives, QStringLiteral("FSD+FREEBOARD"));
  ASSERT_TRUE(rise);
  EXPECT_EQ(rise->angle, 90);
  const bool beside = std::any_of(primitives.begin(), primitives.end(), [&](const auto& p) {
    return p.op == QLatin1String("line") && p.coords[0] == p.coords[2] &&
           std::fabs(std::fabs(p.coords[3] - p.coords[1]) - 2.6f * perMetre) < 0.01f &&
           std::fabs(p.coords[0] - rise->coords[0]) < 0.2f;
  });
  EXPECT_TRUE(beside);
  EXPECT_TRUE(textOf(primitives, QStringLiteral("Typical section of EarthenCanal")));
  EXPECT_TRUE(textOf(primitives, QStringLiteral("SRS_RIGHT : 1")));
}

// Dimensions whose names would overlap go on separate rows; a wide section takes a smaller scale
// and every primitive stays on the page.
TEST(TypicalSectionSheet, KeepsItsLabelsApartAndOnThePage) {
  for (float widthScale : {0.2f, 1.0f, 20.0f}) {
    SCOPED_TRACE(widthScale);
    const TypicalSectionSheet sheet(halfCanal(widthScale), {});
    const std::vector<RecordedPrimitive> primitives = drawn(sheet);
    const auto a = textOf(primitives, QStringLiteral("BED_WIDTH/2"));
    const auto b = textOf(primitives, QStringLiteral("(FSD+FREEBOARD)*INNER_SLOPE"));
    ASSERT_TRUE(a && b);
    // The boxes are twice as wide as the texts; on one row the texts must not meet.
    const auto middle = [](const RecordedPrimitive& p) { return (p.coords[0] + p.coords[2]) / 2; };
    const auto textWidth = [](const RecordedPrimitive& p) {
      return (p.coords[2] - p.coords[0]) / 2;
    };
    if (a->coords[1] == b->coords[1]) {
      EXPECT_GE(std::fabs(middle(*a) - middle(*b)), (textWidth(*a) + textWidth(*b)) / 2);
    }
    const float width = sheet.pageWidthMm() / static_cast<float>(drawing::kMmPerUnit);
    const float height = sheet.pageHeightMm() / static_cast<float>(drawing::kMmPerUnit);
    for (const RecordedPrimitive& p : primitives)
      for (std::size_t i = 0; i + 1 < p.coords.size();
           i += p.op == QLatin1String("polyline") ? 3 : 2) {
        EXPECT_GE(p.coords[i], 0.0f) << p.op.toStdString();
        EXPECT_LE(p.coords[i], width) << p.op.toStdString();
        EXPECT_GE(p.coords[i + 1], 0.0f) << p.op.toStdString();
        EXPECT_LE(p.coords[i + 1], height) << p.op.toStdString();
      }
  }
  EXPECT_GT(TypicalSectionSheet(halfCanal(20.0f), {}).scale(),
            TypicalSectionSheet(halfCanal(), {}).scale());
}

}  // namespace
