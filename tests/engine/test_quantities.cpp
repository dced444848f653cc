#include "engine/quantities.h"

#include "db/project.h"
#include "engine/areas.h"
#include "engine/designsection.h"
#include "engine/sectionviews.h"
#include "engine/session.h"
#include "tests/engine/areafixture.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

using engine::ComputeQuantities;
using engine::FillAreaDetails;
using engine::MemoryReportGrid;
using engine::QuantityRow;
using testsupport::AreaFixture;

constexpr float kTol = 1e-3f;

class QuantitiesTest : public AreaFixture {
 protected:
  // Readings at chainage that pass the level checks and describe flat ground at 100.
  void surveyed(float chainage, std::optional<float> cut, std::optional<float> fill) {
    setFlatGround(chainage, 100.0f);
    c.prepare(QStringLiteral("UPDATE DesignQty SET AreaCut=?, AreaFill=? WHERE Chainage=?"))
        .bindMeasure(1, cut)
        .bindMeasure(2, fill)
        .bindMeasure(3, chainage)
        .run();
  }

  void design() {
    setDesignLevel(0.0f, 98.0f);
    setDesignLevel(10.0f, 98.0f);
    setSlopes(0.0f, 1.5f, 1.5f);
  }

  std::vector<QuantityRow> run(MemoryReportGrid* grid, float chainage) {
    std::vector<QuantityRow> rows;
    ComputeQuantities(session, grid, chainage,
                      [&rows](const QuantityRow& row) { rows.push_back(row); });
    return rows;
  }
};

// The grid's rows, columns first to last joined by '|'.
QStringList gridRows(const MemoryReportGrid& grid, int first, int last) {
  QStringList rows;
  for (int r = 0; r < grid.RowCount(); ++r) {
    QStringList cells;
    for (int col = first; col <= last; ++col) cells << grid.text(r, col);
    rows << cells.join(QLatin1Char('|'));
  }
  return rows;
}

std::string gridText(const MemoryReportGrid& grid, int first, int last) {
  return gridRows(grid, first, last).join(QLatin1Char('\n')).toStdString();
}

// Stored areas 10, 20 and 0 m² at 0.000, 0.020 and 0.050 km: 20 m × 15 m² + 30 m × 10 m².
TEST_F(QuantitiesTest, VolumesUseAverageEndAreas) {
  design();
  surveyed(0.0f, 10.0f, 1.0f);
  surveyed(0.02f, 20.0f, 1.0f);
  surveyed(0.05f, 0.0f, 1.0f);
  MemoryReportGrid grid;
  EXPECT_EQ(run(&grid, 9.0f).size(), 3u);  // no such chainage: all stored
  EXPECT_EQ(gridText(grid, 0, 4),
            "0.000|10.000|1.000||\n"
            "0.020|20.000|1.000|300.000|20.000\n"
            "0.050|0.000|1.000|300.000|30.000\n"
            "|||600.00|50.00");
  EXPECT_TRUE(grid.bold(3, 3) && grid.bold(3, 4));
  EXPECT_FALSE(grid.bold(2, 3));
  ASSERT_EQ(reporter.status.size(), 3);
  EXPECT_EQ(reporter.status.mid(0, 2),
            QStringList({QStringLiteral("1:Cutting Volume : 600.00 cum"),
                         QStringLiteral("2:Filling Volume : 50.00 cum")}));
  EXPECT_TRUE(reporter.status[2].startsWith(QLatin1String("3:Time : ")));
}

// A single chainage is computed afresh (26 m²) and has no volumes.
TEST_F(QuantitiesTest, OneChainageHasNoVolumes) {
  design();
  surveyed(0.5f, 4.0f, 2.0f);
  MemoryReportGrid grid;
  EXPECT_EQ(run(&grid, -1.0f).size(), 1u);
  EXPECT_EQ(gridText(grid, 0, 4), "0.500|26.000|0.000||\n|||0.00|0.00");
}

