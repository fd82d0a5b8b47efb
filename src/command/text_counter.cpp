#include "text_counter.h"

#include <algorithm>

namespace command {
namespace {

/// What a text takes in memory besides its characters.
constexpr std::size_t overhead = 96;

}  // namespace

bool text_counter::make_room(std::size_t length) noexcept {
  const std::size_t bytes = overhead + length;
  if (counts_.size() >= room_.values || bytes > room_.bytes) return false;
  room_.bytes -= bytes;
  return true;
}

void text_counter::add(std::string_view text) {
  if (text.empty()) {
    ++blank_;
    return;
  }
  ++values_;
  const auto found = counts_.find(text);
  if (found != counts_.end()) {
    ++found->second;
  } else if (make_room(text.size())) {
    counts_.emplace(text, 1);
  } else {
    exact_ = false;
  }
}

std::vector<std::pair<std::string, std::uint64_t>> text_counter::most_frequent(std::size_t most) const {
  std::vector<std::pair<std::string, std::uint64_t>> best(std::min(most, counts_.size()));
  std::partial_sort_copy(counts_.begin(), counts_.end(), best.begin(), best.end(),
                         [](const auto& left, const auto& right) {
                           if (left.second != right.second) return left.second > right.second;
                           return left.first < right.first;
                         });
  return best;
}

}  // namespace command
