// Times the section viewer on a generated section of 10,000 chainages with 41 readings each:
// opening View X Section, stepping to the next chainage (the level check, the cross-section
// computed and its areas stored, the picture drawn), and opening View L Section up to its first
// drawn picture.
// Usage: section_viewer   (run with QT_QPA_PLATFORM=offscreen if headless)
#include "app/frmplotlxsection.h"
#include "bench/benchproject.h"
#include "db/connection.h"
#include "db/project.h"
#include "engine/session.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

constexpr int kChainages = 10000;
constexpr int kReadings = 41;
constexpr int kSteps = 200;

double ms(const QElapsedTimer& timer) { return static_cast<double>(timer.nsecsElapsed()) / 1e6; }

// Shows the viewer at a usual size and draws it, as the screen would.
void showAndDraw(app::frmPlotLXSection& view) {
  view.resize(1150, 670);
  view.show();
  view.pbGraph()->repaint();
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("viewer.delvane"));
  bench::writeBenchProject(path, kChainages, kReadings);

  std::unique_ptr<db::Connection> connection = db::openProject(path);
  bench::QuietReporter reporter;
  engine::EngineSession session(*connection, reporter);
  if (session.LoadDesignProfile()) return 1;
  session.setSection(1);
  sheets::SheetContext context;
  context.connection = [&connection] { return connection.get(); };
  context.engine = [&session] { return &session; };
  context.sectionId = [] { return 1; };

  QElapsedTimer timer;
  timer.start();
  app::frmPlotLXSection cross(context, 2);
  cross.load();
  showAndDraw(cross);
  const double openCross = ms(timer);

  // Each step is timed on its own: the slowest one is what a user may meet.
  std::vector<double> steps;
  for (int i = 0; i < kSteps; ++i) {
    timer.restart();
    cross.moveNext();
    cross.pbGraph()->repaint();
    steps.push_back(ms(timer));
  }
  std::sort(steps.begin(), steps.end());
  const double median = steps[steps.size() / 2];
  const double worst = steps.back();

  timer.restart();
  app::frmPlotLXSection longitudinal(context, 1);
  longitudinal.load();
  showAndDraw(longitudinal);
  const double openLong = ms(timer);

  std::printf("section of %d chainages x %d readings (%d errors)\n", kChainages, kReadings,
              reporter.errors);
  std::printf("open View X Section: %.0f ms\n", openCross);
  std::printf("next chainage, %d steps: median %.1f ms, slowest %.1f ms (target 50 ms)\n", kSteps,
              median, worst);
  std::printf("open View L Section: %.0f ms (target 1000 ms)\n", openLong);
  std::printf("check: shown chainage %s\n", qPrintable(cross.txtChainage()->text()));
  return 0;
}
