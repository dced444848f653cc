#include "engine/designsection.h"

#include "engine/session.h"
#include "tests/engine/areafixture.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

namespace {

using Points = std::vector<std::pair<float, float>>;
// What one GetDesignSection call gave: the counts it returned, each side's points and the
// messages reported so far.
using Outcome = std::tuple<int, int, Points, Points, std::string>;

Points points(const std::vector<engine::DesignPoint>& side) {
  Points out;
  for (const auto& p : side) out.emplace_back(p.Offset, p.Level);
  return out;
}

// Section 1 with a design profile of the test's choosing and BED_WIDTH details rows.
class DesignSectionTest : public testsupport::SessionFixture {
 protected:
  void profile(std::initializer_list<ProfileRow> rows) {
    setProfile(rows);
    session.clearQuantityChainagesMark();
  }

  // The centre point and a left edge at half the bed width in force.
  void bedProfile() { profile({{"C", "0", "$CL"}, {"L", "$BED_WIDTH/2", "$CL"}}); }

  // The bed profile, details of bed 10 from 0 and 20 from 500, and a quantity chainage at 1000.
  void bedFromZeroAndFiveHundred() {
    bedProfile();
    exec(
        "INSERT INTO DesignDetails (SectionID, Chainage, BED_WIDTH) VALUES (1, 0, 10), "
        "(1, 500, 20)");
    exec("INSERT INTO DesignQty (SectionID, Chainage) VALUES (1, 1000)");
  }

  // One details row at 0 and a quantity chainage at 1.
  void oneDetailsRow() {
    exec("INSERT INTO DesignDetails (SectionID, Chainage, BED_WIDTH) VALUES (1, 0, 10)");
    exec("INSERT INTO DesignQty (SectionID, Chainage) VALUES (1, 1)");
  }

  // Runs GetDesignSection at chainage hung from centre level 100; counts start at -7.
  Outcome section(float chainage) {
    int nLeft = -7, nRight = -7;
    lpOff = lpVal = rpOff = rpVal = 0;
    engine::GetDesignSection(session, chainage, 100, lpOff, lpVal, rpOff, rpVal, nLeft, nRight);
    return {nLeft, nRight, points(design().LeftDesignPoints), points(design().RightDesignPoints),
            errorText().toStdString()};
  }

  float leftEdge() { return session.design().LeftDesignPoints[1].Offset; }

  const engine::DesignState& design() { return session.design(); }

