#include "engine/numberformat.h"
#include "tests/testsupport.h"

#include <gtest/gtest.h>

namespace {

TEST(FormatNumber, GroupsDigitsWithTheGivenDecimals) {
  struct Case {
    double value;
    int decimals;
    const char* text;
  } cases[] = {
      {1234.5678, 3, "1,234.568"}, {0.0, 3, "0.000"},        {-1234567.891, 2, "-1,234,567.89"},
      {999.9995, 3, "1,000.000"},  {-0.0004, 3, "0.000"},    {12.5, 0, "13"},
      {100.0, 2, "100.00"},        {123456.0, 0, "123,456"},
  };
  for (const Case& c : cases)
    EXPECT_EQ(engine::formatNumber(c.value, c.decimals), QString::fromLatin1(c.text)) << c.text;
}

TEST(FormatNumber, IgnoresTheProcessLocale) {
  testsupport::CommaDecimalLocale german;
  if (!german.active()) GTEST_SKIP() << "no comma-decimal locale installed";
  EXPECT_EQ(engine::formatNumber(46102.625, 2), QStringLiteral("46,102.63"));
}

TEST(FormatNumber, UsesTheLocaleSymbols) {
  engine::NumberSymbols german{QLatin1Char('.'), QLatin1Char(','), QLatin1Char('-')};
  EXPECT_EQ(engine::formatNumber(1234.5, 2, german), QStringLiteral("1.234,50"));
}

}  // namespace
