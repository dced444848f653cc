#include "engine/session.h"
#include "tests/testsupport.h"

#include <gtest/gtest.h>

using testsupport::TempProject;

namespace {

TEST(LoadDesignProfile, RowsOfAnotherDesignOnlyCountAsNone) {
  TempProject project;
  db::Connection& c = project.create();
  c.exec(QStringLiteral("UPDATE DesignExp SET DesignID=2"));
  engine::RecordingReporter reporter;
  engine::EngineSession session(c, reporter);
  EXPECT_TRUE(session.LoadDesignProfile());
  ASSERT_EQ(reporter.messages.size(), 1);
  EXPECT_EQ(reporter.messages[0],
            QStringLiteral("No design profile found in the database. DB not correctly installed."));
}

TEST(LoadDesignProfile, RowsAreHeldInSerialOrder) {
  TempProject project;
  db::Connection& c = project.create();
  c.exec(QStringLiteral("DELETE FROM DesignExp"));
  c.exec(
      QStringLiteral("INSERT INTO DesignExp (DesignID, Serial, LCR, Offset, Value) VALUES "
                     "(1, 3, 'R', 'o3', 'v3'), (1, 1, 'C', 'o1', 'v1'), (1, 2, 'L', 'o2', 'v2')"));
  engine::RecordingReporter reporter;
  engine::EngineSession session(c, reporter);
  ASSERT_FALSE(session.LoadDesignProfile());
  ASSERT_EQ(session.designProfile().size(), 3u);
  EXPECT_EQ(session.designProfile()[0].LCR, QStringLiteral("C"));
  EXPECT_EQ(session.designProfile()[1].Offset, QStringLiteral("o2"));
  EXPECT_EQ(session.designProfile()[2].Value, QStringLiteral("v3"));
  EXPECT_TRUE(reporter.messages.isEmpty());
}

TEST(LoadDesignProfile, MissingTableSaysTheDatabaseIsCorrupt) {
  TempProject project;
  db::Connection& c = project.create();
  c.exec(QStringLiteral("DROP TABLE DesignExp"));
  engine::RecordingReporter reporter;
  engine::EngineSession session(c, reporter);
  EXPECT_TRUE(session.LoadDesignProfile());
  ASSERT_EQ(reporter.messages.size(), 1);
  EXPECT_EQ(reporter.messages[0],
            QStringLiteral("LoadDesignProfile: Table not found! Database is probably corrupt."));
}

TEST(LoadDesignProfile, SecondDatabaseReplacesTheFirstProfile) {
  TempProject project;
  db::Connection& first = project.create(false, QStringLiteral("a.delvane"));
  engine::RecordingReporter reporter;
  engine::EngineSession a(first, reporter);
  ASSERT_FALSE(a.LoadDesignProfile());
  EXPECT_EQ(a.designProfile().size(), 7u);
  first.exec(QStringLiteral("DELETE FROM DesignExp WHERE Serial > 1"));
  ASSERT_FALSE(a.LoadDesignProfile());
  EXPECT_EQ(a.designProfile().size(), 1u);
}

}  // namespace
