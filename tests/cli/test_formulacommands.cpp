#include "tests/cli/clirunner.h"

#include <gtest/gtest.h>

using testsupport::runCli;

namespace {

QStringList words(std::initializer_list<const char*> list) {
  QStringList out;
  for (const char* w : list) out << QString::fromUtf8(w);
  return out;
}

TEST(CliEval, PrintsTheValueOfTheFormula) {
  const struct {
    QStringList args;
    const char* out;
  } cases[] = {
      {words({"eval", "2+3*4"}), "14\n"},
      {words({"eval", "10-2-3"}), "11\n"},
      {words({"eval", "--var", "CL=251.2", "$cl+0.1"}), "251.3\n"},
      {words({"eval", "--var", "LP=1", "--var", "LP_Off=5", "$LP_Off"}), "5\n"},
      {words({"eval", "--var", "X=1", "--var", "X=2", "$X"}), "2\n"},  // the last setting wins
      {words({"eval", "--var", "W=-1.5", "--", "-$W*2"}), "3\n"},
      {words({"eval", "1/3"}), "0.33333334\n"},
      {words({"eval", "3*$NOSUCH"}), "0\n"},
      {words({"eval", "1/0"}), "0\n"},
  };
  for (const auto& c : cases) {
    auto r = runCli(c.args);
    EXPECT_EQ(r.code, 0) << c.args.join(QLatin1Char(' ')).toStdString() << r.err.toStdString();
    EXPECT_EQ(r.out, QString::fromUtf8(c.out)) << c.args.join(QLatin1Char(' ')).toStdString();
  }
}

TEST(CliSubstitute, PrintsTheFormulaWithTheValuesWrittenIn) {
  const struct {
    QStringList args;
    const char* out;
  } cases[] = {
      {words({"substitute", "--var", "CL=100", "--var", "FSD=2.5", "$CL+$fsd*2"}), "100+2.5*2\n"},
      {words({"substitute", "--var", "X=0.1", "$X+$NOSUCH"}), "0.1+$NOSUCH\n"},
      {words({"substitute", "--var", "BIG=12345678", "$BIG"}), "1.234568E+07\n"},
  };
  for (const auto& c : cases) {
    auto r = runCli(c.args);
    EXPECT_EQ(r.code, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, QString::fromUtf8(c.out)) << c.args.join(QLatin1Char(' ')).toStdString();
  }
}

TEST(CliEval, BadVariablesAndMissingFormulasAreUsageErrors) {
  const struct {
    QStringList args;
    const char* errText;
  } cases[] = {
      {words({"eval", "--var", "CL", "$CL"}), "'CL'"},
      {words({"eval", "--var", "CL=abc", "$CL"}), "'CL=abc'"},
      {words({"eval", "--var", "CL=", "$CL"}), "'CL='"},
      {words({"eval", "--var", "=5", "1"}), "'=5'"},
      {words({"substitute", "--var", "X=1,5", "$X"}), "'X=1,5'"},
      {words({"eval"}), "exactly one FORMULA"},
      {words({"eval", "1", "2"}), "exactly one FORMULA"},
  };
  for (const auto& c : cases) {
    auto r = runCli(c.args);
    EXPECT_EQ(r.code, 2) << c.args.join(QLatin1Char(' ')).toStdString();
    EXPECT_TRUE(r.err.contains(QString::fromUtf8(c.errText))) << r.err.toStdString();
    EXPECT_TRUE(r.out.isEmpty());
  }
}

}  // namespace
