#include "db/connection.h"
#include "db/filterexpression.h"

#include <gtest/gtest.h>

#include <map>

namespace {

const std::vector<db::FilterExpression::Field> kFields = {
    {QStringLiteral("Chainage"), true},
    {QStringLiteral("Name"), false},
};

// A row of the two fields above; an absent entry is NULL.
bool passes(const QString& expression, const std::map<int, QVariant>& row) {
  const db::FilterExpression filter = db::FilterExpression::parse(expression, kFields);
  return filter.matches([&row](int column) {
    const auto it = row.find(column);
    return it == row.end() ? QVariant() : it->second;
  });
}

struct MatchCase {
  const char* expression;
  double chainage;
  const char* name;
  bool expected;
};

class FilterMatchTest : public ::testing::TestWithParam<MatchCase> {};

TEST_P(FilterMatchTest, MatchesRow) {
  const MatchCase& c = GetParam();
  const std::map<int, QVariant> row = {{0, QVariant(c.chainage)},
                                       {1, QVariant(QString::fromUtf8(c.name))}};
  EXPECT_EQ(passes(QString::fromUtf8(c.expression), row), c.expected) << c.expression;
}

INSTANTIATE_TEST_SUITE_P(
    Grammar, FilterMatchTest,
    ::testing::Values(
        MatchCase{"[Chainage] >= '100'", 100.0, "", true},
        MatchCase{"[Chainage] > '20'", 100.0, "", true},  // as numbers, not text
        MatchCase{"[Chainage] < '20'", 100.0, "", false},
        MatchCase{"[Chainage] <> '1.5'", 1.5, "", false},
        MatchCase{"[Chainage] <= '1.5'", 1.5, "", true},
        MatchCase{"[Name] = 'north'", 0.0, "North", true},  // case ignored
        MatchCase{"[Name] < 'b'", 0.0, "Alpha", true},
        MatchCase{"[Name] LIKE '%ort%'", 0.0, "North", true},
        MatchCase{"[Name] LIKE '*ORT*'", 0.0, "North", true},
        MatchCase{"[Name] LIKE 'no%'", 0.0, "North", true},
        MatchCase{"[Name] LIKE 'no'", 0.0, "North", false},
        MatchCase{"[Name] LIKE '%th'", 0.0, "North", true},
        MatchCase{"[Name] LIKE '%x%'", 0.0, "North", false},
        MatchCase{"[Name] LIKE 'n%r%h'", 0.0, "North", true},
        MatchCase{"[Chainage] LIKE '%5%'", 1.25, "", true},
        MatchCase{"[Chainage] >= '100' AND [Name] LIKE '%5%'", 150.0, "Km 5", true},
        MatchCase{"[Chainage] >= '100' AND [Name] LIKE '%5%'", 150.0, "Km 6", false},
        MatchCase{"[Chainage] = '1' OR [Name] = 'x'", 2.0, "x", true},
        MatchCase{"[Chainage] = '1' OR [Name] = 'x'", 2.0, "y", false},
        // AND binds tighter than OR.
        MatchCase{"[Name] = 'y' AND [Chainage] = '1' OR [Chainage] = '2'", 2.0, "x", true},
        MatchCase{"[Name] = 'x' OR [Name] = 'y' AND [Chainage] = '1'", 2.0, "y", false},
        MatchCase{"  [chainage]>='1'  ", 2.0, "", true}, MatchCase{"[Name] = ''", 0.0, "", true}),
    [](const ::testing::TestParamInfo<MatchCase>& info) {
      return "Case" + std::to_string(info.index);
    });

TEST(FilterExpression, EmptyTextMatchesEverything) {
  EXPECT_TRUE(db::FilterExpression::parse(QStringLiteral("  "), kFields).isEmpty());
  EXPECT_TRUE(passes(QString(), {}));
}

TEST(FilterExpression, NullCellMatchesNoTerm) {
  EXPECT_FALSE(passes(QStringLiteral("[Name] <> 'x'"), {{0, QVariant(1.0)}}));
  EXPECT_FALSE(passes(QStringLiteral("[Name] LIKE '%'"), {{0, QVariant(1.0)}}));
}

TEST(FilterExpression, EditedTextInNumericColumnComparesAsNumber) {
  EXPECT_TRUE(passes(QStringLiteral("[Chainage] > '20'"), {{0, QVariant(QStringLiteral("100"))}}));
  EXPECT_FALSE(passes(QStringLiteral("[Chainage] > '20'"), {{0, QVariant(QStringLiteral("x"))}}));
}

struct RejectCase {
  const char* expression;
  const char* mentioned;  // the description must show this
};

class FilterRejectTest : public ::testing::TestWithParam<RejectCase> {};

TEST_P(FilterRejectTest, IsRejectedWithDescription) {
  const RejectCase& c = GetParam();
  try {
    db::FilterExpression::parse(QString::fromUtf8(c.expression), kFields);
    FAIL() << "accepted: " << c.expression;
  } catch (const db::Error& e) {
    EXPECT_TRUE(e.message().contains(QString::fromUtf8(c.mentioned))) << e.what();
    EXPECT_TRUE(e.message().endsWith(QLatin1Char('.'))) << e.what();
  }
}

INSTANTIATE_TEST_SUITE_P(
    Malformed, FilterRejectTest,
    ::testing::Values(
        RejectCase{"[Chainage] >= '100'[Name] = 'x'", "AND or OR"},
        RejectCase{"[Chainage] >= '100' [Name] = 'x'", "[Name] = 'x'"},
        RejectCase{"[Depth] = '1'", "Depth"}, RejectCase{"[Name] = 'abc", "closing quote"},
        RejectCase{"[Name = 'abc'", "closing bracket"}, RejectCase{"[Name] 'abc'", "no comparison"},
        RejectCase{"[Name] =", "quoted value"}, RejectCase{"[Chainage] = 'abc'", "abc"},
        RejectCase{"[Name] = 'a' OR", "OR"}, RejectCase{"AND [Name] = 'a'", "AND"}),
    [](const ::testing::TestParamInfo<RejectCase>& info) {
      return "Case" + std::to_string(info.index);
    });

}  // namespace
