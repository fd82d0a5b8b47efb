// Asking of each row whether it passes two numeric conditions, beside the least that a filter could cost
// which is given texts (printing and reading the same two numbers), and beside SQLite's WHERE.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <charconv>

#include "bench_table.h"
#include "medians.h"
#include "sqlite_table.h"

namespace {

constexpr double first_limit = 1000;
constexpr double second_limit = 30000;

long expected_rows(long rows) {
  long passing = 0;
  for (long row = 1; row <= rows; ++row) {
    passing += ovbench::value_at(row, 1) > first_limit && ovbench::value_at(row, 2) < second_limit ? 1 : 0;
  }
  return passing;
}

long filter_table(IOvTable& table) {
  long passing = 0;
  HRESULT moved = ovfile::check(table.GetFirstRow());
  while (moved == S_OK) {
    VARIANT_BOOL passes = 0;
    ovfile::check(table.IsFilteredIn(0, 0, &passes));
    if (passes != 0) ++passing;
    moved = ovfile::check(table.GetNextRow());
  }
  return passing;
}

double printed_and_read(double value) {
  char text[40];
  const auto printed = std::to_chars(text, text + sizeof text, value);
  double read = 0;
  std::from_chars(text, printed.ptr, read);
  return read;
}

long print_and_read(long rows) {
  long passing = 0;
  for (long row = 1; row <= rows; ++row) {
    const double first = printed_and_read(ovbench::value_at(row, 1));
    const double second = printed_and_read(ovbench::value_at(row, 2));
    if (first > first_limit && second < second_limit) ++passing;
  }
  return passing;
}

long filter_sqlite(const ovbench::sqlite_file& file) {
  sqlite3_stmt* scan = file.prepare("SELECT rowid FROM t WHERE C1 > 1000 AND C2 < 30000");
  long passing = 0;
  while (sqlite3_step(scan) == SQLITE_ROW) ++passing;
  sqlite3_finalize(scan);
  return passing;
}

template <class Count>
void measure(benchmark::State& state, long expected, Count count) {
  for (auto _ : state) {
    if (count() != expected) state.SkipWithError("the number of rows is wrong");
  }
}

ovfile::pointer<IOvTable> open_filtered(const std::filesystem::path& path) {
  auto table = ovbench::open_table(path);
  ovfile::check(table->put_FilterString(0, ovfile::text("C1 > 1000 AND C2 < 30000").get()));
  return table;
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  const long rows = std::min(ovbench::large_rows(), 1'000'000L);
  const ovbench::scratch_folder folder;
  ovbench::make_table(folder / "double.ovt", rows, true);
  ovbench::make_table(folder / "single.ovt", rows, false);
  ovbench::make_sqlite_table(folder / "same.db", rows);
  const auto in_double = open_filtered(folder / "double.ovt");
  const auto in_single = open_filtered(folder / "single.ovt");
  const ovbench::sqlite_file in_sqlite(folder / "same.db");
  in_sqlite.run("PRAGMA mmap_size = 2147418112; PRAGMA locking_mode = EXCLUSIVE");
  const long passing = expected_rows(rows);

  const auto add = [&](const char* name, auto count) {
    benchmark::RegisterBenchmark(name, [=](benchmark::State& state) { measure(state, passing, count); })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Repetitions(5)
        ->ReportAggregatesOnly();
  };
  add("filter_double", [&] { return filter_table(*in_double.get()); });
  add("filter_single", [&] { return filter_table(*in_single.get()); });
  add("print_and_read", [=] { return print_and_read(rows); });
  add("filter_sqlite", [&] { return filter_sqlite(in_sqlite); });

  ovbench::medians report;
  benchmark::RunSpecifiedBenchmarks(&report);
  const auto each = static_cast<double>(rows);
  report.print_cost("filter in double precision", "filter_double", "print_and_read", each, 3);
  report.print_cost("filter in single precision", "filter_single", "print_and_read", each, 3);
  report.print_ratio("filter in double precision", "filter_double", "filter_sqlite", each);
  return report.failed() ? 1 : 0;
}
