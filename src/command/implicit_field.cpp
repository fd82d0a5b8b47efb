#include "implicit_field.h"

#include <cmath>

#include "absent.h"
#include "cell_value.h"
#include "decimal.h"
#include "encoding.h"
#include "failure.h"
#include "table_limits.h"
#include "words.h"

namespace command {
namespace {

void check_number(const std::string& who, const std::string& value, bool single) {
  bool kept = true;
  if (single && std::isinf(read_float(value, kept))) {
    throw failure(fmt::format("{}: {} is beyond the range of single precision", who, value));
  }
}

/// The number of characters.
std::size_t check_text(const std::string& who, const std::string& value) {
  const utf8_facts facts = look_at_utf8(value);
  if (!facts.valid || facts.foreign != 0) {
    throw failure(who + ": the value has a character that is not in Windows-1252");
  }
  return facts.characters;
}

std::size_t width_for(const std::string& who, std::size_t characters,
                      const std::optional<std::size_t>& text_width) {
  if (text_width && characters > *text_width) {
    throw failure(fmt::format("{}: the text has {} characters, more than the {} of --text", who, characters,
                              *text_width));
  }
  return words_of_text(text_width.value_or(characters)) * word_characters;
}

}  // namespace

implicit_field parse_implicit(const std::string& what, const std::string& argument, const char* form) {
  const std::size_t equals = argument.find('=');
  if (equals == argument.npos || equals == 0) {
    throw wrong_usage(fmt::format("{}{}: expected {}", what, argument, form));
  }
  return {argument.substr(0, equals), argument.substr(equals + 1)};
}

planned_field plan_implicit(const std::string& what, const implicit_field& wanted, bool single,
                            std::optional<std::size_t> text_width) {
  const std::string who = what + wanted.name;
  const bool absent = without_blanks(wanted.value).empty() || is_word_for_absent(wanted.value);
  const number_cell number = read_number(wanted.value);
  planned_field field;
  field.name = wanted.name;
  field.is_text = text_width || !(number.is_number || absent);
  if (field.is_text) {
    field.width = width_for(who, check_text(who, wanted.value), text_width);
    field.text_default = wanted.value;
  } else if (number.is_number) {
    check_number(who, wanted.value, single);
    field.number_default = number.value;
  } else {
    field.number_default = absent_number;
  }
  return field;
}

}  // namespace command
