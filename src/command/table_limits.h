// What a table can hold, in words that a user understands: the library's own refusals do not tell which
// limit it was.
#pragma once

#include <cstddef>
#include <string>

namespace command {

/// The characters of one word of text.
inline constexpr std::size_t word_characters = 4;
inline constexpr std::size_t widest_text = 1024;

constexpr std::size_t words_of_text(std::size_t characters) noexcept {
  return (characters + word_characters - 1) / word_characters;
}

/// Whether a table of this precision has room for so many words, implicit fields included.
bool has_room(std::size_t words, bool single) noexcept;

/// Throws `failure` when a table of this precision has no room for so many columns, however small, implicit
/// ones included; the message begins with `file`.
void check_columns(const std::string& file, std::size_t columns, bool single);

/// Throws `failure` when a table of this precision has no room for so many words, implicit fields
/// included; the message begins with `file`.
void check_words(const std::string& file, std::size_t words, bool single);

/// Throws `failure` when a table cannot keep the description (UTF-8) as it stands; messages begin with
/// `where`.
void check_description(const std::string& where, const std::string& description);

/// How long the library lets the names of fields be.
std::size_t longest_name(bool single);

/// A width of text as the user wrote it: a whole number from 1 to `widest_text`; 0 for anything else.
std::size_t read_text_width(const std::string& words) noexcept;

}  // namespace command