// Only the given chainage is recomputed; its neighbours' volumes use its new area and their own
// stored ones.
TEST_F(QuantitiesTest, GivenChainageIsRecomputedAndTheOthersTakeTheirStoredAreas) {
  design();
  surveyed(0.0f, 10.0f, 0.0f);
  surveyed(0.02f, 20.0f, 0.0f);
  surveyed(0.05f, std::nullopt, std::nullopt);  // never computed: counts as 0
  MemoryReportGrid grid;
  run(&grid, 0.02f);
  // 20 m × (10 + 26) ÷ 2 and 30 m × 26 ÷ 2.
  EXPECT_EQ(gridText(grid, 1, 3),
            "10.000|0.000|\n26.000|0.000|360.000\n0.000|0.000|390.000\n||750.00");
  EXPECT_NEAR(storedAreas(0.02f).first.value_or(-1), 26.0f, kTol);
  EXPECT_EQ(storedAreas(0.0f).first, 10.0f);
  EXPECT_FALSE(storedAreas(0.05f).first.has_value());
}

TEST_F(QuantitiesTest, InvalidLevelsStopTheRunBeforeAnythingChanges) {
  design();
  surveyed(0.0f, 5.0f, 5.0f);
  c.exec(QStringLiteral("UPDATE Initial SET Level=300 WHERE Offset=10"));
  MemoryReportGrid grid;
  EXPECT_TRUE(run(&grid, -1.0f).empty());
  EXPECT_FALSE(session.quantityRun().Computed);
  EXPECT_EQ(grid.RowCount(), 0);
  EXPECT_EQ(storedAreas(0.0f).first, 5.0f);
  ASSERT_EQ(reporter.errors.size(), 1);
  EXPECT_TRUE(reporter.errors[0].contains(QLatin1String("Initial Levels")));
  EXPECT_TRUE(reporter.status.isEmpty());
}

// A reporter that tries to start another run from the events the run lets through.
class ReentrantReporter : public engine::RecordingReporter {
 public:
  void processEvents() override {
    ++calls;
    if (session) ComputeQuantities(*session, nullptr, -1.0f);
  }
  engine::EngineSession* session = nullptr;
  int calls = 0;
};

// The demo's section 2 (151 chainages), reporting to a reporter of type Reporter.
template <typename Reporter>
struct DemoSectionRun {
  DemoSectionRun() : session(project.create(true), reporter) {
    EXPECT_FALSE(session.LoadDesignProfile());
    session.setSection(2);
  }
  testsupport::TempProject project;
  Reporter reporter;
  engine::EngineSession session;
};

TEST(QuantityRun, EventsDuringARunDoNotStartAnotherOverIt) {
  DemoSectionRun<ReentrantReporter> demo;
  engine::EngineSession& session = demo.session;
  ReentrantReporter& reporter = demo.reporter;
  reporter.session = &session;
  std::vector<QuantityRow> rows;
  ComputeQuantities(session, nullptr, -1.0f,
                    [&rows](const QuantityRow& row) { rows.push_back(row); });
  EXPECT_EQ(rows.size(), 151u);
  EXPECT_EQ(reporter.calls, 151);
  EXPECT_GT(session.quantityRun().TotalCutVolume, 0.0f);
}

// A reporter whose user clicks Cancel while the run lets through the events of a chainage.
class CancellingReporter : public engine::RecordingReporter {
 public:
  void processEvents() override { ++calls; }
  bool cancelled() const override { return calls == cancelAt; }
  int calls = 0;
  int cancelAt = 0;
};

TEST(QuantityRun, CancelStopsBetweenChainagesWithoutTotals) {
  DemoSectionRun<CancellingReporter> demo;
  engine::EngineSession& session = demo.session;
  CancellingReporter& reporter = demo.reporter;
  reporter.cancelAt = 3;
  std::vector<QuantityRow> rows;
  MemoryReportGrid grid;
  ComputeQuantities(session, &grid, -1.0f,
                    [&rows](const QuantityRow& row) { rows.push_back(row); });
  EXPECT_EQ(rows.size(), 3u);
  EXPECT_TRUE(session.quantityRun().Cancelled);
  EXPECT_EQ(session.quantityRun().RowCount, 3);
  EXPECT_FALSE(grid.bold(3, 3));
  EXPECT_EQ(reporter.status.first(), "1:Quantity run cancelled after 3 of 151 chainages.");

  reporter.calls = 0;
  reporter.cancelAt = -1;
  ComputeQuantities(session, nullptr, -1.0f);
  EXPECT_FALSE(session.quantityRun().Cancelled);
  EXPECT_EQ(session.quantityRun().RowCount, 151);
}

