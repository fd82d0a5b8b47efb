// Walking a table holds the same memory whatever the number of its rows: one segment, one header page.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <fstream>
#include <string>

#include "bench_table.h"
#include "medians.h"

namespace {

/// A line of the process's own account, in kilobytes; 0 where there is none.
double status_kilobytes(const std::string& key) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    double kilobytes = 0;
    if (word == key && status >> kilobytes) return kilobytes;
  }
  return 0;
}

/// Forgets the highest mark so far.
void reset_peak() { std::ofstream("/proc/self/clear_refs") << "5"; }

std::string name_of(long rows) { return "peak_rows_" + std::to_string(rows); }

void measure(benchmark::State& state, const std::filesystem::path& path) {
  double peak = 0;
  for (auto _ : state) {
    reset_peak();
    const auto table = ovbench::open_table(path);
    benchmark::DoNotOptimize(ovbench::walk(*table.get()));
    peak = std::max(peak, status_kilobytes("VmHWM:"));
  }
  state.counters["peak_kB"] = peak;
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  const ovbench::scratch_folder folder;
  const long most = ovbench::large_rows();
  const long sizes[] = {std::min(most, 1'000L), std::min(most, 100'000L), most};
  for (const long rows : sizes) {
    const auto path = folder / (std::to_string(rows) + ".ovt");
    if (std::filesystem::exists(path)) continue;
    ovbench::make_table(path, rows, true);
    benchmark::RegisterBenchmark(name_of(rows).c_str(),
                                 [path](benchmark::State& state) { measure(state, path); })
        ->Unit(benchmark::kMillisecond)
        ->Iterations(1)
        ->Repetitions(3)
        ->ReportAggregatesOnly();
  }

  ovbench::medians report;
  benchmark::RunSpecifiedBenchmarks(&report);
  for (const long rows : sizes) {
    if (!report.has(name_of(rows))) continue;
    std::printf("%ld rows: %.0f kB resident at the peak of a walk, the program included (target: flat)\n",
                rows, report.counter(name_of(rows), "peak_kB"));
  }
  return report.failed() ? 1 : 0;
}
