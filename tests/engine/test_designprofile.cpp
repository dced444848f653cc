#include "engine/session.h"
#include "tests/testsupport.h"

#include <gtest/gtest.h>

namespace {

// A fresh project whose DesignExp the test changes before loading it in a new session.
struct ProfileCase {
  const char* name;
  const char* sql;
  const char* message;  // nullptr when the profile loads
};

class LoadDesignProfileTest : public ::testing::TestWithParam<ProfileCase> {};

TEST_P(LoadDesignProfileTest, LoadsDesignOneInSerialOrderOrSaysWhyNot) {
  testsupport::TempProject project;
  db::Connection& c = project.create();
  for (const QString& sql : QString::fromLatin1(GetParam().sql).split(QStringLiteral("; ")))
    c.exec(sql);
  engine::RecordingReporter reporter;
  engine::EngineSession session(c, reporter);
  const bool failed = session.LoadDesignProfile();
  if (GetParam().message) {
    EXPECT_TRUE(failed);
    EXPECT_EQ(reporter.messages, QStringList{QString::fromLatin1(GetParam().message)});
    return;
  }
  ASSERT_FALSE(failed);
  QStringList rows;
  for (const auto& row : session.designProfile())
    rows << row.LCR + QLatin1Char(' ') + row.Offset + QLatin1Char(' ') + row.Value;
  EXPECT_EQ(rows, QStringList({QStringLiteral("C o1 v1"), QStringLiteral("L o2 v2"),
                               QStringLiteral("R o3 v3")}));
  // Loading again replaces the profile.
  c.exec(QStringLiteral("DELETE FROM DesignExp WHERE Serial > 1"));
  ASSERT_FALSE(session.LoadDesignProfile());
  EXPECT_EQ(session.designProfile().size(), 1u);
}

INSTANTIATE_TEST_SUITE_P(
    Profiles, LoadDesignProfileTest,
    ::testing::Values(
        ProfileCase{"RowsAreHeldInSerialOrder",
                    "DELETE FROM DesignExp; INSERT INTO DesignExp (DesignID, Serial, LCR, Offset, "
                    "Value) VALUES (1, 3, 'R', 'o3', 'v3'), (1, 1, 'C', 'o1', 'v1'), "
                    "(1, 2, 'L', 'o2', 'v2'), (2, 0, 'X', 'o0', 'v0')",
                    nullptr},
        ProfileCase{"RowsOfAnotherDesignOnlyCountAsNone", "UPDATE DesignExp SET DesignID=2",
                    "No design profile found in the database. DB not correctly installed."},
        ProfileCase{"MissingTableSaysTheDatabaseIsCorrupt", "DROP TABLE DesignExp",
                    "LoadDesignProfile: Table not found! Database is probably corrupt."}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
