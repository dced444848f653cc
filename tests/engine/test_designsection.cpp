#include "engine/designsection.h"

#include "db/connection.h"
#include "engine/session.h"
#include "tests/testsupport.h"

#include <gtest/gtest.h>

using testsupport::TempProject;

namespace {

struct ProfileRow {
  const char* lcr;
  const char* offset;
  const char* value;
};

// A project with section 1 current and a design profile of the test's choosing.
class DesignSectionTest : public ::testing::Test {
 protected:
  DesignSectionTest() : c(project.create()), session(c, reporter) {}

  void setProfile(std::initializer_list<ProfileRow> rows) {
    c.exec(QStringLiteral("DELETE FROM DesignExp"));
    db::Statement st = c.prepare(
        QStringLiteral("INSERT INTO DesignExp (DesignID, Serial, LCR, Offset, Value) VALUES "
                       "(1, ?, ?, ?, ?)"));
    int serial = 1;
    for (const ProfileRow& row : rows) {
      st.reset();
      st.bindKey(1, serial++)
          .bindText(2, QString::fromLatin1(row.lcr))
          .bindText(3, QString::fromLatin1(row.offset))
          .bindText(4, QString::fromLatin1(row.value))
          .run();
    }
    ASSERT_FALSE(session.LoadDesignProfile());
    session.setSection(1);
    session.clearQuantityChainagesMark();
  }

  void addDetails(float chainage, float bedWidth) {
    c.prepare(QStringLiteral(
                  "INSERT INTO DesignDetails (SectionID, Chainage, BED_WIDTH) VALUES (1, ?, ?)"))
        .bindMeasure(1, chainage)
        .bindMeasure(2, bedWidth)
        .run();
  }

  void addQuantityChainage(float chainage) {
    c.prepare(QStringLiteral("INSERT INTO DesignQty (SectionID, Chainage) VALUES (1, ?)"))
        .bindMeasure(1, chainage)
        .run();
  }

  // Runs GetDesignSection at chainage hung from centre level 100; returns nLeft.
  int section(float chainage, float centreLevel = 100) {
    float lpOff = 0, lpVal = 0, rpOff = 0, rpVal = 0;
    nLeft = -7;
    nRight = -7;
    engine::GetDesignSection(session, chainage, centreLevel, lpOff, lpVal, rpOff, rpVal, nLeft,
                             nRight);
    return nLeft;
  }

  const engine::DesignState& design() { return session.design(); }

