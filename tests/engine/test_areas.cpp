#include "engine/areas.h"

#include "engine/session.h"
#include "tests/engine/areafixture.h"

#include <QFile>
#include <QTextStream>

#include <gtest/gtest.h>

namespace {

using engine::AreaState;
using engine::ComputeSectionAreas;
using testsupport::AreaFixture;

constexpr float kTol = 1e-4f;

class AreasTest : public AreaFixture {
 protected:
  const AreaState& compute(float chainage) {
    ComputeSectionAreas(session, chainage);
    return session.areas();
  }

  // The table rows whose distance is d (there may be one per side).
  std::vector<int> rowsAt(float d) {
    std::vector<int> rows;
    const AreaState& st = session.areas();
    for (int r = 0; r <= st.RowCount; ++r)
      if (std::fabs(st.Table.value(r, engine::kColDistance) - d) < kTol) rows.push_back(r);
    return rows;
  }
};

// Flat ground over a 10 m bed: the side slopes rise (cut) or fall (fill) to meet the ground; a
// side without a slope (none or 0) ends at its edge.
struct FlatCase {
  const char* name;
  float ground;
  std::optional<float> left, right;  // slopes
  float catchX, catchLevel, cut, fill;
};

class FlatGroundTest : public AreasTest, public ::testing::WithParamInterface<FlatCase> {};

TEST_P(FlatGroundTest, SlopesMeetTheGroundAndTheStripsAddUp) {
  const FlatCase& k = GetParam();
  setDesignLevel(0.0f, 98.0f);
  setSlopes(0.0f, k.left, k.right);
  setFlatGround(0.0f, k.ground);
  const AreaState& st = compute(0.0f);

  EXPECT_TRUE(st.Left.Present && st.Right.Present);
  for (const engine::AreaSide* side : {&st.Left, &st.Right}) {
    ASSERT_TRUE(side->HasCatchPoint);
    ASSERT_EQ(side->nDesign, 2);
    EXPECT_NEAR(side->Design[2].Offset, k.catchX, kTol);
    EXPECT_NEAR(side->Design[2].Level, k.catchLevel, kTol);
  }
  EXPECT_NEAR(st.Area[0], k.cut, kTol);
  EXPECT_NEAR(st.Area[1], k.fill, kTol);
  EXPECT_EQ(storedAreas(0.0f),
            std::make_pair(std::optional(st.Area[0]), std::optional(st.Area[1])));
  EXPECT_TRUE(reporter.errors.isEmpty()) << errorText().toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    Areas, FlatGroundTest,
    ::testing::Values(
        // 2 m of cut over 3 m of slope: 2 × (5 × 2 + 3 × 2 ÷ 2).
        FlatCase{"CutWithSlope1_5", 100.0f, 1.5f, 1.5f, 8.0f, 100.0f, 26.0f, 0.0f},
        FlatCase{"CutWithSlope2", 100.0f, 2.0f, 2.0f, 9.0f, 100.0f, 28.0f, 0.0f},
        // 1 m of fill over 1.5 m of slope: 2 × (5 × 1 + 1.5 × 1 ÷ 2).
        FlatCase{"FillWithSlope1_5", 97.0f, 1.5f, 1.5f, 6.5f, 97.0f, 0.0f, 11.5f},
        FlatCase{"GroundAtBedLevel", 98.0f, 1.5f, 1.5f, 5.0f, 98.0f, 0.0f, 0.0f},
        FlatCase{"NoSlopeEndsAtTheEdge", 100.0f, std::nullopt, 0.0f, 5.0f, 98.0f, 20.0f, 0.0f}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(AreasTest, GroundEndingBeforeTheSlopeGetsACatchPointLevelWithItsLastPoint) {
  setDesignLevel(0.0f, 98.0f);
  setSlopes(0.0f, 1.5f, 1.5f);
  setGround(0.0f,
            {{-6.0f, 100.0f}, {-3.0f, 100.0f}, {0.0f, 100.0f}, {3.0f, 100.0f}, {6.0f, 100.0f}});
  const AreaState& st = compute(0.0f);
  ASSERT_TRUE(st.Right.HasCatchPoint);
  EXPECT_NEAR(st.Right.Design[2].Offset, 8.0f, kTol);
  EXPECT_NEAR(st.Right.Design[2].Level, 100.0f, kTol);
  // Strips end where the ground ends: 2 × 3 + 2 × 2 + (2 + 4/3) ÷ 2 × 1 per side.
  const float side = 6.0f + 4.0f + (2.0f + 4.0f / 3.0f) / 2.0f;
  EXPECT_NEAR(st.Area[0], 2 * side, 1e-3f);
  EXPECT_NEAR(st.Area[1], 0.0f, kTol);
}

TEST_F(AreasTest, GroundCrossingTheDesignGetsARowAtTheCrossing) {
  setBedProfile(10.0f);
  setDesignLevel(0.0f, 98.0f);
  setSlopes(0.0f, 1.5f, 1.5f);
  setGround(0.0f,
            {{-20.0f, 97.0f}, {-10.0f, 97.0f}, {0.0f, 99.0f}, {10.0f, 97.0f}, {20.0f, 97.0f}});
  const AreaState& st = compute(0.0f);

  EXPECT_NEAR(st.Right.Design[2].Offset, 11.5f, kTol);
  const std::vector<int> crossing = rowsAt(5.0f);
  ASSERT_EQ(crossing.size(), 2u);
  for (int r : crossing) {
    EXPECT_NEAR(st.Table.value(r, engine::kColOGL), 98.0f, kTol);
    EXPECT_NEAR(st.Table.value(r, engine::kColDesignLevel), 98.0f, kTol);
    EXPECT_NEAR(st.Table.value(r, engine::kColDepthOfCut), 0.0f, kTol);
    EXPECT_NEAR(st.Table.value(r, engine::kColDepthOfFill), 0.0f, kTol);
  }
  // Cut: 1 m falling to 0 over 5 m; fill: 0 rising to 1 over 5 m, then 1 to 0 over 1.5 m.
  EXPECT_NEAR(st.Area[0], 2 * 2.5f, kTol);
  EXPECT_NEAR(st.Area[1], 2 * (2.5f + 0.75f), kTol);
}

TEST_F(AreasTest, ChainageIsRoundedToThreeDecimalsAndStoredSo) {
  canalAt(1.235f, 100.0f);
  float chainage = 1.23456f;
  ComputeSectionAreas(session, chainage);
  EXPECT_EQ(chainage, 1.235f);
  EXPECT_NEAR(storedAreas(1.235f).first.value_or(-1), 26.0f, kTol);
}

TEST_F(AreasTest, MissingGroundOnOneSideIsReportedAndThatSideComesOutEmpty) {
  setDesignLevel(0.0f, 98.0f);
  setSlopes(0.0f, 1.5f, 1.5f);
  setGround(0.0f, {{0.0f, 100.0f}, {10.0f, 100.0f}, {20.0f, 100.0f}});
  c.exec(QStringLiteral("DELETE FROM Initial WHERE Offset=0"));
  const AreaState& st = compute(0.0f);
  EXPECT_EQ(reporter.errors,
            QStringList{QStringLiteral("Chainage 0: Left side data not found in Initial Levels")});
  EXPECT_FALSE(st.Left.Present);
  // Without its centre reading the right side's row 0 takes the level of its first point.
  EXPECT_NEAR(st.Area[0], 13.0f, kTol);
}

TEST_F(AreasTest, NoDesignReachingOutLeavesTheStoredAreasAlone) {
  c.exec(QStringLiteral("DELETE FROM DesignExp WHERE LCR<>'C'"));
  ASSERT_FALSE(session.LoadDesignProfile());
  canalAt(0.0f, 100.0f);
  c.exec(QStringLiteral("UPDATE DesignQty SET AreaCut=7, AreaFill=8"));
  const AreaState& st = compute(0.0f);
  EXPECT_FLOAT_EQ(st.Area[0], 0.0f);
  EXPECT_EQ(storedAreas(0.0f), std::make_pair(std::optional(7.0f), std::optional(8.0f)));
}

TEST_F(AreasTest, NoDesignDetailsIsReportedAndComputesNothing) {
  setDesignLevel(0.0f, 98.0f);
  setFlatGround(0.0f, 100.0f);
  compute(0.0f);
  ASSERT_EQ(reporter.errors.size(), 1);
  EXPECT_TRUE(reporter.errors[0].contains(QLatin1String("no design details")));
  EXPECT_FALSE(storedAreas(0.0f).first.has_value());
}

// Quantity windows: a strip counts when StartOffset < its outer end <= EndOffset, on the
// sides LRB names. Ground readings at 0, 3, 10, 20 each side give strips ending at 3 (6 m²),
// 5 (4 m²) and 8 (3 m²) on each side.
struct WindowCase {
  const char* name;
  const char* start;
  const char* end;
  const char* lrb;
  float area;
};

class QuantityWindowTest : public AreasTest, public ::testing::WithParamInterface<WindowCase> {};

TEST_P(QuantityWindowTest, CountsTheStripsInsideTheWindow) {
  const WindowCase& k = GetParam();
  setQuantityColumns({{1, "CUT", k.start, k.end, k.lrb}, {2, "FILL", "0", "100", "B"}});
  setDesignLevel(0.0f, 98.0f);
  setSlopes(0.0f, 1.5f, 1.5f);
  setGround(0.0f, {{-20.0f, 100.0f},
                   {-10.0f, 100.0f},
                   {-3.0f, 100.0f},
                   {0.0f, 100.0f},
                   {3.0f, 100.0f},
                   {10.0f, 100.0f},
                   {20.0f, 100.0f}});
  const AreaState& st = compute(0.0f);
  EXPECT_NEAR(st.Area[0], k.area, kTol);
  EXPECT_NEAR(st.Area[1], 0.0f, kTol);
}

INSTANTIATE_TEST_SUITE_P(
    Areas, QuantityWindowTest,
    ::testing::Values(WindowCase{"WholeWidth", "0", "100", "B", 26.0f},
                      WindowCase{"UpToThreeCountsTheStripEndingAtThree", "0", "3", "B", 12.0f},
                      WindowCase{"BelowThreeCountsNone", "0", "2.9", "B", 0.0f},
                      WindowCase{"BeyondThree", "3", "100", "B", 14.0f},
                      WindowCase{"LeftOnly", "0", "100", "L", 13.0f},
                      WindowCase{"RightOnly", "0", "100", "R", 13.0f},
                      WindowCase{"RightUpToThree", "0", "3", "R", 6.0f},
                      WindowCase{"OtherSideLetterCountsNone", "0", "100", "X", 0.0f},
                      WindowCase{"WindowFromFormula", "$SRS_LEFT*2", "$SRS_LEFT*6", "B", 14.0f}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(AreasTest, FillColumnTakesTheFillDepths) {
  setQuantityColumns({{1, "FILL", "0", "100", "B"}, {2, "CUT", "0", "100", "B"}});
  canalAt(0.0f, 100.0f);
  const AreaState& st = compute(0.0f);
  EXPECT_NEAR(st.Area[1], 26.0f, kTol);
}

TEST_F(AreasTest, ColumnNumbersOtherThanOneAndTwoAreReportedOnceAndSkipped) {
  setQuantityColumns({{1, "CUT", "0", "100", "B"},
                      {3, "CUT", "0", "100", "B"},
                      {3, "FILL", "0", "100", "B"},
                      {0, "CUT", "0", "100", "B"}});
  canalAt(0.0f, 100.0f);
  compute(0.0f);
  const AreaState& st = compute(0.0f);
  EXPECT_NEAR(st.Area[0], 26.0f, kTol);
  EXPECT_FLOAT_EQ(st.Area[2], 0.0f);  // the executed-cut slot is not disturbed
  ASSERT_EQ(reporter.errors.size(), 2);
  EXPECT_TRUE(reporter.errors[0].contains(QLatin1String("ColNo 3")) &&
              reporter.errors[1].contains(QLatin1String("ColNo 0")))
      << errorText().toStdString();
}

// More readings than the usual capacities (36 a side, 71 merged rows, 200 table rows) are all
// computed.
TEST_F(AreasTest, DenseSurveyBeyondTheUsualCapacitiesIsComputedWhole) {
  setDesignLevel(0.0f, 98.0f);
  setSlopes(0.0f, 1.5f, 1.5f);
  db::Statement st = c.prepare(QStringLiteral(
      "INSERT INTO Initial (SectionID, Chainage, Offset, Level) VALUES (1, 0, ?, 100)"));
  for (int i = -125; i <= 125; ++i) {
    st.reset();
    st.bindMeasure(1, static_cast<float>(i) * 0.16f).run();
  }
  addQuantityRow(0.0f);
  const AreaState& areas = compute(0.0f);
  EXPECT_EQ(areas.Left.nGround, 126);
  EXPECT_GT(areas.RowCount, 250);
  EXPECT_NEAR(areas.Area[0], 26.0f, 1e-3f);
}

// Executed levels 1.5 m under the ground across the works: the executed cut is counted over the
// design's strips, and up to the design cut where the design cuts less.
TEST_F(AreasTest, ExecutedLevelsGiveExecutedAreasBesideTheDesignOnes) {
  canalAt(0.0f, 100.0f);
  setExecuted(0.0f, {{-10.0f, 98.5f, {}},
                     {-5.0f, 98.5f, {}},
                     {0.0f, {}, 98.5f},
                     {5.0f, 98.5f, {}},
                     {10.0f, 98.5f, {}}});
  session.setUseExecutedLevel(true);
  const AreaState& st = compute(0.0f);
  EXPECT_NEAR(st.Area[0], 26.0f, kTol);
  EXPECT_NEAR(st.Area[2], 2 * (1.5f * 5 + 1.5f * 3), kTol);
  EXPECT_NEAR(st.Area[3] + st.Area[5], 0.0f, kTol);
  EXPECT_NEAR(st.Area[4], 2 * (7.5f + 3.0f), kTol);
  EXPECT_EQ(std::make_pair(st.Left.nExecuted, st.Right.nExecuted), std::make_pair(2, 3));
  EXPECT_FLOAT_EQ(st.Right.Executed[0].Level, 98.5f);  // from Bank, Level being null
  EXPECT_TRUE(reporter.errors.isEmpty());
}

TEST_F(AreasTest, ExecutedLevelsWithoutACentreReadingSplitAtTheCentreLineAndSaySo) {
  canalAt(0.0f, 100.0f);
  setExecuted(0.0f,
              {{-10.0f, 98.5f, {}}, {-5.0f, 98.5f, {}}, {5.0f, 98.5f, {}}, {10.0f, 98.5f, {}}});
  session.setUseExecutedLevel(true);
  const AreaState& st = compute(0.0f);
  EXPECT_EQ(std::make_pair(st.Left.nExecuted, st.Right.nExecuted), std::make_pair(2, 2));
  EXPECT_NEAR(st.Area[2], 24.0f, kTol);
  ASSERT_EQ(reporter.errors.size(), 1);
  EXPECT_TRUE(reporter.errors[0].startsWith(QLatin1String("Chainage 0: ")) &&
              reporter.errors[0].contains(QLatin1String("centre line")))
      << errorText().toStdString();
}

TEST_F(AreasTest, MissingExecutedLevelsAreReportedAndNothingIsComputed) {
  canalAt(0.0f, 100.0f);
  session.setUseExecutedLevel(true);
  const AreaState& st = compute(0.0f);
  EXPECT_EQ(reporter.errors,
            QStringList{QStringLiteral("Chainage not found in executed levels : 0")});
  EXPECT_FLOAT_EQ(st.Area[0], 0.0f);
  EXPECT_FALSE(storedAreas(0.0f).first.has_value());
}

TEST_F(AreasTest, ExecutedLevelsAreLeftOutWhenNotInUse) {
  canalAt(0.0f, 100.0f);
  setExecuted(0.0f, {{0.0f, 98.5f, {}}, {10.0f, 98.5f, {}}});
  session.setUseExecutedLevel(true);
  compute(0.0f);
  session.setUseExecutedLevel(false);
  const AreaState& st = compute(0.0f);
  EXPECT_EQ(st.Right.nExecuted, 0);
  EXPECT_FLOAT_EQ(st.Area[2], 0.0f);
  EXPECT_FLOAT_EQ(st.Table.value(4, engine::kColExecutedLevel), 0.0f);
}

// The area-details table of the crossing cross-section, cell by cell, against its golden file.
TEST_F(AreasTest, AreaDetailsTableMatchesItsGoldenFile) {
  setBedProfile(10.0f);
  setDesignLevel(0.0f, 98.0f);
  setSlopes(0.0f, 1.5f, 2.0f);
  setGround(0.0f, {{-20.0f, 97.0f},
                   {-12.5f, 97.4f},
                   {-4.0f, 98.6f},
                   {0.0f, 99.0f},
                   {6.0f, 98.5f},
                   {10.0f, 97.0f},
                   {20.0f, 96.0f}});
  const AreaState& st = compute(0.0f);
  QString text;
  for (int r = 0; r <= st.RowCount; ++r) {
    QStringList cells;
    for (int col = 0; col <= 18; ++col) cells << st.Table.text(r, col);
    text += cells.join(QLatin1Char('\t')) + QLatin1Char('\n');
  }
  text += QStringLiteral("areas");
  for (int slot = 0; slot < 6; ++slot) text += QLatin1Char('\t') + db::floatText(st.Area[slot]);
  text += QLatin1Char('\n');

  const QString path = QStringLiteral(DELVANE_TEST_DATA "/areas/crossing_table.txt");
  if (qEnvironmentVariableIsSet("DELVANE_UPDATE_GOLDEN")) {
    QFile out(path);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly | QIODevice::Text));
    QTextStream(&out) << text;
  }
  QFile golden(path);
  ASSERT_TRUE(golden.open(QIODevice::ReadOnly | QIODevice::Text)) << path.toStdString();
  EXPECT_EQ(text.toStdString(), QString::fromUtf8(golden.readAll()).toStdString());
}

TEST(LineIntersection, CrossingPointOrNoneForParallelLines) {
  float x = -1, y = -1;
  ASSERT_TRUE(engine::IntersectLines(5, 98, 110, 168, 0, 100, 10, 100, x, y));
  EXPECT_FLOAT_EQ(x, 8.0f);
  EXPECT_FLOAT_EQ(y, 100.0f);
  EXPECT_FALSE(engine::IntersectLines(0, 0, 1, 1, 0, 1, 1, 2, x, y));
}

TEST(ChainageRounding, RoundsToThreeDecimalsWithHalvesToEven) {
  EXPECT_EQ(engine::RoundChainage(1.23456f), 1.235f);
  EXPECT_EQ(engine::RoundChainage(0.0625f), 0.062f);  // an exact half
  EXPECT_EQ(engine::RoundChainage(0.02f), 0.02f);
}

}  // namespace
