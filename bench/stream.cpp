// Whole columns by streams. Reading stands beside the sums of the columns over the mapped file, one column
// after the other as a host with arrays over the file has them; appending beside the row-by-row way. The
// file is in the system's cache throughout, and nobody waits for the disk.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>

#include "medians.h"
#include "stream_table.h"

namespace {

using ovbench::sums;

double sum_of(const double* values, std::int64_t count) {
  double sum = 0;
  for (std::int64_t i = 0; i < count; ++i) sum += values[i];
  return sum;
}

/// The sums of the columns that the request names.
sums read_sums(const std::filesystem::path& path, const OvStreamRequest& request) {
  sums found{};
  const auto table = ovbench::open_table(path);
  auto stream = ovfile::read_stream(table, request);
  for (const ovfile::arrow_array& batch : stream) {
    for (std::int64_t c = 0; c < batch->n_children; ++c) {
      const ArrowArray& column = *batch->children[c];
      found[static_cast<std::size_t>(c)] += sum_of(ovfile::values_of<double>(column), column.length);
    }
  }
  return found;
}

sums mapped_sums(const std::filesystem::path& path, long rows, int columns) {
  sums found{};
  const ovbench::mapped_file file(path);
  for (int c = 0; c < columns; ++c) found[static_cast<std::size_t>(c)] = file.column_sum(rows, c);
  return found;
}

long append_batches(ovbench::kept_batches& from, const std::filesystem::path& to) {
  const auto target = ovbench::create_stream_table(to);
  const LONG rows = ovfile::append_stream(target, from.stream());
  ovfile::check(target->Close());
  return rows;
}

/// Both ways are the library's own, so what counts is how much of the time is left.
void print_share(const ovbench::medians& report, const char* what, const char* ours, const char* usual,
                 double values) {
  if (!report.has(ours) || !report.has(usual)) return;
  const double share = report.seconds(ours) / report.seconds(usual);
  std::printf("%s: %.2f ns, row by row %.2f ns per value, ratio %.2f (target at most 0.25: %s)\n", what,
              report.seconds(ours) / values * 1e9, report.seconds(usual) / values * 1e9, share,
              share <= 0.25 ? "reached" : "missed");
}

void require(benchmark::State& state, double found, double expected) {
  if (std::abs(found - expected) > std::abs(expected) * 1e-9) state.SkipWithError("the sum is wrong");
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  const long rows = std::min(ovbench::large_rows() / 2, 5'000'000L);
  const ovbench::scratch_folder folder;
  const auto path = folder / "stream.ovt";
  const auto copy = folder / "copy.ovt";
  ovbench::append_row_by_row(path, rows);
  sums expected{};
  for (long row = 1; row <= rows; ++row) {
    for (int c = 1; c <= ovbench::stream_columns; ++c) {
      expected[static_cast<std::size_t>(c - 1)] += ovbench::value_at(row, c);
    }
  }
  const auto check = [&](benchmark::State& state, const sums& found, std::size_t columns) {
    for (std::size_t c = 0; c < columns; ++c) require(state, found[c], expected[c]);
  };
  const auto add = [](const char* name, auto body) {
    return benchmark::RegisterBenchmark(name, body)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Repetitions(5)
        ->ReportAggregatesOnly();
  };
  add("read_all_stream", [&](benchmark::State& state) {
    for (auto _ : state) check(state, read_sums(path, {}), ovbench::stream_columns);
  });
  add("read_all_mapped", [&](benchmark::State& state) {
    for (auto _ : state)
      check(state, mapped_sums(path, rows, ovbench::stream_columns), ovbench::stream_columns);
  });
  add("read_one_stream", [&](benchmark::State& state) {
    const LONG column = 1;
    OvStreamRequest request;
    request.nColumns = 1;
    request.pColumns = &column;
    for (auto _ : state) check(state, read_sums(path, request), 1);
  });
  add("read_one_mapped", [&](benchmark::State& state) {
    for (auto _ : state) check(state, mapped_sums(path, rows, 1), 1);
  });
  const auto appending = [&](auto make) {
    return [&, make](benchmark::State& state) {
      for (auto _ : state) {
        make();
        state.PauseTiming();
        std::filesystem::remove(copy);
        state.ResumeTiming();
      }
    };
  };
  ovbench::kept_batches batches(ovfile::read_stream(ovbench::open_table(path)));
  add("append_stream", appending([&] {
        if (append_batches(batches, copy) != rows) throw std::runtime_error("rows are missing");
      }))
      ->Iterations(1);
  add("append_row_by_row", appending([&] { ovbench::append_row_by_row(copy, rows); }))->Iterations(1);

  ovbench::medians report;
  benchmark::RunSpecifiedBenchmarks(&report);
  const double all = static_cast<double>(rows) * ovbench::stream_columns;
  report.print_cost("read 8 columns by stream", "read_all_stream", "read_all_mapped", all, 2);
  report.print_cost("read 1 column of 8 by stream", "read_one_stream", "read_one_mapped",
                    static_cast<double>(rows), 3);
  print_share(report, "append by stream", "append_stream", "append_row_by_row", all);
  return report.failed() ? 1 : 0;
}
