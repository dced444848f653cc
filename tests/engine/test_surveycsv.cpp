#include "engine/surveycsv.h"

#include "tests/testsupport.h"

#include <gtest/gtest.h>

namespace {

using engine::ChainageUnit;
using engine::SurveyField;

engine::SurveyRead readText(const char* text, std::optional<ChainageUnit> unit = {}) {
  const QStringList lines = engine::surveyLines(QByteArray(text));
  return engine::readSurvey(lines, engine::detectSurveyLayout(lines), unit);
}

// The columns of chainage, offset, level and code, as "c o l code".
QString columnsOf(const engine::SurveyLayout& layout) {
  QStringList columns;
  for (int column : layout.columns) columns.append(QString::number(column));
  return columns.join(QLatin1Char(' '));
}

struct LayoutCase {
  const char* text;
  char delimiter;
  int headerLine;
  const char* columns;
};

TEST(SurveyLayout, FindsDelimiterHeaderAndColumns) {
  const LayoutCase cases[] = {
      {"1020,12.5,101.2\n1040,3,101\n", ',', 0, "0 1 2 -1"},
      {"1020;12,5;101,2;BED\n", ';', 0, "0 1 2 3"},
      {"\xEF\xBB\xBFLevel [m]\tCh.\tOFF (m)\tRemark\r\n101.2\t1020\t5\tx y\r\n", '\t', 1,
       "1 2 0 -1"},
      {"# job 7\r  Code  RL  Station  Offset (m)\r x 101 1020 5\r", ' ', 2, "2 3 1 0"},
      {"1+020, 5L, 101.2, edge of road\n1+040, 5R, 101.3, top\n", ',', 0, "0 1 2 3"},
      {"; exported 2026\n;Station;Offset\nElevation;Sta;Off;Description\n101;1+020;5L;a\n", ';', 3,
       "1 2 0 3"},
      {"\"Station\",\"Offset\",\"Z\",\"Level\"\n\"1+020\",\"5L\",\"101\"\n", ',', 1, "0 1 2 -1"},
  };
  for (const LayoutCase& k : cases) {
    SCOPED_TRACE(k.text);
    const engine::SurveyLayout layout = engine::detectSurveyLayout(engine::surveyLines(k.text));
    EXPECT_EQ(layout.delimiter, QLatin1Char(k.delimiter));
    EXPECT_EQ(layout.headerLine, k.headerLine);
    EXPECT_EQ(columnsOf(layout), QLatin1String(k.columns));
  }
}

struct NotationCase {
  const char* chainage;
  const char* offset;
  std::optional<ChainageUnit> unit;
  float km;
  float signedOffset;
  bool guessed;
};

TEST(SurveyRead, ReadsEveryStationAndOffsetNotationWhateverTheLocale) {
  const testsupport::CommaDecimalLocale comma;
  const NotationCase cases[] = {
      {"1+250.000", "12.5L", {}, 1.25f, -12.5f, false},
      {"-0+050", "l2", {}, -0.05f, -2.0f, false},
      {"1+250.", "CL", ChainageUnit::Metres, 1.25f, 0.0f, false},
      {"1250", "12.5 R", ChainageUnit::Metres, 1.25f, 12.5f, false},
      {"1.250", "-3", ChainageUnit::Kilometres, 1.25f, -3.0f, false},
      {"1250", "+4", {}, 1.25f, 4.0f, true},
      {"99.5", "R7", {}, 99.5f, 7.0f, true},
      {"100", "0", {}, 0.1f, 0.0f, true},
  };
  for (const NotationCase& k : cases) {
    SCOPED_TRACE(std::string(k.chainage) + " " + k.offset);
    const QByteArray line = QByteArray(k.chainage) + "," + k.offset + ",101.25\n";
    const engine::SurveyRead read = readText(line.constData(), k.unit);
    ASSERT_EQ(read.problems.size(), 0u) << read.problems[0].message.toStdString();
    ASSERT_EQ(read.readings.size(), 1u);
    EXPECT_EQ(read.readings[0].chainage, k.km);
    EXPECT_EQ(read.readings[0].offset, k.signedOffset);
    EXPECT_EQ(read.readings[0].level, 101.25f);
    EXPECT_EQ(read.unitGuessed, k.guessed);
  }
}

struct BadLineCase {
  const char* line;
  int column;
  const char* message;
};

TEST(SurveyRead, NamesTheBadLineItsColumnAndText) {
  const BadLineCase cases[] = {
      {"1+060,5L", 2, "the level is missing: '1+060,5L'"},
      {"1+060,,101", 1, "the offset is missing"},
      {"1+20,5L,101", 0, "'1+20' is not a station"},
      {"1+060,5X,101", 1, "'5X' is not a number."},
      {"1+060,-5L,101", 1, "'-5L' is not an offset"},
      {"1+060,+-5,101", 1, "'+-5' is not a number."},
      {"1+060,5L,inf", 2, "'inf' is not a number."},
      {"1+060,5L,1e39", 2, "'1e39' is too large."},
      {"1+060;5L;101,5", 0, "'1+060;5L;101' is not a station"},
      {"1+020.000,5.000L,102", 0, "chainage 1.02 and offset -5 are already on line 2: "},
  };
  for (const BadLineCase& k : cases) {
    SCOPED_TRACE(k.line);
    const QByteArray text =
        QByteArray("Station,Offset,Level\n1+020,5L,101\n") + k.line + "\n1+040,5R,101\n";
    const engine::SurveyRead read = readText(text.constData());
    ASSERT_EQ(read.problems.size(), 1u);
    EXPECT_EQ(read.problems[0].line, 3);
    EXPECT_EQ(read.problems[0].column, k.column);
    EXPECT_TRUE(read.problems[0].message.contains(QLatin1String(k.message)))
        << read.problems[0].message.toStdString();
    EXPECT_EQ(read.readings.size(), 2u);
  }
}

TEST(SurveyRead, SemicolonLinesAreCommentsUnlessTheyHoldReadingsOfASemicolonFile) {
  const engine::SurveyRead commaFile = readText("; note\n1020,5,101\n; 5,101\n");
  EXPECT_EQ(commaFile.readings.size(), 1u);
  EXPECT_TRUE(commaFile.problems.empty());

  const engine::SurveyRead semicolonFile = readText("; note 2\n1020;5;101\n;5;101\n1040;2,5;101\n");
  EXPECT_EQ(semicolonFile.readings.size(), 1u);
  ASSERT_EQ(semicolonFile.problems.size(), 2u);
  EXPECT_EQ(semicolonFile.problems[0].line, 3);
  EXPECT_TRUE(
      semicolonFile.problems[0].message.startsWith(QLatin1String("the chainage is missing")));
  // A decimal comma is refused, with the reason.
  EXPECT_EQ(semicolonFile.problems[1].message,
            QStringLiteral("'2,5' is not a number: write the decimal point as '.'."));
}

TEST(SurveyRead, AHeaderWithoutALevelColumnIsOneProblem) {
  const QStringList lines = engine::surveyLines("# x\nStation,Offset,Code\n1+020,5L,a\n");
  const engine::SurveyLayout layout = engine::detectSurveyLayout(lines);
  const engine::SurveyRead read = engine::readSurvey(lines, layout, {});
  ASSERT_EQ(read.problems.size(), 1u);
  EXPECT_TRUE(read.readings.empty());
  EXPECT_EQ(engine::surveyProblemText(QStringLiteral("s.csv"), layout, read.problems[0]),
            QStringLiteral("s.csv, line 2: no column holds the level (a header names it "
                           "Elevation, Level, RL or Z): 'Station,Offset,Code'."));
}

}  // namespace
