#include "engine/modvariables.h"
#include "tests/testsupport.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <span>

namespace {

struct EvalCase {
  const char* formula;
  float value;
};

// Evaluates each formula with CL=100, SRS_RIGHT=2.5, BIG=12345678, TINY=0.00001 and ONE=1 set.
void expectValues(std::span<const EvalCase> cases) {
  engine::modVariables vars;
  for (const auto& [name, value] : {std::pair{"CL", 100.0f},
                                    {"SRS_RIGHT", 2.5f},
                                    {"BIG", 12345678.0f},
                                    {"TINY", 0.00001f},
                                    {"ONE", 1.0f}})
    vars.SetFormulaVariable(QString::fromLatin1(name), value);
  for (const EvalCase& c : cases)
    EXPECT_FLOAT_EQ(vars.EvaluateFormula(QString::fromUtf8(c.formula)), c.value)
        << "formula: " << c.formula;
}

// + before #, / before *, % before *, ^ first.
TEST(EvaluateFormula, ReducesOperatorsInTheFixedOrderNotByArithmeticPrecedence) {
  const EvalCase cases[] = {{"2+3*4", 14}, {"(2+3)*4", 20}, {"-(2)", -2},  {"2+3.4#0", 5},
                            {"6/2*3", 9},  {"2*3^2", 18},   {"2^2*3", 12}, {"3*2/4", 1.5f},
                            {"8-6/2", 5},  {"7%3*2", 2},    {"2*7%3", 2}};
  expectValues(cases);
}

// 100/10/5/2 is 100/(10/(5/2)); the right operand of - stops at +.
TEST(EvaluateFormula, ChainsGroupToTheRight) {
  const EvalCase cases[] = {{"2^3^2", 512}, {"8/4/2", 4},       {"10-2-3", 11}, {"1-2-3-4", 0},
                            {"7%4%3", 0},   {"100/10/5/2", 25}, {"10-2+3", 11}, {"2*3*4", 24}};
  expectValues(cases);
}

// -2^2 is 4: the sign is part of the operand.
TEST(EvaluateFormula, LeadingAndRepeatedSignsBelongToTheNumbers) {
  const EvalCase cases[] = {{"-5-3", -8}, {"2*-3", -6}, {"2^-1", 0.5f}, {"-2^2", 4},
                            {"3--2", 5},  {"3+-2", 1},  {"3-+2", 1},    {"3---2", 1},
                            {"--5", 5},   {"+5", 5},    {"-8/-2", 4}};
  expectValues(cases);
}

// A group stops the right grouping.
TEST(EvaluateFormula, ReducesTheInnermostGroupFirst) {
  const EvalCase cases[] = {{"(1+(2*3))", 7}, {"2*(3+(4*(5-1)))", 38}, {"(10-2)-3", 5},
                            {"10-(2-3)", 11}, {"(8/4)/2", 1},          {"((((7))))", 7},
                            {"-(2-5)", 3}};
  expectValues(cases);
}

// # rounds half to even on decimal halves (2.675 is below its half in binary); fractional
// places round to whole ones, and % rounds its operands and keeps the sign of the first.
TEST(EvaluateFormula, RoundsHalvesToEven) {
  const EvalCase cases[] = {
      {"10.567#2", 10.57f},  {"2.5#0", 2},        {"3.5#0", 4},        {"-2.5#0", -2},
      {"0.125#2", 0.12f},    {"2.675#2", 2.68f},  {"0.1251#2", 0.13f}, {"9.995#2", 10},
      {"1.2345#9", 1.2345f}, {"1.25#1.5", 1.25f}, {"1.35#0.5", 1},     {"-7%4", -3},
      {"7%-4", 3},           {"7.6%4", 0},        {"6.5%4", 2},        {"7%2.5", 1}};
  expectValues(cases);
}

// The whole formula fails, not just the operation; results needing an exponent (1E+15,
// 1E-05), in the arithmetic or in a variable's text, fail too, while a missing operand reads
// as 0.
TEST(EvaluateFormula, FailedFormulasYieldZero) {
  const EvalCase cases[] = {
      {"3*$NOSUCH", 0},     {"1E3", 0},        {"1e3", 0},      {"2+e", 0},        {"", 0},
      {"abc", 0},           {"$CL+", 100},     {"1/0+5", 0},    {"2*(1/0)", 0},    {"5%0.4", 0},
      {"2#-1", 0},          {"(-8)^0.5", 0},   {"0^-1", 0},     {"10^400", 0},     {"1/100000", 0},
      {"$NOSUCH-1+2*3", 0}, {"(1", 0},         {"2+(1", 0},     {"1+(2+(3+(4", 0}, {"2)", 0},
      {"$BIG+$ONE", 0},     {"$TINY+$ONE", 0}, {"$ONE+$ONE", 2}};
  const EvalCase longCases[] = {{"1000000*1000000000", 0}, {"((((((((((((((((((((1", 0}};
  expectValues(cases);
  expectValues(longCases);
}

// One character after the last operand is dropped, and so is a first one in front of the left
// operand; an empty group leaves nothing, or the last group reduced before it; "1..2" reads 1.
TEST(EvaluateFormula, FollowsTheRewritingRulesOnOddTexts) {
  const EvalCase cases[] = {{"2*3)", 6},   {"a2*3", 6},  {"2*()", 0}, {"()+(3)", 6}, {"(3)+()", 3},
                            {"1..2+1", 2}, {".5+.5", 1}, {"5.", 5},   {"-.5", -0.5f}};
  expectValues(cases);
}

struct TextCase {
  const char* text;
  const char* reduced;
};

TEST(EvaluateFormula, AnIntermediateResultKeepsFifteenDigits) {
  const TextCase cases[] = {{"1/3", "0.333333333333333"},
                            {"2/3", "0.666666666666667"},
                            {"10/4", "2.5"},
                            {"0.1+0.2", "0.3"},
                            {"1/10000", "0.0001"},
                            {"1-1", "0"},
                            {"0*-1", "0"},
                            {"2.675#2", "2.68"},
                            {"100000*1000000000", "100000000000000"},
                            {"123456789012%1000000", "789012"},
                            {"1+1/0", ""}};  // failed arithmetic leaves nothing
  for (const auto& c : cases) {
    engine::modVariables vars;
    QString s = QString::fromUtf8(c.text);
    EXPECT_EQ(vars.ReduceFormulaText(s), QString::fromUtf8(c.reduced)) << "text: " << c.text;
    EXPECT_EQ(s, QString::fromUtf8(c.reduced)) << "text: " << c.text;
  }
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

// Each "(()())" doubles the working text; thirty of them would need gigabytes. The evaluator
// gives up on texts beyond its bounds, says so, and takes them as 0; a formula within
// the bounds is not refused.
TEST(EvaluateFormula, RefusesTextsBeyondItsBounds) {
  QString doubling;
  for (int k = 0; k < 30; ++k) doubling += QStringLiteral("(()())");
  doubling += QStringLiteral("(1)");
  QString sum = QStringLiteral("1");
  while (sum.size() <= engine::kMaxFormulaLength) sum += QStringLiteral("+1");
  const struct {
    QString formula;
    engine::FormulaRefusal refusal;
  } cases[] = {{doubling, engine::FormulaRefusal::WorkingTextTooLong},
               {sum, engine::FormulaRefusal::FormulaTooLong},
               {sum.left(engine::kMaxFormulaLength - 1), engine::FormulaRefusal::None}};
  engine::modVariables vars;
  for (const auto& k : cases) {
    const float value = vars.EvaluateFormula(k.formula);
    EXPECT_EQ(vars.refusal(), k.refusal) << k.formula.size();
    EXPECT_EQ(value, k.refusal == engine::FormulaRefusal::None
                         ? static_cast<float>(engine::kMaxFormulaLength / 2)
                         : 0.0f);
  }
  QString text = doubling;
  EXPECT_EQ(vars.ReduceFormulaText(text), QString());
  EXPECT_EQ(vars.refusal(), engine::FormulaRefusal::WorkingTextTooLong);
}

TEST(FormulaVariables, ValuesAreWrittenWithUpToSevenDigits) {
  const struct {
    float value;
    const char* text;
  } cases[] = {{0.1f, "0.1"},
               {1234567.0f, "1234567"},
               {251.2f, "251.2"},
               {-2.5f, "-2.5"},
               {0.0001f, "0.0001"},
               {-0.0f, "0"},
               {1.0f / 3.0f, "0.3333333"},
               {12345678.0f, "1.234568E+07"},
               {0.00001f, "1E-05"}};
  engine::modVariables vars;
  for (const auto& c : cases) {
    vars.SetFormulaVariable(QStringLiteral("X"), c.value);
    EXPECT_EQ(vars.SubstituteFormulaVariables(QStringLiteral("$X")), QString::fromLatin1(c.text))
        << c.text;
  }
}

TEST(FormulaVariables, NumberTextsIgnoreTheLocale) {
  testsupport::CommaDecimalLocale german;
  if (!german.active()) GTEST_SKIP() << "no comma-decimal locale installed";
  engine::modVariables vars;
  vars.SetFormulaVariable(QStringLiteral("X"), 2.5f);
  const QString text = vars.SubstituteFormulaVariables(QStringLiteral("$X"));
  QString reduced = QStringLiteral("1/4");
  vars.ReduceFormulaText(reduced);
  EXPECT_EQ(text + QLatin1Char('|') + reduced, QStringLiteral("2.5|0.25"));
  EXPECT_FLOAT_EQ(vars.EvaluateFormula(QStringLiteral("$X+0.25")), 2.75f);
}

TEST(FormulaVariables, NamesMatchWithoutRegardToCase) {
  const EvalCase cases[] = {
      {"$cl+1", 101}, {"$Cl+1", 101}, {"$SRS_Right", 2.5f}, {"$srs_right", 2.5f}};
  expectValues(cases);
  engine::modVariables vars;
  vars.SetFormulaVariable(QStringLiteral("SRS_RIGHT"), 2.5f);
  EXPECT_EQ(vars.SubstituteFormulaVariables(QStringLiteral("$SRS_Right*2")),
            QStringLiteral("2.5*2"));
}

TEST(FormulaVariables, LongerNamesAreReplacedFirstWhateverTheSetOrder) {
  for (bool shortFirst : {true, false}) {
    engine::modVariables vars;
    if (shortFirst) vars.SetFormulaVariable(QStringLiteral("LP"), 1);
    vars.SetFormulaVariable(QStringLiteral("LP_Off"), 5);
    if (!shortFirst) vars.SetFormulaVariable(QStringLiteral("LP"), 1);
    EXPECT_FLOAT_EQ(vars.EvaluateFormula(QStringLiteral("$LP+$LP_Off")), 6) << shortFirst;
    EXPECT_EQ(vars.SubstituteFormulaVariables(QStringLiteral("$LP_Off-$LP")),
              QStringLiteral("5-1"));
  }
}

QStringList names(const engine::modVariables& vars) {
  QStringList out;
  for (const engine::FormulaVariable& v : vars.variables()) out << v.Name;
  return out;
}

// Setting a name again keeps its place and takes the new value.
TEST(FormulaVariables, TableIsOrderedByNameLengthThenBySetOrder) {
  engine::modVariables vars;
  for (const char* name : {"B", "CCC", "A", "DD", "EEE", "FF", "A"})
    vars.SetFormulaVariable(QString::fromLatin1(name), name[0] == 'A' ? 250.5f : 2);
  EXPECT_EQ(names(vars),
            QStringList({QStringLiteral("CCC"), QStringLiteral("EEE"), QStringLiteral("DD"),
                         QStringLiteral("FF"), QStringLiteral("B"), QStringLiteral("A")}));
  EXPECT_FLOAT_EQ(vars.EvaluateFormula(QStringLiteral("$A+$B")), 252.5f);
}

TEST(FormulaVariables, NamesDifferingOnlyInCaseAreSeparateButTheFirstSetWins) {
  engine::modVariables vars;
  vars.SetFormulaVariable(QStringLiteral("SRS_RIGHT"), 2);
  vars.SetFormulaVariable(QStringLiteral("SRS_Right"), 3);
  EXPECT_EQ(vars.variables().size(), 2u);
  EXPECT_FLOAT_EQ(vars.EvaluateFormula(QStringLiteral("$srs_right")), 2);
  vars.ResetFormulaVariables();
  EXPECT_TRUE(vars.variables().empty());
  EXPECT_EQ(vars.EvaluateFormula(QStringLiteral("$SRS_RIGHT+1")), 0.0f);
}

TEST(FormulaVariables, SubstitutionReducesNothingAndKeepsUnknownNames) {
  engine::modVariables vars;
  vars.SetFormulaVariable(QStringLiteral("CL"), 100);
  vars.SetFormulaVariable(QStringLiteral("W"), -1.5f);
  EXPECT_EQ(vars.SubstituteFormulaVariables(QStringLiteral("$CL*2-$W+$NOSUCH")),
            QStringLiteral("100*2--1.5+$NOSUCH"));
}

TEST(FormulaVariables, TheTableGrowsPastOneHundredTwentyEightNames) {
  engine::modVariables vars;
  for (int k = 0; k < 300; ++k) vars.SetFormulaVariable(QStringLiteral("V%1").arg(k), float(k));
  EXPECT_EQ(vars.variables().size(), 300u);
  EXPECT_FLOAT_EQ(vars.EvaluateFormula(QStringLiteral("$V299+$V7+$V150")), 456);
}

}  // namespace
