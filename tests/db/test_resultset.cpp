#include "db/connection.h"
#include "db/resultset.h"
#include "tests/testsupport.h"

#include <gtest/gtest.h>

#include <optional>

using testsupport::TempProject;

namespace {

const QString kInitialQuery = QStringLiteral(
    "SELECT Chainage, Offset, [Level], ID from Initial WHERE [SectionID]=1 "
    "ORDER BY Chainage, Offset, ID");

// An Initial table of section 1 with a few readings (and one of section 2 that the query must
// not show).
class ResultSetTest : public ::testing::Test {
 protected:
  void SetUp() override {
    db::Connection& c = project.create();
    const struct {
      float chainage, offset, level;
      int section;
    } rows[] = {{0.0f, -10.0f, 100.5f, 1}, {0.0f, 0.0f, 99.25f, 1}, {0.0f, 10.0f, 100.75f, 1},
                {0.1f, -10.0f, 100.4f, 1}, {0.1f, 0.0f, 99.2f, 1},  {0.1f, 10.0f, 100.6f, 1},
                {0.2f, 0.0f, 99.1f, 1},    {5.0f, 0.0f, 120.0f, 2}};
    for (const auto& r : rows)
      c.prepare(QStringLiteral(
                    "INSERT INTO Initial (Chainage, Offset, Level, SectionID) VALUES (?,?,?,?)"))
          .bindMeasure(1, r.chainage)
          .bindMeasure(2, r.offset)
          .bindMeasure(3, r.level)
          .bindKey(4, r.section)
          .run();
    set.open(c, kInitialQuery);
  }

  // The stored value of one column of the record with that ID; nullopt for NULL.
  std::optional<double> stored(const QString& column, std::int64_t id) {
    return project.connection().scalar(QStringLiteral("SELECT ") + column +
                                       QStringLiteral(" FROM Initial WHERE ID=") +
                                       QString::number(id));
  }

