// What the numbers of a column come to, in one pass; a second one gives their histogram.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace command {

class number_stats {
 public:
  static constexpr std::size_t bins = 20;

  /// Takes a number of a column of this precision, a float as it is. Absent, trace and special numbers
  /// (1e30 and above, below -1e30, none at all) are counted and stay out of everything else.
  void add(double value, bool single) noexcept;
  /// The second pass over the same numbers.
  void add_to_histogram(double value, bool single) noexcept;

  std::uint64_t values() const noexcept { return values_; }
  std::uint64_t absent() const noexcept { return absent_; }
  std::uint64_t trace() const noexcept { return trace_; }
  std::uint64_t special() const noexcept { return special_; }
  /// The next three make sense where there are values.
  double min() const noexcept { return min_; }
  double max() const noexcept { return max_; }
  double mean() const noexcept { return mean_; }
  /// Of a sample: by the number of values less one. Makes sense for two values and more.
  double deviation() const noexcept;

  /// How many values lie in each of as many equal parts of the range from the smallest to the largest, a
  /// value on a border in the upper one. Where all values are equal they are all in the first.
  const std::array<std::uint64_t, bins>& histogram() const noexcept { return histogram_; }
  /// One character for each part, as high as its share of the fullest; a blank for an empty one. A single
  /// one where all values are equal.
  std::string bars() const;

 private:
  std::uint64_t values_ = 0;
  std::uint64_t absent_ = 0;
  std::uint64_t trace_ = 0;
  std::uint64_t special_ = 0;
  double min_ = 0;
  double max_ = 0;
  double mean_ = 0;
  double squares_ = 0;  ///< of the distances from the mean
  std::array<std::uint64_t, bins> histogram_{};
};

}  // namespace command
