// Timing runs of the engine: the plain read of a section's ground levels (the floor no quantity
// run can beat), the formula evaluator, and the whole quantity run, on generated sections of
// 1,000 and 10,000 chainages. Ends with the quantity run's multiple of the floor and the peak
// memory of a quantity run on each size, each measured in a fresh process.

#include "bench/benchproject.h"
#include "bench/keepingreporter.h"
#include "db/connection.h"
#include "db/project.h"
#include "engine/modvariables.h"
#include "engine/quantities.h"
#include "engine/reporter.h"
#include "engine/session.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace {

constexpr int kReadings = 41;
constexpr int kSizes[] = {1000, 10000};
const char* const kMemoryMode = "--quantity-memory";

long peakRssKb() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

void floorPass(benchmark::State& state, const QString& path) {
  auto connection = db::openProject(path);
  db::Statement read = connection->prepare(
      QStringLiteral("SELECT Chainage, Offset, Level FROM Initial WHERE SectionID=? ORDER BY "
                     "Chainage, Offset"));
  std::int64_t rows = 0;
  for (auto _ : state) {
    read.bindKey(1, 1);
    double sum = 0.0;
    while (read.step()) {
      sum += read.measure(0) + read.measure(1) + read.measure(2);
      ++rows;
    }
    read.reset();
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(rows);
}

// The canal template's formulas with the variables of one chainage, as the design section sets
// them: every iteration evaluates the 14 profile formulas and the two quantity-column offsets.
void evaluateFormulas(benchmark::State& state) {
  const QString formulas[] = {
      QStringLiteral("0"),
      QStringLiteral("$CL"),
      QStringLiteral("$BED_WIDTH/2"),
      QStringLiteral("$CL"),
      QStringLiteral("$BED_WIDTH/2"),
      QStringLiteral("$CL"),
      QStringLiteral("$LP_Off+($FSD+$FREEBOARD)*$INNER_SLOPE"),
      QStringLiteral("$CL+$FSD+$FREEBOARD"),
      QStringLiteral("$RP_Off+($FSD+$FREEBOARD)*$INNER_SLOPE"),
      QStringLiteral("$CL+$FSD+$FREEBOARD"),
      QStringLiteral("$LP_Off+$BANK_WIDTH"),
      QStringLiteral("$LP_Val"),
      QStringLiteral("$RP_Off+$BANK_WIDTH"),
      QStringLiteral("$RP_Val"),
      QStringLiteral("0"),
      QStringLiteral("100"),
  };
  engine::modVariables variables;
  const char* const names[] = {"BED_WIDTH",  "FSD",      "FREEBOARD", "INNER_SLOPE",
                               "BANK_WIDTH", "SRS_LEFT", "SRS_RIGHT", "CL",
                               "LP_Off",     "LP_Val",   "RP_Off",    "RP_Val"};
  const float values[] = {6.0f, 2.0f,     0.6f, 1.5f,     4.0f, 2.0f,
                          2.0f, 150.874f, 3.0f, 150.874f, 3.0f, 150.874f};
  for (int k = 0; k < 12; ++k)
    variables.SetFormulaVariable(QString::fromLatin1(names[k]), values[k]);
  for (auto _ : state)
    for (const QString& f : formulas) benchmark::DoNotOptimize(variables.EvaluateFormula(f));
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(std::size(formulas)));
}

void quantityRun(benchmark::State& state, const QString& path) {
  auto connection = db::openProject(path);
  bench::QuietReporter reporter;
  engine::EngineSession session(*connection, reporter);
  if (session.LoadDesignProfile()) {
    state.SkipWithError("the design profile did not load");
    return;
  }
  session.setSection(1);
  engine::ComputeQuantities(session, nullptr, -1.0f);  // brings DesignQty in line once
  if (!session.quantityRun().Computed) {
    state.SkipWithError("the level data were refused");
    return;
  }
  const int errorLines = reporter.errors;
  for (auto _ : state) engine::ComputeQuantities(session, nullptr, -1.0f);
  state.counters["rows"] = session.quantityRun().RowCount;
  state.counters["error_lines"] = errorLines;
  state.counters["cut_m3"] = session.quantityRun().TotalCutVolume;
  state.counters["fill_m3"] = session.quantityRun().TotalFillVolume;
}

// One quantity run in this process: prints the peak resident size before and after it.
int measureMemory(const QString& path) {
  auto connection = db::openProject(path);
  bench::QuietReporter reporter;
  engine::EngineSession session(*connection, reporter);
  if (session.LoadDesignProfile()) return 1;
  session.setSection(1);
  const long before = peakRssKb();
  engine::ComputeQuantities(session, nullptr, -1.0f);
  std::printf("%ld %ld\n", before, peakRssKb());
  return session.quantityRun().Computed ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  if (argc == 3 && std::string(argv[1]) == kMemoryMode)
    return measureMemory(QString::fromLocal8Bit(argv[2]));

  QTemporaryDir dir;
  std::map<int, QString> files;
  for (int size : kSizes) {
    files[size] = dir.filePath(QStringLiteral("bench-%1.delvane").arg(size));
    std::fprintf(stderr, "Writing a section of %d chainages x %d readings...\n", size, kReadings);
    bench::writeBenchProject(files[size], size, kReadings);
  }

  for (int size : kSizes)
    benchmark::RegisterBenchmark(("floor/" + std::to_string(size)).c_str(), floorPass, files[size])
        ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("evaluate_formula", evaluateFormulas)->Unit(benchmark::kMicrosecond);
  for (int size : kSizes)
    benchmark::RegisterBenchmark(("quantity_run/" + std::to_string(size)).c_str(), quantityRun,
                                 files[size])
        ->Unit(benchmark::kMillisecond)
        ->MinTime(2.0);

  benchmark::Initialize(&argc, argv);
  bench::KeepingReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();

  const auto floor = reporter.cpu.find("floor/10000");
  const auto run = reporter.cpu.find("quantity_run/10000");
  if (floor == reporter.cpu.end() || run == reporter.cpu.end() || floor->second <= 0.0)
    std::printf("ratio quantity_run_10000/floor: missing (the %s did not run)\n",
                run == reporter.cpu.end() ? "quantity run" : "floor pass");
  else
    std::printf("ratio quantity_run_10000/floor: %.2f\n", run->second / floor->second);
  std::printf("(CPU time per pass: floor/10000 %s, quantity_run/10000 %s)\n",
              bench::msText(reporter.cpu, "floor/10000").c_str(),
              bench::msText(reporter.cpu, "quantity_run/10000").c_str());

  for (int size : kSizes) {
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(),
                {QString::fromLatin1(kMemoryMode), files[size]});
    child.waitForFinished(-1);
    long before = 0, after = 0;
    const QByteArray out = child.readAllStandardOutput();
    if (child.exitCode() == 0 && std::sscanf(out.constData(), "%ld %ld", &before, &after) == 2)
      std::printf("peak memory quantity_run/%d: %ld KiB (%ld KiB before the run)\n", size, after,
                  before);
    else
      std::printf("peak memory quantity_run/%d: missing (the run failed)\n", size);
  }
  return 0;
}
