#include "engine/validation.h"

#include "db/connection.h"
#include "engine/session.h"
#include "tests/testsupport.h"

#include <gtest/gtest.h>

#include <optional>

using testsupport::TempProject;

namespace {

class ValidationTest : public ::testing::Test {
 protected:
  ValidationTest() : c(project.create()), session(c, reporter) { session.setSection(1); }

  void ground(float chainage, std::optional<float> offset, std::optional<float> level,
              std::int32_t section = 1) {
    c.prepare(QStringLiteral(
                  "INSERT INTO Initial (SectionID, Chainage, Offset, [Level]) VALUES (?, ?, ?, ?)"))
        .bindKey(1, section)
        .bindMeasure(2, chainage)
        .bindMeasure(3, offset)
        .bindMeasure(4, level)
        .run();
  }

  void design(float chainage, std::optional<float> level) {
    c.prepare(QStringLiteral("INSERT INTO DesignLevels (SectionID, Chainage, [Level]) VALUES (1, "
                             "?, ?)"))
        .bindMeasure(1, chainage)
        .bindMeasure(2, level)
        .run();
  }

  TempProject project;
  db::Connection& c;
  engine::RecordingReporter reporter;
  engine::EngineSession session;
};

const QString kInitialTail = QStringLiteral(
    ": Null, Negative, Zero Values or Values not in acceptable range in Initial Levels.");
const QString kDesignTail = QStringLiteral(
    ": Null, Negative, Zero Values or Values not in acceptable range in Design Levels.");

TEST_F(ValidationTest, GroundPointsAtTheLimitsPassAndBeyondThemAreReported) {
  struct Case {
    std::optional<float> offset;
    std::optional<float> level;
    const char* line;  // nullptr when acceptable
  } cases[] = {
      {-100, 50, nullptr},
      {100, 200, nullptr},
      {0, 125.5f, nullptr},
      {100.01f, 150, "Chainage [0.5], Offset [100.01], Level [150]"},
      {-100.01f, 150, "Chainage [0.5], Offset [-100.01], Level [150]"},
      {10, 49.99f, "Chainage [0.5], Offset [10], Level [49.99]"},
      {10, 200.5f, "Chainage [0.5], Offset [10], Level [200.5]"},
      {10, 0, "Chainage [0.5], Offset [10], Level [0]"},
      {10, -3, "Chainage [0.5], Offset [10], Level [-3]"},
      {10, std::nullopt, "Chainage [0.5], Offset [10], Level []"},
      {std::nullopt, 150, "Chainage [0.5], Offset [], Level [150]"},
  };
  for (const Case& k : cases) {
    c.exec(QStringLiteral("DELETE FROM Initial"));
    reporter.errors.clear();
    ground(0.5f, k.offset, k.level);
    const bool bad = engine::ValidateLevels(session, -1);
    EXPECT_EQ(bad, k.line != nullptr) << (k.line ? k.line : "clean");
    if (k.line) {
      EXPECT_EQ(reporter.errors, QStringList{QString::fromLatin1(k.line) + kInitialTail});
    } else {
      EXPECT_TRUE(reporter.errors.isEmpty())
          << reporter.errors.join(QLatin1Char('\n')).toStdString();
    }
  }
}

TEST_F(ValidationTest, DesignLevelsOutOfRangeAreReported) {
  design(0, 50);
  design(0.1f, 200);
  design(0.2f, 0);
  design(0.3f, std::nullopt);
  design(0.4f, 200.01f);
  EXPECT_TRUE(engine::ValidateLevels(session, -1));
  const QStringList expected = {QStringLiteral("Chainage [0.2], Level [0]") + kDesignTail,
                                QStringLiteral("Chainage [0.3], Level []") + kDesignTail,
                                QStringLiteral("Chainage [0.4], Level [200.01]") + kDesignTail};
  EXPECT_EQ(reporter.errors, expected);
}

TEST_F(ValidationTest, InitialLinesComeFirstInChainageOrder) {
  design(0.1f, 20);
  ground(0.3f, 5, 10);
  ground(0.2f, 5, 10);
  ground(0.2f, 5, 10, 2);  // another section
  EXPECT_TRUE(engine::ValidateLevels(session, -1));
  const QStringList expected = {
      QStringLiteral("Chainage [0.2], Offset [5], Level [10]") + kInitialTail,
      QStringLiteral("Chainage [0.3], Offset [5], Level [10]") + kInitialTail,
      QStringLiteral("Chainage [0.1], Level [20]") + kDesignTail};
  EXPECT_EQ(reporter.errors, expected);
}

TEST_F(ValidationTest, OneChainageIsCheckedAlone) {
  ground(0.5f, 5, 120);
  ground(0.52f, 5, 10);
  design(0.52f, 10);
  EXPECT_FALSE(engine::ValidateLevels(session, 0.5f));
  EXPECT_TRUE(reporter.errors.isEmpty());
  EXPECT_TRUE(engine::ValidateLevels(session, 0.52f));
  EXPECT_EQ(reporter.errors.size(), 2);
  // The statements are kept between calls; the chainage is bound afresh each time.
  reporter.errors.clear();
  EXPECT_FALSE(engine::ValidateLevels(session, 0.5f));
  EXPECT_TRUE(reporter.errors.isEmpty());
}

TEST_F(ValidationTest, BadDesignLevelAloneMakesTheResultTrue) {
  ground(0.5f, 5, 120);
  design(0.5f, 300);
  EXPECT_TRUE(engine::ValidateLevels(session, 0.5f));
  EXPECT_EQ(reporter.errors.size(), 1);
}

TEST_F(ValidationTest, EmptySectionIsClean) {
  ground(0.5f, 5, 10, 2);
  EXPECT_FALSE(engine::ValidateLevels(session, -1));
  EXPECT_TRUE(reporter.errors.isEmpty());
}

}  // namespace
