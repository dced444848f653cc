#include "engine/initialorder.h"

#include "db/connection.h"
#include "engine/session.h"
#include "tests/testsupport.h"

#include <gtest/gtest.h>

#include <optional>

using testsupport::TempProject;

namespace {

// One Initial row as a test writes and reads it.
struct Row {
  std::int32_t section;
  std::optional<float> chainage;
  std::optional<float> offset;
  bool operator==(const Row&) const = default;
};

std::ostream& operator<<(std::ostream& os, const Row& r) {
  os << "(" << r.section << ", ";
  if (r.chainage)
    os << *r.chainage;
  else
    os << "null";
  os << ", ";
  if (r.offset)
    os << *r.offset;
  else
    os << "null";
  return os << ")";
}

class InitialOrderTest : public ::testing::Test {
 protected:
  InitialOrderTest() : c(project.create()), session(c, reporter) { session.setSection(1); }

  // Writes the rows in order of entry, each with level 120.
  void enter(std::initializer_list<Row> rows) {
    db::Statement st = c.prepare(QStringLiteral(
        "INSERT INTO Initial (SectionID, Chainage, Offset, [Level]) VALUES (?, ?, ?, 120)"));
    for (const Row& r : rows) {
      st.reset();
      st.bindKey(1, r.section).bindMeasure(2, r.chainage).bindMeasure(3, r.offset).run();
    }
  }

  std::vector<Row> table() {
    db::Statement st =
        c.prepare(QStringLiteral("SELECT SectionID, Chainage, Offset FROM Initial ORDER BY ID"));
    std::vector<Row> rows;
    while (st.step()) rows.push_back({st.key(0), st.optionalMeasure(1), st.optionalMeasure(2)});
    return rows;
  }

  TempProject project;
  db::Connection& c;
  engine::RecordingReporter reporter;
  engine::EngineSession session;
};

TEST_F(InitialOrderTest, ChainageIsFilledAndOffsetsBeforeTheCentreLineTurnNegative) {
  enter({{1, 100, 5}, {1, {}, 3}, {1, {}, 0}, {1, {}, 4}, {1, {}, 8}});
  engine::FormatInitialTable(session);
  const std::vector<Row> expected = {
      {1, 100, -5}, {1, 100, -3}, {1, 100, 0}, {1, 100, 4}, {1, 100, 8}};
  EXPECT_EQ(table(), expected);
  EXPECT_TRUE(reporter.errors.isEmpty()) << reporter.errors.join(QLatin1Char('\n')).toStdString();
}

TEST_F(InitialOrderTest, SecondRunChangesNothing) {
  enter({{1, 0.02f, 5}, {1, {}, 0}, {1, {}, 4}, {1, 0.04f, -6}, {1, {}, 2}, {1, {}, 0}});
  engine::FormatInitialTable(session);
  const std::vector<Row> once = table();
  const std::vector<Row> expected = {{1, 0.02f, -5}, {1, 0.02f, 0},  {1, 0.02f, 4},
                                     {1, 0.04f, -6}, {1, 0.04f, -2}, {1, 0.04f, 0}};
  EXPECT_EQ(once, expected);
  engine::FormatInitialTable(session);
  EXPECT_EQ(table(), once);
}

TEST_F(InitialOrderTest, FirstRowOfTheTableWithoutChainageGetsZero) {
  enter({{1, {}, 5}, {1, {}, 0}});
  engine::FormatInitialTable(session);
  const std::vector<Row> expected = {{1, 0, -5}, {1, 0, 0}};
  EXPECT_EQ(table(), expected);
}

TEST_F(InitialOrderTest, ChainageCarriesIntoTheNextSection) {
  // Entered out of section order: the pass goes section by section in order of entry.
  enter({{2, {}, 7}, {1, 0.5f, 3}, {2, {}, 0}, {1, {}, 0}, {1, 0.75f, 1}});
  engine::FormatInitialTable(session);
  const std::vector<Row> expected = {
      {2, 0.75f, -7}, {1, 0.5f, -3}, {2, 0.75f, 0}, {1, 0.5f, 0}, {1, 0.75f, 1}};
  EXPECT_EQ(table(), expected);
}

TEST_F(InitialOrderTest, CentreLineNegatesOnlyItsOwnSectionAndChainage) {
  enter({{2, 0.1f, 4}, {1, 0.2f, 4}, {1, 0.1f, 4}, {1, {}, 0}});
  engine::FormatInitialTable(session);
  const std::vector<Row> expected = {{2, 0.1f, 4}, {1, 0.2f, 4}, {1, 0.1f, -4}, {1, 0.1f, 0}};
  EXPECT_EQ(table(), expected);
}

TEST_F(InitialOrderTest, LaterBlockOfTheSameChainageNegatesTheEarlierBlock) {
  enter({{1, 0.1f, 4}, {1, {}, 6}, {1, 0.2f, 3}, {1, 0.1f, 2}, {1, {}, 0}, {1, {}, 5}});
  engine::FormatInitialTable(session);
  const std::vector<Row> expected = {{1, 0.1f, -4}, {1, 0.1f, -6}, {1, 0.2f, 3},
                                     {1, 0.1f, -2}, {1, 0.1f, 0},  {1, 0.1f, 5}};
  EXPECT_EQ(table(), expected);
}

TEST_F(InitialOrderTest, CrossSectionWithoutCentreLineAndNullOffsetsKeepTheirOffsets) {
  enter({{1, 0.1f, 4}, {1, {}, {}}, {1, {}, 6}, {1, 0.2f, -3}, {1, {}, 0}});
  engine::FormatInitialTable(session);
  const std::vector<Row> expected = {
      {1, 0.1f, 4}, {1, 0.1f, {}}, {1, 0.1f, 6}, {1, 0.2f, -3}, {1, 0.2f, 0}};
  EXPECT_EQ(table(), expected);
}

TEST_F(InitialOrderTest, EmptyTextChainageIsFilledLikeNull) {
  enter({{1, 0.3f, 4}});
  c.exec(QStringLiteral(
      "INSERT INTO Initial (SectionID, Chainage, Offset, [Level]) VALUES (1, '', 0, 120)"));
  engine::FormatInitialTable(session);
  const std::vector<Row> expected = {{1, 0.3f, -4}, {1, 0.3f, 0}};
  EXPECT_EQ(table(), expected);
}

TEST_F(InitialOrderTest, CurrentSectionIsValidatedAfterwards) {
  enter({{1, 0.1f, 4}, {1, {}, 0}, {2, 0.1f, 400}});
  c.exec(QStringLiteral("UPDATE Initial SET [Level]=20 WHERE Offset=0"));
  engine::FormatInitialTable(session);
  EXPECT_EQ(reporter.errors,
            QStringList{QStringLiteral(
                "Chainage [0.1], Offset [0], Level [20]: Null, Negative, Zero Values or Values "
                "not in acceptable range in Initial Levels.")});
}

}  // namespace
