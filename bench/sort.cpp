// Sorting a table by a number and by a text, beside SQLite's CREATE TABLE … AS SELECT … ORDER BY. Both
// sides wait until the result stands on the disk, and neither keeps a journal.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>

#include "bench_table.h"
#include "medians.h"
#include "sqlite_table.h"

namespace {

constexpr int numbers = ovbench::columns - 1;

/// A table of nine numbers, the first in no order, and a text of eight characters.
struct row_maker {
  std::mt19937_64 random{1};
  double first = 0;
  std::string text;

  void next() {
    first = static_cast<double>(random() % 100'000'000) / 64;
    text = "LK" + std::to_string(100'000 + random() % 900'000);
  }
};

void make_table(const std::filesystem::path& path, long rows) {
  auto schema = ovfile::create_schema();
  ovfile::check(schema->put_DoublePrecision(VARIANT_TRUE));
  for (int c = 1; c <= numbers; ++c) {
    ovfile::check(schema->AddNumericColumn(ovfile::text("C" + std::to_string(c)).get(), 0, 0));
  }
  ovfile::check(schema->AddStringColumn(ovfile::text("BHID").get(), 8, ovfile::text("").get(), 0));
  const auto table = ovfile::create_table();
  ovfile::check(table->Create(ovbench::path_text(path).get(), schema.get()));
  row_maker maker;
  for (long row = 1; row <= rows; ++row) {
    maker.next();
    ovfile::check(table->AddRow());
    ovfile::check(table->SetColumnDouble(1, maker.first));
    for (int c = 2; c <= numbers; ++c) ovfile::check(table->SetColumnDouble(c, ovbench::value_at(row, c)));
    ovfile::check(table->SetColumnString(numbers + 1, ovfile::text(maker.text).get()));
  }
  ovfile::check(table->Close());
}

void make_sqlite(const std::filesystem::path& path, long rows) {
  const ovbench::sqlite_file file(path);
  file.run("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; CREATE TABLE t (" +
           ovbench::column_list("C", " REAL") + ", BHID TEXT); ALTER TABLE t DROP COLUMN C10; BEGIN");
  sqlite3_stmt* insert = file.prepare("INSERT INTO t VALUES (" + ovbench::column_list("?", "") + ")");
  row_maker maker;
  for (long row = 1; row <= rows; ++row) {
    maker.next();
    sqlite3_bind_double(insert, 1, maker.first);
    for (int c = 2; c <= numbers; ++c) sqlite3_bind_double(insert, c, ovbench::value_at(row, c));
    sqlite3_bind_text(insert, numbers + 1, maker.text.c_str(), -1, SQLITE_TRANSIENT);
    if (sqlite3_step(insert) != SQLITE_DONE) file.fail();
    sqlite3_reset(insert);
  }
  sqlite3_finalize(insert);
  file.run("COMMIT");
}

void sort_table(benchmark::State& state, const std::filesystem::path& made, LONG column) {
  const std::filesystem::path path = made.string() + ".sorted.ovt";
  for (auto _ : state) {
    state.PauseTiming();
    std::filesystem::copy_file(made, path, std::filesystem::copy_options::overwrite_existing);
    auto table = ovfile::create_table();
    ovfile::check(table->Open(ovbench::path_text(path).get(), 0));
    state.ResumeTiming();
    ovfile::check(table->Sort(column, VARIANT_TRUE));
  }
}

void sort_sqlite(benchmark::State& state, const ovbench::sqlite_file& file, const std::string& order) {
  for (auto _ : state) {
    state.PauseTiming();
    file.run("PRAGMA synchronous = OFF; DROP TABLE IF EXISTS s; PRAGMA synchronous = FULL");
    state.ResumeTiming();
    file.run("CREATE TABLE s AS SELECT * FROM t ORDER BY " + order);
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  const long rows = std::min(ovbench::large_rows(), 2'000'000L);
  const ovbench::scratch_folder folder;
  make_table(folder / "sort.ovt", rows);
  make_sqlite(folder / "sort.db", rows);
  const ovbench::sqlite_file in_sqlite(folder / "sort.db");
  in_sqlite.run(
      "PRAGMA journal_mode = OFF; PRAGMA locking_mode = EXCLUSIVE; PRAGMA temp_store = MEMORY; "
      "PRAGMA cache_size = -262144");

  const auto add = [](const char* name, auto body) {
    benchmark::RegisterBenchmark(name, body)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(1)
        ->Repetitions(5)
        ->ReportAggregatesOnly();
  };
  const auto table = folder / "sort.ovt";
  add("sort_number", [&](benchmark::State& state) { sort_table(state, table, 1); });
  add("sort_number_sqlite", [&](benchmark::State& state) { sort_sqlite(state, in_sqlite, "C1"); });
  add("sort_text", [&](benchmark::State& state) { sort_table(state, table, numbers + 1); });
  add("sort_text_sqlite", [&](benchmark::State& state) { sort_sqlite(state, in_sqlite, "BHID DESC"); });

  ovbench::medians report;
  benchmark::RunSpecifiedBenchmarks(&report);
  const double values = static_cast<double>(rows) * ovbench::columns;
  report.print_ratio("sort by a number", "sort_number", "sort_number_sqlite", values, 2);
  report.print_ratio("sort by a text", "sort_text", "sort_text_sqlite", values, 2);
  return report.failed() ? 1 : 0;
}
