#include "db/projectcopy.h"

#include "db/project.h"
#include "db/schema.h"
#include "tests/fakesource.h"
#include "tests/testsupport.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

using db::SourceType;
using db::SourceValue;
using testsupport::FakeSource;
using testsupport::FakeTable;
using testsupport::TempProject;

namespace {

// How one stored value reads back: its SQLite type and its text.
QString storedValue(db::Connection& c, const QString& table, const QString& column) {
  db::Statement st =
      c.prepare(QStringLiteral("SELECT typeof([%1]), [%1] FROM %2").arg(column, table));
  if (!st.step()) return QStringLiteral("no row");
  return st.text(0) + QLatin1Char(' ') + st.text(1);
}

// One value of the source's column into a project column: what is stored, and whether the
// value is listed as not fitting.
TEST(ProjectCopy, ValuesGoInAsTheProjectStoresThem) {
  const struct {
    const char* table;
    const char* column;
    SourceType type;
    SourceValue value;
    const char* stored;
    const char* problem;  // a part of the listed line; null when none is expected
  } cases[] = {
      {"Initial", "Level", SourceType::Single, 0.1f, "real 0.1", nullptr},
      {"Initial", "Level", SourceType::Double, 152.40000001, "real 152.4", nullptr},
      {"Initial", "Level", SourceType::Integer, std::int64_t{150}, "real 150", nullptr},
      {"Initial", "Level", SourceType::Text, QStringLiteral(" 152.25"), "real 152.25", nullptr},
      {"Initial", "Level", SourceType::Double, SourceValue{}, "null ", nullptr},
      {"Initial", "SectionID", SourceType::Double, 3.0, "integer 3", nullptr},
      {"Initial", "SectionID", SourceType::Integer, std::int64_t{5000000000}, "integer 5000000000",
       nullptr},
      {"Initial", "SectionID", SourceType::Text, QStringLiteral("4"), "integer 4", nullptr},
      {"Package", "Phase", SourceType::Integer, std::int64_t{2019}, "text 2019", nullptr},
      {"Package", "Phase", SourceType::Single, 1.1f, "text 1.1", nullptr},
      {"Package", "Phase", SourceType::Double, 0.1 + 0.2, "text 0.30000000000000004", nullptr},
      {"Package", "Name", SourceType::Text, QStringLiteral("Left Canal"), "text Left Canal",
       nullptr},
      {"Package", "Name", SourceType::Text, SourceValue{}, "null ", nullptr},
      {"Initial", "Level", SourceType::Text, QStringLiteral("12,5"), "text 12,5",
       "Table Initial, row 1, column Level: \"12,5\" is not a number"},
      {"Initial", "SectionID", SourceType::Double, 2.5, "real 2.5",
       "column SectionID: 2.5 is not a whole number"},
      {"Initial", "Chainage", SourceType::Double, 1e300, "real 1e+300",
       "1e+300 is beyond the range of a single"},
  };
  for (const auto& k : cases) {
    SCOPED_TRACE(std::string(k.table) + "." + k.column);
    TempProject dir;
    FakeSource source(
        {testsupport::designProfileTable(),
         {QString::fromLatin1(k.table), {{QString::fromLatin1(k.column), k.type}}, {{k.value}}}});
    const db::ProjectCopy copy = db::copyIntoNewProject(source, dir.path());
    auto project = db::openProject(dir.path());
    EXPECT_EQ(storedValue(*project, QString::fromLatin1(k.table), QString::fromLatin1(k.column)),
              QString::fromLatin1(k.stored));
    if (k.problem) {
      ASSERT_EQ(copy.problems.size(), 1);
      EXPECT_TRUE(copy.problems[0].contains(QString::fromLatin1(k.problem)))
          << copy.problems[0].toStdString();
    } else {
      EXPECT_EQ(copy.problems, QStringList());
    }
  }
}

// A legacy file spells names in its own case, holds tables and columns of its own, and lacks
// tables it never used.
TEST(ProjectCopy, UnknownTablesAndColumnsAreListedAndMissingTablesCreatedEmpty) {
  TempProject dir;
  FakeSource source(
      {{QStringLiteral("NOTES"), {{QStringLiteral("Text"), SourceType::Text}}, {}},
       {QStringLiteral("initial"),
        {{QStringLiteral("CHAINAGE"), SourceType::Single},
         {QStringLiteral("Remarks"), SourceType::Text},
         {QStringLiteral("level"), SourceType::Single},
         {QStringLiteral("Offset"), SourceType::Other},
         {QStringLiteral("SectionID"), SourceType::Integer},
         {QStringLiteral("ID"), SourceType::Integer}},
        {{0.5f, QStringLiteral("pole"), 101.25f, SourceValue{}, std::int64_t{7}, std::int64_t{40}},
         {0.5f, SourceValue{}, SourceValue{}, SourceValue{}, std::int64_t{7}, std::int64_t{3}}}},
       testsupport::designProfileTable(),
       // Rows without a column the project keeps still count: their keys are made anew.
       {QStringLiteral("Outlets"),
        {{QStringLiteral("Photo"), SourceType::Other}},
        {{SourceValue{}}, {SourceValue{}}}}});
  const db::ProjectCopy copy = db::copyIntoNewProject(source, dir.path());

  EXPECT_EQ(copy.skipped,
            QStringList({QStringLiteral("The column initial.Remarks is not part of a project; "
                                        "skipped."),
                         QStringLiteral("The column initial.Offset holds pictures, documents or "
                                        "raw bytes, which a project has no place for; skipped."),
                         QStringLiteral("The column Outlets.Photo is not part of a project; "
                                        "skipped."),
                         QStringLiteral("The table NOTES is not part of a project; skipped.")}));
  QStringList expectedEmpty = db::requiredTables();
  for (const char* copied : {"Initial", "DesignExp", "Outlets"})
    expectedEmpty.removeAll(QString::fromLatin1(copied));
  EXPECT_EQ(copy.emptyTables, expectedEmpty);
  ASSERT_EQ(copy.copied.size(), 3u);
  EXPECT_EQ(copy.copied[0].name, QStringLiteral("Initial"));
  EXPECT_EQ(copy.copied[0].rows, 2);

  auto project = db::openProject(dir.path());
  db::Statement st = project->prepare(
      QStringLiteral("SELECT ID, Chainage, Offset, Level, SectionID FROM Initial ORDER BY ID"));
  QStringList rows;
  while (st.step()) {
    QStringList row;
    for (int i = 0; i < 5; ++i) row.append(st.isNull(i) ? QStringLiteral("NULL") : st.text(i));
    rows.append(row.join(QLatin1Char(' ')));
  }
  EXPECT_EQ(rows, QStringList({QStringLiteral("3 0.5 NULL NULL 7"),
                               QStringLiteral("40 0.5 NULL 101.25 7")}));
  EXPECT_EQ(testsupport::rowCount(*project, QStringLiteral("Outlets"), QStringLiteral("ID > 0")),
            2);
  for (const QString& table : expectedEmpty) EXPECT_EQ(testsupport::rowCount(*project, table), 0);
}

// Every way a copy can fail leaves the folder as it was: no project, no scratch file.
TEST(ProjectCopy, AFailedCopyLeavesNothingBehind) {
  const FakeTable profile = testsupport::designProfileTable();
  const FakeTable sections{QStringLiteral("Sections"),
                           {{QStringLiteral("ID"), SourceType::Integer}},
                           {{std::int64_t{1}}, {std::int64_t{2}}, {std::int64_t{1}}}};
  const FakeTable good{QStringLiteral("Sections"),
                       {{QStringLiteral("ID"), SourceType::Integer}},
                       {{std::int64_t{1}}, {std::int64_t{2}}}};
  const FakeTable contacts{QStringLiteral("Contacts"), {}, {}};
  const struct {
    const char* what;
    std::vector<FakeTable> tables;
    int failAfterRows;  // -1: the source reads to the end
    const char* refusal;
    bool refused;  // CopyRefused rather than Error
    const char* mentioned;
  } cases[] = {
      {"a key used twice", {profile, sections}, -1, "", true, "Table Sections, row 3"},
      {"a file that breaks mid-way", {profile, good}, 1, "", false, "is damaged"},
      {"a copy that is no project",
       {profile, good},
       -1,
       "no design profile",
       true,
       "no design profile"},
      {"a database of something else",
       {contacts, contacts},
       -1,
       "",
       true,
       "\"old.mdb\" holds none of a project's tables; its tables are Contacts, Contacts."},
  };
  for (const auto& k : cases) {
    SCOPED_TRACE(k.what);
    TempProject dir;
    FakeSource source(k.tables);
    if (k.failAfterRows >= 0) source.failReading(QStringLiteral("Sections"), k.failAfterRows);
    const QString refusal = QString::fromLatin1(k.refusal);
    try {
      db::copyIntoNewProject(source, dir.path(), [&](db::Connection&) { return refusal; });
      ADD_FAILURE() << "copied";
    } catch (const db::CopyRefused& e) {
      EXPECT_TRUE(k.refused);
      EXPECT_TRUE(e.message().contains(QString::fromLatin1(k.mentioned))) << e.what();
      EXPECT_TRUE(e.message().contains(dir.path())) << e.what();
    } catch (const db::Error& e) {
      EXPECT_FALSE(k.refused);
      EXPECT_TRUE(e.message().contains(QString::fromLatin1(k.mentioned))) << e.what();
    }
    EXPECT_EQ(
        QDir(dir.dir().path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
        QStringList());
  }
}

// An existing file under the new name is never replaced.
TEST(ProjectCopy, AnExistingFileIsKept) {
  TempProject dir;
  QFile existing(dir.path());
  ASSERT_TRUE(existing.open(QIODevice::WriteOnly));
  existing.write("mine");
  existing.close();
  FakeSource source({testsupport::designProfileTable()});
  EXPECT_THROW(db::copyIntoNewProject(source, dir.path()), db::Error);
  ASSERT_TRUE(existing.open(QIODevice::ReadOnly));
  EXPECT_EQ(existing.readAll(), QByteArray("mine"));
}

// A column of numbers typed as text in every row lists the first values and counts the rest.
TEST(ProjectCopy, ManyBadValuesAreCountedAfterTheFirstHundred) {
  TempProject dir;
  FakeTable levels{QStringLiteral("Initial"), {{QStringLiteral("Level"), SourceType::Text}}, {}};
  for (int i = 0; i < 130; ++i) levels.rows.push_back({QStringLiteral("n/a")});
  FakeSource source({testsupport::designProfileTable(), levels});
  const db::ProjectCopy copy = db::copyIntoNewProject(source, dir.path());
  ASSERT_EQ(copy.problems.size(), 101);
  EXPECT_TRUE(copy.problems[99].contains(QStringLiteral("row 100,")));
  EXPECT_EQ(copy.problems[100], QStringLiteral("30 more values do not fit their columns."));
}

}  // namespace
