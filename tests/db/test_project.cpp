#include "db/project.h"
#include "db/schema.h"
#include "tests/testsupport.h"

#include <QFile>

#include <gtest/gtest.h>

using testsupport::rowCount;
using testsupport::TempProject;

namespace {

// A file of text, and an SQLite database without the project tables.
TEST(OpenProject, ForeignFilesAreRefusedNamingFileAndReason) {
  TempProject project;
  const QString notes = project.path(QStringLiteral("notes.delvane"));
  QFile f(notes);
  ASSERT_TRUE(f.open(QIODevice::WriteOnly));
  f.write(QByteArray(4096, 'x'));
  f.close();
  const QString other = project.path(QStringLiteral("other.delvane"));
  db::Connection::open(other, db::Connection::Mode::Create)
      ->exec(QStringLiteral("CREATE TABLE Package (ID INTEGER)"));
  const struct {
    QString path;
    QStringList mentioned;
  } cases[] = {
      {notes, {notes, QStringLiteral("not an SQLite database")}},
      {other, {QStringLiteral("is not a Delvane project file"), QStringLiteral("Sections")}}};
  for (const auto& k : cases) {
    try {
      db::openProject(k.path);
      ADD_FAILURE() << "opened " << k.path.toStdString();
    } catch (const db::Error& e) {
      for (const QString& text : k.mentioned) EXPECT_TRUE(e.message().contains(text)) << e.what();
    }
  }
}

TEST(OpenProject, MissingFileIsRefused) {
  TempProject project;
  EXPECT_THROW(db::openProject(project.path(QStringLiteral("absent.delvane"))), db::Error);
  EXPECT_FALSE(QFile::exists(project.path(QStringLiteral("absent.delvane"))));
}

TEST(OpenProject, AddsTheChainageIndexesToAForeignFile) {
  TempProject project;
  db::Connection& made = project.create();
  made.exec(QStringLiteral("DROP INDEX idx_Initial_SectionChainage"));
  auto reopened = db::openProject(project.path());
  EXPECT_EQ(reopened->scalar(QStringLiteral("SELECT COUNT(*) FROM sqlite_master WHERE "
                                            "type='index' AND name LIKE 'idx_%'")),
            5.0);
}

TEST(CreateProject, RefusesToOverwrite) {
  TempProject project;
  project.create();
  EXPECT_THROW(db::createProject(project.path(), false), db::Error);
  EXPECT_EQ(rowCount(project.connection(), QStringLiteral("DesignExp")), 7);
}

TEST(CreateProject, TemplateHasDesignOneAndItsQuantityColumns) {
  TempProject project;
  db::Connection& c = project.create();
  EXPECT_EQ(rowCount(c, QStringLiteral("DesignExp"), QStringLiteral("DesignID=1")), 7);
  EXPECT_EQ(rowCount(c, QStringLiteral("QtyDefine"), QStringLiteral("DesignID=1 AND LRB='B'")), 2);
  EXPECT_EQ(rowCount(c, QStringLiteral("DesignList"), QStringLiteral("ID=1")), 1);
  EXPECT_EQ(rowCount(c, QStringLiteral("Package")), 0);
}

TEST(CreateProject, DemoIsRealisticAndTheSameEveryTime) {
  TempProject project;
  db::Connection& a = project.create(true, QStringLiteral("a.delvane"));
  db::createProject(project.path(QStringLiteral("b.delvane")), true);
  auto b = db::openProject(project.path(QStringLiteral("b.delvane")));
  EXPECT_EQ(rowCount(a, QStringLiteral("Sections")), 2);
  const QString digest =
      QStringLiteral("SELECT COUNT(*), SUM(Chainage), SUM(Offset), SUM(Level) FROM Initial");
  db::Statement sa = a.prepare(digest);
  db::Statement sb = b->prepare(digest);
  ASSERT_TRUE(sa.step());
  ASSERT_TRUE(sb.step());
  for (int i = 0; i < 4; ++i) EXPECT_EQ(sa.real(i), sb.real(i)) << i;

  // A few hundred chainages 20 m apart, 15 to 40 readings each, one on the centre line.
  const int chainages = static_cast<int>(
      a.scalar(QStringLiteral("SELECT COUNT(*) FROM (SELECT DISTINCT SectionID, Chainage FROM "
                              "Initial)"))
          .value_or(0));
  EXPECT_GE(chainages, 200);
  db::Statement readings = a.prepare(QStringLiteral(
      "SELECT MIN(n), MAX(n) FROM (SELECT COUNT(*) n FROM Initial GROUP BY SectionID, Chainage)"));
  ASSERT_TRUE(readings.step());
  EXPECT_GE(readings.int64(0), 10);
  EXPECT_LE(readings.int64(1), 40);
  EXPECT_EQ(rowCount(a, QStringLiteral("(SELECT DISTINCT SectionID, Chainage FROM Initial WHERE "
                                       "Offset=0)")),
            chainages);
  EXPECT_GT(rowCount(a, QStringLiteral("Executed"), QStringLiteral("SectionID=1")), 0);
  EXPECT_EQ(rowCount(a, QStringLiteral("Executed"), QStringLiteral("SectionID=2")), 0);
  EXPECT_GE(rowCount(a, QStringLiteral("DesignDetails"), QStringLiteral("SectionID=1")), 2);
  EXPECT_EQ(rowCount(a, QStringLiteral("DesignQty")), chainages);
}

}  // namespace
