#include "table_limits.h"

#include "decimal.h"
#include "encoding.h"
#include "failure.h"
#include "ovfile/smart.h"
#include "words.h"

namespace command {
namespace {

constexpr std::size_t longest_description = 64;
constexpr std::size_t single_words = 64;
constexpr std::size_t double_words = 256;
constexpr std::size_t short_name = 8;

}  // namespace

bool has_room(std::size_t words, bool single) noexcept {
  return words <= (single ? single_words : double_words);
}

void check_columns(const std::string& file, std::size_t columns, bool single) {
  if (has_room(columns, single)) return;
  throw failure(fmt::format("{}: {} columns are too many; a {}-precision table holds at most {}", file,
                            columns, single ? "single" : "double", single ? single_words : double_words));
}

void check_words(const std::string& file, std::size_t words, bool single) {
  const std::size_t limit = single ? single_words : double_words;
  if (has_room(words, single)) return;
  throw failure(
      fmt::format("{}: the table would need {} words; a {}-precision one holds {} (a number takes one, a "
                  "text one for every 4 characters)",
                  file, words, single ? "single" : "double", limit));
}

void check_description(const std::string& where, const std::string& description) {
  const utf8_facts facts = look_at_utf8(description);
  if (description.starts_with("LINK")) {
    throw failure(where +
                  ": a description that begins with LINK would make the table a link to another file");
  }
  if (facts.characters > longest_description) {
    throw failure(fmt::format("{}: the text has {} characters; a table keeps {}", where, facts.characters,
                              longest_description));
  }
  if (!facts.valid || facts.foreign != 0) {
    throw failure(where + ": the text has a character that is not in Windows-1252");
  }
}

std::size_t longest_name(bool single) {
  const auto schema = ovfile::create_schema();
  ovfile::check(schema->put_DoublePrecisionFlag(single ? 0 : 1));
  LONG longest = 0;
  const bool known = schema->get_FieldNameMaxLength(&longest) == S_OK && longest > 0;
  return known ? static_cast<std::size_t>(longest) : short_name;
}

std::size_t read_text_width(const std::string& words) noexcept {
  const number_cell width = read_number(words);
  if (!width.is_number || width.value < 1 || width.value > static_cast<double>(widest_text)) return 0;
  const auto count = static_cast<std::size_t>(width.value);
  return static_cast<double>(count) == width.value ? count : 0;
}

}  // namespace command