// A full run computes and stores every chainage, and first brings the quantity chainages in
// line with Initial: a new survey gets its row.
TEST_F(QuantitiesTest, FullRunSyncsTheChainagesThenComputesAndStoresEach) {
  design();
  surveyed(0.0f, std::nullopt, std::nullopt);
  setFlatGround(0.1f, 100.0f);
  c.exec(QStringLiteral("DELETE FROM DesignQty WHERE Chainage > 0.05"));
  session.markQuantityChainagesOutOfDate();
  EXPECT_EQ(run(nullptr, -1.0f).size(), 2u);
  EXPECT_NEAR(session.quantityRun().TotalCutVolume, 100 * 26.0f, 0.01f);
  EXPECT_EQ(storedAreas(0.1f), std::make_pair(std::optional(26.0f), std::optional(0.0f)));
  EXPECT_TRUE(session.quantityRun().Computed);
  EXPECT_TRUE(reporter.errors.isEmpty()) << errorText().toStdString();
}

TEST_F(QuantitiesTest, UnusableColumnIsReportedOncePerRun) {
  setQuantityColumns({{1, "CUT", "0", "100", "B"}, {4, "CUT", "0", "100", "B"}});
  design();
  surveyed(0.0f, std::nullopt, std::nullopt);
  surveyed(0.1f, std::nullopt, std::nullopt);
  run(nullptr, -1.0f);
  run(nullptr, -1.0f);
  EXPECT_EQ(reporter.errors.filter(QStringLiteral("ColNo 4")).size(), 2);
}

TEST_F(QuantitiesTest, AreaDetailsSheetShowsExecutedColumnsWhenInUse) {
  design();
  surveyed(0.0f, std::nullopt, std::nullopt);
  setExecuted(0.0f, {{-10.0f, 98.5f, {}},
                     {-5.0f, 98.5f, {}},
                     {0.0f, 98.5f, {}},
                     {5.0f, 98.5f, {}},
                     {10.0f, 98.5f, {}}});
  session.setUseExecutedLevel(true);
  MemoryReportGrid grid;
  FillAreaDetails(session, 0.0f, grid);
  ASSERT_EQ(grid.RowCount(), 10);
  // Right 5 (row 5) and the totals row, executed columns 10 to 17.
  const QStringList rows = gridRows(grid, 10, 17);
  EXPECT_EQ(rows[5], QStringLiteral("98.500|1.500||1.500||7.500||7.500"));
  EXPECT_EQ(rows[9], QStringLiteral("|||||24.000|0.000|21.000"));
  EXPECT_TRUE(grid.bold(9, 18));
}

// The demo canal: the bed is dug out of the ground and the banks are built up on it. The
// ground wanders, so a few chainages lie below the bed or above the bank top.
TEST(DemoAreas, BedIsInCutAndBanksAreInFill) {
  testsupport::TempProject project;
  db::Connection& c = project.create(true);
  c.exec(QStringLiteral("PRAGMA synchronous=OFF"));
  engine::RecordingReporter reporter;
  engine::EngineSession session(c, reporter);
  ASSERT_FALSE(session.LoadDesignProfile());
  for (int section : {1, 2}) {
    session.setSection(section);
    engine::ResetDesignCache(session);
    db::Statement chainages = c.prepare(
        QStringLiteral("SELECT Chainage FROM DesignQty WHERE SectionID=? ORDER BY Chainage"));
    chainages.bindKey(1, section);
    int count = 0, bedInCut = 0, banksInFill = 0;
    while (chainages.step()) {
      float chainage = chainages.measure(0);
      engine::ComputeSectionAreas(session, chainage);
      const engine::AreaState& st = session.areas();
      ++count;
      ASSERT_TRUE(st.Left.Present && st.Right.Present) << section << " at " << chainage;
      float bedCut = 0.0f, bankFill = 0.0f;
      for (int r = 0; r <= st.RowCount; ++r) {
        const float d = st.Table.value(r, engine::kColDistance);
        if (d <= st.Right.Design[1].Offset) bedCut += st.Table.value(r, 9);
        if (d > st.Right.Design[2].Offset) bankFill += st.Table.value(r, 10);
      }
      bedInCut += bedCut > 0.01f;
      banksInFill += bankFill > 0.01f;
      // A catch point's ground and design levels may differ in the last bit; no more.
      EXPECT_TRUE(st.Area[0] > -1e-6f && st.Area[1] > -1e-6f) << chainage;
    }
    EXPECT_GT(count, 100);
    EXPECT_GE(bedInCut, count * 9 / 10) << "section " << section;
    EXPECT_GE(banksInFill, count * 9 / 10) << "section " << section;
  }
  EXPECT_TRUE(reporter.errors.isEmpty()) << reporter.errors.join(QLatin1Char('\n')).toStdString();
}

