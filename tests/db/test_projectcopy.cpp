#include "db/projectcopy.h"

#include "db/project.h"
#include "db/schema.h"
#include "tests/fakesource.h"
#include "tests/testsupport.h"

#include <QDir>

#include <gtest/gtest.h>

using db::SourceType;
using db::SourceValue;
using testsupport::FakeSource;
using testsupport::FakeTable;
using testsupport::TempProject;

namespace {

// The rows of a query as text: columns joined by ' ', rows by '|', NULL as "NULL".
QString rowsOf(db::Connection& c, const QString& sql) {
  db::Statement st = c.prepare(sql);
  QStringList rows;
  while (st.step()) {
    QStringList row;
    for (int i = 0; i < st.columnCount(); ++i)
      row.append(st.isNull(i) ? QStringLiteral("NULL") : st.text(i));
    rows.append(row.join(QLatin1Char(' ')));
  }
  return rows.join(QLatin1Char('|'));
}

// One value of a source column in a project column: how it is stored, and the line naming it
// when it does not fit.
TEST(ProjectCopy, ValuesGoInAsTheProjectStoresThem) {
  const struct {
    const char* table;
    const char* column;
    SourceValue value;
    const char* stored;
    const char* problem;
  } cases[] = {
      {"Initial", "Level", 0.1f, "real 0.1", ""},
      {"Initial", "Level", 152.40000001, "real 152.4", ""},
      {"Initial", "Level", std::int64_t{150}, "real 150", ""},
      {"Initial", "Level", QStringLiteral(" 152.25"), "real 152.25", ""},
      {"Initial", "Level", SourceValue{}, "null NULL", ""},
      {"Initial", "SectionID", 3.0, "integer 3", ""},
      {"Initial", "SectionID", std::int64_t{5000000000}, "integer 5000000000", ""},
      {"Initial", "SectionID", QStringLiteral("4"), "integer 4", ""},
      {"Package", "Phase", std::int64_t{2019}, "text 2019", ""},
      {"Package", "Phase", 1.1f, "text 1.1", ""},
      {"Package", "Phase", 0.1 + 0.2, "text 0.30000000000000004", ""},
      {"Package", "Name", SourceValue{}, "null NULL", ""},
      {"Initial", "Level", QStringLiteral("12,5"), "text 12,5",
       "Table Initial, row 1, column Level: \"12,5\" is not a number; kept as it was."},
      {"Initial", "SectionID", 2.5, "real 2.5",
       "Table Initial, row 1, column SectionID: 2.5 is not a whole number; kept as it was."},
      {"Initial", "Chainage", 1e300, "real 1e+300",
       "Table Initial, row 1, column Chainage: 1e+300 is beyond the range of a single; kept as "
       "it was."},
  };
  for (const auto& k : cases) {
    const QString table = QString::fromLatin1(k.table);
    const QString column = QString::fromLatin1(k.column);
    SCOPED_TRACE(QString(table + QLatin1Char('.') + column).toStdString());
    TempProject dir;
    FakeSource source(
        {testsupport::designProfileTable(), {table, {{column, SourceType::Text}}, {{k.value}}}});
    const db::ProjectCopy copy = db::copyIntoNewProject(source, dir.path());
    EXPECT_EQ(rowsOf(*db::openProject(dir.path()),
                     QStringLiteral("SELECT typeof([%1]), [%1] FROM %2").arg(column, table)),
              QString::fromLatin1(k.stored));
    EXPECT_EQ(copy.problems.join(QLatin1Char('\n')), QString::fromLatin1(k.problem));
  }
}

// A legacy file spells names in its own case, holds tables and columns of its own, and lacks
// tables it never used. Keys and NULLs stay; rows without a column the project keeps still
// count.
TEST(ProjectCopy, UnknownTablesAndColumnsAreListedAndMissingTablesCreatedEmpty) {
  TempProject dir;
  const SourceValue null;
  FakeSource source({{QStringLiteral("NOTES"), {}, {}},
                     {QStringLiteral("initial"),
                      {{QStringLiteral("CHAINAGE"), SourceType::Single},
                       {QStringLiteral("Remarks"), SourceType::Text},
                       {QStringLiteral("level"), SourceType::Single},
                       {QStringLiteral("Offset"), SourceType::Other},
                       {QStringLiteral("ID"), SourceType::Integer}},
                      {{0.5f, QStringLiteral("pole"), 101.25f, null, std::int64_t{40}},
                       {0.5f, null, null, null, std::int64_t{3}}}},
                     testsupport::designProfileTable(),
                     {QStringLiteral("Outlets"),
                      {{QStringLiteral("Photo"), SourceType::Other}},
                      {{null}, {null}}}});
  const db::ProjectCopy copy = db::copyIntoNewProject(source, dir.path());

  EXPECT_EQ(copy.skipped.join(QLatin1Char('\n')),
            QStringLiteral("The column initial.Remarks is not part of a project; skipped.\n"
                           "The column initial.Offset holds pictures, documents or raw bytes, "
                           "which a project has no place for; skipped.\n"
                           "The column Outlets.Photo is not part of a project; skipped.\n"
                           "The table NOTES is not part of a project; skipped."));
  QStringList empty = db::requiredTables();
  for (const char* copied : {"Initial", "DesignExp", "Outlets"})
    empty.removeAll(QString::fromLatin1(copied));
  EXPECT_EQ(copy.emptyTables, empty);
  ASSERT_EQ(copy.copied.size(), 3u);
  EXPECT_EQ(copy.copied[0].name + QString::number(copy.copied[0].rows), QStringLiteral("Initial2"));

  auto project = db::openProject(dir.path());
  EXPECT_EQ(rowsOf(*project, QStringLiteral("SELECT ID, Chainage, Offset, Level FROM Initial "
                                            "ORDER BY ID")),
            QStringLiteral("3 0.5 NULL NULL|40 0.5 NULL 101.25"));
  EXPECT_EQ(testsupport::rowCount(*project, QStringLiteral("Outlets"), QStringLiteral("ID > 0")),
            2);
  for (const QString& table : empty) EXPECT_EQ(testsupport::rowCount(*project, table), 0);
}

// Every way a copy can fail leaves the folder as it was: no project, no scratch file.
TEST(ProjectCopy, AFailedCopyLeavesNothingBehind) {
  const FakeTable profile = testsupport::designProfileTable();
  const auto sections = [](std::vector<std::vector<SourceValue>> rows) {
    return FakeTable{
        QStringLiteral("Sections"), {{QStringLiteral("ID"), SourceType::Integer}}, rows};
  };
  const std::int64_t one = 1, two = 2;
  const FakeTable contacts{QStringLiteral("Contacts"), {}, {}};
  const struct {
    std::vector<FakeTable> tables;
    const char* refusal;  // what the accepting function says
    bool refused;         // CopyRefused rather than Error
    const char* mentioned;
  } cases[] = {
      {{profile, sections({{one}, {two}, {one}})}, "", true, "Table Sections, row 3"},
      {{profile, sections({{one}, {}})}, "", false, "is damaged"},
      {{profile, sections({{one}})}, "no design profile", true, "no design profile"},
      {{contacts, contacts},
       "",
       true,
       "\"old.mdb\" holds none of a project's tables; its tables are Contacts, Contacts."},
  };
  for (const auto& k : cases) {
    SCOPED_TRACE(k.mentioned);
    TempProject dir;
    FakeSource source(k.tables);
    const QString refusal = QString::fromLatin1(k.refusal);
    try {
      db::copyIntoNewProject(source, dir.path(), [&](db::Connection&) { return refusal; });
      ADD_FAILURE() << "copied";
    } catch (const db::Error& e) {
      EXPECT_EQ(dynamic_cast<const db::CopyRefused*>(&e) != nullptr, k.refused);
      EXPECT_TRUE(e.message().contains(QString::fromLatin1(k.mentioned))) << e.what();
      EXPECT_TRUE(e.message().contains(dir.path())) << e.what();
    }
    EXPECT_EQ(QDir(dir.dir().path()).entryList(QDir::Files | QDir::Hidden), QStringList());
  }
}

// A column of numbers typed as text in every row lists the first values and counts the rest.
TEST(ProjectCopy, ManyBadValuesAreCountedAfterTheFirstHundred) {
  TempProject dir;
  FakeTable levels{QStringLiteral("Initial"), {{QStringLiteral("Level"), SourceType::Text}}, {}};
  levels.rows.assign(130, {QStringLiteral("n/a")});
  FakeSource source({testsupport::designProfileTable(), levels});
  const db::ProjectCopy copy = db::copyIntoNewProject(source, dir.path());
  ASSERT_EQ(copy.problems.size(), 101);
  EXPECT_TRUE(copy.problems[99].contains(QStringLiteral("row 100,")));
  EXPECT_EQ(copy.problems[100], QStringLiteral("30 more values do not fit their columns."));
}

}  // namespace
