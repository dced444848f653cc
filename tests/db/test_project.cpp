#include "db/project.h"
#include "db/schema.h"
#include "tests/testsupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <vector>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

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
  const QString folder = project.path(QStringLiteral("folder.delvane"));
  ASSERT_TRUE(QDir().mkdir(folder));
  const struct {
    QString path;
    QStringList mentioned;
  } cases[] = {
      {notes, {notes, QStringLiteral("not an SQLite database")}},
      {other, {QStringLiteral("is not a Delvane project file"), QStringLiteral("Sections")}},
      {absent, {QStringLiteral("does not exist")}},
      {folder, {folder, QStringLiteral("is a folder")}},
      {QString(), {QStringLiteral("No project file was named")}}};
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

QByteArray contents(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A foreign file without the chainage indexes, opened only to read: nothing is added, nothing
// can be written, and the file stays byte for byte as it was.
TEST(OpenProject, ReadingLeavesTheFileAsItWas) {
  TempProject project;
  project.create(true).exec(QStringLiteral("DROP INDEX idx_Initial_SectionChainage"));
  const QByteArray before = contents(project.path());
  auto reader = db::openProject(project.path(), db::ProjectAccess::Read);
  EXPECT_TRUE(reader->isReadOnly());
  EXPECT_EQ(firstRow(*reader, "SELECT COUNT(*) FROM sqlite_master WHERE type='index'"),
            std::vector<double>{4});
  EXPECT_THROW(reader->exec(QStringLiteral("DELETE FROM Initial")), db::Error);
  reader.reset();
  EXPECT_EQ(contents(project.path()), before);
}

// A writer killed in the middle of a transaction leaves its journal beside the file; a reader
// that comes next plays it back first and sees the file as it was before the transaction.
TEST(OpenProject, ReadingAfterAKilledWriterSeesTheLastCommittedData) {
  TempProject project;
  const int rows = rowCount(project.create(true), QStringLiteral("Initial"));
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    auto writer = db::openProject(project.path());
    writer->exec(QStringLiteral("PRAGMA cache_size=1"));  // the change reaches the file
    writer->exec(QStringLiteral("BEGIN"));
    writer->exec(QStringLiteral("DELETE FROM Initial"));
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  ASSERT_TRUE(QFileInfo::exists(project.path() + QStringLiteral("-journal")));
  auto reader = db::openProject(project.path(), db::ProjectAccess::Read);
  EXPECT_EQ(rowCount(*reader, QStringLiteral("Initial")), rows);
  EXPECT_TRUE(reader->isReadOnly());
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

// Names SQLite would read as a URI or an in-memory database are files in the current folder.
TEST(CreateProject, NamesAreFileNamesNeverSqliteUris) {
  TempProject project;
  const QString previous = QDir::currentPath();
  ASSERT_TRUE(QDir::setCurrent(project.dir().path()));
  for (const char* name : {":memory:", "file:x?mode=memory", "file:p.delvane", "file::memory:"}) {
    SCOPED_TRACE(name);
    const QString file = QString::fromLatin1(name);
    EXPECT_NO_THROW(db::createProject(file, false));
    EXPECT_TRUE(QFileInfo(project.dir().path() + QLatin1Char('/') + file).isFile());
    EXPECT_EQ(
        rowCount(*db::openProject(file, db::ProjectAccess::Read), QStringLiteral("DesignExp")), 7);
  }
  EXPECT_THROW(db::createProject(QString(), false), db::Error);
  QDir::setCurrent(previous);
  EXPECT_EQ(QDir(project.dir().path()).entryList(QDir::Files).size(), 4);
}

// A creation stopped at any moment (here killed as soon as the name appears) leaves under the
// name either nothing or a whole project, never a file that cannot be opened.
TEST(CreateProject, TheNameOnlyEverHoldsAWholeProject) {
  TempProject project;
  const QString path = project.path(QStringLiteral("new.delvane"));
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    try {
      db::createProject(path, true);
    } catch (...) {
      _exit(1);
    }
    _exit(0);
  }
  int status = 0;
  while (!QFileInfo::exists(path) && waitpid(child, &status, WNOHANG) == 0) {
  }
  kill(child, SIGKILL);
  waitpid(child, &status, 0);
  ASSERT_TRUE(QFileInfo::exists(path));
  EXPECT_EQ(rowCount(*db::openProject(path), QStringLiteral("Sections")), 2);
  // Whatever a killed creation left behind does not stand in the way of the next.
  EXPECT_NO_THROW(db::createProject(project.path(QStringLiteral("next.delvane")), false));
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
