// What reading a table must give. An empty optional: nothing is expected of that value.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace ovtest {

/// A text with its trailing blanks.
struct text_cell {
  std::string utf8;
};

/// A text field whose value is entirely empty.
struct empty_cell {};

/// A number; a NaN stands for any NaN unless `bits` (of the table's own word) is given.
struct number_cell {
  std::optional<float> as_float;
  std::optional<double> as_double;
  std::optional<std::uint64_t> bits;
  std::optional<std::string> as_text;
};

using expected_cell = std::variant<text_cell, empty_cell, number_cell>;

enum class column_type { single_number = 1, double_number = 2, text = 3 };

struct expected_field {
  std::string name;
  column_type type = column_type::single_number;
  int width_chars = 4;
  bool implicit = false;
  std::variant<std::monostate, double, std::string> default_value;
};

struct expected_header {
  std::string first_name;
  std::string second_name;
  std::string description;  ///< 64 characters
  std::string owner;
  std::optional<std::string> schema_description;
};

struct expected_facts {
  int word_bytes = 4;
  int byte_order = 0;
  int atoms = 0;
  int header_pages = 1;
  int record_words = 0;
  int records_per_page = 0;
  long long pages = 0;
  int records_in_last_page = 0;
};

/// Smallest and largest value of a column.
using column_range = std::optional<std::pair<double, double>>;

struct expected_reading {
  std::string file;
  std::optional<expected_facts> facts;
  std::optional<expected_header> header;
  std::optional<long> field_count;
  std::optional<long> row_count;
  std::optional<bool> is_linked;
  std::optional<std::vector<expected_field>> fields;
  std::map<long, std::vector<expected_cell>> rows;  ///< by row number
  std::map<long, std::string> row_failures;         ///< message of the move to that row
  std::map<std::string, long> index_of;
  std::vector<std::string> records;  ///< hexadecimal, row 1 first
  std::optional<long> type_hint;
  std::optional<std::vector<column_range>> ranges;
  bool ranges_fail = false;  ///< a table without rows has none
  std::map<std::string, std::string> signatures;
};

}  // namespace ovtest
