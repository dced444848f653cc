// Timing runs of the cross-section sheets on a generated section of 1,000 chainages: every sheet
// written to a PDF (the cross-sections computed, laid out and drawn) against the quantity run of
// the same section, and the wait before a preview shows its first page (the cross-sections
// computed and page 1 drawn at screen resolution). Ends with the PDF's multiple of the quantity
// run.

#include "bench/benchproject.h"
#include "bench/keepingreporter.h"
#include "db/connection.h"
#include "db/project.h"
#include "drawing/crosssectionsheet.h"
#include "drawing/pageoutput.h"
#include "engine/quantities.h"
#include "engine/reporter.h"
#include "engine/sectionviews.h"
#include "engine/session.h"

#include <QGuiApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int kChainages = 1000;
constexpr int kReadings = 41;

// An open bench project with section 1 current and the design profile loaded.
struct BenchSession {
  std::unique_ptr<db::Connection> connection;
  bench::QuietReporter reporter;
  std::unique_ptr<engine::EngineSession> session;

  bool open(const QString& path) {
    connection = db::openProject(path);
    session = std::make_unique<engine::EngineSession>(*connection, reporter);
    if (session->LoadDesignProfile()) return false;
    session->setSection(1);
    return true;
  }
};

void quantityRun(benchmark::State& state, const QString& path) {
  BenchSession s;
  if (!s.open(path)) {
    state.SkipWithError("the design profile did not load");
    return;
  }
  engine::ComputeQuantities(*s.session, nullptr, -1.0f);  // brings DesignQty in line once
  if (!s.session->quantityRun().Computed) {
    state.SkipWithError("the level data were refused");
    return;
  }
  for (auto _ : state) engine::ComputeQuantities(*s.session, nullptr, -1.0f);
  state.counters["rows"] = s.session->quantityRun().RowCount;
}

drawing::CrossSectionSheet sheetOf(engine::EngineSession& session) {
  drawing::CrossSectionSheetOptions options;
  options.title.projectFile = QStringLiteral("bench.delvane");
  options.title.sectionId = 1;
  return drawing::CrossSectionSheet(engine::computeCrossSections(session), options);
}

void crossSectionPdf(benchmark::State& state, const QString& path, const QString& pdf) {
  BenchSession s;
  if (!s.open(path)) {
    state.SkipWithError("the design profile did not load");
    return;
  }
  int pages = 0;
  int sections = 0;
  for (auto _ : state) {
    const drawing::CrossSectionSheet sheet = sheetOf(*s.session);
    pages = sheet.pageCount();
    if (pages == 0) {
      state.SkipWithError("the sheet has no pages");
      return;
    }
    sections = sheet.sectionsOn(0, pages - 1);
    if (!drawing::writePages(sheet, pdf, drawing::PageFormat::Pdf, 0, pages - 1).ok) {
      state.SkipWithError("the PDF could not be written");
      return;
    }
  }
  state.counters["pages"] = pages;
  state.counters["sections"] = sections;
  state.counters["error_lines"] = s.reporter.errors;
}

void firstPreviewPage(benchmark::State& state, const QString& path) {
  BenchSession s;
  if (!s.open(path)) {
    state.SkipWithError("the design profile did not load");
    return;
  }
  for (auto _ : state) {
    const drawing::CrossSectionSheet sheet = sheetOf(*s.session);
    const QImage page = drawing::renderPageImage(sheet, 0, drawing::kScreenDpi);
    if (page.isNull()) {
      state.SkipWithError("the first page was not drawn");
      return;
    }
    benchmark::DoNotOptimize(page.constBits());
  }
}

using bench::KeepingReporter;
using bench::msText;

}  // namespace

int main(int argc, char** argv) {
  // Text on the sheets needs fonts, which need a GUI application; no display is needed.
  if (!std::getenv("QT_QPA_PLATFORM")) setenv("QT_QPA_PLATFORM", "offscreen", 1);
  QGuiApplication app(argc, argv);

  QTemporaryDir dir;
  const QString project = dir.filePath(QStringLiteral("bench-%1.delvane").arg(kChainages));
  const QString pdf = dir.filePath(QStringLiteral("sheets.pdf"));
  std::fprintf(stderr, "Writing a section of %d chainages x %d readings...\n", kChainages,
               kReadings);
  bench::writeBenchProject(project, kChainages, kReadings);

  const std::string size = std::to_string(kChainages);
  const std::string quantity = "quantity_run/" + size;
  const std::string sheets = "xsection_pdf/" + size;
  const std::string preview = "xsection_first_page/" + size;
  benchmark::RegisterBenchmark(quantity.c_str(), quantityRun, project)
      ->Unit(benchmark::kMillisecond)
      ->MinTime(2.0);
  benchmark::RegisterBenchmark(sheets.c_str(), crossSectionPdf, project, pdf)
      ->Unit(benchmark::kMillisecond)
      ->MinTime(2.0);
  benchmark::RegisterBenchmark(preview.c_str(), firstPreviewPage, project)
      ->Unit(benchmark::kMillisecond)
      ->MinTime(2.0);

  benchmark::Initialize(&argc, argv);
  KeepingReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();

  std::printf("time to the first preview page/%s: %s CPU (%s real)\n", size.c_str(),
              msText(reporter.cpu, preview).c_str(), msText(reporter.real, preview).c_str());
  std::printf("(CPU time per pass: %s %s, %s %s)\n", quantity.c_str(),
              msText(reporter.cpu, quantity).c_str(), sheets.c_str(),
              msText(reporter.cpu, sheets).c_str());
  const auto run = reporter.cpu.find(quantity);
  const auto plot = reporter.cpu.find(sheets);
  if (run == reporter.cpu.end() || plot == reporter.cpu.end() || run->second <= 0.0)
    std::printf("ratio xsection_pdf_%s/quantity_run_%s: missing (the %s did not run)\n",
                size.c_str(), size.c_str(),
                plot == reporter.cpu.end() ? "PDF plot" : "quantity run");
  else
    std::printf("ratio xsection_pdf_%s/quantity_run_%s: %.2f\n", size.c_str(), size.c_str(),
                plot->second / run->second);
  return 0;
}
