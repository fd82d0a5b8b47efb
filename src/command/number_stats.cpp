#include "number_stats.h"

#include <algorithm>
#include <cmath>

#include "absent.h"

namespace command {
namespace {

enum class meaning { ordinary, absent, trace, special };

constexpr double top_number = 1.0e30;
constexpr double trace_number = 1.0e-30;

/// A float has the nearest one in place of each.
constexpr double as_kept(double value, bool single) noexcept {
  return single ? static_cast<double>(static_cast<float>(value)) : value;
}

meaning meaning_of(double value, bool single) noexcept {
  if (value == as_kept(absent_number, single)) return meaning::absent;
  if (value == as_kept(trace_number, single)) return meaning::trace;
  return std::fabs(value) < top_number ? meaning::ordinary : meaning::special;
}

}  // namespace

void number_stats::add(double value, bool single) noexcept {
  switch (meaning_of(value, single)) {
    case meaning::absent:
      ++absent_;
      return;
    case meaning::trace:
      ++trace_;
      return;
    case meaning::special:
      ++special_;
      return;
    case meaning::ordinary:
      break;
  }
  min_ = values_ == 0 ? value : std::min(min_, value);
  max_ = values_ == 0 ? value : std::max(max_, value);
  ++values_;
  // The sum of squares less the square of the sum would lose all digits of values far from 0.
  const double before = value - mean_;
  mean_ += before / static_cast<double>(values_);
  squares_ += before * (value - mean_);
}

void number_stats::add_to_histogram(double value, bool single) noexcept {
  if (meaning_of(value, single) != meaning::ordinary) return;
  const double share = max_ > min_ ? (value - min_) / (max_ - min_) : 0.0;
  const auto bin = static_cast<std::size_t>(std::max(share, 0.0) * static_cast<double>(bins));
  ++histogram_[std::min(bin, bins - 1)];
}

double number_stats::deviation() const noexcept {
  return std::sqrt(squares_ / static_cast<double>(values_ - 1));
}

std::string number_stats::bars() const {
  constexpr const char* heights[] = {" ", "▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
  if (values_ == 0) return {};
  if (max_ == min_) return heights[8];
  const double fullest = static_cast<double>(*std::max_element(histogram_.begin(), histogram_.end()));
  std::string out;
  for (const std::uint64_t count : histogram_) {
    out += heights[static_cast<std::size_t>(std::ceil(static_cast<double>(count) / fullest * 8))];
  }
  return out;
}

}  // namespace command
