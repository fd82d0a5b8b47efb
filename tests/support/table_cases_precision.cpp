// The two precisions, the four byte orders, and numbers that are not plain.
#include <limits>

#include "support/table_case_parts.h"

namespace ovtest {
namespace {

/// BHID (8 characters), FROM, AU stored; CUTOFF and LAB implicit.
std::vector<atom> assay_atoms() {
  std::vector<atom> atoms;
  add_text_atoms(atoms, "BHID", 2, 1);
  atoms.push_back(number_atom("FROM", 3));
  atoms.push_back(number_atom("AU", 4, absent));
  atoms.push_back(number_atom("CUTOFF", 0, 2.5));
  add_text_atoms(atoms, "LAB", 1, 0, "ALS");
  return atoms;
}

void put_assay(bytes& file, std::size_t record, std::string_view hole, double from, double grade,
               word_format format) {
  put_text(file, record_word(1, record, 4, 1), 2, hole, format);
  put_number(file, record_word(1, record, 4, 3), from, format);
  put_number(file, record_word(1, record, 4, 4), grade, format);
}

void add_assays(bytes& file, word_format format) {
  add_page(file, format);
  put_assay(file, 0, "BH-1", 0.5, 0.1, format);
  put_assay(file, 1, "BH-22", 12.25, absent, format);
  put_assay(file, 2, "BH-333-B", 123456.75, -0.0, format);
}

header_words assay_header() {
  header_words words;
  words.names = "ASSAYS  SECOND  ";
  words.description = "three assays";
  words.owner = "GEOLOGY ";
  words.pages = 2;
  words.records_in_last_page = 3;
  return words;
}

expected_header assay_header_reading() {
  return {"ASSAYS  ", "SECOND  ", "three assays" + std::string(52, ' '), "GEOLOGY ", "three assays"};
}

/// `cutoff` is the pattern of the implicit number as the file holds it, read without rearranging.
table_case single_assays(int order, std::uint32_t cutoff) {
  const word_format format{4, order};
  table_case made = start_case("single_order_" + std::to_string(order), assay_header(), assay_atoms(), format,
                               {4, order, 6, 1, 4, 127, 2, 3});
  add_assays(made.file, format);
  made.expected.header = assay_header_reading();
  const float held = std::bit_cast<float>(cutoff);
  // Every pattern but the native one is so small that seven digits of it are 0.
  const number_cell implicit = single_number(held, order == 0 ? 2.5 : 0.0);
  const text_cell lab{"ALS "};
  return with_rows(
      made,
      {text_field("BHID", 8, "        "), single_field("FROM"), single_field("AU", double{-1e30F}),
       single_field("CUTOFF", 2.5, true), text_field("LAB", 4, "ALS ", true)},
      {{text_cell{"BH-1    "}, single_number(0.5F, 0.5, "0.5"), single_number(0.1F, 0.1, "0.1"), implicit,
        lab},
       {text_cell{"BH-22   "}, single_number(12.25F, 12.25, "12.25"), single_number(-1e30F, double{-1e30F}),
        implicit, lab},
       {text_cell{"BH-333-B"}, single_number(123456.75F, 123456.75), single_number(-0.0F, 0.0, "0"), implicit,
        lab}});
}

table_case double_assays() {
  table_case made =
      start_case("double", assay_header(), assay_atoms(), double_words, {8, 0, 6, 1, 4, 127, 2, 3});
  add_assays(made.file, double_words);
  made.expected.header = assay_header_reading();
  const number_cell implicit = double_number(2.5);
  const text_cell lab{"ALS "};
  return with_rows(made,
                   {text_field("BHID", 8, "        "), double_field("FROM"), double_field("AU", -1e30),
                    double_field("CUTOFF", 2.5, true), text_field("LAB", 4, "ALS ", true)},
                   {{text_cell{"BH-1    "}, double_number(0.5), double_number(0.1), implicit, lab},
                    {text_cell{"BH-22   "}, double_number(12.25), double_number(-1e30), implicit, lab},
                    {text_cell{"BH-333-B"}, double_number(123456.75), double_number(-0.0), implicit, lab}});
}

/// A file without a precision mark is single precision when word 25 is a small count.
table_case without_mark() {
  std::vector<atom> atoms;
  for (int i = 1; i <= 12; ++i) atoms.push_back(number_atom("F" + std::to_string(i), i));
  header_words words;
  words.mark = 13;
  words.pages = 2;
  words.records_in_last_page = 1;
  table_case made = start_case("no_mark", words, atoms, single_words, {4, 0, 12, 1, 12, 42, 2, 1});
  add_page(made.file, single_words);
  std::vector<expected_field> fields;
  std::vector<expected_cell> row;
  for (std::size_t i = 1; i <= 12; ++i) {
    put_number(made.file, record_word(1, 0, 12, i), static_cast<double>(i), single_words);
    fields.push_back(single_field("F" + std::to_string(i)));
    row.emplace_back(single_number(static_cast<float>(i), static_cast<double>(i), std::to_string(i)));
  }
  return with_rows(made, fields, {row});
}

header_words one_number_header(int rows) {
  header_words words;
  words.pages = 2;
  words.records_in_last_page = rows;
  return words;
}

table_case double_patterns() {
  constexpr std::uint64_t patterns[] = {0x7FF8000000012345, 0x7FF0000000000001, 0x7FF0000000000000,
                                        0xFFF0000000000000, 0x0000000000000001, 0x8000000000000000};
  table_case made = start_case("double_patterns", one_number_header(6), {number_atom("V", 1)}, double_words,
                               {8, 0, 1, 1, 1, 508, 2, 6});
  add_page(made.file, double_words);
  std::vector<std::vector<expected_cell>> rows;
  for (std::size_t i = 0; i < std::size(patterns); ++i) {
    put_bits(made.file, record_word(1, i, 1, 1), patterns[i], double_words);
    number_cell cell = double_number(std::bit_cast<double>(patterns[i]));
    cell.bits = patterns[i];
    rows.push_back({cell});
  }
  return with_rows(made, {double_field("V")}, rows);
}

table_case single_patterns(int order) {
  constexpr std::uint32_t patterns[] = {0x7FC12345, 0x7F800001, 0x7F800000,
                                        0xFF800000, 0x00000001, 0x80000000};
  const double infinite = std::numeric_limits<double>::infinity();
  const double as_double[] = {std::numeric_limits<double>::quiet_NaN(),
                              std::numeric_limits<double>::quiet_NaN(),
                              infinite,
                              -infinite,
                              0.0,
                              0.0};
  const word_format format{4, order};
  table_case made = start_case("single_patterns_order_" + std::to_string(order), one_number_header(6),
                               {number_atom("V", 1)}, format, {4, order, 1, 1, 1, 508, 2, 6});
  add_page(made.file, format);
  std::vector<std::vector<expected_cell>> rows;
  for (std::size_t i = 0; i < std::size(patterns); ++i) {
    put_bits(made.file, record_word(1, i, 1, 1), patterns[i], format);
    number_cell cell = single_number(std::bit_cast<float>(patterns[i]), as_double[i]);
    cell.bits = patterns[i];
    rows.push_back({cell});
  }
  return with_rows(made, {single_field("V")}, rows);
}

}  // namespace

void add_precision_cases(std::vector<table_case>& cases) {
  cases.push_back(single_assays(0, 0x40200000));
  cases.push_back(single_assays(256, 0x20400000));
  cases.push_back(single_assays(1024, 0x00004020));
  cases.push_back(single_assays(1280, 0x00002040));
  cases.push_back(double_assays());
  cases.push_back(without_mark());
  cases.push_back(double_patterns());
  cases.push_back(single_patterns(0));
  cases.push_back(single_patterns(1280));
}

}  // namespace ovtest
