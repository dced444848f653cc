#include "tests/cli/clirunner.h"
#include "tests/testsupport.h"

#include <QFile>

#include <gtest/gtest.h>

using testsupport::runCli;

namespace {

TEST(CliNew, CreatesDemoAndListsItsSections) {
  QTemporaryDir dir;
  const QString file = dir.filePath(QStringLiteral("demo.delvane"));
  auto made = runCli({QStringLiteral("new"), file, QStringLiteral("--demo")});
  ASSERT_EQ(made.code, 0) << made.err.toStdString();
  auto listed = runCli({QStringLiteral("sections"), file});
  ASSERT_EQ(listed.code, 0) << listed.err.toStdString();
  EXPECT_EQ(listed.out, QStringLiteral("1\tRight Main Canal\t1\tRMC km 0.000 to 4.000\n"
                                       "1\tRight Main Canal\t2\tRMC km 4.000 to 7.000\n"));
}

TEST(CliNew, RefusesToOverwrite) {
  QTemporaryDir dir;
  const QString file = dir.filePath(QStringLiteral("p.delvane"));
  ASSERT_EQ(runCli({QStringLiteral("new"), file}).code, 0);
  auto again = runCli({QStringLiteral("new"), file});
  EXPECT_EQ(again.code, 3);
  EXPECT_TRUE(again.err.contains(QStringLiteral("already exists"))) << again.err.toStdString();
}

TEST(CliExitCodes, UsageAndUnopenableFiles) {
  QTemporaryDir dir;
  struct Case {
    QStringList args;
    int code;
    const char* errText;
  } cases[] = {
      {{}, 2, "Usage:"},
      {{QStringLiteral("frobnicate")}, 2, "unknown command"},
      {{QStringLiteral("sections")}, 2, "give exactly one FILE"},
      {{QStringLiteral("sections"), QStringLiteral("--bogus"), QStringLiteral("x")}, 2, "bogus"},
      {{QStringLiteral("sections"), dir.filePath(QStringLiteral("missing.delvane"))},
       3,
       "does not exist"},
  };
  for (const Case& c : cases) {
    auto r = runCli(c.args);
    EXPECT_EQ(r.code, c.code) << c.args.join(QLatin1Char(' ')).toStdString();
    EXPECT_TRUE(r.err.contains(QString::fromLatin1(c.errText))) << r.err.toStdString();
  }
  auto help = runCli({QStringLiteral("sections"), QStringLiteral("--help")});
  EXPECT_EQ(help.code, 0);
  EXPECT_TRUE(help.out.contains(QStringLiteral("FILE")));
}

}  // namespace
