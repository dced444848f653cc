#include "db/connection.h"
#include "tests/cli/clirunner.h"
#include "tests/testsupport.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <cmath>

using testsupport::runCli;
using testsupport::TempProject;

namespace {

QJsonObject parse(const testsupport::CliResult& r) {
  QJsonParseError error;
  const QJsonDocument doc = QJsonDocument::fromJson(r.out.toUtf8(), &error);
  EXPECT_EQ(error.error, QJsonParseError::NoError) << r.out.toStdString();
  return doc.object();
}

QStringList args(std::initializer_list<const char*> list) {
  QStringList out;
  for (const char* a : list) out << QString::fromLatin1(a);
  return out;
}

// Section 1: a 10 m bed at 98 with side slopes 1.5 under flat ground at 100, surveyed at
// chainages 0 and 0.1 at offsets -20, -10, 0, 10, 20: 26 m² of cut at each.
class HandBuiltTest : public ::testing::Test {
 protected:
  HandBuiltTest() {
    db::Connection& c = project.create(false);
    c.exec(QStringLiteral("DELETE FROM DesignExp"));
    c.exec(
        QStringLiteral("INSERT INTO DesignExp (DesignID, Serial, LCR, Offset, Value) VALUES "
                       "(1, 1, 'C', '0', '$CL'), (1, 2, 'L', '5', '$CL'), "
                       "(1, 3, 'R', '5', '$CL')"));
    c.exec(QStringLiteral("INSERT INTO Package (ID, Name) VALUES (1, 'P')"));
    c.exec(QStringLiteral("INSERT INTO Sections (ID, PackageID, Description) VALUES (1, 1, 'S')"));
    c.exec(
        QStringLiteral("INSERT INTO DesignDetails (SectionID, Chainage, SRS_LEFT, SRS_RIGHT) "
                       "VALUES (1, 0, 1.5, 1.5)"));
    c.exec(
        QStringLiteral("INSERT INTO DesignLevels (SectionID, Chainage, Level) VALUES "
                       "(1, 0, 98), (1, 1, 98)"));
    for (const char* chainage : {"0", "0.1"})
      for (const char* offset : {"-20", "-10", "0", "10", "20"})
        c.exec(QStringLiteral("INSERT INTO Initial (SectionID, Chainage, Offset, Level) VALUES "
                              "(1, %1, %2, 100)")
                   .arg(QLatin1String(chainage), QLatin1String(offset)));
    file = project.path();
  }

