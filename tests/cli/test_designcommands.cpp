#include "db/project.h"
#include "tests/cli/clirunner.h"
#include "tests/testsupport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

using testsupport::runCli;
using testsupport::TempProject;

namespace {

// A demo project written once per test; its sections are 1 (km 0 to 4) and 2 (km 4 to 7).
class DesignCommandsTest : public ::testing::Test {
 protected:
  DesignCommandsTest() {
    project.create(true);
    file = project.path();
  }

  QJsonObject json(const testsupport::CliResult& r) {
    QJsonParseError error;
    const QJsonDocument doc = QJsonDocument::fromJson(r.out.toUtf8(), &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << r.out.toStdString();
    return doc.object();
  }

  TempProject project;
  QString file;
};

TEST_F(DesignCommandsTest, DesignLevelBetweenStoredLevelsIsInterpolated) {
  const auto r = runCli({QStringLiteral("design-level"), file, QStringLiteral("--section"),
                         QStringLiteral("1"), QStringLiteral("--chainage"), QStringLiteral("0.25"),
                         QStringLiteral("--json")});
  ASSERT_EQ(r.code, 0) << r.err.toStdString();
  // 151.000 at km 0 and 150.900 at km 0.5; numbers are written as the singles' shortest text.
  EXPECT_EQ(r.out.trimmed(),
            QStringLiteral(R"({"chainage":0.25,"errors":[],"interpolated":true,"level":150.95})"));
}

TEST_F(DesignCommandsTest, DesignLevelBeforeTheFirstLevelIsADataProblem) {
  const auto r = runCli({QStringLiteral("design-level"), file, QStringLiteral("--section"),
                         QStringLiteral("2"), QStringLiteral("--chainage"), QStringLiteral("3.5"),
                         QStringLiteral("--json")});
  EXPECT_EQ(r.code, 1);
  const QJsonObject o = json(r);
  EXPECT_EQ(o.value(QStringLiteral("level")).toDouble(), 0);
  const QString line =
      QStringLiteral("Chainage : 3.5>Insufficient levels in design. Lower Design level not found");
  EXPECT_EQ(o.value(QStringLiteral("errors")).toArray(), QJsonArray{line});
  EXPECT_EQ(r.err, line + QLatin1Char('\n'));
  // Quiet leaves the line out, and with it the data problem.
  const auto quiet = runCli({QStringLiteral("design-level"), file, QStringLiteral("--section"),
                             QStringLiteral("2"), QStringLiteral("--chainage"),
                             QStringLiteral("3.5"), QStringLiteral("--quiet")});
  EXPECT_EQ(quiet.code, 0);
  EXPECT_EQ(quiet.out, QStringLiteral("3.5\t0\tinterpolated\n"));
}

TEST_F(DesignCommandsTest, DesignSectionOfTheEarthenCanal) {
  const auto r = runCli({QStringLiteral("design-section"), file, QStringLiteral("--section"),
                         QStringLiteral("1"), QStringLiteral("--chainage"), QStringLiteral("0"),
                         QStringLiteral("--json")});
  ASSERT_EQ(r.code, 0) << r.err.toStdString();
  // Bed 6 wide at 151, inner slopes 1.5 over FSD 2 + freeboard 0.6, banks 4 wide.
  const QString points = QStringLiteral("[[0,151],[3,151],[6.9,153.6],[10.9,153.6]]");
  EXPECT_EQ(r.out.trimmed(), QStringLiteral(R"({"centre_level":151,"chainage":0,"errors":[],)") +
                                 QStringLiteral(R"("left":)") + points +
                                 QStringLiteral(R"(,"right":)") + points + QLatin1Char('}'));
}

TEST_F(DesignCommandsTest, ValidateListsBadRowsAndChecksOneChainageAlone) {
  db::Connection& c = project.connection();
  c.exec(QStringLiteral("UPDATE Initial SET [Level]=150 WHERE SectionID=1"));
  c.exec(QStringLiteral("UPDATE DesignLevels SET [Level]=150"));
  c.exec(
      QStringLiteral("UPDATE Initial SET [Level]=NULL WHERE SectionID=1 AND Chainage=0.02 AND "
                     "Offset=0"));
  const QStringList args = {QStringLiteral("validate"), file, QStringLiteral("--section"),
                            QStringLiteral("1"), QStringLiteral("--json")};
  const auto r = runCli(args);
  EXPECT_EQ(r.code, 1);
  EXPECT_EQ(r.out.trimmed(),
            QStringLiteral(R"({"bad":true,"errors":["Chainage [0.02], Offset [0], Level []: Null, )"
                           R"(Negative, Zero Values or Values not in acceptable range in Initial )"
                           R"(Levels."]})"));
  const auto clean =
      runCli(args + QStringList{QStringLiteral("--chainage"), QStringLiteral("0.04")});
  EXPECT_EQ(clean.code, 0) << clean.err.toStdString();
  EXPECT_EQ(clean.out.trimmed(), QStringLiteral(R"({"bad":false,"errors":[]})"));
}