  TempProject project;
  db::ResultSet set;
};

TEST_F(ResultSetTest, HoldsRowsColumnsTypesAndSourceTable) {
  ASSERT_EQ(std::make_pair(set.rowCount(), set.columnCount()), std::make_pair(7, 4));
  EXPECT_EQ(QStringList({set.table(), set.column(2).name, set.column(0).declaredType,
                         set.text(3, 0), set.text(3, 1), set.text(3, 2)}),
            QStringList({QStringLiteral("Initial"), QStringLiteral("Level"), QStringLiteral("REAL"),
                         QStringLiteral("0.1"), QStringLiteral("-10"), QStringLiteral("100.4")}));
  EXPECT_TRUE(set.column(0).numeric && set.column(3).numeric);
  EXPECT_EQ(set.columnIndex(QStringLiteral("level")), 2);
  EXPECT_EQ(set.id(0), 1);
  EXPECT_EQ(set.findId(5), 4);
  EXPECT_EQ(set.findId(8), -1);  // section 2's row is not in the set
}

TEST_F(ResultSetTest, SourceTableIsReadFromBracketedAndLowerCaseFrom) {
  db::ResultSet other;
  other.open(project.connection(), QStringLiteral("select [Name], ID from [Package]"));
  EXPECT_EQ(other.table(), QStringLiteral("Package"));
  EXPECT_EQ(other.rowCount(), 0);
  EXPECT_EQ(other.columnCount(), 2);  // an empty result still has its columns
  EXPECT_FALSE(other.column(0).numeric);
}

TEST_F(ResultSetTest, UpdateRowWritesOnlyChangedCellsByID) {
  // Another program changes the level behind the sheet's back; writing the chainage alone must
  // leave that level alone.
  project.connection().exec(QStringLiteral("UPDATE Initial SET Level=77 WHERE ID=2"));
  set.setText(1, 0, QStringLiteral("0.05"));
  EXPECT_TRUE(set.isChanged(1, 0));
  EXPECT_FALSE(set.isChanged(1, 2));
  set.updateRow(1);
  EXPECT_FALSE(set.rowChanged(1));
  EXPECT_EQ(stored(QStringLiteral("Chainage"), 2), 0.05);
  EXPECT_EQ(stored(QStringLiteral("Level"), 2), 77.0);
  EXPECT_EQ(stored(QStringLiteral("Chainage"), 3), 0.0);  // the neighbours are untouched
  EXPECT_EQ(set.text(1, 0), QStringLiteral("0.05"));
}

TEST_F(ResultSetTest, UpdateRowOfUnchangedRowRunsNoStatement) {
  project.connection().exec(QStringLiteral("DROP TABLE Initial"));
  EXPECT_NO_THROW(set.updateRow(0));  // would fail on the missing table if it wrote
}

// A measure is bound as typed (100.1, not the double nearest to 100.1f); an empty cell as NULL.
TEST_F(ResultSetTest, CellsAreWrittenAsTheirSingleTextOrNull) {
  set.setText(0, 2, QStringLiteral("100.1"));
  set.setText(1, 2, QString());
  set.updateRow(0);
  set.updateRow(1);
  EXPECT_EQ(stored(QStringLiteral("Level"), 1), 100.1);
  EXPECT_EQ(stored(QStringLiteral("Level"), 2), std::nullopt);
  EXPECT_TRUE(set.isNull(1, 2));
}

// Text, and numbers a single cannot hold (not finite, or beyond its range), are refused alike.
TEST_F(ResultSetTest, TextInNumberColumnIsRejectedNamingColumnAndText) {
  for (const char* refused : {"abc", "nan", "inf", "1e39", "-1e39"}) {
    const QString text = QString::fromLatin1(refused);
    set.setText(2, 1, text);
    set.setText(2, 2, QStringLiteral("101"));
    try {
      set.updateRow(2);
      FAIL() << refused << " was written to a single column";
    } catch (const db::Error& e) {
      EXPECT_TRUE(e.message().startsWith(QStringLiteral("The column Offset of Initial holds ")))
          << e.what();
      EXPECT_TRUE(e.message().endsWith(QLatin1Char('"') + text + QStringLiteral("\".")))
          << e.what();
    }
    // Nothing was written, and the edits are still there to be corrected.
    EXPECT_EQ(stored(QStringLiteral("Offset"), 3), 10.0) << refused;
    EXPECT_EQ(stored(QStringLiteral("Level"), 3), 100.75);
    EXPECT_TRUE(set.isChanged(2, 1));
    EXPECT_EQ(set.text(2, 1), text);
  }
  set.setText(2, 1, QStringLiteral("12.5"));
  set.updateRow(2);
  EXPECT_EQ(stored(QStringLiteral("Offset"), 3), 12.5);
  EXPECT_EQ(stored(QStringLiteral("Level"), 3), 101.0);
}

// Another program (or a deleted section's clean-up) removed the record behind the set: writing
// it must not pass for a save.
TEST_F(ResultSetTest, UpdateOfARecordThatIsGoneFailsAndKeepsTheEdit) {
  project.connection().exec(QStringLiteral("DELETE FROM Initial WHERE ID=2"));
  set.setText(1, 2, QStringLiteral("88"));
  try {
    set.updateRow(1);
    FAIL() << "an edit of a deleted record passed for written";
  } catch (const db::Error& e) {
    EXPECT_TRUE(e.message().contains(QStringLiteral("ID 2"))) << e.what();
  }
  EXPECT_TRUE(set.rowChanged(1));
  EXPECT_EQ(set.text(1, 2), QStringLiteral("88"));
}

TEST_F(ResultSetTest, RequeryDropsEditsAndReadsNewRows) {
  set.setText(0, 0, QStringLiteral("9"));
  project.connection().exec(QStringLiteral(
      "INSERT INTO Initial (Chainage, Offset, Level, SectionID) VALUES (0.3, 0, 98, 1)"));
  set.requery();
  EXPECT_EQ(set.rowCount(), 8);
  EXPECT_EQ(set.text(0, 0), QStringLiteral("0"));
  EXPECT_FALSE(set.rowChanged(0));
}

// The grammar itself is pinned with the filter expression; here: the rows shown, numbers
// compared as numbers in numeric columns, and a rejected filter keeping the previous one.
TEST_F(ResultSetTest, FilterShowsMatchingRowsAndARejectedOneKeepsThePrevious) {
  const struct {
    const char* expression;
    std::vector<std::int64_t> ids;
  } cases[] = {{"", {1, 2, 3, 4, 5, 6, 7}},
               {"[Chainage] >= '0.1' AND [Offset] = '0'", {5, 7}},
               {"[Level] LIKE '%.2%'", {2, 5}},
               {"[Level] > '20'", {1, 2, 3, 4, 5, 6, 7}},
               {"[Offset] = '0'", {2, 5, 7}}};
  for (const auto& k : cases) {
    set.setFilter(QString::fromUtf8(k.expression));
    std::vector<std::int64_t> ids;
    for (int row = 0; row < set.rowCount(); ++row) ids.push_back(set.id(row));
    EXPECT_EQ(ids, k.ids) << k.expression;
  }
  for (const char* bad : {"[Depth] = '1'", "[Offset] = 'abc'"}) {
    EXPECT_THROW(set.setFilter(QString::fromUtf8(bad)), db::Error) << bad;
    EXPECT_EQ(set.rowCount(), 3) << bad;
    EXPECT_EQ(set.filter(), QStringLiteral("[Offset] = '0'"));
  }
}

// Deleting removes the record by its ID, whatever the filter shows.
TEST_F(ResultSetTest, FilteredRowsMapEditsAndDeletesToTheirRecords) {
  set.setFilter(QStringLiteral("[Chainage] = '0.1'"));
  ASSERT_EQ(set.rowCount(), 3);
  set.setText(2, 2, QStringLiteral("101.5"));
  set.updateRow(2);
  EXPECT_EQ(stored(QStringLiteral("Level"), 6), 101.5);
  set.deleteRow(0);
  EXPECT_EQ(set.rowCount(), 2);
  EXPECT_EQ(set.id(0), 5);
  EXPECT_EQ(testsupport::rowCount(project.connection(), QStringLiteral("Initial")), 7);
  EXPECT_EQ(testsupport::rowCount(project.connection(), QStringLiteral("Initial"),
                                  QStringLiteral("ID=4")),
            0);
  set.requery();
  EXPECT_EQ(set.rowCount(), 2) << "requery keeps the filter";
  set.setFilter(QString());
  EXPECT_EQ(set.rowCount(), 6);
}

TEST_F(ResultSetTest, TextColumnsStoreTextAndNull) {
  db::Connection& c = project.connection();
  c.exec(
      QStringLiteral("INSERT INTO Package (ID, Name, Phase, District) VALUES "
                     "(1, 'North', 'I', 'Kota'), (2, 'South', 'II', 'Bundi')"));
  db::ResultSet packages;
  packages.open(c, QStringLiteral("Select [Name], [Phase], [District], ID from Package order "
                                  "by [District], [Name]"));
  ASSERT_EQ(packages.rowCount(), 2);
  EXPECT_EQ(packages.text(0, 0), QStringLiteral("South"));
  packages.setText(0, 1, QString());
  packages.setText(0, 0, QStringLiteral("South-East"));
  packages.updateRow(0);
  EXPECT_EQ(c.scalar(QStringLiteral("SELECT COUNT(*) FROM Package WHERE Name='South-East' AND "
                                    "Phase IS NULL AND ID=2")),
            1.0);
  packages.setFilter(QStringLiteral("[Name] LIKE 'n%'"));
  EXPECT_EQ(packages.rowCount(), 1);
  EXPECT_EQ(packages.id(0), 1);
}

}  // namespace
