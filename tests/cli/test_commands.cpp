#include "cli/cli.h"
#include "db/connection.h"
#include "engine/designsection.h"
#include "engine/reporter.h"
#include "engine/sectionviews.h"
#include "engine/session.h"
#include "tests/cli/clirunner.h"
#include "tests/testsupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>
#include <utility>
#include <vector>

#include <unistd.h>

using testsupport::runCli;
using testsupport::TempProject;

namespace {

enum class Project {
  None,
  // The demo: section 1 (km 0 to 4, executed levels up to km 1), section 2 (km 4 to 7).
  Demo,
  // Section 1: a 10 m bed at 98 with side slopes 1.5 under flat ground at 100, surveyed at
  // chainages 0 and 0.1 at offsets -20, -10, 0, 10, 20: 26 m² of cut at each.
  HandBuilt,
};

void buildHandBuilt(db::Connection& c) {
  for (const char* sql :
       {"DELETE FROM DesignExp",
        "INSERT INTO DesignExp (DesignID, Serial, LCR, Offset, Value) VALUES (1, 1, 'C', '0', "
        "'$CL'), (1, 2, 'L', '5', '$CL'), (1, 3, 'R', '5', '$CL')",
        "INSERT INTO Package (ID, Name) VALUES (1, 'P')",
        "INSERT INTO Sections (ID, PackageID, Description) VALUES (1, 1, 'S')",
        "INSERT INTO DesignDetails (SectionID, Chainage, SRS_LEFT, SRS_RIGHT) VALUES (1, 0, 1.5, "
        "1.5)",
        "INSERT INTO DesignLevels (SectionID, Chainage, Level) VALUES (1, 0, 98), (1, 1, 98)"})
    c.exec(QString::fromLatin1(sql));
  for (const char* chainage : {"0", "0.1"})
    for (const char* offset : {"-20", "-10", "0", "10", "20"})
      c.exec(QStringLiteral("INSERT INTO Initial (SectionID, Chainage, Offset, Level) VALUES "
                            "(1, %1, %2, 100)")
                 .arg(QLatin1String(chainage), QLatin1String(offset)));
}

// One command line: FILE stands for the project, DIR/ for its folder. out is the whole output,
// or a part of it after "~"; err a part of the error output; written a file the command must
// leave starting with writtenStart, or must not leave when writtenStart is null.
struct CliCase {
  const char* name;
  Project project;
  const char* setup;  // statements separated by "; "
  const char* args;
  int code;
  const char* out;
  const char* err = nullptr;
  const char* written = nullptr;
  const char* writtenStart = nullptr;
};

class CliCommandTest : public ::testing::TestWithParam<CliCase> {};

TEST_P(CliCommandTest, ExitsAndPrintsAsExpected) {
  const CliCase& k = GetParam();
  TempProject project;
  if (k.project != Project::None) project.create(k.project == Project::Demo);
  if (k.project == Project::HandBuilt) buildHandBuilt(project.connection());
  if (k.setup)
    for (const QString& sql : QString::fromUtf8(k.setup).split(QStringLiteral("; ")))
      project.connection().exec(sql);
  const auto expand = [&project](QString text) {
    return text.replace(QStringLiteral("FILE"), project.path())
        .replace(QStringLiteral("DIR/"), project.dir().path() + QLatin1Char('/'))
        .replace(QStringLiteral("DATA/"), QStringLiteral(DELVANE_TEST_DATA "/"));
  };
  const QStringList args =
      expand(QString::fromUtf8(k.args)).split(QLatin1Char(' '), Qt::SkipEmptyParts);
  const auto r = runCli(args);

  EXPECT_EQ(r.code, k.code) << r.err.toStdString();
  const QString out = QString::fromUtf8(k.out ? k.out : "");
  if (out.startsWith(QLatin1Char('~'))) {
    EXPECT_TRUE(r.out.contains(out.mid(1))) << r.out.toStdString();
  } else if (k.out) {
    EXPECT_EQ(r.out.toStdString(), out.toStdString());
  }
  if (k.err) {
    const QString err = QString::fromUtf8(k.err).replace(QStringLiteral("DIR/"),
                                                         project.dir().path() + QLatin1Char('/'));
    EXPECT_TRUE(r.err.contains(err)) << r.err.toStdString();
  }
  if (k.written) {
    QFile file(expand(QString::fromUtf8(k.written)));
    if (!k.writtenStart) {
      EXPECT_FALSE(file.exists()) << k.written;
    } else {
      ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << k.written;
      EXPECT_TRUE(file.readAll().startsWith(k.writtenStart)) << k.written;
    }
  }
}

// The areas table of the hand-built chainage 0: 20 and 10 lie beyond the catch point at 8.
#define ZEROS17 ",0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0]"
#define HAND_ROWS                                                                            \
  "[[20,100" ZEROS17 ",[10,100" ZEROS17                                                      \
  ",[8,100,100,0,0,0,1,0,3,3,0,0,0,0,0,0,0,0,0]"                                             \
  ",[5,100,98,0,2,0,2,0,5,10,0,0,0,0,0,0,0,0,0],[0,100,98,0,2,0,0,0,0,0,0,0,0,0,0,0,0,0,0]"  \
  ",[5,100,98,0,2,0,2,0,5,10,0,0,0,0,0,0,0,0,0],[8,100,100,0,0,0,1,0,3,3,0,0,0,0,0,0,0,0,0]" \
  ",[10,100" ZEROS17 ",[20,100" ZEROS17 "]"
#define HAND_DESIGN "[[0,98],[5,98],[8,100]]"
#define HAND_GROUND "[[0,100],[10,100],[20,100]]"
#define CANAL_POINTS "[[0,151],[3,151],[6.9,153.6],[10.9,153.6]]"
#define BAD_INITIAL \
  "Null, Negative, Zero Values or Values not in acceptable range in Initial Levels."
// Each "(()())" doubles the formula's working text: 2^18 characters at the end.
#define DOUBLING_3 "(()())(()())(()())"
#define DOUBLING_18 DOUBLING_3 DOUBLING_3 DOUBLING_3 DOUBLING_3 DOUBLING_3 DOUBLING_3 "(1)"
#define NAN_OFFSET "UPDATE Initial SET Offset='NaN' WHERE Chainage=0 AND Offset=20"
#define SURVEY "survey/rmc_km1_resurvey.csv"

INSTANTIATE_TEST_SUITE_P(
    Commands, CliCommandTest,
    ::testing::Values(
        // Formulas.
        CliCase{"EvalPrecedence", Project::None, nullptr, "eval 2+3*4", 0, "14\n"},
        CliCase{"EvalVariableAnyCase", Project::None, nullptr, "eval --var CL=251.2 $cl+0.1", 0,
                "251.3\n"},
        CliCase{"EvalLastSettingWins", Project::None, nullptr, "eval --var X=1 --var X=2 $X", 0,
                "2\n"},
        CliCase{"EvalAfterDoubleDash", Project::None, nullptr, "eval --var W=-1.5 -- -$W*2", 0,
                "3\n"},
        CliCase{"EvalPrintsTheSingle", Project::None, nullptr, "eval 1/3", 0, "0.33333334\n"},
        CliCase{"Substitute", Project::None, nullptr,
                "substitute --var CL=100 --var FSD=2.5 $CL+$fsd*2", 0, "100+2.5*2\n"},
        // Projects and usage.
        CliCase{"MissingFile", Project::None, nullptr, "sections DIR/missing.delvane", 3, nullptr,
                "does not exist"},
        CliCase{"Help", Project::None, nullptr, "sections --help", 0, "~FILE"},
        CliCase{"NewRefusesToOverwrite", Project::HandBuilt, nullptr, "new FILE", 3, nullptr,
                "already exists"},
        // Design.
        // 151.000 at km 0 and 150.900 at km 0.5; numbers are the singles' shortest text.
        CliCase{"DesignLevelInterpolated", Project::Demo, nullptr,
                "design-level FILE --section 1 --chainage 0.25 --json", 0,
                R"({"chainage":0.25,"errors":[],"interpolated":true,"level":150.95})"
                "\n"},
        CliCase{"DesignLevelBeforeTheFirst", Project::Demo, nullptr,
                "design-level FILE --section 2 --chainage 3.5 --json", 1,
                "~\"errors\":[\"Chainage : 3.5>Insufficient levels in design. Lower Design level "
                "not found\"]",
                "Chainage : 3.5>Insufficient levels in design. Lower Design level not found\n"},
        CliCase{"DesignLevelQuiet", Project::Demo, nullptr,
                "design-level FILE --section 2 --chainage 3.5 --quiet", 0,
                "3.5\t0\tinterpolated\n"},
        // Bed 6 wide at 151, inner slopes 1.5 over FSD 2 + freeboard 0.6, banks 4 wide.
        CliCase{"DesignSectionOfTheCanalTemplate", Project::Demo, nullptr,
                "design-section FILE --section 1 --chainage 0 --json", 0,
                R"({"centre_level":151,"chainage":0,"errors":[],"left":)" CANAL_POINTS
                R"(,"right":)" CANAL_POINTS "}\n"},
        CliCase{"ValidateListsBadRows", Project::Demo,
                "UPDATE Initial SET [Level]=150 WHERE SectionID=1; UPDATE DesignLevels SET "
                "[Level]=150; UPDATE Initial SET [Level]=NULL WHERE SectionID=1 AND "
                "Chainage=0.02 AND Offset=0",
                "validate FILE --section 1 --json", 1,
                R"({"bad":true,"errors":["Chainage [0.02], Offset [0], Level []: )" BAD_INITIAL
                "\"]}\n"},
        CliCase{"ValidateOneChainage", Project::Demo,
                "UPDATE Initial SET [Level]=150 WHERE SectionID=1; UPDATE DesignLevels SET "
                "[Level]=150; UPDATE Initial SET [Level]=NULL WHERE SectionID=1 AND "
                "Chainage=0.02 AND Offset=0",
                "validate FILE --section 1 --json --chainage 0.04", 0,
                R"({"bad":false,"errors":[]})"
                "\n"},
        // km 0 to 3 every 20 m.
        CliCase{"SyncChainagesFollowsInitial", Project::Demo,
                "DELETE FROM Initial WHERE SectionID=1 AND Chainage > 3",
                "sync-chainages FILE --section 1", 0,
                "DesignQty of section 1 holds 151 chainages.\n"},
        // Areas and quantities. The chainage is rounded to 3 decimals before it is computed.
        CliCase{"AreasJson", Project::HandBuilt, nullptr,
                "areas FILE --section 1 --chainage 0.0001 --json", 0,
                R"({"area_cut":26,"area_fill":0,"chainage":0,"errors":[],"rows":)" HAND_ROWS
                R"(,"slots":[26,0,0,0,0,0]})"
                "\n"},
        CliCase{"AreasText", Project::HandBuilt, nullptr, "areas FILE --section 1 --chainage 0", 0,
                "Area Calculation for Chainage : 0\n"
                "Offset\tOGL\tDesign Level\tDepth of Cut\tDepth of Fill\tAvg Depth of Cut\tAvg "
                "Depth of Fill\tHoriz Distance\tCut Area\tFill Area\n"
                "20.000\t100.000\t\t\t\t\t\t\t\t\n"
                "10.000\t100.000\t\t\t\t\t\t\t\t\n"
                "8.000\t100.000\t100.000\t\t\t1.000\t\t3.000\t3.000\t\n"
                "5.000\t100.000\t98.000\t2.000\t\t2.000\t\t5.000\t10.000\t\n"
                "0.000\t100.000\t98.000\t2.000\t\t\t\t\t\t\n"
                "5.000\t100.000\t98.000\t2.000\t\t2.000\t\t5.000\t10.000\t\n"
                "8.000\t100.000\t100.000\t\t\t1.000\t\t3.000\t3.000\t\n"
                "10.000\t100.000\t\t\t\t\t\t\t\t\n"
                "20.000\t100.000\t\t\t\t\t\t\t\t\n"
                "\t\t\t\t\t\t\t\t26.000\t0.000\n"},
        CliCase{
            "QuantitiesJson", Project::HandBuilt, nullptr, "quantities FILE --section 1 --json", 0,
            R"({"computed":true,"errors":[],"rows":[)"
            R"({"chainage":0,"cut_area":26,"cut_volume":null,"fill_area":0,"fill_volume":null},)"
            R"({"chainage":0.1,"cut_area":26,"cut_volume":2600,"fill_area":0,"fill_volume":0}],)"
            R"("section":1,"total_cut_volume":2600,"total_fill_volume":0})"
            "\n"},
        CliCase{"QuantitiesText", Project::HandBuilt, nullptr, "quantities FILE --section 1", 0,
                "Chainage\tCut Area\tFill Area\tCut Volume\tFill Volume\n"
                "0.000\t26.000\t0.000\t\t\n"
                "0.100\t26.000\t0.000\t2,600.000\t0.000\n"
                "\t\t\t2,600.00\t0.00\n"
                "Cutting Volume : 2,600.00 cum\n"
                "Filling Volume : 0.00 cum\n"},
        CliCase{"QuantitiesCsv", Project::HandBuilt, nullptr, "quantities FILE --section 1 --csv",
                0,
                "Chainage,Cut Area,Fill Area,Cut Volume,Fill Volume\n0,26,0,,\n0.1,26,0,2600,0\n,,,"
                "2600,0\n"},
        // (6 + 26) ÷ 2 × 100 m and (1 + 0) ÷ 2 × 100 m: the other chainage keeps its stored areas.
        CliCase{
            "QuantitiesOfOneChainage", Project::HandBuilt,
            "INSERT INTO DesignQty (SectionID, Chainage, AreaCut, AreaFill) VALUES (1, 0, 6, 1)",
            "quantities FILE --section 1 --chainage 0.1 --json", 0,
            R"(~"total_cut_volume":1600,"total_fill_volume":50})"},
        CliCase{"QuantitiesStopAtInvalidLevels", Project::HandBuilt,
                "UPDATE Initial SET Level=20 WHERE Offset=20", "quantities FILE --section 1 --json",
                1, R"(~{"computed":false,"errors":["Chainage [0], Offset [20], Level [20]: )",
                "Chainage [0.1], Offset [20], Level [20]: "},
        // Export.
        CliCase{"ExportCsv", Project::HandBuilt, nullptr,
                "export FILE --section 1 --output DIR/q.csv", 0,
                "~Wrote the quantity sheet of section 1", nullptr, "DIR/q.csv",
                "Chainage,Cut Area,Fill Area,Cut Volume,Fill Volume\r\n0,26,0,,\r\n"},
        // Section 2 has no executed levels: the workbook is written and the gaps reported.
        CliCase{"ExportWorkbook", Project::Demo, nullptr,
                "export FILE --section 2 --output DIR/q.xlsx --executed", 1, nullptr, nullptr,
                "DIR/q.xlsx", "PK\x03\x04"},
        CliCase{"ExportStopsAtInvalidLevels", Project::HandBuilt,
                "UPDATE Initial SET Level=300 WHERE ID=1",
                "export FILE --section 1 --output DIR/q.csv", 1, nullptr, "Nothing was exported",
                "DIR/q.csv"},
        CliCase{"ExportOfMissingProject", Project::None, nullptr,
                "export DIR/none.delvane --section 1 --output DIR/q.csv", 3, nullptr,
                "none.delvane"},
        CliCase{"ExportToUnwritableFolder", Project::HandBuilt, nullptr,
                "export FILE --section 1 --output DIR/nofolder/q.csv", 3, nullptr,
                "DIR/nofolder/q.csv cannot be written: "},
        // Plot. The hand-built section's two small cross-sections share one page.
        CliCase{"PlotCrossSectionsJson", Project::HandBuilt, nullptr,
                "plot FILE --section 1 --output DIR/x.pdf --json", 0,
                R"(~"kind":"cross","outputs":[)", nullptr, "DIR/x.pdf", "%PDF"},
        CliCase{"PlotCountsPagesAndSections", Project::HandBuilt, nullptr,
                "plot FILE --section 1 --output DIR/x.json --json", 0,
                R"(~"pages":1,"section":1,"sections_drawn":2})", nullptr, "DIR/x.json", "{"},
        CliCase{"PlotSaysWhatItWrote", Project::HandBuilt, nullptr,
                "plot FILE --section 1 --scale 200 --output DIR/x.svg", 0,
                "~Wrote 1 page of cross sections of section 1 to ", nullptr, "DIR/x.svg", "<?xml"},
        CliCase{"PlotLongSection", Project::HandBuilt, nullptr,
                "plot FILE --section 1 --long --datum 95 --output DIR/l.pdf --json", 0,
                R"(~"kind":"long","outputs":[)", nullptr, "DIR/l.pdf", "%PDF"},
        // The demo's section 1 runs from km 0 to 4 every 20 m; its longitudinal sheet puts
        // 1,000 m on a page, and the chainage on the edge of two pages stands on both.
        CliCase{"PlotCountsEveryChainageOfTheDemo", Project::Demo, nullptr,
                "plot FILE --section 1 --output DIR/x.json --json", 0,
                R"(~"section":1,"sections_drawn":201})", nullptr, "DIR/x.json", "{"},
        CliCase{"PlotLongCountsTheChainagesOfItsPages", Project::Demo, nullptr,
                "plot FILE --section 1 --long --pages 2-3 --output DIR/l.json --json", 0,
                R"(~"pages":2,"section":1,"sections_drawn":101})", nullptr, "DIR/l.json", "{"},
        CliCase{"PlotLongMetresPerPage", Project::Demo, nullptr,
                "plot FILE --section 1 --long --metres-per-page 500 --output DIR/l.json --json", 0,
                R"(~"pages":8,"section":1,"sections_drawn":201})", nullptr, "DIR/l.json", "{"},
        // Executed levels stop at km 1: the sheet is drawn and the missing ones are reported.
        CliCase{"PlotReportsMissingExecutedLevels", Project::Demo, nullptr,
                "plot FILE --section 1 --executed --pages 1 --output DIR/x.json", 1,
                "~Wrote 1 page", "Chainage not found in executed levels : 1.02\n", "DIR/x.json",
                "{"},
        CliCase{"PlotLongNeedsTwoChainages", Project::HandBuilt,
                "DELETE FROM Initial WHERE Chainage > 0",
                "plot FILE --section 1 --long --output DIR/l.pdf", 1, "",
                "Insufficient levels to plot L-Section. Atleast 2 sections are required.\n",
                "DIR/l.pdf"},
        CliCase{"PlotSectionWithoutChainages", Project::HandBuilt, "DELETE FROM Initial",
                "plot FILE --section 1 --output DIR/x.pdf", 1, nullptr,
                "Section 1 has no chainages to draw", "DIR/x.pdf", "%PDF"},
        CliCase{"PlotUnknownSection", Project::HandBuilt, nullptr,
                "plot FILE --section 99 --output DIR/x.pdf", 2, "", "no section 99", "DIR/x.pdf"},
        CliCase{"PlotPagesBeyondTheSheet", Project::HandBuilt, nullptr,
                "plot FILE --section 1 --pages 2 --output DIR/x.pdf", 2, "",
                "Usage: delvane-cli plot [options] FILE", "DIR/x.pdf"},
        CliCase{"PlotToUnwritableFolder", Project::HandBuilt, nullptr,
                "plot FILE --section 1 --output DIR/nofolder/x.pdf", 3, "",
                "nofolder/x.pdf cannot be written."},
        // Section points. The hand-built cross-section: the design ends at its catch point.
        CliCase{"SectionPointsJson", Project::HandBuilt, nullptr,
                "section-points FILE --section 1 --chainage 0.1 --json", 0,
                R"({"area_cut":26,"area_fill":0,"chainage":0.1,"datum":97,)"
                R"("design":{"left":)" HAND_DESIGN R"(,"right":)" HAND_DESIGN R"(},)"
                R"("executed":{"left":[],"right":[]},)"
                R"("existing":{"left":)" HAND_GROUND R"(,"right":)" HAND_GROUND R"(},)"
                R"("highest":100,"lowest":98})"
                "\n"},
        CliCase{"SectionPointsText", Project::HandBuilt, nullptr,
                "section-points FILE --section 1 --chainage 0", 0,
                "Section 1, chainage 0\n\n"
                "Design\nSide\tDistance\tLevel\n"
                "left\t0\t98\nleft\t5\t98\nleft\t8\t100\n"
                "right\t0\t98\nright\t5\t98\nright\t8\t100\n\n"
                "Existing\nSide\tDistance\tLevel\n"
                "left\t0\t100\nleft\t10\t100\nleft\t20\t100\n"
                "right\t0\t100\nright\t10\t100\nright\t20\t100\n\n"
                "Cut area\t26\nFill area\t0\nDatum\t97\nLowest\t98\nHighest\t100\n"},
        CliCase{"SectionPointsTextWithExecutedLevels", Project::Demo, nullptr,
                "section-points FILE --section 1 --chainage 0.5 --executed", 0,
                "~\n\nExecuted\nSide\tDistance\tLevel\nleft\t"},
        // A stored chainage with neither ground nor design levels: nothing to stand on.
        CliCase{"SectionPointsWithoutLevels", Project::HandBuilt,
                "DELETE FROM Initial; DELETE FROM DesignLevels; INSERT INTO DesignQty (SectionID, "
                "Chainage) VALUES (1, 0)",
                "section-points FILE --section 1 --chainage 0 --json", 1,
                R"({"area_cut":0,"area_fill":0,"chainage":0,"datum":null,)"
                R"("design":{"left":[],"right":[]},"executed":{"left":[],"right":[]},)"
                R"("existing":{"left":[],"right":[]},"highest":null,"lowest":null})"
                "\n",
                "Lower Design level not found"},
        CliCase{"SectionPointsOfAnUnknownChainage", Project::Demo, nullptr,
                "section-points FILE --section 1 --chainage 0.51 --json", 1, "",
                "Section 1 has no cross-section at chainage 0.51; the nearest are 0.5 and 0.52.\n"},
        CliCase{"SectionPointsStopAtAnInvalidLevel", Project::Demo,
                "UPDATE Initial SET [Level]=15.2 WHERE SectionID=1 AND Chainage=0.5 AND Offset=0",
                "section-points FILE --section 1 --chainage 0.5 --json", 1, "",
                "Chainage [0.5], Offset [0], Level [15.2]: " BAD_INITIAL "\n"},
        // Executed levels stop at km 1: the points are given and the gap reported.
        CliCase{"SectionPointsReportMissingExecutedLevels", Project::Demo, nullptr,
                "section-points FILE --section 1 --chainage 2 --executed --json", 1,
                R"(~"executed":{"left":[],"right":[]},)",
                "Chainage not found in executed levels : 2\n"},
        CliCase{"SectionPointsOfAMissingProject", Project::None, nullptr,
                "section-points DIR/none.delvane --section 1 --chainage 0", 3, "", "none.delvane"},
        // The typical section: one page of the design, refused without design details.
        CliCase{"PlotTypicalSection", Project::Demo, nullptr,
                "plot FILE --section 1 --typical --output DIR/t.png", 0,
                "~Wrote 1 page of the typical section of section 1 to ", nullptr, "DIR/t.png",
                "\x89PNG"},
        CliCase{"PlotTypicalSectionPdf", Project::HandBuilt, nullptr,
                "plot FILE --section 1 --typical --output DIR/t.pdf --json", 0,
                R"(~"kind":"typical","outputs":[)", nullptr, "DIR/t.pdf", "%PDF"},
        CliCase{"PlotTypicalNeedsDesignDetails", Project::HandBuilt, "DELETE FROM DesignDetails",
                "plot FILE --section 1 --typical --output DIR/t.png", 1, "",
                "Section 1 has no design details", "DIR/t.png"},
        // Hostile files: each ends with a message and its exit code.
        CliCase{"ValidateNamesANaNOffset", Project::HandBuilt, NAN_OFFSET,
                "validate FILE --section 1", 1, "~missing or out of range",
                "Chainage [0], Offset [NaN], Level [100]: " BAD_INITIAL},
        CliCase{"QuantitiesStopAtANaNOffset", Project::HandBuilt, NAN_OFFSET,
                "quantities FILE --section 1 --json", 1, "~\"computed\":false", "Offset [NaN]"},
        CliCase{"AreasEndAtANaNOffset", Project::HandBuilt, NAN_OFFSET,
                "areas FILE --section 1 --chainage 0 --json", 0, "~\"area_cut\":"},
        CliCase{"PlotEndsAtANaNOffset", Project::HandBuilt, NAN_OFFSET,
                "plot FILE --section 1 --output DIR/x.json", 0, "~Wrote 1 page"},
        CliCase{"EvalRefusesAGrowingFormula", Project::None, nullptr, "eval " DOUBLING_18, 1, "0\n",
                "grows beyond"},
        CliCase{"DesignSectionNamesAGrowingFormula", Project::HandBuilt,
                "UPDATE DesignExp SET Offset='" DOUBLING_18 "' WHERE Serial=2",
                "design-section FILE --section 1 --chainage 0", 1, "~centre level\t98",
                "The Offset formula of DesignExp row Serial 2 grows beyond"},
        CliCase{"SectionsOfAFolder", Project::None, nullptr, "sections DIR/", 3, "", "is a folder"},
        // Survey files.
        CliCase{"ImportLevels", Project::HandBuilt, nullptr,
                "import-levels FILE --section 1 --csv DATA/" SURVEY, 0,
                "Imported 27 readings at 3 chainages into the Initial levels of section 1.\n"},
        CliCase{"ImportLevelsReplacing", Project::HandBuilt, nullptr,
                "import-levels FILE --section 1 --csv DATA/" SURVEY " --replace", 0,
                "~into the Initial levels of section 1, in place of its 10.\n"},
        CliCase{"ImportExecutedLevelsJson", Project::HandBuilt, nullptr,
                "import-levels FILE --section 1 --csv DATA/" SURVEY " --table Executed --json", 0,
                R"(~"rows":27,"section":1,"table":"Executed","written":true})"},
        CliCase{"ImportLevelsGuessesMetres", Project::HandBuilt, nullptr,
                "import-levels FILE --section 1 --csv DATA/survey/rmc_km2_levels.txt --json", 0,
                R"({"chainage_unit":"m","chainage_unit_guessed":true,"chainages":2,)"
                R"("delimiter":"space","errors":[],"header_line":0,"replaced":0,"rows":6,)"
                R"("section":1,"table":"Initial","written":true})"
                "\n"},
        CliCase{"ImportLevelsInTheUnitGiven", Project::HandBuilt, nullptr,
                "import-levels FILE --section 1 --csv DATA/survey/rmc_km2_levels.txt "
                "--chainage-unit km --json",
                0, R"(~{"chainage_unit":"km","chainage_unit_guessed":false,)"},
        CliCase{
            "ImportLevelsRefusesReadingsTheTableHolds", Project::Demo, nullptr,
            "import-levels FILE --section 1 --csv DATA/" SURVEY, 1, "",
            "rmc_km1_resurvey.csv, line 8, column 1 (chainage): the Initial levels of section 1 "
            "already hold chainage 1.02 and offset 0: '1+020.000,0.000,151.875,CL'.\n"},
        CliCase{"ImportLevelsOfAMissingFile", Project::HandBuilt, nullptr,
                "import-levels FILE --section 1 --csv DIR/none.csv", 3, "",
                "none.csv cannot be opened"}),
    [](const auto& info) { return std::string(info.param.name); });

