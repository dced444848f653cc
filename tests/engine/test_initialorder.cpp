#include "engine/initialorder.h"

#include "engine/session.h"
#include "tests/engine/areafixture.h"

#include <gtest/gtest.h>

#include <optional>

namespace {

// One Initial row as a test writes and reads it.
struct Row {
  std::int32_t section;
  std::optional<float> chainage;
  std::optional<float> offset;
  bool operator==(const Row&) const = default;
};

std::ostream& operator<<(std::ostream& os, const Row& r) {
  const auto opt = [&os](std::optional<float> v) -> std::ostream& {
    return v ? os << *v : os << "null";
  };
  os << "(" << r.section << ", ";
  opt(r.chainage) << ", ";
  return opt(r.offset) << ")";
}

// The rows as entered (each at level 120) and the table FormatInitialTable leaves, in order
// of entry.
struct OrderCase {
  const char* name;
  std::vector<Row> entered;
  std::vector<Row> formatted;
};

class InitialOrderTest : public testsupport::SessionFixture,
                         public ::testing::WithParamInterface<OrderCase> {
 protected:
  std::vector<Row> table() {
    db::Statement st =
        c.prepare(QStringLiteral("SELECT SectionID, Chainage, Offset FROM Initial ORDER BY ID"));
    std::vector<Row> rows;
    while (st.step()) rows.push_back({st.key(0), st.optionalMeasure(1), st.optionalMeasure(2)});
    return rows;
  }
};

TEST_P(InitialOrderTest, FillsChainagesAndNegatesOffsetsBeforeTheCentreLineOnce) {
  db::Statement st = c.prepare(QStringLiteral(
      "INSERT INTO Initial (SectionID, Chainage, Offset, [Level]) VALUES (?, ?, ?, 120)"));
  for (const Row& r : GetParam().entered) {
    st.reset();
    st.bindKey(1, r.section).bindMeasure(2, r.chainage).bindMeasure(3, r.offset).run();
  }
  engine::FormatInitialTable(session);
  EXPECT_EQ(table(), GetParam().formatted);
  engine::FormatInitialTable(session);
  EXPECT_EQ(table(), GetParam().formatted) << "a second run changes nothing";
}

INSTANTIATE_TEST_SUITE_P(
    Cases, InitialOrderTest,
    ::testing::Values(
        OrderCase{"ChainageFilledAndOffsetsBeforeTheCentreNegative",
                  {{1, 100, 5}, {1, {}, 3}, {1, {}, 0}, {1, {}, 4}, {1, {}, 8}},
                  {{1, 100, -5}, {1, 100, -3}, {1, 100, 0}, {1, 100, 4}, {1, 100, 8}}},
        OrderCase{"TwoCrossSections",
                  {{1, 0.02f, 5}, {1, {}, 0}, {1, {}, 4}, {1, 0.04f, -6}, {1, {}, 2}, {1, {}, 0}},
                  {{1, 0.02f, -5},
                   {1, 0.02f, 0},
                   {1, 0.02f, 4},
                   {1, 0.04f, -6},
                   {1, 0.04f, -2},
                   {1, 0.04f, 0}}},
        OrderCase{
            "FirstRowWithoutChainageGetsZero", {{1, {}, 5}, {1, {}, 0}}, {{1, 0, -5}, {1, 0, 0}}},
        // Entered out of section order: the pass goes section by section in order of entry.
        OrderCase{"ChainageCarriesIntoTheNextSection",
                  {{2, {}, 7}, {1, 0.5f, 3}, {2, {}, 0}, {1, {}, 0}, {1, 0.75f, 1}},
                  {{2, 0.75f, -7}, {1, 0.5f, -3}, {2, 0.75f, 0}, {1, 0.5f, 0}, {1, 0.75f, 1}}},
        OrderCase{"CentreLineNegatesOnlyItsOwnSectionAndChainage",
                  {{2, 0.1f, 4}, {1, 0.2f, 4}, {1, 0.1f, 4}, {1, {}, 0}},
                  {{2, 0.1f, 4}, {1, 0.2f, 4}, {1, 0.1f, -4}, {1, 0.1f, 0}}},
        OrderCase{"LaterBlockOfTheSameChainageNegatesTheEarlierBlock",
                  {{1, 0.1f, 4}, {1, {}, 6}, {1, 0.2f, 3}, {1, 0.1f, 2}, {1, {}, 0}, {1, {}, 5}},
                  {{1, 0.1f, -4},
                   {1, 0.1f, -6},
                   {1, 0.2f, 3},
                   {1, 0.1f, -2},
                   {1, 0.1f, 0},
                   {1, 0.1f, 5}}},
        OrderCase{"NoCentreLineAndNullOffsetsKeepTheirOffsets",
                  {{1, 0.1f, 4}, {1, {}, {}}, {1, {}, 6}, {1, 0.2f, -3}, {1, {}, 0}},
                  {{1, 0.1f, 4}, {1, 0.1f, {}}, {1, 0.1f, 6}, {1, 0.2f, -3}, {1, 0.2f, 0}}}),
    [](const auto& info) { return std::string(info.param.name); });

using InitialOrderChecks = testsupport::SessionFixture;

TEST_F(InitialOrderChecks, EmptyTextChainageIsFilledAndTheSectionValidatedAfterwards) {
  exec(
      "INSERT INTO Initial (SectionID, Chainage, Offset, [Level]) VALUES (1, 0.3, 4, 120), "
      "(1, '', 0, 20), (2, 0.1, 400, 120)");
  engine::FormatInitialTable(session);
  EXPECT_EQ(c.scalar(QStringLiteral("SELECT COUNT(*) FROM Initial WHERE SectionID=1 AND "
                                    "Chainage=0.3 AND Offset IN (-4, 0)")),
            2.0);
  EXPECT_EQ(reporter.errors,
            QStringList{QStringLiteral(
                "Chainage [0.3], Offset [0], Level [20]: Null, Negative, Zero Values or Values "
                "not in acceptable range in Initial Levels.")});
}

// A database error ends the pass; the rows visited before it stay corrected.
TEST_F(InitialOrderChecks, AnErrorKeepsTheRowsVisitedBeforeIt) {
  exec(
      "INSERT INTO Initial (ID, SectionID, Chainage, Offset, [Level]) VALUES (1, 1, 0.3, 4, 120), "
      "(2, 1, NULL, 0, 120), (3, 1, NULL, 5, 120)");
  exec(
      "CREATE TRIGGER refuse_third BEFORE UPDATE ON Initial WHEN OLD.ID = 3 "
      "BEGIN SELECT RAISE(ABORT, 'refused'); END");
  EXPECT_THROW(engine::FormatInitialTable(session), db::Error);
  exec("DROP TRIGGER refuse_third");
  EXPECT_EQ(c.scalar(QStringLiteral("SELECT COUNT(*) FROM Initial WHERE Chainage=0.3 AND "
                                    "((ID=1 AND Offset=-4) OR (ID=2 AND Offset=0))")),
            2.0);
  EXPECT_EQ(c.scalar(QStringLiteral("SELECT COUNT(*) FROM Initial WHERE ID=3 AND Chainage IS "
                                    "NULL AND Offset=5")),
            1.0);
}

}  // namespace
