// Times opening an Initial sheet of many rows in the grid and scrolling through it: reading the
// rows, binding them, the first paint, and the slowest repaint while paging and jumping.
// Usage: grid_open [rows]   (default 500000; run with QT_QPA_PLATFORM=offscreen if headless)

#include "db/connection.h"
#include "db/project.h"
#include "db/resultset.h"
#include "sheets/gridcontrol.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <ctime>

namespace {

void writeRows(db::Connection& connection, int rows) {
  db::Transaction transaction(connection);
  db::Statement insert = connection.prepare(
      QStringLiteral("INSERT INTO Initial (Chainage, Offset, Level, SectionID) VALUES (?,?,?,1)"));
  constexpr int kReadings = 25;
  for (int i = 0; i < rows; ++i) {
    const int reading = i % kReadings;
    insert.reset();
    insert.bindMeasure(1, static_cast<float>(i / kReadings) * 0.02f)
        .bindMeasure(2, static_cast<float>(reading - kReadings / 2) * 2.5f)
        .bindMeasure(3, 250.0f + static_cast<float>(reading % 7) * 0.125f)
        .run();
  }
  transaction.commit();
}

double ms(const QElapsedTimer& timer) { return static_cast<double>(timer.nsecsElapsed()) / 1e6; }

// Processor time of this process, which a busy machine does not inflate as it does wall time.
double cpuMs() {
  timespec t{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const int rows = argc > 1 ? std::max(1, QString::fromLocal8Bit(argv[1]).toInt()) : 500000;

  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("bench.delvane"));
  db::createProject(path, false);
  std::unique_ptr<db::Connection> connection = db::openProject(path);
  writeRows(*connection, rows);

  const double cpuStart = cpuMs();
  QElapsedTimer total;
  total.start();
  QElapsedTimer step;
  step.start();
  db::ResultSet set;
  set.open(*connection, QStringLiteral("SELECT Chainage, Offset, [Level], ID from Initial WHERE "
                                       "[SectionID]=1 ORDER BY Chainage, Offset, ID"));
  const double readMs = ms(step);

  step.restart();
  sheets::GridControl grid;
  grid.resize(800, 600);
  grid.Redraw(false);
  grid.DataSource(&set);
  grid.DeleteCols(grid.Cols() - 1, 1);
  for (int c = 0; c < grid.Cols(); ++c) {
    grid.ColWidth(c, 60);
    grid.ColTextAlign(c, sheets::GridControl::kAlignCenter);
  }
  grid.show();
  grid.Redraw(true);
  QApplication::processEvents();
  (void)grid.grab();
  const double bindMs = ms(step);
  const double openMs = ms(total);
  const double openCpuMs = cpuMs() - cpuStart;

  // Paging down a screen at a time near the top, then jumps across the whole set, each
  // followed by a synchronous repaint: the slowest one is what the user would feel as a stall.
  double slowestMs = 0;
  double sumMs = 0;
  int steps = 0;
  const auto scrollTo = [&](int row) {
    QElapsedTimer frame;
    frame.start();
    grid.TopRow(row);
    (void)grid.grab();
    const double t = ms(frame);
    slowestMs = std::max(slowestMs, t);
    sumMs += t;
    ++steps;
  };
  for (int page = 0; page < 200; ++page) scrollTo(grid.BottomRow());
  for (int jump = 0; jump <= 100; ++jump) scrollTo(static_cast<int>(1LL * rows * jump / 100));

  // The save loop of a sheet with nothing changed runs over every row.
  step.restart();
  for (int r = 0; r < grid.Rows(); ++r) {
    grid.RowForeColor(r, 0);
    grid.UpdateRow(r);
  }
  const double saveMs = ms(step);

  std::printf(
      "rows %d: read %.0f ms, bind and first paint %.0f ms, open total %.0f ms "
      "(processor time %.0f ms)\n",
      rows, readMs, bindMs, openMs, openCpuMs);
  std::printf("scroll: %d repaints, mean %.2f ms, slowest %.2f ms\n", steps, sumMs / steps,
              slowestMs);
  std::printf("save loop over unchanged rows: %.0f ms\n", saveMs);
  return 0;
}
