// The characters of a text field, out of the words of a record.
#pragma once

#include <cstring>
#include <string_view>
#include <vector>

#include "engine/field.h"
#include "stream/column_builder.h"

namespace ovf {

class text_words {
 public:
  text_words(const field& from, const record_layout& layout, bool trailing_blanks)
      : atoms_(from.atoms), trailing_blanks_(trailing_blanks) {
    const std::size_t word_bytes =
        layout.is_double ? double_precision::word_bytes : single_precision::word_bytes;
    for (const atom& each : atoms_) {
      words_.push_back({each.position == 0 ? each.default_word.data() : nullptr,
                        each.position == 0 ? 0 : (each.position - 1) * word_bytes});
    }
  }
  text_words(const text_words&) = delete;
  text_words& operator=(const text_words&) = delete;

  /// Characters at most, in the ANSI code page.
  std::size_t width() const noexcept { return words_.size() * format::text_word_chars; }

  /// Copies the characters to `out`, which has room for `width()`: each word up to its first NUL.
  std::string_view read(const std::byte* record, char* out) const noexcept {
    char* end = out;
    for (const word& each : words_) {
      const std::byte* place = each.fixed != nullptr ? each.fixed : record + each.offset;
      std::memcpy(end, place, format::text_word_chars);
      end += length_of(place);
    }
    std::string_view text(out, static_cast<std::size_t>(end - out));
    return trailing_blanks_ ? text : without_blanks(text);
  }

  static std::string_view without_blanks(std::string_view text) noexcept {
    std::size_t length = text.size();
    while (length > 0 && text[length - 1] == ' ') --length;
    return text.substr(0, length);
  }

 private:
  struct word {
    const std::byte* fixed;  ///< of an implicit field
    std::size_t offset;
  };

  static std::size_t length_of(const std::byte* word) noexcept {
    std::uint32_t bits;
    std::memcpy(&bits, word, sizeof bits);
    constexpr std::uint32_t low = 0x01010101;
    constexpr std::uint32_t high = 0x80808080;
    const bool has_nul = ((bits - low) & ~bits & high) != 0;
    return has_nul ? load_text(word).size() : format::text_word_chars;
  }

  std::vector<atom> atoms_;  ///< whose defaults the words of implicit fields are
  std::vector<word> words_;
  bool trailing_blanks_;
};

}  // namespace ovf
