#include "engine/modvariables.h"

#include "db/connection.h"
#include "tests/testsupport.h"

#include <gtest/gtest.h>

#include <clocale>
#include <vector>

namespace {

struct EvalCase {
  const char* formula;
  float value;
};

void expectValues(engine::modVariables& vars, const std::vector<EvalCase>& cases) {
  for (const EvalCase& c : cases)
    EXPECT_FLOAT_EQ(vars.EvaluateFormula(QString::fromUtf8(c.formula)), c.value)
        << "formula: " << c.formula;
}

struct TextCase {
  const char* text;
  const char* reduced;
};

void expectReduced(const std::vector<TextCase>& cases) {
  for (const TextCase& c : cases) {
    engine::modVariables vars;
    QString s = QString::fromUtf8(c.text);
    EXPECT_EQ(vars.ReduceFormulaText(s), QString::fromUtf8(c.reduced)) << "text: " << c.text;
    EXPECT_EQ(s, QString::fromUtf8(c.reduced)) << "text: " << c.text;
  }
}

TEST(EvaluateFormula, ReducesOperatorsInTheFixedOrderNotByArithmeticPrecedence) {
  engine::modVariables vars;
  expectValues(vars, {
                         {"2+3*4", 14},
                         {"(2+3)*4", 20},
                         {"-(2)", -2},
                         {"2*3+4", 10},
                         {"2+3#0", 5},     // + before #: 5#0
                         {"2+3.4#0", 5},   // 5.4#0
                         {"6/2*3", 9},     // / before *
                         {"2*3^2", 18},    // ^ first
                         {"2^2*3", 12},    // ^ first
                         {"3*2/4", 1.5f},  // 3*0.5
                         {"8-6/2", 5},
                         {"7%3*2", 2},  // % before *: 1*2
                         {"2*7%3", 2},  // 2*1
                     });
}

TEST(EvaluateFormula, ChainsGroupToTheRight) {
  engine::modVariables vars;
  expectValues(vars, {
                         {"2^3^2", 512},
                         {"8/4/2", 4},
                         {"10-2-3", 11},
                         {"1-2-3-4", 0},
                         {"7%4%3", 0},
                         {"100/10/5/2", 25},  // 100/(10/(5/2))
                         {"10-2+3", 11},      // the right operand of - stops at +
                         {"1+2+3", 6},
                         {"2*3*4", 24},
                     });
}

TEST(EvaluateFormula, LeadingAndRepeatedSignsBelongToTheNumbers) {
  engine::modVariables vars;
  expectValues(vars, {
                         {"-5-3", -8},
                         {"2*-3", -6},
                         {"2^-1", 0.5f},
                         {"-2*3", -6},
                         {"-2^2", 4},  // the sign is part of the operand
                         {"3--2", 5},
                         {"3+-2", 1},
                         {"3-+2", 1},
                         {"3++2", 5},
                         {"3---2", 1},
                         {"--5", 5},
                         {"+5", 5},
                         {"-0", 0},
                         {"8/-2", -4},
                         {"-8/-2", 4},
                     });
}

TEST(EvaluateFormula, ReducesTheInnermostGroupFirst) {
  engine::modVariables vars;
  expectValues(vars, {
                         {"(1+(2*3))", 7},
                         {"((2+3)*(4-1))", 15},
                         {"2*(3+(4*(5-1)))", 38},
                         {"(10-2)-3", 5},  // the group stops the right grouping
                         {"10-(2-3)", 11},
                         {"(8/4)/2", 1},
                         {"((((7))))", 7},
                         {"-(2-5)", 3},
                     });
}

TEST(EvaluateFormula, RoundsHalvesToEven) {
  engine::modVariables vars;
  expectValues(vars, {
                         {"10.567#2", 10.57f},
                         {"2.5#0", 2},
                         {"3.5#0", 4},
                         {"-2.5#0", -2},
                         {"12.5#0", 12},
                         {"0.125#2", 0.12f},
                         {"0.135#2", 0.14f},
                         {"2.675#2", 2.68f},  // a decimal half, although 2.675 is
                                              // below it in binary
                         {"0.1251#2", 0.13f},
                         {"9.995#2", 10},
                         {"1.2345#9", 1.2345f},
                         {"1.25#1.5", 1.25f},  // 1.5 places round to 2
                         {"1.35#0.5", 1},      // 0.5 places round to 0
                         {"7%4", 3},
                         {"-7%4", -3},  // the sign of the first
                         {"7%-4", 3},
                         {"7.6%4", 0},  // 8%4
                         {"6.5%4", 2},  // 6.5 rounds to 6
                         {"7%2.5", 1},  // 2.5 rounds to 2
                     });
}

TEST(EvaluateFormula, FailedFormulasYieldZero) {
  engine::modVariables vars;
  vars.SetFormulaVariable(QStringLiteral("CL"), 100);
  expectValues(vars, {
                         {"3*$NOSUCH", 0},
                         {"$NOSUCH", 0},
                         {"1E3", 0},
                         {"1e3", 0},
                         {"2+e", 0},
                         {"", 0},
                         {"abc", 0},
                         {"$CL+", 100},  // a missing operand reads as 0
                         {"1/0", 0},
                         {"0/0", 0},
                         {"1/0+5", 0},  // the whole formula fails, not just the operation
                         {"2*(1/0)", 0},
                         {"5%0", 0},
                         {"5%0.4", 0},  // the divisor rounds to 0
                         {"2#-1", 0},
                         {"(-8)^0.5", 0},
                         {"0^-1", 0},
                         {"10^400", 0},
                         {"1000000*1000000000", 0},  // 1E+15 needs an exponent
                         {"1/100000", 0},            // so does 1E-05
                     });
}

TEST(EvaluateFormula, UnbalancedParenthesesEndAsZero) {
  engine::modVariables vars;
  expectValues(vars, {
                         {"(1", 0},
                         {"2+(1", 0},
                         {"((2)", 0},
                         {"(1+(2)", 0},
                         {"1+(2+(3+(4", 0},
                         {"2)", 0},
                         {"((((((((((((((((((((1", 0},
                         {"$NOSUCH-1+2*3", 0},
                     });
}

TEST(EvaluateFormula, FollowsTheRewritingRulesOnOddTexts) {
  engine::modVariables vars;
  expectValues(vars, {
                         {"2*3)", 6},    // one character after the last operand is dropped
                         {"a2*3", 6},    // so is a first character in front of the left operand
                         {"2*()", 0},    // an empty group leaves nothing
                         {"()+(3)", 6},  // ... or the result of the last group reduced before it
                         {"(3)+()", 3},
                         {"1..2+1", 2},  // the longest leading number of "1..2" is 1
                         {".5+.5", 1},
                         {"5.", 5},
                         {"-.5", -0.5f},
                     });
}

TEST(EvaluateFormula, AnIntermediateResultKeepsFifteenDigits) {
  expectReduced({
      {"1/3", "0.333333333333333"},
      {"2/3", "0.666666666666667"},
      {"1/8", "0.125"},
      {"10/4", "2.5"},
      {"0.1+0.2", "0.3"},
      {"100000*1000000000", "100000000000000"},
      {"1/10000", "0.0001"},
      {"2-5", "-3"},
      {"1-1", "0"},
      {"0*-1", "0"},
      {"7%4", "3"},
      {"123456789012%1000000", "789012"},
      {"2.675#2", "2.68"},
      {"10-2-3", "11"},
  });
}

TEST(EvaluateFormula, ReduceRefusesOnceTheStepCounterIsSpent) {
  engine::modVariables vars;
  QString unbalanced = QStringLiteral("2+(1");
  vars.ReduceFormulaText(unbalanced);
  QString s = QStringLiteral("1+1");
  EXPECT_EQ(vars.ReduceFormulaText(s), QString());
  EXPECT_EQ(s, QStringLiteral("1+1"));
  EXPECT_FLOAT_EQ(vars.EvaluateFormula(QStringLiteral("1+1")), 2);  // a new evaluation starts over
}

TEST(EvaluateFormula, ReduceLeavesNothingWhenTheArithmeticFails) {
  engine::modVariables vars;
  QString s = QStringLiteral("1+1/0");
  EXPECT_EQ(vars.ReduceFormulaText(s), QString());
  EXPECT_TRUE(s.isEmpty());
}

TEST(FormulaVariables, ValuesAreWrittenWithUpToSevenDigits) {
  const struct {
    float value;
    const char* text;
  } cases[] = {
      {0.1f, "0.1"},
      {1234567.0f, "1234567"},
      {100.5f, "100.5"},
      {251.2f, "251.2"},
      {-2.5f, "-2.5"},
      {0.0001f, "0.0001"},
      {-0.0f, "0"},
      {1.0f / 3.0f, "0.3333333"},
      {12345678.0f, "1.234568E+07"},
      {0.00001f, "1E-05"},
      {1e10f, "1E+10"},
  };
  engine::modVariables vars;
  for (const auto& c : cases) {
    vars.SetFormulaVariable(QStringLiteral("X"), c.value);
    EXPECT_EQ(vars.SubstituteFormulaVariables(QStringLiteral("$X")), QString::fromLatin1(c.text))
        << c.text;
  }
}

TEST(FormulaVariables, ValuesNeedingAnExponentMakeFormulasFail) {
  engine::modVariables vars;
  vars.SetFormulaVariable(QStringLiteral("BIG"), 12345678.0f);
  vars.SetFormulaVariable(QStringLiteral("TINY"), 0.00001f);
  vars.SetFormulaVariable(QStringLiteral("ONE"), 1.0f);
  EXPECT_EQ(vars.EvaluateFormula(QStringLiteral("$BIG+$ONE")), 0.0f);
  EXPECT_EQ(vars.EvaluateFormula(QStringLiteral("$TINY+$ONE")), 0.0f);
  EXPECT_EQ(vars.EvaluateFormula(QStringLiteral("$ONE+$ONE")), 2.0f);
}

TEST(FormulaVariables, NumberTextsIgnoreTheLocale) {
  const char* previous = std::setlocale(LC_NUMERIC, nullptr);
  const std::string saved = previous ? previous : "C";
  bool switched = false;
  for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8"})
    if (std::setlocale(LC_NUMERIC, name)) {
      switched = true;
      break;
    }
  engine::modVariables vars;
  vars.SetFormulaVariable(QStringLiteral("X"), 2.5f);
  const QString text = vars.SubstituteFormulaVariables(QStringLiteral("$X"));
  QString reduced = QStringLiteral("1/4");
  vars.ReduceFormulaText(reduced);
  const float value = vars.EvaluateFormula(QStringLiteral("$X+0.25"));
  std::setlocale(LC_NUMERIC, saved.c_str());
  EXPECT_EQ(text, QStringLiteral("2.5"));
  EXPECT_EQ(reduced, QStringLiteral("0.25"));
  EXPECT_FLOAT_EQ(value, 2.75f);
  if (!switched) GTEST_SKIP() << "no comma-decimal locale installed; checked in the C locale";
}

TEST(FormulaVariables, NamesMatchWithoutRegardToCase) {
  engine::modVariables vars;
  vars.SetFormulaVariable(QStringLiteral("CL"), 100);
  vars.SetFormulaVariable(QStringLiteral("SRS_RIGHT"), 2.5f);
  expectValues(vars, {{"$cl+1", 101}, {"$Cl+1", 101}, {"$SRS_Right", 2.5f}, {"$srs_right", 2.5f}});
  EXPECT_EQ(vars.SubstituteFormulaVariables(QStringLiteral("$SRS_Right*2")),
            QStringLiteral("2.5*2"));
}

TEST(FormulaVariables, LongerNamesAreReplacedFirstWhateverTheSetOrder) {
  for (bool shortFirst : {true, false}) {
    engine::modVariables vars;
    if (shortFirst) vars.SetFormulaVariable(QStringLiteral("LP"), 1);
    vars.SetFormulaVariable(QStringLiteral("LP_Off"), 5);
    if (!shortFirst) vars.SetFormulaVariable(QStringLiteral("LP"), 1);
    EXPECT_FLOAT_EQ(vars.EvaluateFormula(QStringLiteral("$LP_Off")), 5) << shortFirst;
    EXPECT_FLOAT_EQ(vars.EvaluateFormula(QStringLiteral("$LP+$LP_Off")), 6) << shortFirst;
    EXPECT_EQ(vars.SubstituteFormulaVariables(QStringLiteral("$LP_Off-$LP")),
              QStringLiteral("5-1"));
    ASSERT_EQ(vars.variables().size(), 2u);
    EXPECT_EQ(vars.variables()[0].Name, QStringLiteral("LP_Off"));
  }
}

TEST(FormulaVariables, TableIsOrderedByNameLengthThenBySetOrder) {
  engine::modVariables vars;
  for (const char* name : {"B", "CCC", "A", "DD", "EEE", "FF"})
    vars.SetFormulaVariable(QString::fromLatin1(name), 1);
  QStringList names;
  for (const engine::FormulaVariable& v : vars.variables()) names << v.Name;
  EXPECT_EQ(names, QStringList({QStringLiteral("CCC"), QStringLiteral("EEE"), QStringLiteral("DD"),
                                QStringLiteral("FF"), QStringLiteral("B"), QStringLiteral("A")}));
}

TEST(FormulaVariables, SettingANameAgainKeepsCountAndOrder) {
  engine::modVariables vars;
  vars.SetFormulaVariable(QStringLiteral("BED_WIDTH"), 6);
  vars.SetFormulaVariable(QStringLiteral("CL"), 100);
  vars.SetFormulaVariable(QStringLiteral("FSD"), 2);
  vars.SetFormulaVariable(QStringLiteral("CL"), 250.5f);
  ASSERT_EQ(vars.variables().size(), 3u);
  EXPECT_EQ(vars.variables()[0].Name, QStringLiteral("BED_WIDTH"));
  EXPECT_EQ(vars.variables()[1].Name, QStringLiteral("FSD"));
  EXPECT_EQ(vars.variables()[2].Name, QStringLiteral("CL"));
  EXPECT_EQ(vars.variables()[2].Value, 250.5f);
  EXPECT_FLOAT_EQ(vars.EvaluateFormula(QStringLiteral("$CL+$FSD")), 252.5f);
}

TEST(FormulaVariables, NamesDifferingOnlyInCaseAreSeparateButTheFirstSetWins) {
  engine::modVariables vars;
  vars.SetFormulaVariable(QStringLiteral("SRS_RIGHT"), 2);
  vars.SetFormulaVariable(QStringLiteral("SRS_Right"), 3);
  EXPECT_EQ(vars.variables().size(), 2u);
  EXPECT_FLOAT_EQ(vars.EvaluateFormula(QStringLiteral("$srs_right")), 2);
}

TEST(FormulaVariables, ResetForgetsEveryName) {
  engine::modVariables vars;
  vars.SetFormulaVariable(QStringLiteral("CL"), 100);
  vars.ResetFormulaVariables();
  EXPECT_TRUE(vars.variables().empty());
  EXPECT_EQ(vars.SubstituteFormulaVariables(QStringLiteral("$CL+1")), QStringLiteral("$CL+1"));
  EXPECT_EQ(vars.EvaluateFormula(QStringLiteral("$CL+1")), 0.0f);
}

TEST(FormulaVariables, SubstitutionReducesNothingAndKeepsUnknownNames) {
  engine::modVariables vars;
  vars.SetFormulaVariable(QStringLiteral("CL"), 100);
  vars.SetFormulaVariable(QStringLiteral("W"), -1.5f);
  EXPECT_EQ(vars.SubstituteFormulaVariables(QStringLiteral("$CL*2-$W+$NOSUCH")),
            QStringLiteral("100*2--1.5+$NOSUCH"));
  EXPECT_FLOAT_EQ(vars.EvaluateFormula(QStringLiteral("$CL*2-$W")), 201.5f);
}

TEST(FormulaVariables, TheTableGrowsPastOneHundredTwentyEightNames) {
  engine::modVariables vars;
  for (int k = 0; k < 300; ++k) vars.SetFormulaVariable(QStringLiteral("V%1").arg(k), float(k));
  EXPECT_EQ(vars.variables().size(), 300u);
  EXPECT_FLOAT_EQ(vars.EvaluateFormula(QStringLiteral("$V299+$V7+$V150")), 456);
}

// The canal template that new projects get, evaluated the way the design section is built:
// each row's point becomes $LP_Off/$LP_Val or $RP_Off/$RP_Val for the rows after it.
TEST(FormulaVariables, TheCanalTemplateGivesTheDesignedSection) {
  testsupport::TempProject project;
  db::Connection& c = project.create(false);
  struct Row {
    QString lcr, offset, value;
  };
  std::vector<Row> rows;
  db::Statement st = c.prepare(
      QStringLiteral("SELECT LCR, Offset, Value FROM DesignExp WHERE DesignID=1 ORDER BY Serial"));
  while (st.step()) rows.push_back({st.text(0), st.text(1), st.text(2)});
  ASSERT_EQ(rows.size(), 7u);

  struct Point {
    float offset, level;
  };
  const struct {
    float bedWidth, fsd, freeboard, innerSlope, bankWidth, cl;
    std::vector<Point> left;
  } cases[] = {
      {6.0f, 2.0f, 0.6f, 1.5f, 4.0f, 251.0f, {{0, 251}, {3, 251}, {6.9f, 253.6f}, {10.9f, 253.6f}}},
      {5.5f,
       1.9f,
       0.6f,
       1.5f,
       4.0f,
       250.7f,
       {{0, 250.7f}, {2.75f, 250.7f}, {6.5f, 253.2f}, {10.5f, 253.2f}}},
      {4.0f,
       1.6f,
       0.5f,
       1.5f,
       3.0f,
       249.9f,
       {{0, 249.9f}, {2, 249.9f}, {5.15f, 252.0f}, {8.15f, 252.0f}}},
  };
  for (const auto& k : cases) {
    engine::modVariables vars;
    vars.SetFormulaVariable(QStringLiteral("BED_WIDTH"), k.bedWidth);
    vars.SetFormulaVariable(QStringLiteral("FSD"), k.fsd);
    vars.SetFormulaVariable(QStringLiteral("FREEBOARD"), k.freeboard);
    vars.SetFormulaVariable(QStringLiteral("INNER_SLOPE"), k.innerSlope);
    vars.SetFormulaVariable(QStringLiteral("BANK_WIDTH"), k.bankWidth);
    vars.SetFormulaVariable(QStringLiteral("CL"), k.cl);
    std::vector<Point> left, right;
    float lpOff = 0, rpOff = 0;
    for (const Row& row : rows) {
      if (row.lcr == QLatin1String("C")) {
        const float v = vars.EvaluateFormula(row.value);
        left.push_back({lpOff, v});
        right.push_back({rpOff, v});
        vars.SetFormulaVariable(QStringLiteral("LP_Off"), lpOff);
        vars.SetFormulaVariable(QStringLiteral("LP_Val"), v);
        vars.SetFormulaVariable(QStringLiteral("RP_Off"), rpOff);
        vars.SetFormulaVariable(QStringLiteral("RP_Val"), v);
        continue;
      }
      const bool isLeft = row.lcr == QLatin1String("L");
      const float off = vars.EvaluateFormula(row.offset);
      const float val = vars.EvaluateFormula(row.value);
      (isLeft ? lpOff : rpOff) = off;
      vars.SetFormulaVariable(isLeft ? QStringLiteral("LP_Off") : QStringLiteral("RP_Off"), off);
      vars.SetFormulaVariable(isLeft ? QStringLiteral("LP_Val") : QStringLiteral("RP_Val"), val);
      (isLeft ? left : right).push_back({off, val});
    }
    ASSERT_EQ(left.size(), k.left.size());
    ASSERT_EQ(right.size(), k.left.size());
    for (std::size_t p = 0; p < left.size(); ++p) {
      EXPECT_NEAR(left[p].offset, k.left[p].offset, 1e-5) << "bed " << k.bedWidth << " point " << p;
      EXPECT_NEAR(left[p].level, k.left[p].level, 1e-4) << "bed " << k.bedWidth << " point " << p;
      EXPECT_NEAR(right[p].offset, k.left[p].offset, 1e-5) << "bed " << k.bedWidth;
      EXPECT_NEAR(right[p].level, k.left[p].level, 1e-4) << "bed " << k.bedWidth;
    }
  }
}

}  // namespace