// Each bad command line against one demo project: exit 2, nothing printed, an error naming the
// fault (a part of it given here when the exact text matters) and no file left behind.
TEST(CliUsage, BadCommandLinesExitWithUsageAndWriteNothing) {
  TempProject project;
  project.create(true);
  const QDir dir(project.dir().path());
  const QStringList files = dir.entryList(QDir::Files);
  const struct {
    const char* args;
    const char* err;
  } cases[] = {
      {"eval --var CL $CL", "'CL'"},
      {"eval --var CL=abc $CL", "'CL=abc'"},
      {"eval --var CL= $CL", "'CL='"},
      {"eval --var =5 1", "'=5'"},
      {"substitute --var X=1,5 $X", "'X=1,5'"},
      {"eval", "exactly one FORMULA"},
      {"eval 1 2", "exactly one FORMULA"},
      {"", "Usage:"},
      {"frobnicate", "unknown command"},
      {"sections", "give exactly one FILE"},
      {"sections --bogus x", "bogus"},
      {"design-level FILE --chainage 1", ""},
      {"design-level FILE --section 1", ""},
      {"design-level FILE --section x --chainage 1", ""},
      {"design-section FILE --section 1 --chainage 1km", ""},
      {"validate FILE", ""},
      {"order-initial FILE --section 0", ""},
      {"sync-chainages --section 1", ""},
      {"quantities FILE", ""},
      {"quantities FILE --section 1 --json --csv", ""},
      {"quantities FILE --all --section 1", ""},
      {"areas FILE --section 1", ""},
      {"areas FILE --section 1 --chainage x", ""},
      {"export FILE --section 1 --output DIR/q.txt", ""},
      {"export FILE --section 1", ""},
      {"export FILE --output DIR/q.csv", ""},
      {"export --section 1 --output DIR/q.csv", ""},
      {"export FILE --section x --output DIR/q.csv", ""},
      {"export FILE --section 99 --output DIR/q.xlsx", "no section 99"},
      {"quantities FILE --section 99", "no section 99"},
      {"areas FILE --section 99 --chainage 0.5", "no section 99"},
      {"design-level FILE --section 99 --chainage 0.5", "no section 99"},
      {"validate FILE --section 99", "Usage: delvane-cli validate [options] FILE"},
      {"plot FILE --section 1 --output DIR/x.pdf --scale 300", "--scale"},
      {"plot FILE --section 1 --output DIR/x.pdf --long --scale 100", "--scale"},
      {"plot FILE --section 1 --output DIR/x.pdf --pages 2-1", "--pages"},
      {"plot FILE --section 1 --output DIR/x.pdf --pages 1-", "--pages"},
      {"plot FILE --section 1 --output DIR/x.pdf --pages 900-999", "--pages"},
      {"plot FILE --section 1 --output DIR/x.dxf", "--output"},
      {"plot FILE --section 1", "--output"},
      {"plot FILE --section 1 --output DIR/x.pdf --datum 95", "--long"},
      {"plot FILE --section 1 --output DIR/x.pdf --long --metres-per-page 0", "metres-per-page"},
      {"plot FILE --section 1 --output DIR/x.pdf --long --datum low", "--datum"},
      {"section-points FILE --section 1", "--chainage"},
      {"section-points FILE --section 1 --chainage 0.5km", "'0.5km'"},
      {"section-points FILE --chainage 0.5", "--section"},
      {"section-points --section 1 --chainage 0.5", "FILE"},
      {"section-points FILE --section 99 --chainage 0.5", "no section 99"},
      {"plot FILE --section 1 --output DIR/x.pdf --typical --long", "--long"},
      {"plot FILE --section 1 --output DIR/x.pdf --typical --pages 1", "--pages"},
      {"import-levels FILE --section 1", "--csv"},
      {"import-levels FILE --section 1 --csv DIR/s.csv --table design", "--table"},
      {"import-levels FILE --section 1 --csv DIR/s.csv --chainage-unit ft", "--chainage-unit"},
      {"import-levels FILE --section 99 --csv DATA/" SURVEY, "no section 99"},
  };
  for (const auto& k : cases) {
    SCOPED_TRACE(k.args);
    const QStringList args =
        QString::fromUtf8(k.args)
            .replace(QStringLiteral("FILE"), project.path())
            .replace(QStringLiteral("DIR/"), dir.path() + QLatin1Char('/'))
            .replace(QStringLiteral("DATA/"), QStringLiteral(DELVANE_TEST_DATA "/"))
            .split(QLatin1Char(' '), Qt::SkipEmptyParts);
    const auto r = runCli(args);
    EXPECT_EQ(r.code, cli::kUsage);
    EXPECT_EQ(r.out.toStdString(), "");
    EXPECT_FALSE(r.err.isEmpty());
    EXPECT_TRUE(r.err.contains(QString::fromUtf8(k.err))) << r.err.toStdString();
    EXPECT_EQ(dir.entryList(QDir::Files), files);
  }
}

