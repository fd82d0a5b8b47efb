// The different texts of a column, each kept once.
#pragma once

#include <cstdint>
#include <vector>

#include "ovfile/smart.h"

namespace command {

/// Up to 2^32 - 1 texts.
class distinct_texts {
 public:
  /// The text's number: the first one has 0, the next one that is another 1, and so on.
  std::uint32_t number_of(ovfile::wide_view text);
  /// By number: which place the text has, from 0, when all are compared character by character; one that
  /// another begins with goes before it.
  std::vector<std::uint32_t> places() const;

 private:
  struct entry {
    std::uint64_t beginning;  ///< the first four characters, so packed that they compare like the text
    std::size_t at;
    std::size_t length;
  };

  ovfile::wide_view text_of(const entry& kept) const noexcept {
    return {characters_.data() + kept.at, kept.length};
  }
  std::uint32_t add(ovfile::wide_view text);
  void grow();
  /// Where the text stands among the slots, or the empty one where it would.
  std::size_t slot_of(ovfile::wide_view text) const;

  std::vector<OLECHAR> characters_;  ///< of all texts, one behind the other
  std::vector<entry> entries_;
  std::vector<std::uint32_t>
      slots_;               ///< a number plus 1, 0 is empty; a power of 2 of them, at most half full
  std::uint32_t last_ = 0;  ///< a text is often that of the row before
};

}  // namespace command
