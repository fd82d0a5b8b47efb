// How many rows a statement has got through, of how many.
#pragma once

#include <atomic>
#include <cstdint>

namespace command {

/// Any thread may call. The numbers are for people: nothing else is ordered by them.
class row_count {
 public:
  /// For the next statement.
  void start_again() noexcept {
    done_.store(0, std::memory_order_relaxed);
    total_.store(0, std::memory_order_relaxed);
  }
  /// So many more rows are going to come.
  void expect(std::uint64_t rows) noexcept { total_.fetch_add(rows, std::memory_order_relaxed); }
  void add(std::uint64_t rows) noexcept { done_.fetch_add(rows, std::memory_order_relaxed); }

  std::uint64_t done() const noexcept { return done_.load(std::memory_order_relaxed); }
  std::uint64_t total() const noexcept { return total_.load(std::memory_order_relaxed); }

 private:
  std::atomic<std::uint64_t> done_{0};
  std::atomic<std::uint64_t> total_{0};
};

}  // namespace command
