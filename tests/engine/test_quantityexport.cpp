#include "engine/quantityexport.h"

#include "engine/session.h"
#include "tests/engine/areafixture.h"
#include "tests/zipreader.h"

#include <QDate>
#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace {

using engine::ExportQuantitySheet;
using engine::QuantityExportResult;
using engine::QuantitySheetFormat;
using testsupport::AreaFixture;

QByteArray fileBytes(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return {};
  return file.readAll();
}

bool writeFile(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

// Section 1 of package "Main Canal": the bed at 98 between offsets -5 and 5 with slopes 1.5 and
// flat ground at 0.000 km (100: 26 m² of cut), 0.050 km (97: 11.5 m² of fill) and 0.100 km
// (100 again).
class QuantityExportTest : public AreaFixture {
 protected:
  QuantityExportTest() {
    c.exec(QStringLiteral(
        "UPDATE Package SET Name='Main Canal', Phase='2024', District='North' WHERE ID=1"));
    c.exec(QStringLiteral(
        "UPDATE Sections SET Description='Reach 1', Title='Km 0 to 0.1' WHERE ID=1"));
    setDesignLevel(0.0f, 98.0f);
    setDesignLevel(10.0f, 98.0f);
    setSlopes(0.0f, 1.5f, 1.5f);
    setFlatGround(0.0f, 100.0f);
    setFlatGround(0.05f, 97.0f);
    setFlatGround(0.1f, 100.0f);
  }

  QString out(const QString& name) const { return project.dir().filePath(name); }

  QuantityExportResult exportTo(const QString& path, QuantitySheetFormat format) {
    return ExportQuantitySheet(session, path, format);
  }

  // Makes one level invalid, so that the run stops before computing anything.
  void spoilALevel() {
    c.exec(QStringLiteral("UPDATE Initial SET Level=300 WHERE Chainage=0 AND Offset=10"));
  }
};

// 50 m × (26 + 0) / 2 and 50 m × (0 + 11.5) / 2 per stretch; the first row has no volumes. A
// section without chainages still gets the header and zero totals.
TEST_F(QuantityExportTest, CsvHoldsEveryChainageAsPlainNumbersAndTheTotalsRow) {
  const QString path = out(QStringLiteral("q.csv"));
  const QuantityExportResult result = exportTo(path, QuantitySheetFormat::Csv);
  ASSERT_EQ(result.status, QuantityExportResult::Status::Written) << result.message.toStdString();
  EXPECT_EQ(result.rowCount, 3);
  EXPECT_TRUE(reporter.errors.isEmpty()) << errorText().toStdString();
  const std::string header = "Chainage,Cut Area,Fill Area,Cut Volume,Fill Volume\r\n";
  EXPECT_EQ(fileBytes(path).toStdString(), header +
                                               "0,26,0,,\r\n"
                                               "0.05,0,11.5,650,287.5\r\n"
                                               "0.1,26,0,650,287.5\r\n"
                                               ",,,1300,575\r\n");

  c.exec(QStringLiteral("DELETE FROM DesignQty"));
  c.exec(QStringLiteral("DELETE FROM Initial"));
  ASSERT_EQ(exportTo(path, QuantitySheetFormat::Csv).status, QuantityExportResult::Status::Written);
  EXPECT_EQ(fileBytes(path).toStdString(), header + ",,,0,0\r\n");
}

TEST_F(QuantityExportTest, WorkbookHoldsTheSummaryAndTheSectionSheets) {
  const QString path = out(QStringLiteral("q.xlsx"));
  const QuantityExportResult result = exportTo(path, QuantitySheetFormat::Xlsx);
  ASSERT_EQ(result.status, QuantityExportResult::Status::Written) << result.message.toStdString();

  const auto parts = testsupport::readZip(path);
  ASSERT_TRUE(parts.has_value()) << "not a well-formed zip";
  for (const char* name :
       {"[Content_Types].xml", "xl/workbook.xml", "xl/styles.xml", "xl/sharedStrings.xml",
        "xl/worksheets/sheet1.xml", "xl/worksheets/sheet2.xml"})
    ASSERT_EQ(parts->count(QString::fromLatin1(name)), 1u) << name;

  const QString workbook = QString::fromUtf8(parts->at(QStringLiteral("xl/workbook.xml")));
  const qsizetype summaryAt = workbook.indexOf(QLatin1String("name=\"Quantity Summary\""));
  EXPECT_TRUE(summaryAt >= 0 && summaryAt < workbook.indexOf(QLatin1String("name=\"Section\"")))
      << "both sheets, the summary first";

  const QString strings = QString::fromUtf8(parts->at(QStringLiteral("xl/sharedStrings.xml")));
  for (const char* text : {"Chainage", "Cut Area", "Fill Area", "Cut Volume", "Fill Volume",
                           "Main Canal", "Reach 1", "Km 0 to 0.1", "North", "2024"})
    EXPECT_TRUE(strings.contains(QLatin1String(text))) << text;

  const QString styles = QString::fromUtf8(parts->at(QStringLiteral("xl/styles.xml")));
  EXPECT_TRUE(styles.contains(QLatin1String("formatCode=\"#,##0.000\"")));
  EXPECT_TRUE(styles.contains(QLatin1String("formatCode=\"#,##0.00\"")));

  // Numbers are stored as numbers (no t="s"), one row per chainage below the header, and the
  // totals in the row after the last chainage, columns D and E.
  const QString summary = QString::fromUtf8(parts->at(QStringLiteral("xl/worksheets/sheet1.xml")));
  const auto cell = [&summary](const char* ref, const char* value) {
    const QRegularExpression re(QStringLiteral("<c r=\"%1\"( s=\"\\d+\")?><v>%2</v></c>")
                                    .arg(QLatin1String(ref), QLatin1String(value)));
    return re.match(summary).hasMatch();
  };
  const std::pair<const char*, const char*> values[] = {
      {"A3", "0.05"},  {"B2", "26"},   {"C3", "11.5"}, {"D4", "650"},
      {"E4", "287.5"}, {"D5", "1300"}, {"E5", "575"}};
  for (const auto& [ref, value] : values) EXPECT_TRUE(cell(ref, value)) << ref;
  EXPECT_FALSE(summary.contains(QLatin1String("r=\"D2\""))) << "the first row has no volume";
  EXPECT_FALSE(summary.contains(QLatin1String("r=\"A5\""))) << "the totals row has no chainage";

  // The totals cells use a bold style with two decimals, the rows one with three.
  const auto styleOf = [&summary](const char* ref) {
    const QRegularExpression re(QStringLiteral("<c r=\"%1\" s=\"(\\d+)\"").arg(QLatin1String(ref)));
    return re.match(summary).captured(1);
  };
  EXPECT_FALSE(styleOf("D5").isEmpty());
  EXPECT_EQ(styleOf("D5"), styleOf("E5"));
  EXPECT_NE(styleOf("D5"), styleOf("D4"));

  const QString section = QString::fromUtf8(parts->at(QStringLiteral("xl/worksheets/sheet2.xml")));
  EXPECT_TRUE(section.contains(QLatin1String("<v>1300</v>")));
  EXPECT_TRUE(section.contains(QLatin1String("<v>575</v>")));
  // The date is a spreadsheet date number: days since 30 Dec 1899.
  const qint64 serial = QDate(1899, 12, 30).daysTo(QDate::currentDate());
  EXPECT_TRUE(section.contains(QStringLiteral("<v>%1</v>").arg(serial))) << serial;
}

TEST_F(QuantityExportTest, InvalidLevelsExportNothingAndLeaveAnEarlierFileAlone) {
  spoilALevel();
  const QString csv = out(QStringLiteral("q.csv"));
  ASSERT_TRUE(writeFile(csv, "earlier"));
  EXPECT_EQ(exportTo(csv, QuantitySheetFormat::Csv).status,
            QuantityExportResult::Status::StoppedByInvalidLevels);
  EXPECT_EQ(fileBytes(csv), QByteArray("earlier"));

  const QString xlsx = out(QStringLiteral("q.xlsx"));
  EXPECT_EQ(exportTo(xlsx, QuantitySheetFormat::Xlsx).status,
            QuantityExportResult::Status::StoppedByInvalidLevels);
  EXPECT_FALSE(QFile::exists(xlsx));
  // The error list says why: the bad level, once for each of the two runs.
  ASSERT_EQ(reporter.errors.size(), 2);
  EXPECT_TRUE(reporter.errors[0].contains(QLatin1String("Initial Levels")));
}

TEST_F(QuantityExportTest, UnwritableFileIsNamedWithTheReason) {
  for (QuantitySheetFormat format : {QuantitySheetFormat::Csv, QuantitySheetFormat::Xlsx}) {
    const QString path = out(QStringLiteral("no such folder/q.xlsx"));
    const QuantityExportResult result = exportTo(path, format);
    EXPECT_EQ(result.status, QuantityExportResult::Status::CannotWrite);
    const QString lead =
        QStringLiteral("The file ") + path + QStringLiteral(" cannot be written: ");
    EXPECT_TRUE(result.message.startsWith(lead) && result.message.size() > lead.size() + 1)
        << "the file and the reason: " << result.message.toStdString();
    EXPECT_FALSE(QFile::exists(path));
  }
}

// The desktop's export to a file that is the open project, by its name or a link to it, is
// refused before the run, and the project stays as it was.
TEST_F(QuantityExportTest, TheOpenProjectIsNeverTheExportedFile) {
  const QString link = out(QStringLiteral("link.csv"));
  ASSERT_TRUE(QFile::link(project.path(), link));
  const QByteArray before = fileBytes(project.path());
  for (const QString& path : {project.path(), link}) {
    const QuantityExportResult result = exportTo(path, QuantitySheetFormat::Csv);
    EXPECT_EQ(result.status, QuantityExportResult::Status::CannotWrite);
    EXPECT_TRUE(result.message.contains(QStringLiteral("open project file")))
        << result.message.toStdString();
    EXPECT_EQ(fileBytes(project.path()), before);
  }
}

struct FormatCase {
  const char* path;
  std::optional<QuantitySheetFormat> format;
};

TEST(QuantitySheetFormat, FollowsTheExtensionInAnyCase) {
  const FormatCase cases[] = {{"q.xlsx", QuantitySheetFormat::Xlsx},
                              {"/tmp/Reach 1.XLSX", QuantitySheetFormat::Xlsx},
                              {"q.Csv", QuantitySheetFormat::Csv},
                              {"q.xls", std::nullopt},
                              {"q", std::nullopt},
                              {"csv", std::nullopt}};
  for (const FormatCase& c : cases)
    EXPECT_EQ(engine::QuantitySheetFormatOf(QString::fromLatin1(c.path)), c.format) << c.path;
}

}  // namespace
