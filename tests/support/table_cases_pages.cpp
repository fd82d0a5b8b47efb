// Pages: none, full ones, a short one, a header of several, the edge of the 100-page segment.
#include "support/table_case_parts.h"

namespace ovtest {
namespace {

header_words counts(int pages, int records_in_last_page) {
  header_words words;
  words.pages = pages;
  words.records_in_last_page = records_in_last_page;
  return words;
}

std::string name_of(word_format format, const std::string& rest) {
  return (format.size == 4 ? "single_" : "double_") + rest;
}

expected_field number_field(std::string name, word_format format) {
  return format.size == 4 ? single_field(std::move(name)) : double_field(std::move(name));
}

/// Whole numbers below 100000, which both precisions show as they are.
number_cell whole(std::size_t value, word_format format) {
  const auto number = static_cast<double>(value);
  return format.size == 4 ? single_number(static_cast<float>(value), number) : double_number(number);
}

/// 50 words a record, 10 records a page: rows 1 … `rows`, word w of row r is 1000 r + w.
table_case wide_rows(std::string name, std::size_t rows, word_format format) {
  constexpr std::size_t columns = 50;
  constexpr std::size_t per_page = 508 / columns;
  std::vector<atom> atoms;
  std::vector<expected_field> fields;
  for (std::size_t c = 1; c <= columns; ++c) {
    atoms.push_back(number_atom("C" + std::to_string(c), static_cast<int>(c)));
    fields.push_back(number_field("C" + std::to_string(c), format));
  }
  const std::size_t record_pages = (rows + per_page - 1) / per_page;
  const std::size_t last = rows == 0 ? 0 : rows - (record_pages - 1) * per_page;
  const int pages = static_cast<int>(1 + record_pages);
  table_case made =
      start_case(name_of(format, name), counts(pages, static_cast<int>(last)), atoms, format,
                 {static_cast<int>(format.size), 0, 50, 1, 50, 10, pages, static_cast<int>(last)});
  for (std::size_t p = 0; p < record_pages; ++p) add_page(made.file, format);
  std::vector<std::vector<expected_cell>> cells(rows);
  for (std::size_t r = 0; r < rows; ++r) {
    for (std::size_t c = 1; c <= columns; ++c) {
      const std::size_t value = 1000 * (r + 1) + c;
      put_number(made.file, record_word(1 + r / per_page, r % per_page, columns, c),
                 static_cast<double>(value), format);
      cells[r].emplace_back(whole(value, format));
    }
  }
  return with_rows(made, fields, cells);
}

/// The file ends with its last record instead of its last page.
table_case short_last_page(word_format format) {
  table_case made = wide_rows("short_last_page", 13, format);
  made.file.resize((2 * words_per_page + 3 * 50) * format.size);
  return made;
}

table_case no_fields(word_format format) {
  const int size = static_cast<int>(format.size);
  return with_rows(
      start_case(name_of(format, "no_fields"), counts(1, 0), {}, format, {size, 0, 0, 1, 0, 0, 1, 0}), {},
      {});
}

/// 69 atoms are one more than the first header page holds.
table_case two_header_pages() {
  constexpr std::size_t columns = 69;
  std::vector<atom> atoms;
  std::vector<expected_field> fields;
  for (std::size_t c = 1; c <= columns; ++c) {
    atoms.push_back(number_atom("C" + std::to_string(c), static_cast<int>(c), static_cast<double>(c) / 4));
    fields.push_back(double_field("C" + std::to_string(c), static_cast<double>(c) / 4));
  }
  table_case made =
      start_case("double_two_header_pages", counts(4, 1), atoms, double_words, {8, 0, 69, 2, 69, 7, 4, 1});
  add_page(made.file, double_words);
  add_page(made.file, double_words);
  std::vector<std::vector<expected_cell>> rows(8);
  for (std::size_t r = 0; r < rows.size(); ++r) {
    for (std::size_t c = 1; c <= columns; ++c) {
      put_number(made.file, record_word(2 + r / 7, r % 7, columns, c), static_cast<double>(100 * r + c),
                 double_words);
      rows[r].emplace_back(double_number(static_cast<double>(100 * r + c)));
    }
  }
  return with_rows(made, fields, rows);
}

/// 4 header pages and 204 record pages of two records: three segments of 100 pages, the last a short one.
table_case segment_edges() {
  constexpr int text_words = 253;
  constexpr std::size_t record_pages = 204;
  std::vector<atom> atoms{number_atom("ROW", 1)};
  add_text_atoms(atoms, "LOG", text_words, 2);
  table_case made =
      start_case("double_segment_edges", counts(208, 2), atoms, double_words, {8, 0, 254, 4, 254, 2, 208, 2});
  for (std::size_t p = 0; p < record_pages; ++p) add_page(made.file, double_words);
  std::vector<std::vector<expected_cell>> rows(2 * record_pages);
  for (std::size_t r = 0; r < rows.size(); ++r) {
    std::string log = "row " + std::to_string(r + 1) + " of the log";
    log.resize(4 * text_words, ' ');
    put_number(made.file, record_word(4 + r / 2, r % 2, 254, 1), static_cast<double>(r + 1), double_words);
    put_text(made.file, record_word(4 + r / 2, r % 2, 254, 2), text_words, log, double_words);
    rows[r] = {double_number(static_cast<double>(r + 1)), text_cell{log}};
  }
  return with_rows(
      made, {double_field("ROW"), text_field("LOG", 4 * text_words, std::string(4 * text_words, ' '))}, rows);
}

/// A page count of the header pages alone, yet records: they are on the page behind.
table_case uncounted_page(word_format format) {
  const int size = static_cast<int>(format.size);
  table_case made = start_case(name_of(format, "uncounted_page"), counts(1, 2), {number_atom("V", 1)}, format,
                               {size, 0, 1, 1, 1, 508, 1, 2});
  add_page(made.file, format);
  put_number(made.file, record_word(1, 0, 1, 1), 5, format);
  put_number(made.file, record_word(1, 1, 1, 1), 6, format);
  return with_rows(made, {number_field("V", format)}, {{whole(5, format)}, {whole(6, format)}});
}

/// Bytes behind the last counted page are nobody's.
table_case tail_behind(word_format format) {
  table_case made = wide_rows("tail_behind", 3, format);
  made.file.resize(made.file.size() + 777, 0xEE);
  return made;
}

}  // namespace

void add_page_cases(std::vector<table_case>& cases) {
  for (const word_format format : {single_words, double_words}) {
    cases.push_back(no_fields(format));
    cases.push_back(wide_rows("no_rows", 0, format));
    cases.push_back(wide_rows("page_less_one", 9, format));
    cases.push_back(wide_rows("page_full", 10, format));
    cases.push_back(wide_rows("page_and_one", 11, format));
    cases.push_back(wide_rows("three_pages", 25, format));
    cases.push_back(short_last_page(format));
    cases.push_back(uncounted_page(format));
    cases.push_back(tail_behind(format));
  }
  cases.push_back(two_header_pages());
  cases.push_back(segment_edges());
}

}  // namespace ovtest
