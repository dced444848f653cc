#include "engine/levelimport.h"

#include "engine/session.h"
#include "tests/engine/areafixture.h"

#include <gtest/gtest.h>

namespace {

const QString kSample = QStringLiteral(DELVANE_TEST_DATA "/survey/rmc_km1_resurvey.csv");

class LevelImportTest : public testsupport::SessionFixture {
 protected:
  // Imports text (the sample file when null) into section 1.
  engine::LevelImportResult import(const QByteArray& text, bool replace = false,
                                   engine::LevelTable table = engine::LevelTable::Initial) {
    const QStringList lines = engine::surveyLines(text);
    const engine::SurveyLayout layout = engine::detectSurveyLayout(lines);
    return engine::importLevels(session, QStringLiteral("s.csv"), layout,
                                engine::readSurvey(lines, layout, {}), table, 1, replace);
  }
  QByteArray sample() {
    QString error;
    return engine::readSurveyFile(kSample, error).value_or(QByteArray());
  }
  // The rows of a table as "section chainage offset level", in order of entry.
  QStringList rows(const char* table) {
    db::Statement st = c.prepare(QStringLiteral("SELECT SectionID, Chainage, Offset, Level FROM ") +
                                 QLatin1String(table) + QStringLiteral(" ORDER BY ID"));
    QStringList all;
    while (st.step())
      all.append(QStringList{st.text(0), st.text(1), st.text(2), st.text(3)}.join(u' '));
    return all;
  }
};

TEST_F(LevelImportTest, TheSampleGoesInAsTheProjectStoresSinglesAndMarksTheLevelsChanged) {
  const engine::LevelImportResult result = import(sample());
  EXPECT_TRUE(result.written) << errorText().toStdString();
  EXPECT_EQ(result.rows, 27);
  EXPECT_EQ(result.chainages, 3);
  const QStringList stored = rows("Initial");
  ASSERT_EQ(stored.size(), 27);
  EXPECT_EQ(stored[0], QStringLiteral("1 1.02 -30 152.092"));
  EXPECT_EQ(stored[13], QStringLiteral("1 1.04 0 151.88"));
  EXPECT_EQ(stored[26], QStringLiteral("1 1.06 30 152.093"));
  EXPECT_TRUE(session.quantityChainagesOutOfDate());
}

TEST_F(LevelImportTest, ABadLineInTheMiddleWritesNothingAndIsNamed) {
  exec("INSERT INTO Initial (SectionID, Chainage, Offset, Level) VALUES (1, 2, 0, 150)");
  QByteArray text = sample();
  text.replace("1+040.000,5.000L,151.803,BED", "1+040.000,5.000L,15l.803,BED");
  const engine::LevelImportResult result = import(text, true);
  EXPECT_FALSE(result.written);
  EXPECT_EQ(rows("Initial"), QStringList{QStringLiteral("1 2 0 150")});
  EXPECT_EQ(reporter.errors,
            (QStringList{QStringLiteral("s.csv, line 17, column 3 (level): '15l.803' is not a "
                                        "number."),
                         QStringLiteral("Nothing was imported from s.csv: 1 line has to be put "
                                        "right first.")}));
  EXPECT_FALSE(session.quantityChainagesOutOfDate());
}

TEST_F(LevelImportTest, AReadingAlreadyInTheTableIsRefusedUnlessReplacing) {
  exec(
      "INSERT INTO Initial (SectionID, Chainage, Offset, Level) VALUES (1, 1.04, 0, 150), "
      "(1, 1.5, 0, 150), (2, 1.02, -30, 150)");
  EXPECT_FALSE(import(sample()).written);
  EXPECT_EQ(
      reporter.errors.value(0),
      QStringLiteral("s.csv, line 18, column 1 (chainage): the Initial levels of section 1 "
                     "already hold chainage 1.04 and offset 0: '1+040.000,0.000,151.880,CL'."));
  EXPECT_EQ(rows("Initial").size(), 3);

  // Replacing deletes the section's rows only, and only of the one table.
  exec("INSERT INTO Executed (SectionID, Chainage, Offset, Level) VALUES (1, 1.04, 0, 150)");
  const engine::LevelImportResult result = import(sample(), true);
  EXPECT_TRUE(result.written);
  EXPECT_EQ(result.replaced, 2);
  EXPECT_EQ(rows("Initial").size(), 28);
  EXPECT_EQ(rows("Initial").first(), QStringLiteral("2 1.02 -30 150"));
  EXPECT_EQ(rows("Executed").size(), 1);
  // The other table is checked on its own rows.
  reporter.errors.clear();
  EXPECT_FALSE(import(sample(), false, engine::LevelTable::Executed).written);
  EXPECT_TRUE(reporter.errors.value(0).contains(
      QLatin1String("line 18, column 1 (chainage): the Executed levels of section 1 already hold "
                    "chainage 1.04 and offset 0")));
}

TEST_F(LevelImportTest, ProblemLinesStopAtAHundredAndTheRestAreCounted) {
  QByteArray text = "Station,Offset,Level\n";
  for (int i = 0; i < 130; ++i) text += "1+020,x,101\n";
  EXPECT_FALSE(import(text).written);
  ASSERT_EQ(reporter.errors.size(), engine::kImportProblemLines + 1);
  EXPECT_EQ(reporter.errors.last(),
            QStringLiteral("30 more lines of s.csv have problems. Nothing was imported from "
                           "s.csv: 130 lines have to be put right first."));
}

TEST_F(LevelImportTest, AFileWithoutReadingsReplacesNothing) {
  exec("INSERT INTO Initial (SectionID, Chainage, Offset, Level) VALUES (1, 2, 0, 150)");
  EXPECT_FALSE(import("# nothing yet\nStation,Offset,Level\n", true).written);
  EXPECT_EQ(rows("Initial").size(), 1);
}

}  // namespace
