// The smallest value of a column, which takes a walk over all of them, beside the plain walk.
#include <benchmark/benchmark.h>

#include <algorithm>

#include "bench_table.h"
#include "medians.h"

namespace {

/// Ranges are found once for each object, so each turn has one of its own.
double minimum(const std::filesystem::path& path) {
  const auto table = ovbench::open_table(path);
  double value = 0;
  ovfile::check(table->GetColumnMin(1, &value));
  return value;
}

double walk(const std::filesystem::path& path) { return ovbench::walk(*ovbench::open_table(path).get()); }

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  const long rows = std::min(ovbench::large_rows(), 1'000'000L);
  const ovbench::scratch_folder folder;
  ovbench::make_table(folder / "double.ovt", rows, true);
  ovbench::make_table(folder / "single.ovt", rows, false);

  const auto add = [&](const char* name, const char* file, auto turn) {
    benchmark::RegisterBenchmark(name,
                                 [path = folder / file, turn](benchmark::State& state) {
                                   for (auto _ : state) benchmark::DoNotOptimize(turn(path));
                                 })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Repetitions(5)
        ->ReportAggregatesOnly();
  };
  add("minimum_double", "double.ovt", minimum);
  add("walk_double", "double.ovt", walk);
  add("minimum_single", "single.ovt", minimum);
  add("walk_single", "single.ovt", walk);

  ovbench::medians report;
  benchmark::RunSpecifiedBenchmarks(&report);
  const double values = static_cast<double>(rows) * ovbench::columns;
  report.print_cost("minimum in double precision", "minimum_double", "walk_double", values, 2);
  report.print_cost("minimum in single precision", "minimum_single", "walk_single", values, 2);
  return report.failed() ? 1 : 0;
}
