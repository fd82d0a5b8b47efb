// Appending rows value by value, beside SQLite's prepared inserts in one transaction without a journal.
// Neither side waits for the disk.
#include <benchmark/benchmark.h>

#include <algorithm>

#include "bench_table.h"
#include "medians.h"
#include "sqlite_table.h"

namespace {

template <class Make>
void measure(benchmark::State& state, const std::filesystem::path& path, Make make) {
  for (auto _ : state) {
    make();
    state.PauseTiming();
    std::filesystem::remove(path);
    state.ResumeTiming();
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  const long rows = std::min(ovbench::large_rows(), 2'000'000L);
  const ovbench::scratch_folder folder;
  const auto table = folder / "append.ovt";
  const auto database = folder / "append.db";

  const auto add = [](const char* name, auto body) {
    benchmark::RegisterBenchmark(name, body)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(1)
        ->Repetitions(5)
        ->ReportAggregatesOnly();
  };
  add("append_double", [&](benchmark::State& state) {
    measure(state, table, [&] { ovbench::make_table(table, rows, true); });
  });
  add("append_single", [&](benchmark::State& state) {
    measure(state, table, [&] { ovbench::make_table(table, rows, false); });
  });
  add("append_sqlite", [&](benchmark::State& state) {
    measure(state, database, [&] { ovbench::make_sqlite_table(database, rows); });
  });

  ovbench::medians report;
  benchmark::RunSpecifiedBenchmarks(&report);
  const double values = static_cast<double>(rows) * ovbench::columns;
  report.print_ratio("append in double precision", "append_double", "append_sqlite", values, 4);
  report.print_ratio("append in single precision", "append_single", "append_sqlite", values, 4);
  return report.failed() ? 1 : 0;
}
