#include "engine/typicalsection.h"

#include "db/numbers.h"
#include "engine/session.h"
#include "tests/engine/areafixture.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// The demo canal's details: bed 6, depth 2 + 0.6, inner slope 1.5, bank 4, on a centre level of
// 100 at chainage 0.
class TypicalSectionTest : public testsupport::SessionFixture {
 protected:
  TypicalSectionTest() {
    exec("INSERT INTO Package (ID, Name) VALUES (1, 'P')");
    exec("INSERT INTO Sections (ID, PackageID, DesignID) VALUES (1, 1, 1), (2, 1, 1), (3, 1, 1)");
    exec("INSERT INTO DesignLevels (SectionID, Chainage, Level) VALUES (1, 0, 100)");
    exec("INSERT INTO DesignQty (SectionID, Chainage) VALUES (1, 0), (1, 1)");
  }
  void canalDetails(const char* chainage = "0") {
    exec(
        QStringLiteral("INSERT INTO DesignDetails (SectionID, Chainage, BED_WIDTH, FSD, FREEBOARD, "
                       "INNER_SLOPE, BANK_WIDTH, SRS_LEFT) VALUES (1, %1, 6, 2, 0.6, 1.5, 4, 2)")
            .arg(QLatin1String(chainage))
            .toLatin1()
            .constData());
  }
};

// One dimension as "W L 3>6.9 LABEL": kind, side, the distances (Width) or levels it spans.
std::string describe(const engine::TypicalDimension& d) {
  const bool width = d.kind == engine::DimensionKind::Width;
  const char* kind = width ? "W" : d.kind == engine::DimensionKind::Height ? "H" : "V";
  const float from = width ? d.start.Offset : d.start.Level;
  const float to = width ? d.end.Offset : d.end.Level;
  return QStringLiteral("%1 %2 %3>%4 %5")
      .arg(QLatin1String(kind), QLatin1String(d.left ? "L" : "R"), db::floatText(from),
           db::floatText(to), d.label)
      .toStdString();
}

struct ProfileCase {
  const char* name;
  std::vector<std::vector<const char*>> rows;  // LCR, Offset, Value
  std::vector<std::string> dimensions;
};

class TypicalDimensionsTest : public TypicalSectionTest,
                              public ::testing::WithParamInterface<ProfileCase> {};

TEST_P(TypicalDimensionsTest, EachFormulaGivesTheStretchItAdds) {
  const ProfileCase& k = GetParam();
  canalDetails();
  exec("DELETE FROM DesignExp");
  int serial = 1;
  for (const auto& row : k.rows)
    exec(QStringLiteral("INSERT INTO DesignExp (DesignID, Serial, LCR, Offset, Value) VALUES "
                        "(1, %1, '%2', '%3', '%4')")
             .arg(serial++)
             .arg(QLatin1String(row[0]), QLatin1String(row[1]), QLatin1String(row[2]))
             .toLatin1()
             .constData());
  ASSERT_FALSE(session.LoadDesignProfile());
  const auto typical = engine::computeTypicalSection(session);
  ASSERT_TRUE(typical) << errorText().toStdString();
  std::vector<std::string> got;
  for (const engine::TypicalDimension& d : typical->dimensions) got.push_back(describe(d));
  EXPECT_EQ(got, k.dimensions);
}

INSTANTIATE_TEST_SUITE_P(
    Formulas, TypicalDimensionsTest,
    ::testing::Values(
        ProfileCase{
            "CanalTemplate",
            {{"C", "0", "$CL"},
             {"L", "$BED_WIDTH/2", "$CL"},
             {"R", "$BED_WIDTH/2", "$CL"},
             {"L", "$LP_Off+($FSD+$FREEBOARD)*$INNER_SLOPE", "$CL+$FSD+$FREEBOARD"},
             {"L", "$LP_Off+$BANK_WIDTH", "$LP_Val"}},
            {"W L 0>3 BED_WIDTH/2", "W R 0>3 BED_WIDTH/2", "W L 3>6.9 (FSD+FREEBOARD)*INNER_SLOPE",
             "H L 100>102.6 FSD+FREEBOARD", "W L 6.9>10.9 BANK_WIDTH"}},
        // The evaluator subtracts right to left: $LP_Val-$FSD-$FREEBOARD falls by FSD-FREEBOARD.
        ProfileCase{
            "FallFromTheLastPoint",
            {{"R", "$BED_WIDTH", "$CL+$FSD"}, {"R", "$rp_off+1", "$RP_Val-$FSD-$FREEBOARD"}},
            {"W R 0>6 BED_WIDTH", "H R 100>102 FSD", "W R 6>7 1", "H R 102>100.6 FSD-FREEBOARD"}},
        // Not a stretch over a reference: the width from the centre line, the level as a level.
        ProfileCase{"WholeFormulasWhereNoStretchIsRead",
                    {{"L", "2*$BED_WIDTH", "$CL-$FSD+$FREEBOARD"}, {"L", "$LP_Off", "150"}},
                    {"W L 0>12 2*BED_WIDTH", "V L 98.6>98.6 CL-FSD+FREEBOARD", "V L 150>150 150"}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(TypicalSectionTest, DrawsTheFirstDetailsRowWithItsValuesAndSlopes) {
  canalDetails("0.5");
  exec("INSERT INTO DesignDetails (SectionID, Chainage, BED_WIDTH) VALUES (1, 0.2, 99)");
  exec("UPDATE DesignList SET Name='Canal' WHERE ID=1");
  ASSERT_FALSE(session.LoadDesignProfile());
  const auto typical = engine::computeTypicalSection(session);
  ASSERT_TRUE(typical) << errorText().toStdString();
  EXPECT_EQ(typical->chainage, 0.2f);
  EXPECT_EQ(typical->left.at(1).Offset, 49.5f);
  EXPECT_EQ(typical->designName, QStringLiteral("Canal"));
  // Only a slope that is given is drawn.
  EXPECT_FALSE(typical->outerSlopeLeft);
  EXPECT_FALSE(typical->outerSlopeRight);
  ASSERT_FALSE(typical->details.empty());
  EXPECT_EQ(typical->details.front().Name, QStringLiteral("BED_WIDTH"));
  EXPECT_EQ(typical->details.front().Value, 99.0f);
}

TEST_F(TypicalSectionTest, ASectionWithoutDetailsHasNone) {
  ASSERT_FALSE(session.LoadDesignProfile());
  EXPECT_FALSE(engine::computeTypicalSection(session));
  EXPECT_TRUE(reporter.errors.isEmpty());
  EXPECT_EQ(engine::sectionWithDesignDetails(c, 1), 0);
  exec("INSERT INTO DesignDetails (SectionID, Chainage, BED_WIDTH) VALUES (3, 0, 1), (2, 0, 1)");
  EXPECT_EQ(engine::sectionWithDesignDetails(c, 1), 2);
  EXPECT_EQ(engine::sectionWithDesignDetails(c, 3), 3);
}

}  // namespace
