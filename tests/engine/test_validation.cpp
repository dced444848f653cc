#include "engine/validation.h"

#include "engine/session.h"
#include "tests/engine/areafixture.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace {

using ValidationTest = testsupport::SessionFixture;

const QString kInitialTail = QStringLiteral(
    ": Null, Negative, Zero Values or Values not in acceptable range in Initial Levels.");
const QString kDesignTail = QStringLiteral(
    ": Null, Negative, Zero Values or Values not in acceptable range in Design Levels.");

TEST_F(ValidationTest, GroundPointsAtTheLimitsPassAndBeyondThemAreReported) {
  const struct {
    std::optional<float> offset, level;
    const char* line;  // nullptr when acceptable
  } cases[] = {
      {-100, 50, nullptr},
      {100, 200, nullptr},
      {100.01f, 150, "Chainage [0.5], Offset [100.01], Level [150]"},
      {-100.01f, 150, "Chainage [0.5], Offset [-100.01], Level [150]"},
      {10, 49.99f, "Chainage [0.5], Offset [10], Level [49.99]"},
      {10, 200.5f, "Chainage [0.5], Offset [10], Level [200.5]"},
      {10, 0, "Chainage [0.5], Offset [10], Level [0]"},
      {10, -3, "Chainage [0.5], Offset [10], Level [-3]"},
      {10, std::nullopt, "Chainage [0.5], Offset [10], Level []"},
      {std::nullopt, 150, "Chainage [0.5], Offset [], Level [150]"},
  };
  for (const auto& k : cases) {
    exec("DELETE FROM Initial");
    reporter.errors.clear();
    c
        .prepare(QStringLiteral(
            "INSERT INTO Initial (SectionID, Chainage, Offset, [Level]) VALUES (1, 0.5, ?, ?)"))
        .bindMeasure(1, k.offset)
        .bindMeasure(2, k.level)
        .run();
    EXPECT_EQ(engine::ValidateLevels(session, -1), k.line != nullptr) << k.line;
    const QStringList expected =
        k.line ? QStringList{QString::fromLatin1(k.line) + kInitialTail} : QStringList{};
    EXPECT_EQ(reporter.errors, expected);
  }
}

// Whatever a foreign tool left in Offset or Level that is not a finite number is reported, and
// a number held as text is judged by its value, in a column of any declared type.
TEST_F(ValidationTest, ValuesThatAreNotFiniteNumbersAreReported) {
  const struct {
    const char* offset;  // SQL expressions
    const char* level;
    const char* line;  // nullptr when acceptable
  } cases[] = {
      {"'NaN'", "150", "Chainage [0.5], Offset [NaN], Level [150]"},
      {"10", "'NaN'", "Chainage [0.5], Offset [10], Level [NaN]"},
      {"'inf'", "150", "Chainage [0.5], Offset [inf], Level [150]"},
      {"10", "9e999", "Chainage [0.5], Offset [10], Level [Inf]"},
      {"-9e999", "150", "Chainage [0.5], Offset [-Inf], Level [150]"},
      {"'abc'", "150", "Chainage [0.5], Offset [abc], Level [150]"},
      {"''", "150", "Chainage [0.5], Offset [], Level [150]"},
      {"10", "'1,5'", "Chainage [0.5], Offset [10], Level [1,5]"},
      {"x'00ff'", "150", "Chainage [0.5], Offset [blob], Level [150]"},
      {"'-100'", "'152.4'", nullptr},
      {"' 7 '", "'200'", nullptr},
      {"'100.5'", "150", "Chainage [0.5], Offset [100.5], Level [150]"},
  };
  for (const char* type : {"REAL", "TEXT"}) {
    exec("DROP TABLE Initial");
    c.exec(QStringLiteral("CREATE TABLE Initial (Chainage %1, Offset %1, [Level] %1, SectionID "
                          "INTEGER, ID INTEGER PRIMARY KEY AUTOINCREMENT)")
               .arg(QLatin1String(type)));
    for (const auto& k : cases) {
      SCOPED_TRACE(std::string(type) + " " + k.offset + " " + k.level);
      exec("DELETE FROM Initial");
      reporter.errors.clear();
      c.exec(QStringLiteral("INSERT INTO Initial (SectionID, Chainage, Offset, [Level]) VALUES "
                            "(1, 0.5, %1, %2)")
                 .arg(QLatin1String(k.offset), QLatin1String(k.level)));
      EXPECT_EQ(engine::ValidateLevels(session, -1), k.line != nullptr);
      const QStringList expected =
          k.line ? QStringList{QString::fromLatin1(k.line) + kInitialTail} : QStringList{};
      EXPECT_EQ(reporter.errors.join(QLatin1Char('\n')).toStdString(),
                expected.join(QLatin1Char('\n')).toStdString());
    }
  }
  exec("DELETE FROM Initial");
  reporter.errors.clear();
  exec(
      "INSERT INTO DesignLevels (SectionID, Chainage, [Level]) VALUES (1, 0.1, 'NaN'), "
      "(1, 0.2, '150'), (1, 0.3, x'01')");
  EXPECT_TRUE(engine::ValidateLevels(session, -1));
  EXPECT_EQ(reporter.errors,
            (QStringList{QStringLiteral("Chainage [0.1], Level [NaN]") + kDesignTail,
                         QStringLiteral("Chainage [0.3], Level [blob]") + kDesignTail}));
}