// The second import of a file meets the readings of the first: they were written.
TEST(CliImportLevels, ASecondImportMeetsTheReadingsOfTheFirst) {
  TempProject project;
  project.create();
  project.connection().exec(QStringLiteral("INSERT INTO Sections (ID, PackageID) VALUES (4, 1)"));
  const QStringList args{
      QStringLiteral("import-levels"), project.path(),
      QStringLiteral("--section"),     QStringLiteral("4"),
      QStringLiteral("--csv"),         QStringLiteral(DELVANE_TEST_DATA "/" SURVEY)};
  EXPECT_EQ(runCli(args).code, cli::kOk);
  const auto again = runCli(args);
  EXPECT_EQ(again.code, cli::kDataProblems);
  EXPECT_TRUE(again.err.startsWith(QLatin1String(
      "rmc_km1_resurvey.csv, line 4, column 1 (chainage): the Initial levels of section 4")))
      << again.err.toStdString();
  EXPECT_EQ(testsupport::rowCount(project.connection(), QStringLiteral("Initial"),
                                  QStringLiteral("SectionID=4 AND Chainage=1.06 AND Offset=12.5 "
                                                 "AND Level=152.112")),
            1);
}

TEST(CliNew, CreatesDemoAndListsItsSections) {
  QTemporaryDir dir;
  const QString file = dir.filePath(QStringLiteral("demo.delvane"));
  ASSERT_EQ(runCli({QStringLiteral("new"), file, QStringLiteral("--demo")}).code, 0);
  const auto listed = runCli({QStringLiteral("sections"), file});
  EXPECT_EQ(listed.code, 0) << listed.err.toStdString();
  EXPECT_EQ(listed.out, QStringLiteral("1\tRight Main Canal\t1\tRMC km 0.000 to 4.000\n"
                                       "1\tRight Main Canal\t2\tRMC km 4.000 to 7.000\n"));
}

