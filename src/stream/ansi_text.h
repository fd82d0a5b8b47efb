// Texts of the file and texts of a stream: the ANSI code page, as the platform's text functions have it,
// and UTF-8. Where every character of the page is one byte, tables stand in for the functions.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ovf {

class ansi_page {
 public:
  /// Asks the platform for the page.
  ansi_page();

  /// Bytes of UTF-8 that a byte of the page may become.
  static constexpr std::size_t growth = 3;

  /// Writes the text in UTF-8 at `out`, where there are `growth` bytes for each of its own, and answers how
  /// many it took.
  std::size_t to_utf8(std::string_view text, char* out) const;

  enum class outcome { done, not_utf8, not_in_page };
  /// Puts a UTF-8 text into `out` as the page has it.
  outcome from_utf8(std::string_view text, std::string& out) const;

 private:
  /// The bytes of a character, up to `growth` of them.
  struct character {
    std::array<char, growth> bytes{};
    std::uint8_t length = 0;
  };

  outcome from_wide_page(std::string_view text, std::string& out) const;

  bool has_tables_ = true;
  std::array<character, 256> characters_{};
  std::vector<std::pair<std::uint32_t, char>> bytes_;  ///< by character, of those beyond ASCII
};

/// Whether all bytes are ASCII, which every page has in the same places.
inline bool is_ascii(std::string_view text) noexcept {
  unsigned char all = 0;
  for (const char c : text) all = static_cast<unsigned char>(all | static_cast<unsigned char>(c));
  return all < 0x80;
}

}  // namespace ovf