// Initial lines come first in chainage order, then design levels out of 50 to 200.
TEST_F(ValidationTest, WholeSectionListsInitialThenDesignLinesOfItsOwnRows) {
  exec(
      "INSERT INTO DesignLevels (SectionID, Chainage, [Level]) VALUES (1, 0, 50), "
      "(1, 0.1, 200), (1, 0.2, 0), (1, 0.3, NULL), (1, 0.4, 200.01)");
  exec(
      "INSERT INTO Initial (SectionID, Chainage, Offset, [Level]) VALUES (1, 0.3, 5, 10), "
      "(1, 0.2, 5, 10), (2, 0.2, 5, 10)");
  EXPECT_TRUE(engine::ValidateLevels(session, -1));
  const QStringList expected = {
      QStringLiteral("Chainage [0.2], Offset [5], Level [10]") + kInitialTail,
      QStringLiteral("Chainage [0.3], Offset [5], Level [10]") + kInitialTail,
      QStringLiteral("Chainage [0.2], Level [0]") + kDesignTail,
      QStringLiteral("Chainage [0.3], Level []") + kDesignTail,
      QStringLiteral("Chainage [0.4], Level [200.01]") + kDesignTail};
  EXPECT_EQ(reporter.errors, expected);
}

TEST_F(ValidationTest, OneChainageIsCheckedAlone) {
  exec(
      "INSERT INTO Initial (SectionID, Chainage, Offset, [Level]) VALUES (1, 0.5, 5, 120), "
      "(1, 0.52, 5, 10), (1, 0.54, 5, 120), (2, 0.56, 5, 10)");
  exec(
      "INSERT INTO DesignLevels (SectionID, Chainage, [Level]) VALUES (1, 0.52, 10), "
      "(1, 0.54, 300)");
  EXPECT_FALSE(engine::ValidateLevels(session, 0.5f));
  EXPECT_TRUE(reporter.errors.isEmpty());
  EXPECT_TRUE(engine::ValidateLevels(session, 0.52f));
  EXPECT_EQ(reporter.errors.size(), 2);
  // A bad design level alone makes the result true.
  EXPECT_TRUE(engine::ValidateLevels(session, 0.54f));
  EXPECT_EQ(reporter.errors.size(), 3);
  // The statements are kept between calls; the chainage is bound afresh each time.
  reporter.errors.clear();
  EXPECT_FALSE(engine::ValidateLevels(session, 0.5f));
  EXPECT_FALSE(engine::ValidateLevels(session, 0.56f));  // another section's row
  EXPECT_TRUE(reporter.errors.isEmpty());
}

}  // namespace
