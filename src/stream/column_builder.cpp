#include "stream/column_builder.h"

namespace ovf {

type_description type_of(const field& from, const record_layout& layout, const value_choices& choices) {
  type_description type;
  type.nullable = choices.absent_as_null;
  if (from.kind == field_kind::numeric) {
    type.format = layout.is_double || choices.widened ? "g" : "f";
  } else if (choices.text_dictionaries) {
    type.format = "i";
    type_description texts;
    texts.format = "u";
    type.dictionary = std::make_shared<const type_description>(std::move(texts));
  } else {
    type.format = "u";
  }
  return type;
}

std::unique_ptr<column_builder> make_builder(const field& from, const record_layout& layout,
                                             const value_choices& choices, const ansi_page& page) {
  if (from.kind == field_kind::numeric) return make_number_builder(from, layout, choices);
  if (choices.text_dictionaries) return make_dictionary_builder(from, layout, choices, page);
  return make_text_builder(from, layout, choices, page);
}

}  // namespace ovf