// An empty name is refused; a name SQLite would read as a URI is a file of that name.
TEST(CliNew, NamesAreFileNames) {
  QTemporaryDir dir;
  const QString previous = QDir::currentPath();
  ASSERT_TRUE(QDir::setCurrent(dir.path()));
  const auto empty = runCli({QStringLiteral("new"), QString()});
  const auto uri = runCli({QStringLiteral("new"), QStringLiteral("file:p.delvane?mode=memory")});
  QDir::setCurrent(previous);
  EXPECT_EQ(empty.code, cli::kUsage);
  EXPECT_TRUE(empty.err.contains(QStringLiteral("FILE is empty"))) << empty.err.toStdString();
  EXPECT_EQ(uri.code, 0) << uri.err.toStdString();
  EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files),
            QStringList{QStringLiteral("file:p.delvane?mode=memory")});
}

QByteArray fileBytes(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A read-only foreign file lacking the chainage indexes and the quantity chainages: every
// command that only reads succeeds and leaves it byte for byte as it was, computing the
// chainages a sync would store.
TEST(CliReadOnly, ReadingCommandsLeaveTheFileAsItWas) {
  TempProject project;
  buildHandBuilt(project.create());
  project.connection().exec(QStringLiteral("DROP INDEX idx_Initial_SectionChainage"));
  QFile::setPermissions(project.path(), QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
  const QByteArray before = fileBytes(project.path());
  const struct {
    const char* args;
    const char* out;
  } cases[] = {
      {"sections FILE", "1\tP\t1\tS\n"},
      {"design-level FILE --section 1 --chainage 0.05", "0.05\t98\tinterpolated\n"},
      {"design-section FILE --section 1 --chainage 0.05", "centre level\t98\n"},
      {"validate FILE --section 1", "The levels of section 1 are acceptable.\n"},
      {"plot FILE --section 1 --output DIR/x.json --json", R"("sections_drawn":2)"},
      {"plot FILE --section 1 --long --output DIR/l.json --json", R"("sections_drawn":2)"},
      {"section-points FILE --section 1 --chainage 0.1", "Cut area\t26\n"},
  };
  for (const auto& k : cases) {
    SCOPED_TRACE(k.args);
    const auto r =
        runCli(QString::fromUtf8(k.args)
                   .replace(QStringLiteral("FILE"), project.path())
                   .replace(QStringLiteral("DIR/"), project.dir().path() + QLatin1Char('/'))
                   .split(QLatin1Char(' ')));
    EXPECT_EQ(r.code, 0) << r.err.toStdString();
    EXPECT_TRUE(r.out.contains(QString::fromUtf8(k.out))) << r.out.toStdString();
    EXPECT_EQ(fileBytes(project.path()), before);
  }
}

// An output that is the project file, by its own name, a link or any of a plot's page files,
// is refused before anything is written.
TEST(CliOutputs, NeverReplaceTheProject) {
  TempProject project;
  project.create(true);
  const QDir dir(project.dir().path());
  ASSERT_TRUE(QFile::link(project.path(), dir.filePath(QStringLiteral("link.csv"))));
  ASSERT_TRUE(QFile::link(project.path(), dir.filePath(QStringLiteral("link.pdf"))));
  ASSERT_TRUE(QFile::link(project.path(), dir.filePath(QStringLiteral("x-2.png"))));
  ASSERT_EQ(::link(QFile::encodeName(project.path()).constData(),
                   QFile::encodeName(dir.filePath(QStringLiteral("hard.xlsx"))).constData()),
            0);
  ASSERT_TRUE(QFile::copy(project.path(), dir.filePath(QStringLiteral("p.csv"))));
  const QByteArray before = fileBytes(project.path());
  for (const char* args : {"export FILE --section 1 --output DIR/link.csv",
                           "export FILE --section 1 --output DIR/hard.xlsx",
                           "export DIR/p.csv --section 1 --output DIR/./p.csv",
                           "plot FILE --section 1 --output DIR/link.pdf",
                           "plot FILE --section 1 --pages 1-2 --output DIR/x.png"}) {
    SCOPED_TRACE(args);
    const auto r = runCli(QString::fromUtf8(args)
                              .replace(QStringLiteral("FILE"), project.path())
                              .replace(QStringLiteral("DIR/"), dir.path() + QLatin1Char('/'))
                              .split(QLatin1Char(' ')));
    EXPECT_EQ(r.code, cli::kUsage);
    EXPECT_TRUE(r.err.contains(QStringLiteral("project file itself"))) << r.err.toStdString();
    EXPECT_EQ(fileBytes(project.path()), before);
  }
  EXPECT_FALSE(dir.exists(QStringLiteral("x-1.png")));
}

// The whole Initial table as text, in order of entry.
QString initialTable(db::Connection& c) {
  db::Statement st =
      c.prepare(QStringLiteral("SELECT ID, SectionID, Chainage, Offset FROM Initial ORDER BY ID"));
  QString text;
  while (st.step())
    text += QStringList{st.text(0), st.text(1), st.text(2), st.text(3)}.join(QLatin1Char(' ')) +
            QLatin1Char('\n');
  return text;
}

TEST(CliOrderInitial, RestoresRawFieldEntry) {
  TempProject project;
  db::Connection& c = project.create(true);
  const QString ordered = initialTable(c);
  // Section 2 as typed in the field: the chainage on each cross-section's first reading only,
  // every offset a positive distance.
  c.exec(
      QStringLiteral("UPDATE Initial SET Chainage=NULL WHERE SectionID=2 AND ID NOT IN "
                     "(SELECT min(ID) FROM Initial WHERE SectionID=2 GROUP BY Chainage)"));
  c.exec(QStringLiteral("UPDATE Initial SET Offset=-Offset WHERE SectionID=2 AND Offset < 0"));
  ASSERT_NE(initialTable(c), ordered);
  const auto r = runCli({QStringLiteral("order-initial"), project.path(),
                         QStringLiteral("--section"), QStringLiteral("2")});
  // Exit 1 exactly when the check of section 2 afterwards found bad levels.
  EXPECT_EQ(r.code, r.err.isEmpty() ? 0 : 1) << r.err.toStdString();
  EXPECT_EQ(initialTable(c), ordered);
}

TEST(CliQuantities, AllSectionsGiveEachTotalAndTheGrandTotal) {
  TempProject project;
  project.create(true);
  const auto all = runCli({QStringLiteral("quantities"), project.path(), QStringLiteral("--all"),
                           QStringLiteral("--json")});
  ASSERT_EQ(all.code, 0) << all.err.toStdString();
  const QJsonObject o = QJsonDocument::fromJson(all.out.toUtf8()).object();
  const QJsonArray sections = o.value(QStringLiteral("sections")).toArray();
  ASSERT_EQ(sections.size(), 2);
  double sum = 0.0;
  for (const QJsonValue& v : sections) {
    EXPECT_TRUE(v[QStringLiteral("computed")].toBool());
    EXPECT_GT(v[QStringLiteral("total_cut_volume")].toDouble(), 10000.0);
    sum += v[QStringLiteral("total_cut_volume")].toDouble();
  }
  EXPECT_NEAR(o.value(QStringLiteral("total_cut_volume")).toDouble(), sum, 0.01);

  const auto text = runCli({QStringLiteral("quantities"), project.path(), QStringLiteral("--all")});
  const QStringList lines = text.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
  ASSERT_EQ(lines.size(), 3);
  EXPECT_TRUE(
      lines[0].startsWith(QLatin1String("Section 1 (RMC km 0.000 to 4.000): Cutting Volume : ")));
  EXPECT_TRUE(lines[2].startsWith(QLatin1String("Total: Cutting Volume : ")));
}

// The demo's executed cross-section at km 0.5, as JSON, against its golden file.
TEST(CliAreas, DemoJsonMatchesItsGoldenFile) {
  TempProject project;
  project.create(true);
  const auto r = runCli({QStringLiteral("areas"), project.path(), QStringLiteral("--section"),
                         QStringLiteral("1"), QStringLiteral("--chainage"), QStringLiteral("0.5"),
                         QStringLiteral("--executed"), QStringLiteral("--json")});
  ASSERT_EQ(r.code, 0) << r.err.toStdString();
  const QString path = QStringLiteral(DELVANE_TEST_DATA "/areas/demo_areas_s1_km0.5.json");
  if (qEnvironmentVariableIsSet("DELVANE_UPDATE_GOLDEN")) {
    QFile out(path);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly | QIODevice::Text));
    out.write(r.out.toUtf8());
  }
  QFile golden(path);
  ASSERT_TRUE(golden.open(QIODevice::ReadOnly | QIODevice::Text)) << path.toStdString();
  EXPECT_EQ(r.out.toStdString(), QString::fromUtf8(golden.readAll()).toStdString());
}