  TempProject project;
  db::Connection& c;
  engine::RecordingReporter reporter;
  engine::EngineSession session;
  int nLeft = 0;
  int nRight = 0;
};

// The left edge stands at half the bed width in force.
const std::initializer_list<ProfileRow> kBedProfile = {{"C", "0", "$CL"},
                                                       {"L", "$BED_WIDTH/2", "$CL"}};

TEST_F(DesignSectionTest, DetailsApplyFromTheirChainageUpToTheNextRow) {
  setProfile(kBedProfile);
  addDetails(0, 10);
  addDetails(500, 20);
  addQuantityChainage(1000);
  struct Case {
    float chainage;
    float edge;
  } cases[] = {{0, 5}, {250, 5}, {499.99f, 5}, {500, 10}, {1000, 10}};
  for (const Case& k : cases) {
    engine::ResetDesignCache(session);
    ASSERT_EQ(section(k.chainage), 2) << k.chainage;
    EXPECT_FLOAT_EQ(design().LeftDesignPoints[1].Offset, k.edge) << k.chainage;
  }
  EXPECT_TRUE(reporter.errors.isEmpty()) << reporter.errors.join(QLatin1Char('\n')).toStdString();
}

TEST_F(DesignSectionTest, SteppingForwardPastTheNextRowReloadsWithoutReset) {
  setProfile(kBedProfile);
  addDetails(0, 10);
  addDetails(500, 20);
  addQuantityChainage(1000);
  section(499.99f);
  EXPECT_FLOAT_EQ(design().LeftDesignPoints[1].Offset, 5);
  EXPECT_FLOAT_EQ(design().NextDetailsChainage, 500);
  section(500);
  EXPECT_FLOAT_EQ(design().LeftDesignPoints[1].Offset, 10);
  EXPECT_FLOAT_EQ(design().DetailsChainage, 500);
  // The last row holds to one past the last quantity chainage.
  EXPECT_FLOAT_EQ(design().NextDetailsChainage, 1001);
}

TEST_F(DesignSectionTest, FirstRowAppliesBeforeItsChainage) {
  setProfile(kBedProfile);
  addDetails(100, 8);
  addDetails(300, 12);
  section(20);
  EXPECT_FLOAT_EQ(design().LeftDesignPoints[1].Offset, 4);
  EXPECT_FLOAT_EQ(design().DetailsChainage, 100);
  EXPECT_TRUE(reporter.errors.isEmpty());
}

TEST_F(DesignSectionTest, SteppingBackwardsWithoutResetKeepsTheRowInForce) {
  setProfile(kBedProfile);
  addDetails(0, 10);
  addDetails(500, 20);
  addQuantityChainage(1000);
  section(600);
  EXPECT_FLOAT_EQ(design().LeftDesignPoints[1].Offset, 10);
  section(100);
  EXPECT_FLOAT_EQ(design().LeftDesignPoints[1].Offset, 10);
  engine::ResetDesignCache(session);
  section(100);
  EXPECT_FLOAT_EQ(design().LeftDesignPoints[1].Offset, 5);
}

TEST_F(DesignSectionTest, NoDetailsLeavesPointsAndCountsUntouched) {
  setProfile(kBedProfile);
  addDetails(0, 10);
  addQuantityChainage(10);
  section(5);
  ASSERT_EQ(design().LeftDesignPoints.size(), 2u);
  c.exec(QStringLiteral("DELETE FROM DesignDetails"));
  engine::ResetDesignCache(session);
  section(20);
  EXPECT_EQ(nLeft, -7);
  EXPECT_EQ(nRight, -7);
  EXPECT_EQ(design().LeftDesignPoints.size(), 2u);
  EXPECT_EQ(design().nLeft, 2);
  ASSERT_EQ(reporter.errors.size(), 1);
  EXPECT_EQ(reporter.errors[0],
            QStringLiteral("Chainage : 20>no design details or profile values entered."));
}

TEST_F(DesignSectionTest, LastRowWithoutQuantityChainagesIsReported) {
  setProfile(kBedProfile);
  addDetails(0, 10);
  section(0.25f);
  EXPECT_EQ(nLeft, -7);
  ASSERT_EQ(reporter.errors.size(), 1);
  EXPECT_EQ(reporter.errors[0],
            QStringLiteral("Chainage : 0.25>Unknown Error encountered. This is inconceivable"));
  // Nothing was loaded, so the next call tries again.
  addQuantityChainage(1);
  section(0.25f);
  EXPECT_EQ(nLeft, 2);
  EXPECT_EQ(reporter.errors.size(), 1);
}

TEST_F(DesignSectionTest, CentrePointStandsOnBothSidesInProfileOrder) {
  setProfile({{"C", "99", "$CL-1"}, {"L", "3", "$CL"}, {"L", "7", "$CL+2"}, {"R", "4", "$CL+1"}});
  addDetails(0, 10);
  addQuantityChainage(1);
  section(0.5f);
  ASSERT_EQ(nLeft, 3);
  ASSERT_EQ(nRight, 2);
  ASSERT_EQ(design().LeftDesignPoints.size(), 3u);
  ASSERT_EQ(design().RightDesignPoints.size(), 2u);
  const float left[][2] = {{0, 99}, {3, 100}, {7, 102}};
  for (int i = 0; i < 3; ++i) {
    EXPECT_FLOAT_EQ(design().LeftDesignPoints[i].Offset, left[i][0]) << i;
    EXPECT_FLOAT_EQ(design().LeftDesignPoints[i].Level, left[i][1]) << i;
  }
  EXPECT_FLOAT_EQ(design().RightDesignPoints[0].Offset, 0);
  EXPECT_FLOAT_EQ(design().RightDesignPoints[0].Level, 99);
  EXPECT_FLOAT_EQ(design().RightDesignPoints[1].Offset, 4);
  EXPECT_FLOAT_EQ(design().RightDesignPoints[1].Level, 101);
}

TEST_F(DesignSectionTest, LastPointsComeBackThroughTheArguments) {
  setProfile({{"C", "0", "$CL"}, {"L", "3", "$CL+1"}, {"R", "4", "$CL+2"}, {"R", "6", "$CL+3"}});
  addDetails(0, 10);
  addQuantityChainage(1);
  float lpOff = 0, lpVal = 0, rpOff = 0, rpVal = 0;
  int left = 0, right = 0;
  engine::GetDesignSection(session, 0, 50, lpOff, lpVal, rpOff, rpVal, left, right);
  EXPECT_FLOAT_EQ(lpOff, 3);
  EXPECT_FLOAT_EQ(lpVal, 51);
  EXPECT_FLOAT_EQ(rpOff, 6);
  EXPECT_FLOAT_EQ(rpVal, 53);
}

TEST_F(DesignSectionTest, ValueFormulaSeesThePreviousPointOfItsSide) {
  setProfile({{"C", "0", "$CL"},
              {"L", "2", "$LP_Val-0.5"},
              {"L", "4", "$LP_Val-0.5"},
              {"L", "6", "$LP_Val-0.5"},
              {"R", "$RP_Off+1", "$CL+$RP_Off"},
              {"R", "$RP_Off+1", "$CL+$RP_Off"}});
  addDetails(0, 10);
  addQuantityChainage(1);
  section(0);
  ASSERT_EQ(nLeft, 4);
  for (int i = 1; i < 4; ++i)
    EXPECT_FLOAT_EQ(design().LeftDesignPoints[i].Level, 100.0f - 0.5f * i) << i;
  // The Value of a right point uses the offset of the point before it.
  ASSERT_EQ(nRight, 3);
  EXPECT_FLOAT_EQ(design().RightDesignPoints[1].Offset, 1);
  EXPECT_FLOAT_EQ(design().RightDesignPoints[1].Level, 100);
  EXPECT_FLOAT_EQ(design().RightDesignPoints[2].Offset, 2);
  EXPECT_FLOAT_EQ(design().RightDesignPoints[2].Level, 101);
}

TEST_F(DesignSectionTest, UnknownRowIsReportedAndSkipped) {
  setProfile({{"C", "0", "$CL"}, {"X", "1", "1"}, {"L", "3", "$CL"}});
  addDetails(0, 10);
  addQuantityChainage(1);
  section(0.125f);
  EXPECT_EQ(nLeft, 2);
  EXPECT_EQ(nRight, 1);
  ASSERT_EQ(reporter.errors.size(), 1);
  EXPECT_EQ(reporter.errors[0],
            QStringLiteral("Chainage : 0.125>Error encountered in design formula. Unrecognized "
                           "value."));
}

TEST_F(DesignSectionTest, SidesLongerThanTwentyOnePointsAreKeptWhole) {
  c.exec(QStringLiteral("DELETE FROM DesignExp"));
  for (int i = 0; i < 25; ++i)
    c.prepare(QStringLiteral("INSERT INTO DesignExp (DesignID, Serial, LCR, Offset, Value) VALUES "
                             "(1, ?, 'L', ?, '$CL')"))
        .bindKey(1, i + 1)
        .bindText(2, QString::number(i + 1))
        .run();
  ASSERT_FALSE(session.LoadDesignProfile());
  session.setSection(1);
  session.clearQuantityChainagesMark();
  addDetails(0, 10);
  addQuantityChainage(1);
  section(0);
  EXPECT_EQ(nLeft, 25);
  ASSERT_EQ(design().LeftDesignPoints.size(), 25u);
  EXPECT_FLOAT_EQ(design().LeftDesignPoints[24].Offset, 25);
}

TEST_F(DesignSectionTest, DetailsColumnsAreTheOnlyVariablesOfTheQuantityColumns) {
  setProfile(kBedProfile);
  c.exec(QStringLiteral("DELETE FROM QtyDefine"));
  c.exec(QStringLiteral(
      "INSERT INTO QtyDefine (DesignID, ColNo, QType, StartOffset, EndOffset, LRB) VALUES "
      "(1, 1, 'CUT', '$BED_WIDTH/2', '$BED_WIDTH*3', 'L'), (2, 5, 'CUT', '0', '1', 'B'), "
      "(1, 2, 'FILL', '1', '100', 'B')"));
  addDetails(0, 10);
  addQuantityChainage(1);
  section(0);
  ASSERT_EQ(design().QtyDefine.size(), 2u);
  const engine::QtyDefineRow& cut = design().QtyDefine[0];
  EXPECT_EQ(cut.ColNo, 1);
  EXPECT_EQ(cut.QType, QStringLiteral("CUT"));
  EXPECT_FLOAT_EQ(cut.StartOffset, 5);
  EXPECT_FLOAT_EQ(cut.EndOffset, 30);
  EXPECT_EQ(cut.LRB, QStringLiteral("L"));
  EXPECT_EQ(design().QtyDefine[1].ColNo, 2);
  EXPECT_FLOAT_EQ(design().QtyDefine[1].EndOffset, 100);
}

TEST_F(DesignSectionTest, ResetSyncsQuantityChainagesOnlyWhenMarked) {
  setProfile(kBedProfile);
  c.exec(
      QStringLiteral("INSERT INTO Initial (SectionID, Chainage, Offset, [Level]) VALUES "
                     "(1, 0, 0, 100), (1, 0.02, 0, 100)"));
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
