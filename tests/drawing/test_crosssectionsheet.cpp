#include "drawing/crosssectionsheet.h"
#include "drawing/recordingsurface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using drawing::CrossSectionSheet;
using drawing::CrossSectionSheetOptions;
using drawing::RecordedPrimitive;
using Pairs = std::vector<std::pair<float, float>>;

enum Layer { kFrame, kDesign, kExisting, kExecuted };

std::vector<engine::ProfilePoint> table(const Pairs& pairs) {
  std::vector<engine::ProfilePoint> points;
  for (auto [o, l] : pairs) points.push_back({o, l});
  return points;
}

// A cross-section whose extent is worked out from its tables, as the engine does.
engine::CrossSection section(float chainage, const Pairs& designRight, const Pairs& groundRight,
                             const Pairs& designLeft = {}, const Pairs& groundLeft = {}) {
  engine::CrossSection s;
  s.chainage = chainage;
  s.designRight = table(designRight);
  s.groundRight = table(groundRight);
  s.designLeft = table(designLeft);
  s.groundLeft = table(groundLeft);
  s.executedRight = s.groundRight;
  for (const auto* t : {&s.designRight, &s.groundRight, &s.designLeft, &s.groundLeft})
    for (const engine::ProfilePoint& p : *t) {
      s.lowest = std::min(s.lowest, p.Level);
      s.highest = std::max(s.highest, p.Level);
    }
  s.largestRight = groundRight.empty() ? 0.0f : groundRight.back().first;
  for (auto [o, l] : designRight) s.largestRight = std::max(s.largestRight, o);
  s.largestLeft = groundLeft.empty() ? 0.0f : groundLeft.back().first;
  for (auto [o, l] : designLeft) s.largestLeft = std::max(s.largestLeft, o);
  return s;
}

// A section 10 m either side, levels 100 to 101: 12 units high, 23.75 wide with its legend.
engine::CrossSection small(float chainage) {
  return section(chainage, {{0, 100}, {10, 101}}, {{0, 100.5f}, {10, 100.5f}},
                 {{0, 100}, {10, 101}}, {{0, 100.5f}, {10, 100.5f}});
}

struct Drawn {
  std::vector<drawing::RecordedPage> pages;
  const drawing::RecordedPage& page(int i = 0) const { return pages.at(i); }
};

Drawn draw(const std::vector<engine::CrossSection>& sections, CrossSectionSheetOptions options = {},
           int* pageCount = nullptr) {
  CrossSectionSheet sheet(sections, options);
  drawing::RecordingSurface surface;
  drawing::renderPages(sheet, surface, 0, sheet.pageCount() - 1);
  if (pageCount) *pageCount = sheet.pageCount();
  return {surface.pages()};
}

std::vector<const RecordedPrimitive*> find(const drawing::RecordedPage& page, const char* op,
                                           int layer) {
  std::vector<const RecordedPrimitive*> found;
  for (const RecordedPrimitive& p : page.primitives)
    if (p.op == QLatin1String(op) && p.layer == layer) found.push_back(&p);
  return found;
}

QStringList texts(const drawing::RecordedPage& page, int layer, int angle) {
  QStringList list;
  for (const RecordedPrimitive* p : find(page, "text", layer))
    if (p->angle == angle) list << p->text;
  return list;
}

struct LabelCase {
  const char* name;
  Pairs design;
  QStringList offsets;  // the labelled offsets in the design rows
};

class BandLabelTest : public ::testing::TestWithParam<LabelCase> {};

TEST_P(BandLabelTest, PointsCloserThanTheSpacingShareTheFirstOnesLabel) {
  const LabelCase& k = GetParam();
  const Drawn d = draw({section(0, k.design, {{0, 100}, {5, 100}})});
  const QStringList labels = texts(d.page(), kDesign, 90);
  QStringList offsets;
  for (int i = 0; i < labels.size(); i += 2) offsets << labels[i];
  EXPECT_EQ(offsets, k.offsets);
  EXPECT_EQ(labels.size(), 2 * k.offsets.size());  // an offset and a level per labelled point
  // Each labelled point gets its two ticks.
  EXPECT_EQ(find(d.page(), "line", kDesign).size(), 2u * k.offsets.size());
}