// ---- section points on the demo ------------------------------------------------------------

using Points = std::vector<std::pair<float, float>>;

Points pointsOf(const std::vector<engine::ProfilePoint>& table) {
  Points points;
  for (const engine::ProfilePoint& p : table) points.emplace_back(p.Offset, p.Level);
  return points;
}

// A JSON point list read back as singles: the shortest text of a single reads back as it.
Points pointsOf(const QJsonValue& list) {
  Points points;
  for (const QJsonValue& p : list.toArray())
    points.emplace_back(static_cast<float>(p[0].toDouble()), static_cast<float>(p[1].toDouble()));
  return points;
}

float singleOf(const QJsonValue& value) { return static_cast<float>(value.toDouble()); }

// What section-points prints for a demo chainage is what the engine computes for it, table by
// table; executed levels only when asked for.
TEST(CliSectionPoints, JsonAgreesWithTheEngine) {
  TempProject project;
  project.create(true);
  const struct {
    std::int32_t section;
    float chainage;
    bool executed;
  } cases[] = {{1, 0.5f, false}, {1, 0.5f, true}, {2, 6.3f, false}};
  for (const auto& k : cases) {
    const QString chainage = QString::number(k.chainage);
    SCOPED_TRACE(QStringLiteral("section %1 at %2%3")
                     .arg(k.section)
                     .arg(chainage, k.executed ? QStringLiteral(", executed") : QString())
                     .toStdString());
    QStringList args{QStringLiteral("section-points"), project.path(),
                     QStringLiteral("--section"),      QString::number(k.section),
                     QStringLiteral("--chainage"),     chainage,
                     QStringLiteral("--json")};
    if (k.executed) args.append(QStringLiteral("--executed"));
    const auto r = runCli(args);
    ASSERT_EQ(r.code, 0) << r.err.toStdString();
    const QJsonObject o = QJsonDocument::fromJson(r.out.toUtf8()).object();

    engine::RecordingReporter reporter;
    engine::EngineSession session(project.connection(), reporter);
    ASSERT_FALSE(session.LoadDesignProfile());
    session.setSection(k.section);
    session.setUseExecutedLevel(k.executed);
    engine::ResetDesignCache(session);
    const engine::CrossSection s = engine::computeCrossSection(session, k.chainage);
    ASSERT_TRUE(s.hasPoints());
    ASSERT_EQ(s.executedLeft.empty(), !k.executed);

    EXPECT_EQ(singleOf(o[QStringLiteral("chainage")]), s.chainage);
    const std::pair<const char*, const std::vector<engine::ProfilePoint>*> tables[] = {
        {"design", &s.designLeft},     {"design", &s.designRight},
        {"existing", &s.groundLeft},   {"existing", &s.groundRight},
        {"executed", &s.executedLeft}, {"executed", &s.executedRight}};
    for (int i = 0; i < 6; ++i) {
      const char* side = i % 2 == 0 ? "left" : "right";
      SCOPED_TRACE(std::string(tables[i].first) + " " + side);
      EXPECT_EQ(pointsOf(o[QLatin1String(tables[i].first)][QLatin1String(side)]),
                pointsOf(*tables[i].second));
    }
    EXPECT_EQ(o[QStringLiteral("datum")].toInt(-1), s.datum());
    EXPECT_EQ(singleOf(o[QStringLiteral("lowest")]), s.lowest);
    EXPECT_EQ(singleOf(o[QStringLiteral("highest")]), s.highest);
    EXPECT_EQ(singleOf(o[QStringLiteral("area_cut")]), s.areaCut);
    EXPECT_EQ(singleOf(o[QStringLiteral("area_fill")]), s.areaFill);
  }
}

