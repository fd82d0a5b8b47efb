// One sentence for whatever differs: file, row, column, expected, received.
#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cinttypes>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>

namespace ovtest {

inline std::string shown(const std::string& text) { return '"' + text + '"'; }
inline std::string shown(bool value) { return value ? "true" : "false"; }
inline std::string shown(int value) { return std::to_string(value); }
inline std::string shown(long value) { return std::to_string(value); }
inline std::string shown(long long value) { return std::to_string(value); }
inline std::string shown(double value) {
  char text[96];
  std::snprintf(text, sizeof text, "%.17g (%016" PRIx64 ")", value, std::bit_cast<std::uint64_t>(value));
  return text;
}
inline std::string shown(float value) {
  char text[96];
  std::snprintf(text, sizeof text, "%.9g (%08" PRIx32 ")", static_cast<double>(value),
                std::bit_cast<std::uint32_t>(value));
  return text;
}

inline bool same(double left, double right) {
  return std::bit_cast<std::uint64_t>(left) == std::bit_cast<std::uint64_t>(right) ||
         (std::isnan(left) && std::isnan(right));
}
inline bool same(float left, float right) {
  return std::bit_cast<std::uint32_t>(left) == std::bit_cast<std::uint32_t>(right) ||
         (std::isnan(left) && std::isnan(right));
}
template <class Value>
bool same(const Value& left, const Value& right) {
  return left == right;
}

/// Where a comparison stands, 0 where it concerns the whole file or the whole row.
struct place {
  long row = 0;
  long column = 0;
};

/// Compares the values of one file. After a score of differences the rest stays silent.
class comparison {
 public:
  explicit comparison(std::string file) : file_(std::move(file)) {}

  template <class Value>
  bool equal(place where, const std::string& what, const Value& expected, const Value& received) {
    ++comparisons_;
    if (same(expected, received)) return true;
    fail(where, what, shown(expected), shown(received));
    return false;
  }

  void fail(place where, const std::string& what, const std::string& expected, const std::string& received) {
    if (++failures_ > most_failures) return;
    ADD_FAILURE() << "file " << file_ << ", row " << where.row << ", column " << where.column << ", " << what
                  << ": expected " << expected << ", received " << received
                  << (failures_ == most_failures ? " (no further differences are shown)" : "");
  }

  const std::string& file() const { return file_; }
  int comparisons() const { return comparisons_; }

 private:
  static constexpr int most_failures = 20;
  std::string file_;
  int comparisons_ = 0;
  int failures_ = 0;
};

}  // namespace ovtest
