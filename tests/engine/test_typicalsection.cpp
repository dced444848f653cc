#include "engine/typicalsection.h"

#include "db/numbers.h"
#include "engine/session.h"
#include "tests/engine/areafixture.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// Section 1 on a centre level of 100, with the demo canal's details from chainage 0: bed 6,
// depth 2 + 0.6, inner slope 1.5, bank 4, left outer slope 2.
class TypicalSectionTest : public testsupport::SessionFixture {
 protected:
  TypicalSectionTest() {
    exec("INSERT INTO DesignLevels (SectionID, Chainage, Level) VALUES (1, 0, 100)");
    exec("INSERT INTO DesignQty (SectionID, Chainage) VALUES (1, 0), (1, 1)");
    exec(
        "INSERT INTO DesignDetails (SectionID, Chainage, BED_WIDTH, FSD, FREEBOARD, INNER_SLOPE, "
        "BANK_WIDTH, SRS_LEFT) VALUES (1, 0.5, 6, 2, 0.6, 1.5, 4, 2)");
  }
};

// One dimension as "W L 3>6.9 LABEL": kind, side, the distances (Width) or levels it spans.
std::string describe(const engine::TypicalDimension& d) {
  const bool width = d.kind == engine::DimensionKind::Width;
  const char* kind = width ? "W" : d.kind == engine::DimensionKind::Height ? "H" : "V";
  return QStringLiteral("%1 %2 %3>%4 %5")
      .arg(QLatin1String(kind), QLatin1String(d.left ? "L" : "R"),
           db::floatText(width ? d.start.Offset : d.start.Level),
           db::floatText(width ? d.end.Offset : d.end.Level), d.label)
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
  exec("DELETE FROM DesignExp");
  int serial = 1;
  for (const auto& row : GetParam().rows)
    c.prepare(QStringLiteral("INSERT INTO DesignExp (DesignID, Serial, LCR, Offset, Value) VALUES "
                             "(1, ?, ?, ?, ?)"))
        .bindKey(1, serial++)
        .bindText(2, QLatin1String(row[0]))
        .bindText(3, QLatin1String(row[1]))
        .bindText(4, QLatin1String(row[2]))
        .run();
  ASSERT_FALSE(session.LoadDesignProfile());
  const auto typical = engine::computeTypicalSection(session);
  ASSERT_TRUE(typical) << errorText().toStdString();
  std::vector<std::string> got;
  for (const engine::TypicalDimension& d : typical->dimensions) got.push_back(describe(d));
  EXPECT_EQ(got, GetParam().dimensions);
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
        // The evaluator subtracts right to left: $RP_Val-$FSD-$FREEBOARD falls by FSD-FREEBOARD.
        ProfileCase{
            "FallFromTheLastPoint",
            {{"R", "$BED_WIDTH", "$CL+$FSD"}, {"R", "$rp_off+1", "$RP_Val-$FSD-$FREEBOARD"}},
            {"W R 0>6 BED_WIDTH", "H R 100>102 FSD", "W R 6>7 1", "H R 102>100.6 FSD-FREEBOARD"}},
        // Not a stretch over a reference: the width from the centre line, the level as a level.
        ProfileCase{"WholeFormulasWhereNoStretchIsRead",
                    {{"L", "2*$BED_WIDTH", "$CL-$FSD+$FREEBOARD"}, {"L", "$LP_Off", "150"}},
                    {"W L 0>12 2*BED_WIDTH", "V L 98.6>98.6 CL-FSD+FREEBOARD", "V L 150>150 150"}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(TypicalSectionTest, DrawsTheFirstDetailsRowOfTheSectionOrOfAnother) {
  ASSERT_FALSE(session.LoadDesignProfile());
  exec("INSERT INTO DesignDetails (SectionID, Chainage, BED_WIDTH) VALUES (1, 0.2, 99)");
  auto typical = engine::computeTypicalSection(session);
  ASSERT_TRUE(typical) << errorText().toStdString();
  EXPECT_EQ(typical->chainage, 0.2f);
  EXPECT_EQ(typical->left.at(1).Offset, 49.5f);
  EXPECT_EQ(typical->designName, QStringLiteral("EarthenCanal"));
  EXPECT_EQ(typical->details.front().Name, QStringLiteral("BED_WIDTH"));
  EXPECT_FALSE(typical->outerSlopeLeft);  // empty in that row

  EXPECT_EQ(engine::sectionWithDesignDetails(c, 1), 1);
  EXPECT_EQ(engine::sectionWithDesignDetails(c, 3), 1);
  exec("DELETE FROM DesignDetails");
  EXPECT_EQ(engine::sectionWithDesignDetails(c, 1), 0);
  EXPECT_FALSE(engine::computeTypicalSection(session));
  EXPECT_TRUE(reporter.errors.isEmpty());
}

}  // namespace
