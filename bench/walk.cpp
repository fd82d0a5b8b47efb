// Walking a table of 10 numeric columns through the cursor and the typed getter, beside SQLite's scan of
// the same data through its C interface.
#include <benchmark/benchmark.h>

#include <cmath>

#include "bench_table.h"
#include "medians.h"
#include "sqlite_table.h"

namespace {

constexpr int repetitions = 5;

double expected_sum(long rows) {
  double sum = 0;
  for (long row = 1; row <= rows; ++row) {
    for (int c = 1; c <= ovbench::columns; ++c) sum += ovbench::value_at(row, c);
  }
  return sum;
}

/// One iteration walks everything; a wrong sum is an error, not a number.
template <class Walk>
void measure(benchmark::State& state, double sum, double tolerance, Walk walk) {
  for (auto _ : state) {
    const double found = walk();
    benchmark::DoNotOptimize(found);
    if (std::abs(found - sum) > std::abs(sum) * tolerance) state.SkipWithError("the sum is wrong");
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  const long rows = ovbench::large_rows();
  const double sum = expected_sum(rows);
  const ovbench::scratch_folder folder;
  ovbench::make_table(folder / "double.ovt", rows, true);
  ovbench::make_table(folder / "single.ovt", rows, false);
  ovbench::make_sqlite_table(folder / "same.db", rows);

  const auto in_double = ovbench::open_table(folder / "double.ovt");
  const auto in_single = ovbench::open_table(folder / "single.ovt");
  const ovbench::sqlite_file in_sqlite(folder / "same.db");
  in_sqlite.run("PRAGMA mmap_size = 2147418112; PRAGMA locking_mode = EXCLUSIVE");

  const auto add = [](const char* name, auto body) {
    benchmark::RegisterBenchmark(name, body)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Repetitions(repetitions)
        ->ReportAggregatesOnly();
  };
  add("walk_double", [&](benchmark::State& state) {
    measure(state, sum, 1e-9, [&] { return ovbench::walk(*in_double.get()); });
  });
  add("walk_sqlite", [&](benchmark::State& state) {
    measure(state, sum, 1e-9, [&] { return ovbench::walk_sqlite(in_sqlite); });
  });
  add("walk_single", [&](benchmark::State& state) {
    measure(state, sum, 1e-4, [&] { return ovbench::walk(*in_single.get()); });
  });

  ovbench::medians report;
  benchmark::RunSpecifiedBenchmarks(&report);
  const double values = static_cast<double>(rows) * ovbench::columns;
  report.print_ratio("walk in double precision", "walk_double", "walk_sqlite", values, 5);
  report.print_ratio("walk in single precision", "walk_single", "walk_sqlite", values, 5);
  return report.failed() ? 1 : 0;
}
