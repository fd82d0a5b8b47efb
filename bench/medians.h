// Keeps the median of every benchmark while it is shown, so that a program can end with the numbers
// that matter: time per value and the ratio of two sides of one run.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace ovbench {

class medians : public benchmark::ConsoleReporter {
 public:
  medians() : ConsoleReporter(OO_None) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.error_occurred) failed_ = true;
      if (run.aggregate_name != "median") continue;
      times& seconds = seconds_[run.run_name.function_name];
      seconds.elapsed = run.real_accumulated_time / static_cast<double>(run.iterations);
      seconds.processor = run.cpu_accumulated_time / static_cast<double>(run.iterations);
      for (const auto& [name, counter] : run.counters) counters_[run.run_name.function_name][name] = counter;
    }
    ConsoleReporter::ReportRuns(runs);
  }

  bool has(const std::string& name) const { return seconds_.count(name) != 0; }
  double seconds(const std::string& name) const { return seconds_.at(name).elapsed; }
  double counter(const std::string& name, const std::string& which) const {
    return counters_.at(name).at(which);
  }
  bool failed() const { return failed_; }

  /// How many times as fast the first is as the second, with the time of each per value: as the clock
  /// on the wall says, and as the processor's account does, which other programs disturb less.
  void print_ratio(const std::string& what, const std::string& ours, const std::string& theirs, double values,
                   double target = 0) const {
    if (!has(ours) || !has(theirs)) return;
    const times mine = seconds_.at(ours);
    const times other = seconds_.at(theirs);
    const double ratio = other.elapsed / mine.elapsed;
    std::printf("%s: ovfile %.2f ns, SQLite %.2f ns per value, ratio %.1f", what.c_str(),
                mine.elapsed / values * 1e9, other.elapsed / values * 1e9, ratio);
    if (target > 0) std::printf(" (target %.0f: %s)", target, ratio >= target ? "reached" : "missed");
    std::printf("; processor time %.2f ns, %.2f ns, ratio %.1f\n", mine.processor / values * 1e9,
                other.processor / values * 1e9, other.processor / mine.processor);
  }

  /// How many times as long the first takes as something plain that does the least one has to, which a
  /// limit may stand for.
  void print_cost(const std::string& what, const std::string& ours, const std::string& plain, double values,
                  double limit) const {
    if (!has(ours) || !has(plain)) return;
    const times mine = seconds_.at(ours);
    const times other = seconds_.at(plain);
    const double ratio = mine.elapsed / other.elapsed;
    std::printf("%s: ovfile %.2f ns, plain %.2f ns each, ratio %.2f (target at most %.0f: %s)", what.c_str(),
                mine.elapsed / values * 1e9, other.elapsed / values * 1e9, ratio, limit,
                ratio <= limit ? "reached" : "missed");
    std::printf("; processor time %.2f ns, %.2f ns, ratio %.2f\n", mine.processor / values * 1e9,
                other.processor / values * 1e9, mine.processor / other.processor);
  }

 private:
  struct times {
    double elapsed = 0;
    double processor = 0;
  };

  std::map<std::string, times> seconds_;
  std::map<std::string, std::map<std::string, double>> counters_;
  bool failed_ = false;
};

}  // namespace ovbench
