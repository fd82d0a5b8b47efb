// Values set here and there in a large table, each by its row's number, beside SQLite's update of the same
// rows.
#include <benchmark/benchmark.h>

#include <random>

#include "bench_table.h"
#include "medians.h"
#include "sqlite_table.h"

namespace {

constexpr int repetitions = 3;
constexpr int column = 3;
constexpr long values = 100'000;

std::vector<long> scattered_rows(long rows) {
  std::mt19937_64 dice(20);
  std::vector<long> found;
  for (long i = 0; i < values; ++i)
    found.push_back(1 + static_cast<long>(dice() % static_cast<unsigned long>(rows)));
  return found;
}

void set_values(const std::filesystem::path& path, const std::vector<long>& rows, double value) {
  const auto table = ovfile::create_table();
  ovfile::check(table->Open(ovbench::path_text(path).get(), 0));
  for (const long row : rows) {
    ovfile::check(table->GetRowAt(static_cast<LONG>(row)));
    ovfile::check(table->SetColumnDouble(column, value));
  }
  ovfile::check(table->Close());
}

void set_in_sqlite(const ovbench::sqlite_file& file, const std::vector<long>& rows, double value) {
  file.run("BEGIN");
  sqlite3_stmt* update = file.prepare("UPDATE t SET C3 = ? WHERE rowid = ?");
  for (const long row : rows) {
    sqlite3_bind_double(update, 1, value);
    sqlite3_bind_int64(update, 2, row);
    if (sqlite3_step(update) != SQLITE_DONE) file.fail();
    sqlite3_reset(update);
  }
  sqlite3_finalize(update);
  file.run("COMMIT");
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  const long rows = ovbench::large_rows();
  const std::vector<long> chosen = scattered_rows(rows);
  const ovbench::scratch_folder folder;
  ovbench::make_table(folder / "double.ovt", rows, true);
  ovbench::make_table(folder / "single.ovt", rows, false);
  ovbench::make_sqlite_table(folder / "same.db", rows);
  const ovbench::sqlite_file in_sqlite(folder / "same.db");
  in_sqlite.run("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; PRAGMA locking_mode = EXCLUSIVE");

  double value = 0;
  const auto add = [&](const char* name, auto body) {
    benchmark::RegisterBenchmark(name,
                                 [&value, body](benchmark::State& state) {
                                   for (auto _ : state) body(value += 0.25);
                                 })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(1)
        ->Repetitions(repetitions)
        ->ReportAggregatesOnly();
  };
  add("set_double", [&](double now) { set_values(folder / "double.ovt", chosen, now); });
  add("set_sqlite", [&](double now) { set_in_sqlite(in_sqlite, chosen, now); });
  add("set_single", [&](double now) { set_values(folder / "single.ovt", chosen, now); });

  ovbench::medians report;
  benchmark::RunSpecifiedBenchmarks(&report);
  report.print_ratio("scattered values in double precision", "set_double", "set_sqlite", values);
  report.print_ratio("scattered values in single precision", "set_single", "set_sqlite", values);
  return report.failed() ? 1 : 0;
}
