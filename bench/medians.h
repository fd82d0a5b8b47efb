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
      seconds_[run.run_name.function_name] = run.real_accumulated_time / static_cast<double>(run.iterations);
      for (const auto& [name, counter] : run.counters) counters_[run.run_name.function_name][name] = counter;
    }
    ConsoleReporter::ReportRuns(runs);
  }

  bool has(const std::string& name) const { return seconds_.count(name) != 0; }
  double seconds(const std::string& name) const { return seconds_.at(name); }
  double counter(const std::string& name, const std::string& which) const {
    return counters_.at(name).at(which);
  }
  bool failed() const { return failed_; }

  /// How many times as fast the first is as the second, with the time of each per value.
  void print_ratio(const std::string& what, const std::string& ours, const std::string& theirs, double values,
                   double target = 0) const {
    if (!has(ours) || !has(theirs)) return;
    const double ratio = seconds(theirs) / seconds(ours);
    std::printf("%s: ovfile %.2f ns, SQLite %.2f ns per value, ratio %.1f", what.c_str(),
                seconds(ours) / values * 1e9, seconds(theirs) / values * 1e9, ratio);
    if (target > 0) std::printf(" (target %.0f: %s)", target, ratio >= target ? "reached" : "missed");
    std::printf("\n");
  }

 private:
  std::map<std::string, double> seconds_;
  std::map<std::string, std::map<std::string, double>> counters_;
  bool failed_ = false;
};

}  // namespace ovbench