// ---- plot on the demo ----------------------------------------------------------------------

// Runs plot on section 1 of project with --json, writing output into its folder; the parsed
// summary, empty after a failed run.
QJsonObject plotDemo(const TempProject& project, const QString& output,
                     const QStringList& options) {
  const auto r =
      runCli(QStringList{QStringLiteral("plot"), project.path(), QStringLiteral("--section"),
                         QStringLiteral("1"), QStringLiteral("--json"), QStringLiteral("--output"),
                         project.dir().filePath(output)} +
             options);
  EXPECT_LE(r.code, cli::kDataProblems) << r.err.toStdString();
  return QJsonDocument::fromJson(r.out.toUtf8()).object();
}

QStringList words(const char* text) {
  return QString::fromUtf8(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

struct PlotOutputCase {
  const char* name;
  const char* output;
  const char* pages;
  std::vector<const char*> files;  // what the command must write, and nothing else
  const char* start;               // how each file starts
};

class CliPlotOutputTest : public ::testing::TestWithParam<PlotOutputCase> {};

TEST_P(CliPlotOutputTest, WritesTheFilesOfItsFormat) {
  const PlotOutputCase& k = GetParam();
  TempProject project;
  project.create(true);
  const QJsonObject summary = plotDemo(project, QString::fromUtf8(k.output),
                                       {QStringLiteral("--pages"), QString::fromUtf8(k.pages)});
  QStringList expected, reported;
  for (const char* f : k.files) expected.append(QString::fromUtf8(f));
  for (const QJsonValue& v : summary.value(QStringLiteral("outputs")).toArray())
    reported.append(QFileInfo(v.toString()).fileName());
  EXPECT_EQ(reported, expected);
  QStringList onDisk = QDir(project.dir().path()).entryList(QDir::Files, QDir::Name);
  onDisk.removeAll(QStringLiteral("test.delvane"));
  EXPECT_EQ(onDisk, expected);
  for (const QString& f : expected) {
    QFile file(project.dir().filePath(f));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << f.toStdString();
    EXPECT_TRUE(file.readAll().startsWith(k.start)) << f.toStdString();
  }
}

INSTANTIATE_TEST_SUITE_P(
    Formats, CliPlotOutputTest,
    ::testing::Values(
        PlotOutputCase{"PdfHoldsEveryPage", "x.pdf", "1-2", {"x.pdf"}, "%PDF"},
        PlotOutputCase{"PngNumbersItsPages", "x.png", "1-2", {"x-1.png", "x-2.png"}, "\x89PNG"},
        PlotOutputCase{"PngOfOnePageKeepsTheName", "x.png", "2", {"x.png"}, "\x89PNG"},
        PlotOutputCase{"SvgFilePerPage", "x.svg", "2-3", {"x-1.svg", "x-2.svg"}, "<?xml"},
        PlotOutputCase{"JsonHoldsEveryPage", "x.json", "1-2", {"x.json"}, "{"}),
    [](const auto& info) { return std::string(info.param.name); });

// Runs a poppler tool; nullopt when it is not installed.
std::optional<QString> poppler(const char* tool, const QStringList& args) {
  const QString program = QStandardPaths::findExecutable(QString::fromLatin1(tool));
  if (program.isEmpty()) return std::nullopt;
  QProcess p;
  p.start(program, args);
  p.waitForFinished(60000);
  return QString::fromUtf8(p.readAllStandardOutput());
}

// Each sheet read back from its PDF: as many pages as reported, and a text of its band.
TEST(CliPlot, DemoPdfsHaveTheReportedPagesAndTheirBandTitles) {
  if (QStandardPaths::findExecutable(QStringLiteral("pdfinfo")).isEmpty() ||
      QStandardPaths::findExecutable(QStringLiteral("pdftotext")).isEmpty())
    GTEST_SKIP() << "pdfinfo and pdftotext (poppler-utils) are not installed";
  TempProject project;
  project.create(true);
  for (const auto& [options, text] :
       {std::pair{"--pages 1-2", "DISTANCE IN METER"}, std::pair{"--long --pages 1-2", "DATUM"}}) {
    SCOPED_TRACE(options);
    const QString pdf = project.dir().filePath(QStringLiteral("x.pdf"));
    const QJsonObject summary = plotDemo(project, QStringLiteral("x.pdf"), words(options));
    const QRegularExpressionMatch pages = QRegularExpression(QStringLiteral("^Pages:\\s+(\\d+)$"),
                                                             QRegularExpression::MultilineOption)
                                              .match(poppler("pdfinfo", {pdf}).value_or(QString()));
    ASSERT_TRUE(pages.hasMatch());
    EXPECT_EQ(pages.captured(1).toInt(), summary.value(QStringLiteral("pages")).toInt());
    // The legend wraps its titles over lines.
    const QString read = poppler("pdftotext", {pdf, QStringLiteral("-")})->simplified();
    EXPECT_TRUE(read.contains(QString::fromUtf8(text))) << read.toStdString();
  }
}

// The printed summary runs over pages, each titled with its number, the totals on the last.
TEST(CliQuantities, PrintedSummaryHoldsEveryRowAndTheTotals) {
  if (!poppler("pdfinfo", {}) || !poppler("pdftotext", {}))
    GTEST_SKIP() << "pdfinfo and pdftotext (poppler-utils) are not installed";
  TempProject project;
  project.create(true);
  const QString pdf = project.dir().filePath(QStringLiteral("q.pdf"));
  const testsupport::CliResult r = testsupport::runCli(
      {QStringLiteral("quantities"), project.path(), QStringLiteral("--section"),
       QStringLiteral("1"), QStringLiteral("--output"), pdf});
  ASSERT_EQ(r.code, 0) << r.err.toStdString();
  const QRegularExpressionMatch pages =
      QRegularExpression(QStringLiteral("^Pages:\\s+(\\d+)$"), QRegularExpression::MultilineOption)
          .match(poppler("pdfinfo", {pdf}).value_or(QString()));
  ASSERT_TRUE(pages.hasMatch());
  const QString n = pages.captured(1);
  ASSERT_GT(n.toInt(), 1);
  const QString last =
      poppler("pdftotext", {QStringLiteral("-f"), n, pdf, QStringLiteral("-")})->simplified();
  EXPECT_TRUE(last.contains(QStringLiteral("Page %1 of %1").arg(n))) << last.toStdString();
  EXPECT_TRUE(last.contains(QStringLiteral("46,102.62 59,255.66"))) << last.toStdString();
  const QString first =
      poppler("pdftotext", {QStringLiteral("-l"), QStringLiteral("1"), pdf, QStringLiteral("-")})
          ->simplified();
  EXPECT_TRUE(first.contains(QStringLiteral("Chainage Cut Area Fill Area"))) << first.toStdString();
}

// The recorded primitives are for scripts: every page names its size, its layers' styles and
// primitives that use those layers, under a title naming the package and the section.
TEST(CliPlot, JsonOutputHoldsPagesLayersAndPrimitives) {
  TempProject project;
  project.create(true);
  const QJsonObject summary = plotDemo(project, QStringLiteral("x.json"), words("--pages 1-2"));
  QFile file(project.dir().filePath(QStringLiteral("x.json")));
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const QJsonArray pages =
      QJsonDocument::fromJson(file.readAll()).object().value(QStringLiteral("pages")).toArray();
  ASSERT_EQ(pages.size(), summary.value(QStringLiteral("pages")).toInt());
  for (const QJsonValue& page : pages) {
    EXPECT_GT(page[QStringLiteral("width_mm")].toInt(), 0);
    EXPECT_GT(page[QStringLiteral("height_mm")].toInt(), 0);
    const QJsonArray layers = page[QStringLiteral("layers")].toArray();
    ASSERT_FALSE(layers.isEmpty());
    for (const QJsonValue& layer : layers)
      for (const char* key : {"fore", "fill", "fill_style", "width", "style", "font", "size"})
        EXPECT_TRUE(layer.toObject().contains(QLatin1String(key))) << key;
    bool titled = false;
    for (const QJsonValue& p : page[QStringLiteral("primitives")].toArray()) {
      EXPECT_FALSE(p[QStringLiteral("op")].toString().isEmpty());
      const int layer = p[QStringLiteral("layer")].toInt(-1);
      EXPECT_TRUE(layer >= 0 && layer < layers.size()) << layer;
      EXPECT_FALSE(p[QStringLiteral("coords")].toArray().isEmpty());
      titled = titled || p[QStringLiteral("text")].toString().contains(
                             QStringLiteral("Right Main Canal - RMC km 0.000 to 4.000"));
    }
    EXPECT_TRUE(titled);
  }
}

TEST(CliPlot, CrossSectionCountsAddUpOverPages) {
  TempProject project;
  project.create(true);
  const auto drawn = [&](const char* pages) {
    return plotDemo(project, QStringLiteral("x.json"), {QStringLiteral("--pages"), pages})
        .value(QStringLiteral("sections_drawn"))
        .toInt();
  };
  EXPECT_GT(drawn("1"), 0);
  EXPECT_EQ(drawn("1-2"), drawn("1") + drawn("2"));
}

// Every option changes what is drawn: each is compared with the drawing without it.
TEST(CliPlot, EveryOptionReachesTheSheet) {
  TempProject project;
  project.create(true);
  const auto drawing = [&](const QStringList& options) {
    plotDemo(project, QStringLiteral("x.json"), options);
    QFile file(project.dir().filePath(QStringLiteral("x.json")));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  };
  for (const auto& [base, option] :
       {std::pair{"--pages 1", "--scale 500"}, std::pair{"--pages 1", "--executed"},
        std::pair{"--long", "--metres-per-page 800"}, std::pair{"--long", "--vertical-scale 50"},
        std::pair{"--long", "--datum 140"}, std::pair{"--long", "--executed"}}) {
    SCOPED_TRACE(option);
    const QByteArray plain = drawing(words(base));
    ASSERT_FALSE(plain.isEmpty());
    EXPECT_NE(drawing(words(base) + words(option)), plain);
  }
}

}  // namespace