// The whole Initial table as text, in order of entry.
QString initialTable(db::Connection& c) {
  db::Statement st =
      c.prepare(QStringLiteral("SELECT ID, SectionID, Chainage, Offset FROM Initial ORDER BY ID"));
  QString text;
  while (st.step())
    text += st.text(0) + QLatin1Char(' ') + st.text(1) + QLatin1Char(' ') + st.text(2) +
            QLatin1Char(' ') + st.text(3) + QLatin1Char('\n');
  return text;
}

TEST_F(DesignCommandsTest, OrderInitialRestoresRawFieldEntry) {
  db::Connection& c = project.connection();
  const QString ordered = initialTable(c);
  // Section 2 as typed in the field: the chainage on each cross-section's first reading only,
  // every offset a positive distance.
  c.exec(
      QStringLiteral("UPDATE Initial SET Chainage=NULL WHERE SectionID=2 AND ID NOT IN "
                     "(SELECT min(ID) FROM Initial WHERE SectionID=2 GROUP BY Chainage)"));
  c.exec(QStringLiteral("UPDATE Initial SET Offset=-Offset WHERE SectionID=2 AND Offset < 0"));
  ASSERT_NE(initialTable(c), ordered);
  const auto r = runCli(
      {QStringLiteral("order-initial"), file, QStringLiteral("--section"), QStringLiteral("2")});
  // Exit 1 exactly when the check of section 2 afterwards found bad levels.
  EXPECT_EQ(r.code, r.err.isEmpty() ? 0 : 1) << r.err.toStdString();
  EXPECT_EQ(initialTable(c), ordered);
}

TEST_F(DesignCommandsTest, SyncChainagesFollowsInitial) {
  db::Connection& c = project.connection();
  c.exec(QStringLiteral("DELETE FROM Initial WHERE SectionID=1 AND Chainage > 3"));
  const auto r = runCli(
      {QStringLiteral("sync-chainages"), file, QStringLiteral("--section"), QStringLiteral("1")});
  ASSERT_EQ(r.code, 0) << r.err.toStdString();
  // km 0 to 3 every 20 m.
  EXPECT_EQ(r.out, QStringLiteral("DesignQty of section 1 holds 151 chainages.\n"));
  EXPECT_EQ(testsupport::rowCount(c, QStringLiteral("DesignQty"), QStringLiteral("SectionID=1")),
            151);
}

TEST_F(DesignCommandsTest, MissingOrBadSectionAndChainageAreUsageErrors) {
  const QStringList cases[] = {
      {QStringLiteral("design-level"), file, QStringLiteral("--chainage"), QStringLiteral("1")},
      {QStringLiteral("design-level"), file, QStringLiteral("--section"), QStringLiteral("1")},
      {QStringLiteral("design-level"), file, QStringLiteral("--section"), QStringLiteral("x"),
       QStringLiteral("--chainage"), QStringLiteral("1")},
      {QStringLiteral("design-section"), file, QStringLiteral("--section"), QStringLiteral("1"),
       QStringLiteral("--chainage"), QStringLiteral("1km")},
      {QStringLiteral("validate"), file},
      {QStringLiteral("validate"), file, QStringLiteral("--section"), QStringLiteral("1"),
       QStringLiteral("--chainage"), QStringLiteral("")},
      {QStringLiteral("order-initial"), file, QStringLiteral("--section"), QStringLiteral("0")},
      {QStringLiteral("sync-chainages"), QStringLiteral("--section"), QStringLiteral("1")},
  };
  for (const QStringList& args : cases) {
    const auto r = runCli(args);
    EXPECT_EQ(r.code, 2) << args.join(QLatin1Char(' ')).toStdString();
  }
}

}  // namespace