// Another program writes a chainage as the double its own arithmetic gives (12.39999999999999
// for 12.4), and not always the same one in every table. Each lookup compares chainages as
// singles, so the run gives the areas and totals of the file as the program wrote it.
TEST(DemoAreas, ChainagesWrittenByAnotherProgramGiveTheSameQuantities) {
  testsupport::TempProject project;
  db::Connection& c = project.create(true);
  c.exec(QStringLiteral("PRAGMA synchronous=OFF"));
  engine::RecordingReporter reporter;
  engine::EngineSession session(c, reporter);
  ASSERT_FALSE(session.LoadDesignProfile());
  session.setSection(2);
  const auto quantities = [&session] {
    MemoryReportGrid grid;
    ComputeQuantities(session, &grid, -1.0f);
    return gridRows(grid, 0, 4);
  };
  // The longitudinal section from the first to the last chainage, its levels as text.
  const auto longSection = [&session] {
    const std::vector<float> chainages = engine::quantityChainages(session);
    const engine::LongProfile p =
        engine::computeLongProfile(session, chainages.front(), chainages.back(), true);
    const auto text = [](std::optional<float> level) {
      return level ? db::floatText(*level) : QStringLiteral("-");
    };
    QStringList rows{text(p.lowest) + QLatin1Char(' ') + text(p.highest)};
    for (const engine::LongProfileRow& r : p.rows)
      rows << QStringList{db::floatText(r.chainage), text(r.leftGround),  text(r.centreGround),
                          text(r.rightGround),       text(r.designLevel), text(r.finalLevel)}
                  .join(QLatin1Char(' '));
    return rows.join(QLatin1Char('\n')).toStdString();
  };
  const QStringList written = quantities();
  ASSERT_GT(written.size(), 100);
  const std::string writtenLongSection = longSection();

  // Every chainage moves to one end or the other of the doubles of its single.
  for (const char* table : {"Initial", "DesignLevels", "DesignDetails", "DesignQty", "Executed"}) {
    const bool low = std::strlen(table) % 2 == 0;
    std::vector<float> chainages;
    db::Statement read =
        c.prepare(QStringLiteral("SELECT DISTINCT Chainage FROM %1 WHERE SectionID=2").arg(table));
    while (read.step()) chainages.push_back(read.measure(0));
    db::Statement move = c.prepare(
        QStringLiteral("UPDATE %1 SET Chainage=? WHERE SectionID=2 AND Chainage=?").arg(table));
    for (float chainage : chainages) {
      const db::MeasureRange range = db::measureRange(chainage);
      move.reset();
      move.bindDouble(1, low ? range.low : range.high).bindMeasure(2, chainage).run();
    }
  }
  ASSERT_EQ(c.scalar(QStringLiteral("SELECT count(*) FROM Initial WHERE SectionID=2 AND "
                                    "Chainage IN (SELECT Chainage FROM DesignLevels)")),
            0.0);
  session.levelDataChanged();
  const QStringList moved = quantities();
  ASSERT_EQ(moved.size(), written.size());
  EXPECT_EQ(moved.back().toStdString(), written.back().toStdString());  // the totals
  for (qsizetype row = 0; row < moved.size(); ++row)
    EXPECT_EQ(moved[row].toStdString(), written[row].toStdString()) << "row " << row;
  EXPECT_EQ(longSection(), writtenLongSection);
  EXPECT_TRUE(reporter.errors.isEmpty()) << reporter.errors.join(QLatin1Char('\n')).toStdString();
}

}  // namespace
