// How often each text of a column stands there, exactly up to a limit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace command {

class text_counter {
 public:
  /// The room that several counters share.
  struct room {
    std::size_t values = 1'000'000;              ///< different texts of one column
    std::size_t bytes = std::size_t{512} << 20;  ///< that all columns together may still take
  };

  /// `shared` must outlive the counter.
  explicit text_counter(room& shared) : room_(shared) {}

  /// A text without blanks at its end; one without characters is blank.
  void add(std::string_view text);

  std::uint64_t values() const noexcept { return values_; }
  std::uint64_t blank() const noexcept { return blank_; }
  /// How many different texts there are, blank ones left out; when not `exact`, at least one more.
  std::size_t distinct() const noexcept { return counts_.size(); }
  bool exact() const noexcept { return exact_; }
  /// Up to `most` texts that stand most often, the first of equally frequent ones in their order. When not
  /// `exact`, of those that were among the first.
  std::vector<std::pair<std::string, std::uint64_t>> most_frequent(std::size_t most) const;

 private:
  struct hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const noexcept {
      return std::hash<std::string_view>()(text);
    }
  };

  bool make_room(std::size_t length) noexcept;

  room& room_;
  std::uint64_t values_ = 0;
  std::uint64_t blank_ = 0;
  bool exact_ = true;
  std::unordered_map<std::string, std::uint64_t, hash, std::equal_to<>> counts_;
};

}  // namespace command
