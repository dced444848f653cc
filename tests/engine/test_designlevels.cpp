#include "engine/designlevels.h"

#include "engine/designsection.h"
#include "engine/session.h"
#include "tests/engine/areafixture.h"

#include <gtest/gtest.h>

using testsupport::rowCount;

namespace {

class DesignLevelsTest : public testsupport::SessionFixture {
 protected:
  float levelAt(float chainage, bool quiet = false) {
    return engine::DesignLevelAt(session, chainage, interpolated, quiet);
  }

  // DesignQty chainages of a section, in order.
  QList<float> quantityChainages(std::int32_t section = 1) {
    db::Statement st = c.prepare(
        QStringLiteral("SELECT Chainage FROM DesignQty WHERE SectionID=? ORDER BY Chainage"));
    st.bindKey(1, section);
    QList<float> out;
    while (st.step()) out.append(st.measure(0));
    return out;
  }

  bool interpolated = false;
};

TEST_F(DesignLevelsTest, LevelsBetweenRowsAreInterpolatedAndTheLastIsHeldFlat) {
  exec(
      "INSERT INTO DesignLevels (SectionID, Chainage, [Level]) VALUES (1, 0, 100), "
      "(1, 200, 102), (2, 100, 90)");  // another section's row stays out of it
  const struct {
    float chainage, level;
    bool interpolated;
  } cases[] = {{50, 100.5f, true},
               {0, 100, false},
               {200, 102, false},
               {250, 102, true},
               {199, 101.99f, true}};
  for (const auto& k : cases) {
    engine::ResetDesignCache(session);
    EXPECT_FLOAT_EQ(levelAt(k.chainage), k.level) << k.chainage;
    EXPECT_EQ(interpolated, k.interpolated) << k.chainage;
  }
  EXPECT_TRUE(reporter.errors.isEmpty()) << errorText().toStdString();
}

TEST_F(DesignLevelsTest, StoredChainagesOfTenthsAreFoundExactly) {
  exec(
      "INSERT INTO DesignLevels (SectionID, Chainage, [Level]) VALUES (1, 0.1, 150), "
      "(1, 0.3, 152)");
  EXPECT_FLOAT_EQ(levelAt(0.1f), 150);
  EXPECT_FALSE(interpolated);
  EXPECT_FLOAT_EQ(levelAt(0.2f), 151);
}

TEST_F(DesignLevelsTest, MissingOrNullLevelsAreReportedUnlessQuiet) {
  exec(
      "INSERT INTO DesignLevels (SectionID, Chainage, [Level]) VALUES (1, 100, NULL), "
      "(1, 101, 102), (1, 101.05, NULL), (1, 102, 102), (1, 103, NULL)");
  EXPECT_EQ(levelAt(20, true), 0);
  EXPECT_EQ(levelAt(100.5f, true), 0);
  EXPECT_TRUE(reporter.errors.isEmpty());
  // A null stored level is reported even when quiet.
  EXPECT_EQ(levelAt(101.05f, true), 0);
  EXPECT_FALSE(interpolated);
  EXPECT_EQ(levelAt(20), 0);
  EXPECT_EQ(levelAt(100.5f), 0);
  EXPECT_EQ(levelAt(102.5f), 0);
  EXPECT_EQ(
      reporter.errors,
      (QStringList{
          QStringLiteral("Chainage : 101.05>Design level cannot be a NUL value."),
          QStringLiteral("Chainage : 20>Insufficient levels in design. Lower Design level "
                         "not found"),
          QStringLiteral("Chainage : 100.5>Unknown Error encountered. This is inconceivable"),
          QStringLiteral("Chainage : 102.5>Unknown Error encountered. This is inconceivable")}));
}

TEST_F(DesignLevelsTest, RisingChainagesWithinTheIntervalComeFromTheCache) {
  exec(
      "INSERT INTO DesignLevels (SectionID, Chainage, [Level]) VALUES (1, 0, 100), "
      "(1, 200, 102)");
  levelAt(250);
  EXPECT_TRUE(session.levels().Reload) << "a level held flat does not clear the reload flag";
  EXPECT_FLOAT_EQ(levelAt(50), 100.5f);
  EXPECT_FALSE(session.levels().Reload);
  // Without the rows, only the cache can still answer.
  exec("DELETE FROM DesignLevels");
  EXPECT_FLOAT_EQ(levelAt(60), 100.6f);
  EXPECT_TRUE(interpolated);
  EXPECT_FLOAT_EQ(levelAt(200), 102);
  EXPECT_FALSE(interpolated);
  EXPECT_TRUE(reporter.errors.isEmpty());
  // Raising the reload flag sends the next call to the table.
  engine::ResetDesignCache(session);
  EXPECT_EQ(levelAt(60), 0);
  EXPECT_EQ(reporter.errors.size(), 1);
}

TEST_F(DesignLevelsTest, ZeroLevelDisablesTheCacheForItsInterval) {
  exec("INSERT INTO DesignLevels (SectionID, Chainage, [Level]) VALUES (1, 0, 0), (1, 200, 102)");
  EXPECT_FLOAT_EQ(levelAt(50), 25.5f);
  exec("UPDATE DesignLevels SET [Level]=110 WHERE Chainage=200");
  EXPECT_FLOAT_EQ(levelAt(60), 33);
}

TEST_F(DesignLevelsTest, SyncKeepsMatchingRowsAddsNewOnesAndDropsOldOnes) {
  exec(
      "INSERT INTO Initial (SectionID, Chainage, Offset, [Level]) VALUES "
      "(1, 0.10000000000000002, 0, 100), (1, 0.3, -5, 100), (1, 0.30000000000000004, 0, 100), "
      "(1, 0, 0, 100), (2, 0.5, 0, 100)");
  // Chainages another program wrote a bit off match those of the same single.
  exec(
      "INSERT INTO DesignQty (SectionID, Chainage, AreaCut, AreaFill) VALUES "
      "(1, 0.1, 4.5, 1.5), (1, 0.2, 3, 3), (2, 9, NULL, NULL)");
  engine::SyncQuantityChainages(session);
  EXPECT_EQ(quantityChainages(), (QList<float>{0, 0.1f, 0.3f}));
  EXPECT_EQ(quantityChainages(2), QList<float>{9});
  EXPECT_EQ(rowCount(c, QStringLiteral("DesignQty"), QStringLiteral("AreaCut = 4.5")), 1);
  EXPECT_EQ(rowCount(c, QStringLiteral("DesignQty"), QStringLiteral("AreaCut IS NULL")), 3);
  engine::SyncQuantityChainages(session);
  EXPECT_EQ(rowCount(c, QStringLiteral("DesignQty")), 4);
}

TEST_F(DesignLevelsTest, SyncWithoutSurveyDeletesNothing) {
  exec("INSERT INTO DesignQty (SectionID, Chainage) VALUES (1, 0.1), (1, 0.2)");
  engine::SyncQuantityChainages(session);
  EXPECT_EQ(rowCount(c, QStringLiteral("DesignQty")), 2);
}

}  // namespace
