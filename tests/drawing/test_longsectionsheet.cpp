#include "drawing/longsectionsheet.h"
#include "drawing/recordingsurface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <optional>

namespace {

using drawing::LongSectionSheet;
using drawing::RecordedPage;
using drawing::RecordedPrimitive;
using Setup = std::function<void(drawing::LongSectionSheetOptions&)>;

constexpr std::uint32_t kBlack = 0x000000, kRed = 0x0000FF, kBlue = 0xFF0000, kGreen = 0x00FF00;

// A chainage where every line stands at level (or is missing).
engine::LongProfileRow rowAt(float km, std::optional<float> level) {
  return {km, level, level, level, level, level};
}

LongSectionSheet sheetOf(std::vector<engine::LongProfileRow> rows, const Setup& setup = {}) {
  drawing::LongSectionSheetOptions options;
  if (setup) setup(options);
  return LongSectionSheet({0, 0, std::move(rows), {}, {}}, options);
}

std::vector<RecordedPage> pagesOf(const LongSectionSheet& sheet) {
  drawing::RecordingSurface surface;
  drawing::renderPages(sheet, surface, 0, sheet.pageCount() - 1);
  return surface.pages();
}

// The primitives of one op (texts of any op when op is empty) on the layer of colour and pen.
std::vector<RecordedPrimitive> drawn(const RecordedPage& page, const QString& op,
                                     std::uint32_t colour, int style = 0) {
  std::vector<RecordedPrimitive> found;
  for (const RecordedPrimitive& p : page.primitives) {
    const drawing::LayerStyle& layer = page.layers.at(p.layer);
    if ((op.isEmpty() ? !p.text.isEmpty() : p.op == op) && layer.ForeColor == colour &&
        layer.DrawStyle == style)
      found.push_back(p);
  }
  return found;
}

QStringList textsOf(const RecordedPage& page, std::uint32_t colour, int style = 0) {
  QStringList texts;
  for (const RecordedPrimitive& p : drawn(page, {}, colour, style)) texts << p.text;
  return texts;
}

std::vector<float> designLine(const RecordedPage& page) {
  return drawn(page, QStringLiteral("polyline"), kRed).at(0).coords;
}

// The design line rises 1 m from 0 to 0.1 km and ends where one page's metres end.
TEST(LongSectionSheet, ChainageFillsTheWidthAndLevelsAreTrueToScale) {
  const struct {
    float metresPerPage, verticalScale, fractionOfWidth, mmPerMetre;
  } cases[] = {{1000, 100, 0.1f, 10}, {500, 200, 0.2f, 5}, {0, -5, 0.1f, 10}};
  for (const auto& c : cases) {
    const float pageKm = (c.metresPerPage > 0 ? c.metresPerPage : 1000) / 1000;
    const std::vector<float> line = designLine(
        pagesOf(sheetOf({rowAt(0, 100), rowAt(0.1f, 101), rowAt(pageKm, 101)}, [&](auto& o) {
          o.metresPerPage = c.metresPerPage, o.verticalScale = c.verticalScale;
        })).at(0));
    EXPECT_NEAR((line[3] - line[0]) / (line[6] - line[0]), c.fractionOfWidth, 1e-5);
    EXPECT_NEAR((line[1] - line[4]) * drawing::kMmPerUnit, c.mmPerMetre, 1e-4);
  }
}

// Page 1 runs from 101.7 up to where the line leaves it at 126.35, page 2 from there; page 4
// has no level and takes the datum of the whole sheet.
TEST(LongSectionSheet, DatumIsFixedOrOneMetreUnderThePagesLowestLevel) {
  const struct {
    bool fixed;
    int page, datum;
  } cases[] = {{false, 0, 100}, {false, 1, 125}, {true, 1, 95}, {false, 3, 100}};
  for (const auto& c : cases) {
    const LongSectionSheet sheet =
        sheetOf({rowAt(0, 101.7f), rowAt(0.5f, 102.5f), rowAt(1.5f, 150.2f), rowAt(2, 151),
                 rowAt(3.5f, std::nullopt)},
                [&](auto& o) { o.fixedDatum = c.fixed, o.fixedDatumValue = 95; });
    EXPECT_EQ(sheet.datumOf(c.page), c.datum);
    const QStringList texts = textsOf(pagesOf(sheet).at(c.page), kBlack);
    EXPECT_EQ(texts.at(texts.indexOf(QStringLiteral("DATUM")) + 1),
              QString(QString::number(c.datum) + ".0"));
  }
}

TEST(LongSectionSheet, EachValueStandsInItsCaptionsRowAndFinalOnlyWhenExecuted) {
  const struct {
    QString caption;
    std::uint32_t colour;
    int style;  // the ground lines are told apart by their pens
    QString value;
  } rows[] = {{"OGL (LEFT)", kBlue, 1, "101.000"},       {"OGL (CENTRE)", kBlue, 0, "102.000"},
              {"OGL (RIGHT)", kBlue, 2, "103.000"},      {"DESIGN LEVEL (M)", kRed, 0, "104.000"},
              {"FINAL LEVEL (M)", kGreen, 0, "105.000"}, {"CHAINAGE(KM)", kBlack, 0, "0.500"}};
  const auto named = [](const std::vector<RecordedPrimitive>& all, const QString& text) {
    return std::find_if(all.begin(), all.end(), [&](const auto& p) { return p.text == text; });
  };
  for (const bool executed : {false, true}) {
    const RecordedPage page =
        pagesOf(sheetOf({rowAt(0, 101), {0.5f, 101, 102, 103, 104, 105}}, [&](auto& o) {
          o.executed = executed;
        })).at(0);
    const std::vector<RecordedPrimitive> captions = drawn(page, QStringLiteral("htext"), kBlack);
    for (const auto& r : rows) {
      SCOPED_TRACE(r.caption.toStdString());
      const bool shown = executed || r.colour != kGreen;
      const auto caption = named(captions, r.caption);
      ASSERT_EQ(caption != captions.end(), shown);
      const bool lined = !drawn(page, QStringLiteral("polyline"), r.colour, r.style).empty();
      EXPECT_TRUE(r.colour == kBlack || lined == shown);
      if (!shown) continue;
      const std::vector<RecordedPrimitive> labels = drawn(page, {}, r.colour, r.style);
      const auto label = named(labels, r.value);
      ASSERT_NE(label, labels.end());
      EXPECT_TRUE(label->coords[1] > caption->coords[1] && label->coords[1] < caption->coords[3]);
    }
  }
}

TEST(LongSectionSheet, PagesCoverTheRangeAndNeedTwoRows) {
  const struct {
    std::vector<float> km;
    int pages;
  } cases[] = {{{0, 0.5f}, 1}, {{0, 1}, 1}, {{0.2f, 1.3f, 2.7f}, 3}, {{0}, 0}, {{}, 0}};
  for (const auto& c : cases) {
    std::vector<engine::LongProfileRow> rows;
    for (const float km : c.km) rows.push_back(rowAt(km, 100));
    EXPECT_EQ(sheetOf(rows).pageCount(), c.pages) << c.km.size();
  }
}

TEST(LongSectionSheet, LineGoesOnAcrossPageEdgesAtTheSameLevel) {
  const std::vector<RecordedPage> pages =
      pagesOf(sheetOf({rowAt(0, 100), rowAt(1, 100), rowAt(2.5f, 103)}));
  ASSERT_EQ(pages.size(), 3u);
  const std::vector<float> first = designLine(pages[0]), second = designLine(pages[1]),
                           third = designLine(pages[2]);
  // Chainage 1.000 ends page 1 and starts page 2 at the same level.
  EXPECT_EQ(QPointF(second[0], second[1]), QPointF(first[0], first[4]));
  for (int page : {0, 1}) EXPECT_TRUE(textsOf(pages[page], kBlack).contains("1.000")) << page;
  // The line crosses into page 3 at 102 m, one metre over that page's datum of 101.
  const float bandTop = drawn(pages[2], QStringLiteral("box"), kBlack).at(0).coords[1];
  EXPECT_EQ(third[0], first[0]);
  EXPECT_NEAR((bandTop - third[1]) * drawing::kMmPerUnit, 10, 1e-3);
}

TEST(LongSectionSheet, CrowdedLabelsAreSkippedAndMissingValuesBreakTheLine) {
  const RecordedPage page =
      pagesOf(sheetOf({rowAt(0, 100), rowAt(0.001f, 100.5f), rowAt(0.1f, 101),
                       rowAt(0.2f, std::nullopt), rowAt(0.3f, 102), rowAt(0.4f, 102)}))
          .at(0);
  EXPECT_EQ(textsOf(page, kRed), QStringList({"100.000", "101.000", "102.000", "102.000"}));
  EXPECT_FALSE(textsOf(page, kBlack).contains(QStringLiteral("0.001")));
  EXPECT_EQ(drawn(page, QStringLiteral("polyline"), kRed).size(), 2u);
}

TEST(LongSectionSheet, TallRangesGrowThePageAndNothingLeavesIt) {
  const struct {
    bool fixed;
    float datum;
    int leastHeightMm;
    float riseMm;  // of the design line from 100 to 160 m
  } cases[] = {{false, 0, 600, 600}, {true, 20, 1400, 600}, {true, 140, 297, 200}};
  for (const auto& c : cases) {
    const std::vector<RecordedPage> pages =
        pagesOf(sheetOf({rowAt(0, 100), rowAt(0.4f, 160), rowAt(1.4f, 120)}, [&](auto& o) {
          o.executed = true, o.fixedDatum = c.fixed, o.fixedDatumValue = c.datum;
        }));
    for (const RecordedPage& page : pages) {
      EXPECT_GE(page.heightMm, c.leastHeightMm) << c.datum;
      for (const RecordedPrimitive& p : page.primitives) {
        for (std::size_t i = 0; i + 1 < p.coords.size(); i += p.op == "polyline" ? 3 : 2) {
          const double x = p.coords[i] * drawing::kMmPerUnit;
          const double y = p.coords[i + 1] * drawing::kMmPerUnit;
          EXPECT_TRUE(x >= 0 && x <= page.widthMm + 1e-3 && y >= 0 && y <= page.heightMm + 1e-3);
        }
      }
    }
    const std::vector<float> line = designLine(pages.at(0));
    EXPECT_NEAR((line[1] - line[4]) * drawing::kMmPerUnit, c.riseMm, 1e-2) << c.datum;
  }
}

TEST(LongSectionSheet, TitleNamesScalesPrintFactorAndPage) {
  const std::vector<RecordedPage> pages =
      pagesOf(sheetOf({rowAt(0, 100), rowAt(2.5f, 101)},
                      [](auto& o) { o.verticalScale = 200, o.printFactor = 0.5; }));
  const QString title = textsOf(pages.at(1), kBlack).at(0);
  EXPECT_TRUE(title.contains(QStringLiteral(" Vertical 1:200, printed at 50 %: Horizontal 1:")));
  EXPECT_TRUE(title.contains(QStringLiteral(" Vertical 1:400 - Page 2 of 3")))
      << title.toStdString();
}

}  // namespace
