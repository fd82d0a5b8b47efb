// Opening a table takes the same time whatever the number of its rows.
#include <benchmark/benchmark.h>

#include <algorithm>

#include "bench_table.h"
#include "medians.h"

namespace {

std::string name_of(long rows) { return "open_rows_" + std::to_string(rows); }

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
                                 [path](benchmark::State& state) {
                                   for (auto _ : state) {
                                     const auto table = ovbench::open_table(path);
                                     benchmark::DoNotOptimize(table.get());
                                   }
                                 })
        ->Unit(benchmark::kMicrosecond)
        ->UseRealTime()
        ->Repetitions(5)
        ->ReportAggregatesOnly();
  }

  ovbench::medians report;
  benchmark::RunSpecifiedBenchmarks(&report);
  if (report.has(name_of(sizes[0])) && report.has(name_of(most))) {
    std::printf("opening %ld rows takes %.2f times as long as opening %ld rows (target: flat)\n", most,
                report.seconds(name_of(most)) / report.seconds(name_of(sizes[0])), sizes[0]);
  }
  return report.failed() ? 1 : 0;
}
