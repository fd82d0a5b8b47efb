#include "distinct_texts.h"

#include <algorithm>
#include <functional>
#include <numeric>

namespace command {
namespace {

constexpr std::size_t first_slots = 1024;

std::uint64_t beginning_of(ovfile::wide_view text) noexcept {
  std::uint64_t packed = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    packed = packed << 16 | (i < text.size() ? static_cast<std::uint16_t>(text[i]) : 0);
  }
  return packed;
}

}  // namespace

std::uint32_t distinct_texts::number_of(ovfile::wide_view text) {
  if (!entries_.empty() && text_of(entries_[last_]) == text) return last_;
  if (entries_.size() * 2 >= slots_.size()) grow();
  std::uint32_t& slot = slots_[slot_of(text)];
  if (slot == 0) slot = add(text) + 1;
  last_ = slot - 1;
  return last_;
}

std::uint32_t distinct_texts::add(ovfile::wide_view text) {
  entries_.push_back({beginning_of(text), characters_.size(), text.size()});
  characters_.insert(characters_.end(), text.begin(), text.end());
  return static_cast<std::uint32_t>(entries_.size() - 1);
}

void distinct_texts::grow() {
  slots_.assign(std::max(slots_.size() * 2, first_slots), 0);
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    slots_[slot_of(text_of(entries_[i]))] = static_cast<std::uint32_t>(i + 1);
  }
}

std::size_t distinct_texts::slot_of(ovfile::wide_view text) const {
  const std::size_t mask = slots_.size() - 1;
  std::size_t slot = std::hash<ovfile::wide_view>()(text) & mask;
  while (slots_[slot] != 0 && text_of(entries_[slots_[slot] - 1]) != text) slot = (slot + 1) & mask;
  return slot;
}

std::vector<std::uint32_t> distinct_texts::places() const {
  std::vector<std::uint32_t> order(entries_.size());
  std::iota(order.begin(), order.end(), std::uint32_t{0});
  std::sort(order.begin(), order.end(), [this](std::uint32_t left, std::uint32_t right) {
    const entry& one = entries_[left];
    const entry& other = entries_[right];
    if (one.beginning != other.beginning) return one.beginning < other.beginning;
    return text_of(one) < text_of(other);
  });
  std::vector<std::uint32_t> places(order.size());
  for (std::size_t i = 0; i < order.size(); ++i) places[order[i]] = static_cast<std::uint32_t>(i);
  return places;
}

}  // namespace command
