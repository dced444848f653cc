#include "db/connection.h"
#include "db/filterexpression.h"

#include <QVariant>

#include <gtest/gtest.h>

namespace {

const std::vector<db::FilterExpression::Field> kFields = {
    {QStringLiteral("Chainage"), true},
    {QStringLiteral("Name"), false},
};

struct MatchCase {
  const char* expression;
  QVariant chainage;  // a double, or the text an edit left; invalid for NULL
  const char* name;   // nullptr for NULL
  bool expected;
};

class FilterMatchTest : public ::testing::TestWithParam<MatchCase> {};

TEST_P(FilterMatchTest, MatchesRow) {
  const MatchCase& c = GetParam();
  const auto cell = [&c](int column) {
    return column == 0 ? c.chainage : c.name ? QVariant(QString::fromUtf8(c.name)) : QVariant();
  };
  EXPECT_EQ(db::FilterExpression::parse(QString::fromUtf8(c.expression), kFields).matches(cell),
            c.expected)
      << c.expression;
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
        MatchCase{"  [chainage]>='1'  ", 2.0, "", true}, MatchCase{"[Name] = ''", 0.0, "", true},
        // Empty text matches everything, even NULLs; a NULL cell matches no term.
        MatchCase{"  ", QVariant(), nullptr, true}, MatchCase{"[Name] <> 'x'", 1.0, nullptr, false},
        MatchCase{"[Name] LIKE '%'", 1.0, nullptr, false},
        // Edited text in a numeric column compares as a number.
        MatchCase{"[Chainage] > '20'", QVariant(QStringLiteral("100")), "", true},
        MatchCase{"[Chainage] > '20'", QVariant(QStringLiteral("x")), "", false}));

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
        RejectCase{"[Name] = 'a' OR", "OR"}, RejectCase{"AND [Name] = 'a'", "AND"}));

}  // namespace