INSTANTIATE_TEST_SUITE_P(
    Spacing, BandLabelTest,
    ::testing::Values(
        LabelCase{"WideApart", {{0, 99}, {1, 99}, {2, 100}}, {"0.000", "1.000", "2.000"}},
        LabelCase{"SecondTooClose", {{0, 99}, {0.2f, 99}, {0.5f, 100}}, {"0.000", "0.500"}},
        LabelCase{"ThirdTooCloseToSecond", {{0, 99}, {0.3f, 99}, {0.5f, 100}}, {"0.000", "0.300"}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(CrossSectionSheet, DrawsEachTableAsALineOverTheDatumAndItsValuesInTheBand) {
  // Levels 99.5 to 101.2: the datum is 98, the whole metre below the lowest.
  const Drawn d = draw({section(0.5f, {{0, 99.5f}, {3, 99.5f}, {6, 101.2f}},
                                {{0, 101}, {8, 101.2f}}, {{0, 99.5f}, {4, 101}})});
  const auto& page = d.page();
  const auto box = find(page, "box", kFrame).front()->coords;  // the legend box
  const float x = box[0];
  const float y = box[1];
  EXPECT_FLOAT_EQ(y - box[3], 8.0f);  // band height without executed levels
  const float datumLine = y - 8.0f;
  const float cx = x + 3.75f + 4.0f;  // legend column and the largest left offset

  const auto design = find(page, "polyline", kDesign);
  ASSERT_EQ(design.size(), 1u);
  // The left side from its outer end inward, then the right side outward.
  const std::vector<float> expected = {cx - 4, datumLine - 3.0f, 0, cx,     datumLine - 1.5f, 0,
                                       cx,     datumLine - 1.5f, 0, cx + 3, datumLine - 1.5f, 0,
                                       cx + 6, datumLine - 3.2f, 0};
  ASSERT_EQ(design.front()->coords.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i)
    EXPECT_NEAR(design.front()->coords[i], expected[i], 1e-4) << i;

  EXPECT_TRUE(texts(page, kFrame, 0).contains(QStringLiteral("DATUM")));
  EXPECT_TRUE(texts(page, kFrame, 0).contains(QStringLiteral("98.0")));
  // Existing ground values sit one band pair above the design's.
  const auto designLevel = find(page, "text", kDesign)[1]->coords;
  const auto groundLevel = find(page, "text", kExisting)[1]->coords;
  EXPECT_FLOAT_EQ(designLevel[1], y - 2.15f);
  EXPECT_FLOAT_EQ(groundLevel[1], y - 4.0f - 2.15f);
  EXPECT_TRUE(find(page, "polyline", kExecuted).empty());
}

TEST(CrossSectionSheet, EmptyTableDrawsNoLineAndNoLabels) {
  const Drawn d = draw({section(0, {{0, 99}, {5, 99}}, {})});
  EXPECT_TRUE(find(d.page(), "polyline", kExisting).empty());
  EXPECT_TRUE(find(d.page(), "text", kExisting).empty());
  EXPECT_EQ(find(d.page(), "polyline", kDesign).size(), 1u);
}

TEST(CrossSectionSheet, ExecutedLevelsAddTheirLineAndATallerBand) {
  CrossSectionSheetOptions options;
  options.executed = true;
  const Drawn d = draw({small(0)}, options);
  const auto box = find(d.page(), "box", kFrame).front()->coords;
  EXPECT_FLOAT_EQ(box[1] - box[3], 10.5f);
  EXPECT_EQ(find(d.page(), "polyline", kExecuted).size(), 1u);
  EXPECT_EQ(texts(d.page(), kExecuted, 90),
            (QStringList{"0.000", "100.500", "10.000", "100.500"}));
}

TEST(CrossSectionSheet, PagesBreakAfterTwelveSectionsAndTheRestContinue) {
  std::vector<engine::CrossSection> sections;
  for (int i = 0; i < 13; ++i) sections.push_back(small(i * 0.02f));
  CrossSectionSheet sheet(sections, {});
  ASSERT_EQ(sheet.pageCount(), 2);
  const auto& at = sheet.placements();
  // Five 12-unit sections fill a column of the 420 mm page; the sixth starts the next column.
  EXPECT_EQ(at[4].x, at[0].x);
  EXPECT_GT(at[5].x, at[4].x + 23.75f);
  EXPECT_EQ(at[5].y, at[0].y);
  EXPECT_EQ(at[11].page, 0);
  EXPECT_EQ(at[12].page, 1);
  EXPECT_EQ(at[12].x, at[0].x);
  EXPECT_EQ(at[12].y, at[0].y);
  EXPECT_EQ(sheet.sectionsOn(1, 1), 1);

  const Drawn d = draw(sections);
  ASSERT_EQ(d.pages.size(), 2u);
  for (int p = 0; p < 2; ++p) {
    // Every page has its frame through the four corners and its title.
    const auto frame = d.page(p).primitives.front();
    EXPECT_EQ(frame.op, QStringLiteral("polyline"));
    const float w = 594.0f / 6.0f;
    const float h = 420.0f / 6.0f;
    EXPECT_EQ(frame.coords, (std::vector<float>{0, 0, 0, w, 0, 0, w, h, 0, 0, h, 0, 0, 0, 0}));
    const auto title = find(d.page(p), "htext", kFrame).front()->text;
    EXPECT_TRUE(title.endsWith(QStringLiteral("Page %1 of 2").arg(p + 1))) << title.toStdString();
  }
  EXPECT_EQ(find(d.page(1), "box", kFrame).size(), 1u);
}

TEST(CrossSectionSheet, ColumnThatWouldLeaveThePageStartsANewPage) {
  // 40 m either side: one column a page.
  std::vector<engine::CrossSection> sections(
      6, section(0, {{0, 100}, {40, 101}}, {{0, 100}}, {{0, 100}, {40, 101}}, {}));
  CrossSectionSheet sheet(sections, {});
  EXPECT_EQ(sheet.pageCount(), 2);
  EXPECT_EQ(sheet.sectionsOn(0, 0), 5);
}

TEST(CrossSectionSheet, StandardScaleStretchesTheSectionAndThePageNotTheBand) {
  CrossSectionSheetOptions options;
  options.scale = 100;
  const Drawn d = draw({section(0, {{0, 100}, {40, 100}}, {{0, 100}, {40, 100}},
                                {{0, 100}, {40, 100}}, {{0, 100}, {40, 100}})},
                       options);
  const auto box = find(d.page(), "box", kFrame).front()->coords;
  EXPECT_FLOAT_EQ(box[1] - box[3], 8.0f);
  const auto line = find(d.page(), "polyline", kDesign).front()->coords;
  // 80 m at 1:100 is 800 mm: the page widens to hold it.
  EXPECT_NEAR((line[line.size() - 3] - line[0]) * 6.0f, 800.0f, 1e-3);
  EXPECT_GE(d.page().widthMm * 1.0f, 800.0f + 3.75f * 6.0f);
  EXPECT_TRUE(find(d.page(), "htext", kFrame).front()->text.contains(QStringLiteral("1:100")));
}

TEST(CrossSectionSheet, SectionWithoutChainagesIsOneEmptyPage) {
  int pages = 0;
  const Drawn d = draw({}, {}, &pages);
  EXPECT_EQ(pages, 1);
  ASSERT_EQ(d.pages.size(), 1u);
  EXPECT_TRUE(d.page().primitives.empty());
  EXPECT_EQ(d.page().layers.size(), 4u);
}

}  // namespace
