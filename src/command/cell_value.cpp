#include "cell_value.h"

#include <cmath>

#include "absent.h"
#include "column_types.h"
#include "decimal.h"
#include "encoding.h"
#include "failure.h"
#include "words.h"

namespace command {
namespace {

void plan_number(cell_value& value, const std::string& place, const std::string& words, bool single) {
  if (is_word_for_absent(words) || without_blanks(words).empty()) {
    value.number = absent_number;
    value.narrow = static_cast<float>(absent_number);
    return;
  }
  const number_cell number = read_number(words);
  if (!number.is_number)
    throw failure(fmt::format("{}: {} {}; the column holds numbers", place, words, number_problem(words)));
  value.number = number.value;
  if (!single) return;
  value.narrow = read_float(words, value.kept);
  if (std::isinf(value.narrow)) {
    throw failure(fmt::format("{}: {} is beyond the range of single precision", place, words));
  }
}

void plan_text(cell_value& value, const std::string& place, const std::string& words) {
  const std::string_view text = stored_text(words);
  const utf8_facts facts = look_at_utf8(text);
  const field_view& field = *value.field;
  if (!facts.valid || facts.foreign != 0) {
    throw failure(place + ": the value has a character that is not in Windows-1252");
  }
  if (facts.characters > static_cast<std::size_t>(field.width)) {
    throw failure(fmt::format("{}: the text has {} characters, more than the {} of the column", place,
                              facts.characters, field.width));
  }
  value.text = ovfile::text(text);
}

}  // namespace

bool is_word_for_absent(const std::string& words) noexcept { return words == "-" || words == "absent"; }

cell_value plan_value(const std::string& file, const field_view& field, const std::string& words,
                      bool single) {
  const std::string place = file + ", column " + field.name;
  cell_value value;
  value.field = &field;
  if (field.is_text) {
    plan_text(value, place, words);
  } else {
    plan_number(value, place, words, single);
  }
  return value;
}

}  // namespace command
