#pragma once

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace bench {

// Keeps the console output and the mean CPU and real time per iteration of each benchmark, in
// seconds. Ratios use CPU time: the machine is shared, and waiting for a core says nothing about
// the code.
class KeepingReporter : public benchmark::ConsoleReporter {
 public:
  KeepingReporter() : ConsoleReporter(isatty(fileno(stdout)) ? OO_Defaults : OO_Tabular) {}
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs)
      if (run.run_type == Run::RT_Iteration && !run.error_occurred && run.iterations > 0) {
        cpu[run.run_name.function_name] = run.cpu_accumulated_time / double(run.iterations);
        real[run.run_name.function_name] = run.real_accumulated_time / double(run.iterations);
      }
    ConsoleReporter::ReportRuns(runs);
  }
  std::map<std::string, double> cpu;
  std::map<std::string, double> real;
};

// The time of benchmark name as "12.3 ms", or "-" when it did not run.
inline std::string msText(const std::map<std::string, double>& times, const std::string& name) {
  const auto it = times.find(name);
  if (it == times.end()) return "-";
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.1f ms", it->second * 1000.0);
  return buf;
}

}  // namespace bench
