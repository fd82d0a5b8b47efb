// Signing a table, in megabytes of the texts that are hashed, beside a plain loop that prints the same
// values with snprintf and hashes them.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>

#include "bench_table.h"
#include "medians.h"
#include "plain_sha1.h"

namespace {

/// Six decimals without trailing zeros, two bytes a character.
std::size_t print(double value, char (&text)[160]) {
  char narrow[80];
  std::size_t length = static_cast<std::size_t>(std::snprintf(narrow, sizeof narrow, "%f", value));
  while (narrow[length - 1] == '0') --length;
  if (narrow[length - 1] == '.') --length;
  for (std::size_t i = 0; i < length; ++i) {
    text[2 * i] = narrow[i];
    text[2 * i + 1] = 0;
  }
  return 2 * length;
}

std::size_t bytes_of_texts(long rows) {
  char text[160];
  std::size_t bytes = 0;
  for (long row = 1; row <= rows; ++row) {
    for (int c = 1; c <= ovbench::columns; ++c) bytes += print(ovbench::value_at(row, c), text);
  }
  return bytes;
}

void sign_plainly(long rows) {
  ovbench::plain_sha1 hash;
  char text[160];
  for (long row = 1; row <= rows; ++row) {
    for (int c = 1; c <= ovbench::columns; ++c) {
      const std::size_t length = print(ovbench::value_at(row, c), text);
      hash.add(text, length);
    }
  }
  benchmark::DoNotOptimize(hash.finish());
}

void sign(IOvTable& table) {
  ovfile::text signature;
  ovfile::check(table.GetLooseSignature(signature.out()));
  benchmark::DoNotOptimize(signature.get());
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  const long rows = std::min(ovbench::large_rows(), 1'000'000L);
  const ovbench::scratch_folder folder;
  ovbench::make_table(folder / "double.ovt", rows, true);
  const auto table = ovbench::open_table(folder / "double.ovt");

  const auto add = [](const char* name, auto body) {
    benchmark::RegisterBenchmark(name,
                                 [body](benchmark::State& state) {
                                   for (auto _ : state) body();
                                 })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Repetitions(5)
        ->ReportAggregatesOnly();
  };
  add("sign", [&] { sign(*table.get()); });
  add("sign_plainly", [=] { sign_plainly(rows); });

  ovbench::medians report;
  benchmark::RunSpecifiedBenchmarks(&report);
  if (report.failed() || !report.has("sign") || !report.has("sign_plainly")) return report.failed() ? 1 : 0;
  const double megabytes = static_cast<double>(bytes_of_texts(rows)) / 1e6;
  const double ours = megabytes / report.seconds("sign");
  const double plain = megabytes / report.seconds("sign_plainly");
  std::printf("sign: ovfile %.0f MB/s, plain loop %.0f MB/s, ratio %.1f (target 3: %s)\n", ours, plain,
              ours / plain, ours / plain >= 3 ? "reached" : "missed");
  return 0;
}