  TempProject project;
  QString file;
};

TEST_F(HandBuiltTest, AreasJsonHoldsTheAreaDetailsTableAndTheSlots) {
  const auto r = runCli(QStringList{QStringLiteral("areas"), file} +
                        args({"--section", "1", "--chainage", "0.0001", "--json"}));
  ASSERT_EQ(r.code, 0) << r.err.toStdString();
  const QString z = QStringLiteral(",0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0]");
  const QString rows = QStringLiteral("[[20,100") + z + QStringLiteral(",[10,100") + z +
                       QStringLiteral(
                           ",[8,100,100,0,0,0,1,0,3,3,0,0,0,0,0,0,0,0,0]"
                           ",[5,100,98,0,2,0,2,0,5,10,0,0,0,0,0,0,0,0,0]"
                           ",[0,100,98,0,2,0,0,0,0,0,0,0,0,0,0,0,0,0,0]"
                           ",[5,100,98,0,2,0,2,0,5,10,0,0,0,0,0,0,0,0,0]"
                           ",[8,100,100,0,0,0,1,0,3,3,0,0,0,0,0,0,0,0,0]") +
                       QStringLiteral(",[10,100") + z + QStringLiteral(",[20,100") + z +
                       QLatin1Char(']');
  // The chainage is rounded to 3 decimals before it is computed.
  EXPECT_EQ(r.out.trimmed(),
            QStringLiteral(R"({"area_cut":26,"area_fill":0,"chainage":0,"errors":[],"rows":)") +
                rows + QStringLiteral(R"(,"slots":[26,0,0,0,0,0]})"));
}

TEST_F(HandBuiltTest, AreasTextIsTheAreaCalculationReport) {
  const auto r = runCli(QStringList{QStringLiteral("areas"), file} +
                        args({"--section", "1", "--chainage", "0"}));
  ASSERT_EQ(r.code, 0) << r.err.toStdString();
  const QStringList lines = r.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
  ASSERT_EQ(lines.size(), 12);
  EXPECT_EQ(lines[0], QStringLiteral("Area Calculation for Chainage : 0"));
  EXPECT_EQ(lines[1], QStringLiteral("Offset\tOGL\tDesign Level\tDepth of Cut\tDepth of Fill\tAvg "
                                     "Depth of Cut\tAvg Depth of Fill\tHoriz Distance\tCut "
                                     "Area\tFill Area"));
  EXPECT_EQ(lines[5], QStringLiteral("5.000\t100.000\t98.000\t2.000\t\t2.000\t\t5.000\t10.000\t"));
  EXPECT_EQ(lines[11], QStringLiteral("\t\t\t\t\t\t\t\t26.000\t0.000"));
}

TEST_F(HandBuiltTest, QuantitiesJsonHasAreasVolumesAndTotals) {
  const auto r =
      runCli(QStringList{QStringLiteral("quantities"), file} + args({"--section", "1", "--json"}));
  ASSERT_EQ(r.code, 0) << r.err.toStdString();
  EXPECT_EQ(
      r.out.trimmed(),
      QStringLiteral(
          R"({"computed":true,"errors":[],"rows":[)"
          R"({"chainage":0,"cut_area":26,"cut_volume":null,"fill_area":0,"fill_volume":null},)"
          R"({"chainage":0.1,"cut_area":26,"cut_volume":2600,"fill_area":0,"fill_volume":0}],)"
          R"("section":1,"total_cut_volume":2600,"total_fill_volume":0})"));
}

TEST_F(HandBuiltTest, QuantitiesTextAndCsvShowTheSummary) {
  const auto text =
      runCli(QStringList{QStringLiteral("quantities"), file} + args({"--section", "1"}));
  ASSERT_EQ(text.code, 0) << text.err.toStdString();
  EXPECT_EQ(text.out, QStringLiteral("Chainage\tCut Area\tFill Area\tCut Volume\tFill Volume\n"
                                     "0.000\t26.000\t0.000\t\t\n"
                                     "0.100\t26.000\t0.000\t2,600.000\t0.000\n"
                                     "\t\t\t2,600.00\t0.00\n"
                                     "Cutting Volume : 2,600.00 cum\n"
                                     "Filling Volume : 0.00 cum\n"));
  const auto csv =
      runCli(QStringList{QStringLiteral("quantities"), file} + args({"--section", "1", "--csv"}));
  ASSERT_EQ(csv.code, 0) << csv.err.toStdString();
  EXPECT_EQ(csv.out, QStringLiteral("Chainage,Cut Area,Fill Area,Cut Volume,Fill Volume\n"
                                    "0,26,0,,\n"
                                    "0.1,26,0,2600,0\n"
                                    ",,,2600,0\n"));
}

TEST_F(HandBuiltTest, QuantitiesOfOneChainageTakeTheStoredAreasOfTheOthers) {
  project.connection().exec(QStringLiteral(
      "INSERT INTO DesignQty (SectionID, Chainage, AreaCut, AreaFill) VALUES (1, 0, 6, 1)"));
  const auto r = runCli(QStringList{QStringLiteral("quantities"), file} +
                        args({"--section", "1", "--chainage", "0.1", "--json"}));
  ASSERT_EQ(r.code, 0) << r.err.toStdString();
  const QJsonObject o = parse(r);
  // (6 + 26) ÷ 2 × 100 m and (1 + 0) ÷ 2 × 100 m.
  EXPECT_EQ(o.value(QStringLiteral("total_cut_volume")).toDouble(), 1600.0);
  EXPECT_EQ(o.value(QStringLiteral("total_fill_volume")).toDouble(), 50.0);
}

TEST_F(HandBuiltTest, InvalidLevelsStopTheQuantitiesWithExitOne) {
  project.connection().exec(QStringLiteral("UPDATE Initial SET Level=20 WHERE Offset=20"));
  const auto r =
      runCli(QStringList{QStringLiteral("quantities"), file} + args({"--section", "1", "--json"}));
  EXPECT_EQ(r.code, 1);
  const QJsonObject o = parse(r);
  EXPECT_FALSE(o.value(QStringLiteral("computed")).toBool());
  EXPECT_TRUE(o.value(QStringLiteral("rows")).toArray().isEmpty());
  EXPECT_EQ(o.value(QStringLiteral("errors")).toArray().size(), 2);
  EXPECT_EQ(r.err.count(QLatin1Char('\n')), 2);
}

TEST_F(HandBuiltTest, BadArgumentsAreUsageErrors) {
  EXPECT_EQ(runCli(QStringList{QStringLiteral("quantities"), file}).code, 2);
  EXPECT_EQ(runCli(QStringList{QStringLiteral("quantities"), file} +
                   args({"--section", "1", "--json", "--csv"}))
                .code,
            2);
  EXPECT_EQ(
      runCli(QStringList{QStringLiteral("quantities"), file} + args({"--all", "--section", "1"}))
          .code,
      2);
  EXPECT_EQ(runCli(QStringList{QStringLiteral("areas"), file} + args({"--section", "1"})).code, 2);
  EXPECT_EQ(runCli(QStringList{QStringLiteral("areas"), file} +
                   args({"--section", "1", "--chainage", "x"}))
                .code,
            2);
}

// The demo project: section 1 (km 0 to 4, executed levels up to km 1), section 2 (km 4 to 7).
class DemoQuantityCommandsTest : public ::testing::Test {
 protected:
  DemoQuantityCommandsTest() {
    project.create(true);
    file = project.path();
  }
  TempProject project;
  QString file;
};

TEST_F(DemoQuantityCommandsTest, AreasJsonMatchesItsGoldenFile) {
  const auto r = runCli(QStringList{QStringLiteral("areas"), file} +
                        args({"--section", "1", "--chainage", "0.5", "--executed", "--json"}));
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

  // The bed is in cut, the banks in fill, and the executed cut is within the design cut.
  const QJsonObject o = parse(r);
  const QJsonArray areaSlots = o.value(QStringLiteral("slots")).toArray();
  EXPECT_GT(o.value(QStringLiteral("area_cut")).toDouble(), 1.0);
  EXPECT_GT(o.value(QStringLiteral("area_fill")).toDouble(), 1.0);
  EXPECT_GT(areaSlots[2].toDouble(), 0.0);
  EXPECT_LE(areaSlots[4].toDouble(), areaSlots[0].toDouble());
}

TEST_F(DemoQuantityCommandsTest, QuantitiesJsonIsConsistentRowByRow) {
  const auto r =
      runCli(QStringList{QStringLiteral("quantities"), file} + args({"--section", "2", "--json"}));
  ASSERT_EQ(r.code, 0) << r.err.toStdString();
  const QJsonObject o = parse(r);
  EXPECT_TRUE(o.value(QStringLiteral("computed")).toBool());
  EXPECT_EQ(o.value(QStringLiteral("section")).toInt(), 2);
  const QJsonArray rows = o.value(QStringLiteral("rows")).toArray();
  ASSERT_EQ(rows.size(), 151);  // km 4 to 7 every 20 m
  EXPECT_TRUE(rows[0].toObject().value(QStringLiteral("cut_volume")).isNull());
  double cut = 0.0;
  for (qsizetype i = 1; i < rows.size(); ++i) {
    const QJsonObject a = rows[i - 1].toObject();
    const QJsonObject b = rows[i].toObject();
    const double length = (b.value(QStringLiteral("chainage")).toDouble() -
                           a.value(QStringLiteral("chainage")).toDouble()) *
                          1000.0;
    EXPECT_NEAR(length, 20.0, 1e-3);
    const double expected = length *
                            (a.value(QStringLiteral("cut_area")).toDouble() +
                             b.value(QStringLiteral("cut_area")).toDouble()) /
                            2.0;
    EXPECT_NEAR(b.value(QStringLiteral("cut_volume")).toDouble(), expected, 1e-3 * expected);
    cut += b.value(QStringLiteral("cut_volume")).toDouble();
  }
  EXPECT_NEAR(o.value(QStringLiteral("total_cut_volume")).toDouble(), cut, 1e-4 * cut);
}

TEST_F(DemoQuantityCommandsTest, AllSectionsGiveEachTotalAndTheGrandTotal) {
  const auto all =
      runCli(QStringList{QStringLiteral("quantities"), file} + args({"--all", "--json"}));
  ASSERT_EQ(all.code, 0) << all.err.toStdString();
  const QJsonObject o = parse(all);
  const QJsonArray sections = o.value(QStringLiteral("sections")).toArray();
  ASSERT_EQ(sections.size(), 2);
  double sum = 0.0;
  for (const QJsonValue& v : sections) {
    const QJsonObject s = v.toObject();
    EXPECT_TRUE(s.value(QStringLiteral("computed")).toBool());
    const auto one = runCli(QStringList{QStringLiteral("quantities"), file} +
                            QStringList{QStringLiteral("--section"),
                                        QString::number(s.value(QStringLiteral("section")).toInt()),
                                        QStringLiteral("--json")});
    EXPECT_EQ(parse(one).value(QStringLiteral("total_cut_volume")),
              s.value(QStringLiteral("total_cut_volume")));
    sum += s.value(QStringLiteral("total_cut_volume")).toDouble();
  }
  EXPECT_NEAR(o.value(QStringLiteral("total_cut_volume")).toDouble(), sum, 0.01);

  const auto text = runCli(QStringList{QStringLiteral("quantities"), file} + args({"--all"}));
  ASSERT_EQ(text.code, 0);
  const QStringList lines = text.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
  ASSERT_EQ(lines.size(), 3);
  EXPECT_TRUE(
      lines[0].startsWith(QLatin1String("Section 1 (RMC km 0.000 to 4.000): Cutting "
                                        "Volume : ")));
  EXPECT_TRUE(lines[2].startsWith(QLatin1String("Total: Cutting Volume : ")));
  EXPECT_TRUE(lines[2].endsWith(QLatin1String(" cum")));
}

}  // namespace