  float lpOff = 0, lpVal = 0, rpOff = 0, rpVal = 0;
};

TEST_F(DesignSectionTest, DetailsApplyFromTheirChainageUpToTheNextRow) {
  bedFromZeroAndFiveHundred();
  const float cases[][2] = {{0, 5}, {250, 5}, {499.99f, 5}, {500, 10}, {1000, 10}};
  for (const auto& k : cases) {
    engine::ResetDesignCache(session);
    EXPECT_EQ(section(k[0]), Outcome(2, 1, {{0, 100}, {k[1], 100}}, {{0, 100}}, "")) << k[0];
  }
}

// Without a reset the cache steps forward past the next row but holds on stepping back.
TEST_F(DesignSectionTest, CacheReloadsForwardAndHoldsBackwardUntilReset) {
  bedFromZeroAndFiveHundred();
  section(499.99f);
  EXPECT_FLOAT_EQ(design().NextDetailsChainage, 500);
  section(500);
  EXPECT_FLOAT_EQ(leftEdge(), 10);
  EXPECT_FLOAT_EQ(design().DetailsChainage, 500);
  // The last row holds to one past the last quantity chainage.
  EXPECT_FLOAT_EQ(design().NextDetailsChainage, 1001);
  section(100);
  EXPECT_FLOAT_EQ(leftEdge(), 10);
  engine::ResetDesignCache(session);
  section(100);
  EXPECT_FLOAT_EQ(leftEdge(), 5);
}

TEST_F(DesignSectionTest, FirstRowAppliesBeforeItsChainage) {
  bedProfile();
  exec(
      "INSERT INTO DesignDetails (SectionID, Chainage, BED_WIDTH) VALUES (1, 100, 8), "
      "(1, 300, 12)");
  EXPECT_EQ(section(20), Outcome(2, 1, {{0, 100}, {4, 100}}, {{0, 100}}, ""));
  EXPECT_FLOAT_EQ(design().DetailsChainage, 100);
}

TEST_F(DesignSectionTest, NoDetailsLeavesPointsAndCountsUntouched) {
  bedProfile();
  oneDetailsRow();
  section(0.5f);
  exec("DELETE FROM DesignDetails");
  engine::ResetDesignCache(session);
  EXPECT_EQ(section(20), Outcome(-7, -7, {{0, 100}, {5, 100}}, {{0, 100}},
                                 "Chainage : 20>no design details or profile values entered."));
  EXPECT_EQ(design().nLeft, 2);
}

TEST_F(DesignSectionTest, LastRowWithoutQuantityChainagesIsReported) {
  bedProfile();
  exec("INSERT INTO DesignDetails (SectionID, Chainage, BED_WIDTH) VALUES (1, 0, 10)");
  const std::string error = "Chainage : 0.25>Unknown Error encountered. This is inconceivable";
  EXPECT_EQ(std::get<0>(section(0.25f)), -7);
  EXPECT_EQ(errorText().toStdString(), error);
  // Nothing was loaded, so the next call tries again.
  exec("INSERT INTO DesignQty (SectionID, Chainage) VALUES (1, 1)");
  EXPECT_EQ(section(0.25f), Outcome(2, 1, {{0, 100}, {5, 100}}, {{0, 100}}, error));
}

// The centre point starts both sides; each row's formulas see the previous point of its side,
// and the last points come back through the arguments.
TEST_F(DesignSectionTest, PointsFollowTheProfileRowsOfTheirSide) {
  profile({{"C", "99", "$CL-1"},
           {"L", "3", "$LP_Val+1"},
           {"L", "7", "$CL+2"},
           {"R", "$RP_Off+1", "$CL+$RP_Off"},
           {"R", "$RP_Off+1", "$CL+$RP_Off"}});
  oneDetailsRow();
  EXPECT_EQ(section(0.5f),
            Outcome(3, 3, {{0, 99}, {3, 100}, {7, 102}}, {{0, 99}, {1, 100}, {2, 101}}, ""));
  EXPECT_EQ((Points{{lpOff, lpVal}, {rpOff, rpVal}}), (Points{{7, 102}, {2, 101}}));
}

TEST_F(DesignSectionTest, UnknownRowIsReportedAndSkipped) {
  profile({{"C", "0", "$CL"}, {"X", "1", "1"}, {"L", "3", "$CL"}});
  oneDetailsRow();
  EXPECT_EQ(section(0.125f),
            Outcome(2, 1, {{0, 100}, {3, 100}}, {{0, 100}},
                    "Chainage : 0.125>Error encountered in design formula. Unrecognized value."));
}

TEST_F(DesignSectionTest, SidesLongerThanTwentyOnePointsAreKeptWhole) {
  exec("DELETE FROM DesignExp");
  for (int i = 0; i < 25; ++i)
    c.exec(QStringLiteral("INSERT INTO DesignExp (DesignID, Serial, LCR, Offset, Value) VALUES "
                          "(1, %1, 'L', '%1', '$CL')")
               .arg(i + 1));
  ASSERT_FALSE(session.LoadDesignProfile());
  oneDetailsRow();
  EXPECT_EQ(std::get<0>(section(0)), 25);
  ASSERT_EQ(design().LeftDesignPoints.size(), 25u);
  EXPECT_FLOAT_EQ(design().LeftDesignPoints[24].Offset, 25);
}

TEST_F(DesignSectionTest, DetailsColumnsAreTheOnlyVariablesOfTheQuantityColumns) {
  bedProfile();
  exec("DELETE FROM QtyDefine");
  exec(
      "INSERT INTO QtyDefine (DesignID, ColNo, QType, StartOffset, EndOffset, LRB) VALUES "
      "(1, 1, 'CUT', '$BED_WIDTH/2', '$BED_WIDTH*3', 'L'), (2, 5, 'CUT', '0', '1', 'B'), "
      "(1, 2, 'FILL', '1', '100', 'B')");
  oneDetailsRow();
  section(0);
  using Row = std::tuple<int, std::string, float, float, std::string>;
  std::vector<Row> rows;
  for (const engine::QtyDefineRow& r : design().QtyDefine)
    rows.emplace_back(r.ColNo, r.QType.toStdString(), r.StartOffset, r.EndOffset,
                      r.LRB.toStdString());
  EXPECT_EQ(rows, (std::vector<Row>{{1, "CUT", 5, 30, "L"}, {2, "FILL", 1, 100, "B"}}));
}

// A stored formula the evaluator refuses counts as 0 and is named once per run, by its table,
// row and column, whichever chainages use it.
TEST_F(DesignSectionTest, AFormulaBeyondTheBoundsIsNamedOncePerRun) {
  const QByteArray huge(1 << 20, '1');
  profile({{"C", "0", "$CL"}, {"L", huge.constData(), "$CL"}});
  exec(
      "UPDATE QtyDefine SET EndOffset='(()())(()())(()())(()())(()())(()())(()())(()())(()())"
      "(()())(()())(()())(()())(()())(()())(()())(()())(()())(1)' WHERE ColNo=2");
  oneDetailsRow();
  engine::ResetDesignCache(session);
  section(0);
  const Outcome again = section(0.5f);
  EXPECT_EQ(std::get<2>(again), (Points{{0, 100}, {0, 100}}));
  EXPECT_EQ(reporter.errors,
            (QStringList{QStringLiteral("Chainage : 0>The EndOffset formula of QtyDefine row ColNo "
                                        "2 grows beyond %1 characters while it is worked out; it "
                                        "counts as 0.")
                             .arg(engine::kMaxWorkingTextLength),
                         QStringLiteral("Chainage : 0>The Offset formula of DesignExp row Serial 2 "
                                        "is %1 characters long, more than the %2 a formula may "
                                        "have; it counts as 0.")
                             .arg(huge.size())
                             .arg(engine::kMaxFormulaLength)}));
  engine::ResetDesignCache(session);
  section(0);
  EXPECT_EQ(reporter.errors.size(), 4);
}

TEST_F(DesignSectionTest, ResetSyncsQuantityChainagesOnlyWhenMarked) {
  exec(
      "INSERT INTO Initial (SectionID, Chainage, Offset, [Level]) VALUES (1, 0, 0, 100), "
      "(1, 0.02, -5, 100), (1, 0.02, 0, 100), (2, 0.5, 0, 100)");
  engine::ResetDesignCache(session);
  EXPECT_EQ(testsupport::rowCount(c, QStringLiteral("DesignQty")), 0);
  session.markQuantityChainagesOutOfDate();
  engine::ResetDesignCache(session);
  EXPECT_EQ(testsupport::rowCount(c, QStringLiteral("DesignQty")), 2);
  EXPECT_FALSE(session.quantityChainagesOutOfDate());
  EXPECT_TRUE(session.design().DetailsReload);
  EXPECT_TRUE(session.levels().Reload);
}

}  // namespace
