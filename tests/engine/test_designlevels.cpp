#include "engine/designlevels.h"

#include "db/connection.h"
#include "engine/designsection.h"
#include "engine/session.h"
#include "tests/testsupport.h"

#include <gtest/gtest.h>

#include <optional>

using testsupport::rowCount;
using testsupport::TempProject;

namespace {

class DesignLevelsTest : public ::testing::Test {
 protected:
  DesignLevelsTest() : c(project.create()), session(c, reporter) {
    session.setSection(1);
    session.clearQuantityChainagesMark();
  }

  void addLevel(float chainage, std::optional<float> level, std::int32_t section = 1) {
    c.prepare(
         QStringLiteral("INSERT INTO DesignLevels (SectionID, Chainage, [Level]) VALUES (?, ?, "
                        "?)"))
        .bindKey(1, section)
        .bindMeasure(2, chainage)
        .bindMeasure(3, level)
        .run();
  }

  float levelAt(float chainage, bool quiet = false) {
    return engine::DesignLevelAt(session, chainage, interpolated, quiet);
  }

  TempProject project;
  db::Connection& c;
  engine::RecordingReporter reporter;
  engine::EngineSession session;
  bool interpolated = false;
};

TEST_F(DesignLevelsTest, LevelsBetweenRowsAreInterpolatedAndTheLastIsHeldFlat) {
  addLevel(0, 100);
  addLevel(200, 102);
  addLevel(100, 90, 2);  // another section's row stays out of it
  struct Case {
    float chainage;
    float level;
    bool interpolated;
  } cases[] = {{50, 100.5f, true},
               {0, 100, false},
               {200, 102, false},
               {250, 102, true},
               {199, 101.99f, true}};
  for (const Case& k : cases) {
    engine::ResetDesignCache(session);
    EXPECT_FLOAT_EQ(levelAt(k.chainage), k.level) << k.chainage;
    EXPECT_EQ(interpolated, k.interpolated) << k.chainage;
  }
  EXPECT_TRUE(reporter.errors.isEmpty()) << reporter.errors.join(QLatin1Char('\n')).toStdString();
}

TEST_F(DesignLevelsTest, StoredChainagesOfTenthsAreFoundExactly) {
  addLevel(0.1f, 150);
  addLevel(0.3f, 152);
  EXPECT_FLOAT_EQ(levelAt(0.1f), 150);
  EXPECT_FALSE(interpolated);
  EXPECT_FLOAT_EQ(levelAt(0.2f), 151);
  EXPECT_TRUE(interpolated);
}

TEST_F(DesignLevelsTest, BeforeTheFirstLevelIsInsufficientUnlessQuiet) {
  addLevel(100, 150);
  addLevel(300, 152);
  EXPECT_EQ(levelAt(20, true), 0);
  EXPECT_TRUE(reporter.errors.isEmpty());
  EXPECT_EQ(levelAt(20), 0);
  ASSERT_EQ(reporter.errors.size(), 1);
  EXPECT_EQ(
      reporter.errors[0],
      QStringLiteral("Chainage : 20>Insufficient levels in design. Lower Design level not found"));
}

TEST_F(DesignLevelsTest, NullStoredLevelIsReportedEvenWhenQuiet) {
  addLevel(0, 100);
  addLevel(0.05f, std::nullopt);
  addLevel(1, 102);
  EXPECT_EQ(levelAt(0.05f, true), 0);
  EXPECT_FALSE(interpolated);
  ASSERT_EQ(reporter.errors.size(), 1);
  EXPECT_EQ(reporter.errors[0],
            QStringLiteral("Chainage : 0.05>Design level cannot be a NUL value."));
}

TEST_F(DesignLevelsTest, NullNeighbourIsAnUnknownErrorUnlessQuiet) {
  addLevel(0, std::nullopt);
  addLevel(1, 102);
  addLevel(2, std::nullopt);
  EXPECT_EQ(levelAt(0.5f, true), 0);
  EXPECT_TRUE(reporter.errors.isEmpty());
  EXPECT_EQ(levelAt(0.5f), 0);
  EXPECT_EQ(levelAt(1.5f), 0);
  const QStringList expected = {
      QStringLiteral("Chainage : 0.5>Unknown Error encountered. This is inconceivable"),
      QStringLiteral("Chainage : 1.5>Unknown Error encountered. This is inconceivable")};
  EXPECT_EQ(reporter.errors, expected);
}

TEST_F(DesignLevelsTest, RisingChainagesWithinTheIntervalComeFromTheCache) {
  addLevel(0, 100);
  addLevel(200, 102);
  EXPECT_FLOAT_EQ(levelAt(50), 100.5f);
  // Without the rows, only the cache can still answer.
  c.exec(QStringLiteral("DELETE FROM DesignLevels"));
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
  addLevel(0, 0);
  addLevel(200, 102);
  EXPECT_FLOAT_EQ(levelAt(50), 25.5f);
  c.exec(QStringLiteral("UPDATE DesignLevels SET [Level]=110 WHERE Chainage=200"));
  EXPECT_FLOAT_EQ(levelAt(60), 33);
}

TEST_F(DesignLevelsTest, HeldFlatLevelDoesNotClearTheReloadFlag) {
  addLevel(0, 100);
  addLevel(200, 102);
  levelAt(250);
  EXPECT_TRUE(session.levels().Reload);
  levelAt(50);
  EXPECT_FALSE(session.levels().Reload);
}

// DesignQty chainages of section 1, in order.
QList<float> quantityChainages(db::Connection& c, std::int32_t section = 1) {
  db::Statement st = c.prepare(
      QStringLiteral("SELECT Chainage FROM DesignQty WHERE SectionID=? ORDER BY Chainage"));
  st.bindKey(1, section);
  QList<float> out;
  while (st.step()) out.append(st.measure(0));
  return out;
}

TEST_F(DesignLevelsTest, SyncOnEmptyQuantitiesInsertsOneRowPerSurveyedChainage) {
  c.exec(
      QStringLiteral("INSERT INTO Initial (SectionID, Chainage, Offset, [Level]) VALUES "
                     "(1, 0.02, -5, 100), (1, 0.02, 0, 100), (1, 0, 0, 100), (1, 0.04, 0, 100), "
                     "(2, 0.5, 0, 100)"));
  c.exec(QStringLiteral("INSERT INTO DesignQty (SectionID, Chainage) VALUES (2, 9)"));
  engine::SyncQuantityChainages(session);
  EXPECT_EQ(quantityChainages(c), (QList<float>{0, 0.02f, 0.04f}));
  EXPECT_EQ(quantityChainages(c, 2), QList<float>{9});
}

TEST_F(DesignLevelsTest, SyncKeepsMatchingRowsAddsNewOnesAndDropsOldOnes) {
  c.exec(
      QStringLiteral("INSERT INTO Initial (SectionID, Chainage, Offset, [Level]) VALUES "
                     "(1, 0.1, 0, 100), (1, 0.3, 0, 100)"));
  c.exec(
      QStringLiteral("INSERT INTO DesignQty (SectionID, Chainage, AreaCut, AreaFill) VALUES "
                     "(1, 0.1, 4.5, 1.5), (1, 0.2, 3, 3)"));
  engine::SyncQuantityChainages(session);
  EXPECT_EQ(quantityChainages(c), (QList<float>{0.1f, 0.3f}));
  EXPECT_EQ(rowCount(c, QStringLiteral("DesignQty"), QStringLiteral("AreaCut = 4.5")), 1);
  EXPECT_EQ(rowCount(c, QStringLiteral("DesignQty"), QStringLiteral("AreaCut IS NULL")), 1);
  engine::SyncQuantityChainages(session);
  EXPECT_EQ(rowCount(c, QStringLiteral("DesignQty")), 2);
}

TEST_F(DesignLevelsTest, SyncWithoutSurveyDeletesNothing) {
  c.exec(QStringLiteral("INSERT INTO DesignQty (SectionID, Chainage) VALUES (1, 0.1), (1, 0.2)"));
  engine::SyncQuantityChainages(session);
  EXPECT_EQ(rowCount(c, QStringLiteral("DesignQty")), 2);
}

}  // namespace
