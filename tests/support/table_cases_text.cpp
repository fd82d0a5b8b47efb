// Texts and names: NULs, empty values, code page, long names, names that come twice, odd order of words.
#include "support/table_case_parts.h"

namespace ovtest {
namespace {

header_words one_page(int rows) {
  header_words words;
  words.pages = 2;
  words.records_in_last_page = rows;
  return words;
}

/// Words of text are taken up to their first NUL; a value of NULs alone is empty.
table_case text_with_nul(word_format format) {
  std::vector<atom> atoms;
  add_text_atoms(atoms, "T", 2, 1, "default");
  const int size = static_cast<int>(format.size);
  table_case made = start_case(format.size == 4 ? "single_text_nul" : "double_text_nul", one_page(4), atoms,
                               format, {size, 0, 2, 1, 2, 254, 2, 4});
  add_page(made.file, format);
  using namespace std::string_view_literals;
  put_raw(made.file, record_word(1, 0, 2, 1), "AB\0CDEFG"sv, format);
  put_raw(made.file, record_word(1, 0, 2, 2), "DEFG\0xyz"sv, format);
  put_raw(made.file, record_word(1, 2, 2, 2), "tail    "sv, format);
  put_text(made.file, record_word(1, 3, 2, 1), 2, "", format);
  return with_rows(made, {text_field("T", 8, "default ")},
                   {{text_cell{"ABDEFG"}}, {empty_cell{}}, {text_cell{"tail"}}, {text_cell{"        "}}});
}

/// What a writer leaves in the second half of a long word is nobody's text.
table_case text_of_a_writer() {
  std::vector<atom> atoms;
  add_text_atoms(atoms, "T", 3, 1);
  table_case made =
      start_case("double_text_written", one_page(1), atoms, double_words, {8, 0, 3, 1, 3, 169, 2, 1});
  add_page(made.file, double_words);
  using namespace std::string_view_literals;
  put_raw(made.file, record_word(1, 0, 3, 1), "ABCD\0FGH"sv, double_words);
  put_raw(made.file, record_word(1, 0, 3, 2), "EFGH\0J  "sv, double_words);
  put_raw(made.file, record_word(1, 0, 3, 3), "IJ  \0   "sv, double_words);
  return with_rows(made, {text_field("T", 12, std::string(12, ' '))}, {{text_cell{"ABCDEFGHIJ  "}}});
}

/// Stored and implicit fields in turn, the stored words of the record in another order than the fields.
table_case implicit_mix(word_format format) {
  std::vector<atom> atoms;
  add_text_atoms(atoms, "SITE", 2, 0, "NORTH");
  atoms.push_back(number_atom("X", 4));
  atoms.push_back(number_atom("XINC", 0, 12.5));
  add_text_atoms(atoms, "ROCK", 2, 2);
  atoms.push_back(number_atom("Y", 1));
  const int size = static_cast<int>(format.size);
  table_case made = start_case(format.size == 4 ? "single_implicit_mix" : "double_implicit_mix", one_page(1),
                               atoms, format, {size, 0, 7, 1, 4, 127, 2, 1});
  add_page(made.file, format);
  put_number(made.file, record_word(1, 0, 4, 1), 7, format);
  put_text(made.file, record_word(1, 0, 4, 2), 2, "GRANIT", format);
  put_number(made.file, record_word(1, 0, 4, 4), 3.25, format);
  const bool is_double = format.size == 8;
  const auto number = [&](float value) {
    return is_double ? double_number(value) : single_number(value, value);
  };
  const auto field = [&](std::string name, double value, bool implicit) {
    return is_double ? double_field(std::move(name), value, implicit)
                     : single_field(std::move(name), value, implicit);
  };
  return with_rows(made,
                   {text_field("SITE", 8, "NORTH   ", true), field("X", 0, false), field("XINC", 12.5, true),
                    text_field("ROCK", 8, "        "), field("Y", 0, false)},
                   {{text_cell{"NORTH   "}, number(3.25F), number(12.5F), text_cell{"GRANIT  "}, number(7)}});
}

/// 8 characters fill the two words of a name, from 9 on it is a long one, 24 are the most.
table_case long_names() {
  std::vector<atom> atoms{number_atom("EIGHTLEN", 1), number_atom("NINECHARS", 2),
                          number_atom("ABCDEFGHIJKLMNOPQRSTUVWX", 3)};
  add_text_atoms(atoms, "ROCK_DESCRIPTION", 2, 4);
  table_case made =
      start_case("double_long_names", one_page(1), atoms, double_words, {8, 0, 5, 1, 5, 101, 2, 1});
  add_page(made.file, double_words);
  for (std::size_t i = 1; i <= 3; ++i) {
    put_number(made.file, record_word(1, 0, 5, i), static_cast<double>(i), double_words);
  }
  put_text(made.file, record_word(1, 0, 5, 4), 2, "SLATE", double_words);
  return with_rows(made,
                   {double_field("EIGHTLEN"), double_field("NINECHARS"),
                    double_field("ABCDEFGHIJKLMNOPQRSTUVWX"), text_field("ROCK_DESCRIPTION", 8, "        ")},
                   {{double_number(1), double_number(2), double_number(3), text_cell{"SLATE   "}}});
}

/// Each number is a field of its own, also beside one of the same name; text atoms run together.
table_case names_twice() {
  std::vector<atom> atoms{number_atom("AU", 1), number_atom("AU", 2)};
  add_text_atoms(atoms, "T", 1, 3);
  add_text_atoms(atoms, "T", 1, 4);
  table_case made =
      start_case("single_names_twice", one_page(1), atoms, single_words, {4, 0, 4, 1, 4, 127, 2, 1});
  add_page(made.file, single_words);
  put_number(made.file, record_word(1, 0, 4, 1), 1.5, single_words);
  put_number(made.file, record_word(1, 0, 4, 2), 2.5, single_words);
  put_text(made.file, record_word(1, 0, 4, 3), 2, "onetwo", single_words);
  return with_rows(made, {single_field("AU"), single_field("AU"), text_field("T", 8, "        ")},
                   {{single_number(1.5F, 1.5), single_number(2.5F, 2.5), text_cell{"onetwo  "}}});
}

/// Each word of the description ends at its first NUL; words 19 on are not part of what hosts see.
table_case description_with_nul() {
  header_words words = one_page(1);
  words.description = std::string("ABC\0DEFGH\0\0\0IJ\0K", 16) + std::string(44, ' ') + "LAST";
  table_case made = start_case("single_description_nul", words, {number_atom("V", 1, 3)}, single_words,
                               {4, 0, 1, 1, 1, 508, 2, 1});
  add_page(made.file, single_words);
  put_number(made.file, record_word(1, 0, 1, 1), 9, single_words);
  made.expected.header = expected_header{"        ", "        ", words.description, "SYSTEM  ", "ABCDEFGHIJ"};
  return with_rows(made, {single_field("V", 3)}, {{single_number(9, 9, "9")}});
}

}  // namespace

void add_text_cases(std::vector<table_case>& cases) {
  cases.push_back(text_with_nul(single_words));
  cases.push_back(text_with_nul(double_words));
  cases.push_back(text_of_a_writer());
  cases.push_back(implicit_mix(single_words));
  cases.push_back(implicit_mix(double_words));
  cases.push_back(long_names());
  cases.push_back(names_twice());
  cases.push_back(description_with_nul());
}

}  // namespace ovtest
