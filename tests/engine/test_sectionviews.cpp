#include "engine/sectionviews.h"

#include "engine/designsection.h"
#include "engine/session.h"
#include "tests/engine/areafixture.h"

#include <gtest/gtest.h>

namespace {

using testsupport::AreaFixture;

class SectionViewsTest : public AreaFixture {};

std::vector<std::pair<float, float>> pairsOf(const std::vector<engine::ProfilePoint>& table) {
  std::vector<std::pair<float, float>> pairs;
  for (const engine::ProfilePoint& p : table) pairs.emplace_back(p.Offset, p.Level);
  return pairs;
}

using Pairs = std::vector<std::pair<float, float>>;

TEST_F(SectionViewsTest, CrossSectionHoldsTheDrawnTablesWithoutStoringAreas) {
  canalAt(0.0f, 100.0f);
  setGround(0.5f, {{-20.0f, 100.0f}, {-10.0f, 0.0f}, {0.0f, 100.0f}, {10.0f, 101.0f}});
  ResetDesignCache(session);
  const engine::CrossSection s = engine::computeCrossSection(session, 0.0f);

  // Ground 2 m above a 98 m bed: the 1.5 slope meets it 3 m beyond the 5 m edge.
  EXPECT_EQ(pairsOf(s.designLeft), (Pairs{{0, 98}, {5, 98}, {8, 100}}));
  EXPECT_EQ(pairsOf(s.designRight), (Pairs{{0, 98}, {5, 98}, {8, 100}}));
  EXPECT_EQ(pairsOf(s.groundLeft), (Pairs{{0, 100}, {10, 100}, {20, 100}}));
  EXPECT_TRUE(s.executedLeft.empty());
  EXPECT_FLOAT_EQ(s.areaCut, 26.0f);
  EXPECT_EQ(s.lowest, 98.0f);
  EXPECT_EQ(s.highest, 100.0f);
  EXPECT_EQ(s.largestLeft, 20.0f);
  EXPECT_FALSE(storedAreas(0.0f).first.has_value());

  // A level of 0 ends a table: the reading at -10 cuts the left ground short.
  const engine::CrossSection cut = engine::computeCrossSection(session, 0.5f);
  EXPECT_EQ(pairsOf(cut.groundLeft), (Pairs{{0, 100}}));
  EXPECT_EQ(pairsOf(cut.groundRight), (Pairs{{0, 100}, {10, 101}}));
  EXPECT_EQ(cut.largestLeft, 8.0f);  // the design's catch point reaches further than the ground
}

TEST_F(SectionViewsTest, CrossSectionsWalkTheQuantityChainagesInOrder) {
  canalAt(0.2f, 100.0f);
  setFlatGround(0.1f, 101.0f);
  session.levelDataChanged();
  std::vector<int> heard;
  const auto sections = engine::computeCrossSections(session, [&](int i, int n) {
    heard.push_back(i * 10 + n);
    return i < 1;  // stop before the second
  });
  ASSERT_EQ(sections.size(), 1u);
  EXPECT_FLOAT_EQ(sections[0].chainage, 0.1f);
  EXPECT_EQ(heard, (std::vector<int>{2, 12}));
}

TEST_F(SectionViewsTest, LongProfileReadsOutermostAndCentreLevelsInTheRange) {
  setDesignLevel(0.0f, 98.0f);
  setDesignLevel(1.0f, 99.0f);
  setGround(0.0f, {{-12.0f, 101.0f}, {-5.0f, 100.5f}, {0.0f, 100.0f}, {7.0f, 102.0f}});
  setGround(0.5f, {{-3.0f, 100.2f}, {4.0f, 100.4f}});
  setGround(2.0f, {{0.0f, 90.0f}});
  setExecuted(0.0f, {{0.0f, std::nullopt, 97.5f}});

  const engine::LongProfile p = engine::computeLongProfile(session, 0.0f, 1.0f, true);
  ASSERT_EQ(p.rows.size(), 2u);
  const engine::LongProfileRow& a = p.rows[0];
  EXPECT_EQ(a.leftGround, 101.0f);
  EXPECT_EQ(a.centreGround, 100.0f);
  EXPECT_EQ(a.rightGround, 102.0f);
  EXPECT_EQ(a.designLevel, 98.0f);
  EXPECT_EQ(a.finalLevel, 97.5f);  // the bank level stands in for a null level
  const engine::LongProfileRow& b = p.rows[1];
  EXPECT_FALSE(b.centreGround.has_value());
  EXPECT_EQ(b.leftGround, 100.2f);
  EXPECT_FLOAT_EQ(*b.designLevel, 98.5f);
  EXPECT_FALSE(b.finalLevel.has_value());
  // The range's levels, not the reading at km 2.
  EXPECT_EQ(p.lowest, 98.0f);
  EXPECT_EQ(p.highest, 102.0f);
}

}  // namespace
