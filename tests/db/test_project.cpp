#include "db/project.h"
#include "db/schema.h"
#include "tests/testsupport.h"

#include <QFile>

#include <gtest/gtest.h>

#include <vector>

using testsupport::rowCount;
using testsupport::TempProject;

namespace {

// The first row of a query, every column as a number.
std::vector<double> firstRow(db::Connection& c, const char* sql) {
  db::Statement st = c.prepare(QString::fromLatin1(sql));
  std::vector<double> row;
  if (st.step())
    for (int i = 0; i < st.columnCount(); ++i) row.push_back(st.real(i));
  return row;
}

// A file of text, an SQLite database without the project tables and a file that is not there;
// the last must not be created.
TEST(OpenProject, ForeignAndMissingFilesAreRefusedNamingFileAndReason) {
  TempProject project;
  const QString notes = project.path(QStringLiteral("notes.delvane"));
  QFile f(notes);
  ASSERT_TRUE(f.open(QIODevice::WriteOnly));
  f.write(QByteArray(4096, 'x'));
  f.close();
  const QString other = project.path(QStringLiteral("other.delvane"));
  db::Connection::open(other, db::Connection::Mode::Create)
      ->exec(QStringLiteral("CREATE TABLE Package (ID INTEGER)"));
  const QString absent = project.path(QStringLiteral("absent.delvane"));
  const struct {
    QString path;
    QStringList mentioned;
  } cases[] = {
      {notes, {notes, QStringLiteral("not an SQLite database")}},
      {other, {QStringLiteral("is not a Delvane project file"), QStringLiteral("Sections")}},
      {absent, {}}};
  for (const auto& k : cases) {
    try {
      db::openProject(k.path);
      ADD_FAILURE() << "opened " << k.path.toStdString();
    } catch (const db::Error& e) {
      for (const QString& text : k.mentioned) EXPECT_TRUE(e.message().contains(text)) << e.what();
    }
  }
  EXPECT_FALSE(QFile::exists(absent));
}

TEST(OpenProject, AddsTheChainageIndexesToAForeignFile) {
  TempProject project;
  project.create().exec(QStringLiteral("DROP INDEX idx_Initial_SectionChainage"));
  auto reopened = db::openProject(project.path());
  EXPECT_EQ(firstRow(*reopened,
                     "SELECT COUNT(*) FROM sqlite_master WHERE type='index' AND name "
                     "LIKE 'idx_%'"),
            std::vector<double>{5});
}

// Design 1 with its profile and two quantity columns over both sides, no packages; a second
// creation is refused and leaves the file as it was.
TEST(CreateProject, TemplateHasDesignOneAndIsNeverOverwritten) {
  TempProject project;
  db::Connection& c = project.create();
  EXPECT_THROW(db::createProject(project.path(), false), db::Error);
  EXPECT_EQ(firstRow(c,
                     "SELECT (SELECT COUNT(*) FROM DesignExp), (SELECT COUNT(*) FROM DesignExp "
                     "WHERE DesignID=1), (SELECT COUNT(*) FROM QtyDefine WHERE DesignID=1 AND "
                     "LRB='B'), (SELECT COUNT(*) FROM DesignList WHERE ID=1), (SELECT COUNT(*) "
                     "FROM Package)"),
            (std::vector<double>{7, 7, 2, 1, 0}));
}

TEST(CreateProject, DemoIsRealisticAndTheSameEveryTime) {
  TempProject project;
  db::Connection& a = project.create(true, QStringLiteral("a.delvane"));
  db::createProject(project.path(QStringLiteral("b.delvane")), true);
  auto b = db::openProject(project.path(QStringLiteral("b.delvane")));
  const char* digest = "SELECT COUNT(*), SUM(Chainage), SUM(Offset), SUM(Level) FROM Initial";
  EXPECT_EQ(firstRow(a, digest), firstRow(*b, digest));
  EXPECT_EQ(rowCount(a, QStringLiteral("Sections")), 2);

  // A few hundred chainages 20 m apart, 15 to 40 readings each, one on the centre line.
  const int chainages =
      rowCount(a, QStringLiteral("(SELECT DISTINCT SectionID, Chainage FROM Initial)"));
  EXPECT_GE(chainages, 200);
  const auto readings = firstRow(
      a,
      "SELECT MIN(n), MAX(n) FROM (SELECT COUNT(*) n FROM Initial GROUP BY SectionID, Chainage)");
  ASSERT_EQ(readings.size(), 2u);
  EXPECT_GE(readings[0], 10);
  EXPECT_LE(readings[1], 40);
  EXPECT_EQ(rowCount(a, QStringLiteral("(SELECT DISTINCT SectionID, Chainage FROM Initial WHERE "
                                       "Offset=0)")),
            chainages);
  EXPECT_GT(rowCount(a, QStringLiteral("Executed"), QStringLiteral("SectionID=1")), 0);
  EXPECT_EQ(rowCount(a, QStringLiteral("Executed"), QStringLiteral("SectionID=2")), 0);
  EXPECT_GE(rowCount(a, QStringLiteral("DesignDetails"), QStringLiteral("SectionID=1")), 2);
  EXPECT_EQ(rowCount(a, QStringLiteral("DesignQty")), chainages);
}

}  // namespace
