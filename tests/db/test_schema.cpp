#include "db/schema.h"
#include "tests/testsupport.h"

#include <gtest/gtest.h>

using testsupport::rowCount;
using testsupport::TempProject;

namespace {

TEST(GetNextID, LargestKeyPlusOneEvenWithGapsBelowAndOneWhenEmpty) {
  TempProject project;
  db::Connection& c = project.create();
  EXPECT_EQ(db::GetNextID(c, QStringLiteral("Sections")), 1);
  c.exec(QStringLiteral("INSERT INTO Package (ID) VALUES (3), (41), (7)"));
  EXPECT_EQ(db::GetNextID(c, QStringLiteral("Package")), 42);
  EXPECT_EQ(db::AddPackage(c, 2026), 42);
  EXPECT_EQ(c.scalar(QStringLiteral("SELECT Phase FROM Package WHERE ID=42")), 2026.0);
}

// Two packages; package 1 has sections 1 and 2, package 2 has section 3. Every data table
// holds rows of every section.
void fillTwoPackages(db::Connection& c) {
  c.exec(QStringLiteral("INSERT INTO Package (ID, Name) VALUES (1, 'A'), (2, 'B')"));
  c.exec(QStringLiteral("INSERT INTO Sections (ID, PackageID) VALUES (1, 1), (2, 1), (3, 2)"));
  for (int s = 1; s <= 3; ++s) {
    const QString id = QString::number(s);
    c.exec(QStringLiteral("INSERT INTO Initial (Chainage, Offset, Level, SectionID) VALUES "
                          "(0, 0, 100, %1), (0, 5, 101, %1)")
               .arg(id));
    c.exec(QStringLiteral("INSERT INTO Executed (Chainage, Offset, Level, SectionID) VALUES "
                          "(0, 0, 100, %1)")
               .arg(id));
    c.exec(
        QStringLiteral("INSERT INTO DesignLevels (Chainage, Level, SectionID) VALUES (0, 99, %1)")
            .arg(id));
    c.exec(
        QStringLiteral("INSERT INTO DesignDetails (Chainage, SectionID) VALUES (0, %1)").arg(id));
    c.exec(QStringLiteral("INSERT INTO DesignQty (SectionID, Chainage) VALUES (%1, 0)").arg(id));
    c.exec(QStringLiteral("INSERT INTO Outlets (SectionID, Chainage) VALUES (%1, 0)").arg(id));
  }
}

const char* const kDataTables[] = {"Initial",       "Executed",  "DesignLevels",
                                   "DesignDetails", "DesignQty", "Outlets"};

// Deleting package 1 takes sections 1 and 2 with it; deleting section 1 leaves package 1 and
// section 2.
TEST(OrphanCleanUp, DeletedPackageOrSectionTakesOnlyItsOwnRows) {
  for (const bool package : {true, false}) {
    TempProject project;
    db::Connection& c = project.create();
    fillTwoPackages(c);
    c.exec(package ? QStringLiteral("DELETE FROM Package WHERE ID=1")
                   : QStringLiteral("DELETE FROM Sections WHERE ID=1"));
    package ? db::DeleteOrphansAfterPackages(c) : db::DeleteOrphansAfterSections(c);
    EXPECT_EQ(rowCount(c, QStringLiteral("Package")), package ? 1 : 2);
    EXPECT_EQ(rowCount(c, QStringLiteral("Sections")), package ? 1 : 2);
    const QString gone =
        package ? QStringLiteral("SectionID IN (1, 2)") : QStringLiteral("SectionID=1");
    const QString kept = package ? QStringLiteral("SectionID=3") : QStringLiteral("SectionID=2");
    for (const char* table : kDataTables) {
      EXPECT_EQ(rowCount(c, QString::fromLatin1(table), gone), 0) << table << package;
      EXPECT_GT(rowCount(c, QString::fromLatin1(table), kept), 0) << table << package;
    }
  }
}

TEST(OrphanCleanUp, SecondRunDeletesNothing) {
  TempProject project;
  db::Connection& c = project.create();
  fillTwoPackages(c);
  c.exec(QStringLiteral("DELETE FROM Package WHERE ID=2"));
  db::DeleteOrphansAfterPackages(c);
  const int before = c.scalar(QStringLiteral("SELECT total_changes()")).value_or(0);
  db::DeleteOrphansAfterPackages(c);
  db::DeleteOrphansAfterSections(c);
  EXPECT_EQ(c.scalar(QStringLiteral("SELECT total_changes()")).value_or(0), before);
}

TEST(AddRows, LevelRowsCarrySectionAndChainage) {
  TempProject project;
  db::Connection& c = project.create();
  db::AddLevelRows(c, QStringLiteral("Initial"), 5, 0.15f, 3);
  db::AddSectionRows(c, QStringLiteral("DesignLevels"), 5, 2);
  EXPECT_EQ(rowCount(c, QStringLiteral("Initial"), QStringLiteral("SectionID=5 AND Chainage=0.15")),
            3);
  EXPECT_EQ(rowCount(c, QStringLiteral("DesignLevels"), QStringLiteral("SectionID=5")), 2);
}

}  // namespace
