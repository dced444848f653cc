#include "cli/cli.h"
#include "tests/cli/clirunner.h"
#include "tests/testsupport.h"

#include <QFile>

#include <gtest/gtest.h>

namespace {

using testsupport::runCli;

class ExportCommandTest : public ::testing::Test {
 protected:
  ExportCommandTest() { project.create(true); }

  QString file() const { return project.path(); }
  QString out(const QString& name) const { return project.dir().filePath(name); }

  static QByteArray bytes(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
  }

  testsupport::TempProject project;
};

TEST_F(ExportCommandTest, CsvOfADemoSectionIsWrittenWithItsRowsAndTotals) {
  const QString csv = out(QStringLiteral("section 1.csv"));
  const auto r = runCli({QStringLiteral("export"), file(), QStringLiteral("--section"),
                         QStringLiteral("1"), QStringLiteral("--output"), csv});
  ASSERT_EQ(r.code, cli::kOk) << r.err.toStdString();
  EXPECT_TRUE(r.out.contains(QLatin1String("Wrote the quantity sheet of section 1")))
      << r.out.toStdString();

  const QStringList lines =
      QString::fromUtf8(bytes(csv)).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
  const int chainages = testsupport::rowCount(project.connection(), QStringLiteral("DesignQty"),
                                              QStringLiteral("SectionID=1"));
  ASSERT_GT(chainages, 1);
  ASSERT_EQ(lines.size(), chainages + 2);
  EXPECT_EQ(lines.first(), QStringLiteral("Chainage,Cut Area,Fill Area,Cut Volume,Fill Volume"));
  EXPECT_TRUE(lines.last().startsWith(QLatin1String(",,,")));
  EXPECT_EQ(lines.last().split(QLatin1Char(',')).size(), 5);
}

TEST_F(ExportCommandTest, WorkbookIsAZipFile) {
  const QString xlsx = out(QStringLiteral("q.xlsx"));
  const auto r =
      runCli({QStringLiteral("export"), file(), QStringLiteral("--section"), QStringLiteral("2"),
              QStringLiteral("--output"), xlsx, QStringLiteral("--executed")});
  ASSERT_EQ(r.code, cli::kOk) << r.err.toStdString();
  EXPECT_TRUE(bytes(xlsx).startsWith("PK\x03\x04"));
}

TEST_F(ExportCommandTest, InvalidLevelsExitOneWithTheErrorLinesAndNoFile) {
  project.connection().exec(QStringLiteral(
      "UPDATE Initial SET Level=300 WHERE ID=(SELECT MIN(ID) FROM Initial WHERE SectionID=1)"));
  const QString csv = out(QStringLiteral("q.csv"));
  const auto r = runCli({QStringLiteral("export"), file(), QStringLiteral("--section"),
                         QStringLiteral("1"), QStringLiteral("--output"), csv});
  EXPECT_EQ(r.code, cli::kDataProblems);
  EXPECT_TRUE(r.err.contains(QLatin1String("Initial Levels"))) << r.err.toStdString();
  EXPECT_TRUE(r.err.contains(QLatin1String("Nothing was exported")));
  EXPECT_FALSE(QFile::exists(csv));
}

TEST_F(ExportCommandTest, UsageErrorsExitTwo) {
  const QString xlsx = out(QStringLiteral("q.xlsx"));
  const QStringList cases[] = {
      {QStringLiteral("export"), file(), QStringLiteral("--section"), QStringLiteral("1"),
       QStringLiteral("--output"), out(QStringLiteral("q.txt"))},
      {QStringLiteral("export"), file(), QStringLiteral("--section"), QStringLiteral("1")},
      {QStringLiteral("export"), file(), QStringLiteral("--output"), xlsx},
      {QStringLiteral("export"), QStringLiteral("--section"), QStringLiteral("1"),
       QStringLiteral("--output"), xlsx},
      {QStringLiteral("export"), file(), QStringLiteral("--section"), QStringLiteral("x"),
       QStringLiteral("--output"), xlsx},
      {QStringLiteral("export"), file(), QStringLiteral("--section"), QStringLiteral("99"),
       QStringLiteral("--output"), xlsx},
  };
  for (const QStringList& args : cases) {
    const auto r = runCli(args);
    EXPECT_EQ(r.code, cli::kUsage) << args.join(QLatin1Char(' ')).toStdString();
    EXPECT_FALSE(r.err.isEmpty());
  }
  EXPECT_FALSE(QFile::exists(xlsx));
}

TEST_F(ExportCommandTest, MissingProjectOrUnwritableOutputExitThree) {
  const auto missing = runCli({QStringLiteral("export"), out(QStringLiteral("none.delvane")),
                               QStringLiteral("--section"), QStringLiteral("1"),
                               QStringLiteral("--output"), out(QStringLiteral("q.csv"))});
  EXPECT_EQ(missing.code, cli::kCannotOpen);
  EXPECT_TRUE(missing.err.contains(QLatin1String("none.delvane"))) << missing.err.toStdString();

  const QString unwritable = out(QStringLiteral("no such folder/q.csv"));
  const auto r = runCli({QStringLiteral("export"), file(), QStringLiteral("--section"),
                         QStringLiteral("1"), QStringLiteral("--output"), unwritable});
  EXPECT_EQ(r.code, cli::kCannotOpen);
  EXPECT_TRUE(r.err.contains(unwritable + QStringLiteral(" cannot be written: ")))
      << r.err.toStdString();
}

}  // namespace
