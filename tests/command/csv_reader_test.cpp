#include "command/csv_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "command/failure.h"

namespace {

using rows = std::vector<std::vector<std::string>>;

/// Gives a text, never more than 5 bytes at a time.
class text_source final : public command::byte_source {
 public:
  explicit text_source(std::string text) : text_(std::move(text)) {}
  std::size_t read(char* bytes, std::size_t count) override {
    const std::size_t done = std::min({count, std::size_t{5}, text_.size() - at_});
    std::memcpy(bytes, text_.data() + at_, done);
    at_ += done;
    return done;
  }

 private:
  std::string text_;
  std::size_t at_ = 0;
};

rows read_all(const std::string& text, std::size_t buffer) {
  text_source source(text);
  command::csv_reader reader(source, "a.csv", buffer);
  rows all;
  while (reader.next()) all.emplace_back(reader.cells().begin(), reader.cells().end());
  return all;
}

/// Buffers of many sizes: where one ends must not matter.
constexpr std::size_t buffers[] = {3, 4, 5, 6, 7, 8, 9, 11, 13, 1000};

void expect_rows(const std::string& text, const rows& expected) {
  for (const std::size_t buffer : buffers) {
    EXPECT_EQ(read_all(text, buffer), expected) << "with a buffer of " << buffer;
  }
}

void expect_failure(const std::string& text, const std::string& message) {
  for (const std::size_t buffer : buffers) {
    try {
      read_all(text, buffer);
      ADD_FAILURE() << "no failure with a buffer of " << buffer;
    } catch (const command::failure& failure) {
      EXPECT_EQ(failure.what(), message) << "with a buffer of " << buffer;
    }
  }
}

TEST(csv_reader, an_empty_file_has_no_rows) { expect_rows("", {}); }

TEST(csv_reader, cells_are_apart_by_commas) { expect_rows("a,b,c\n", {{"a", "b", "c"}}); }

TEST(csv_reader, the_last_line_needs_no_end) { expect_rows("a,b\n1,2", {{"a", "b"}, {"1", "2"}}); }

TEST(csv_reader, an_empty_last_cell_counts) { expect_rows("a,\n,\n1,", {{"a", ""}, {"", ""}, {"1", ""}}); }

TEST(csv_reader, lines_end_with_lf_crlf_or_cr) {
  expect_rows("a\nb\r\nc\rd", {{"a"}, {"b"}, {"c"}, {"d"}});
  expect_rows("a,b\r\r\n1,2\r", {{"a", "b"}, {""}, {"1", "2"}});
}

TEST(csv_reader, quoted_cells_hold_commas_quotes_and_line_ends) {
  expect_rows("\"a,b\",\"say \"\"hi\"\"\",\"x\ny\r\nz\"\n1,\"\",\"\"\"\"\n",
              {{"a,b", "say \"hi\"", "x\ny\r\nz"}, {"1", "", "\""}});
}

TEST(csv_reader, doubled_quotes_come_in_pairs) {
  expect_rows("\"\"\"\"\"\",\"\"\"\"\"\"\"\"\n", {{"\"\"", "\"\"\""}});
}

TEST(csv_reader, a_quote_inside_a_cell_is_a_character) {
  expect_rows("5\" pipe,a\"b\n", {{"5\" pipe", "a\"b"}});
}

TEST(csv_reader, a_byte_order_mark_is_dropped) {
  expect_rows("\xEF\xBB\xBFnr,b\n", {{"nr", "b"}});
  expect_rows("\xEF\xBB\xBF\"a,b\"\n", {{"a,b"}});
  expect_rows("\xEF\xBB\xBF", {});
}

TEST(csv_reader, bytes_are_left_as_they_are) {
  expect_rows(std::string("\xE9\xFF,\0x\n", 6), {{"\xE9\xFF", std::string("\0x", 2)}});
}

TEST(csv_reader, line_numbers_count_the_lines_in_cells) {
  text_source source("h\n\"a\nb\r\nc\rd\"\nnext\r\n\nlast");
  command::csv_reader reader(source, "a.csv");
  std::vector<std::uint64_t> lines;
  while (reader.next()) lines.push_back(reader.line());
  EXPECT_EQ(lines, (std::vector<std::uint64_t>{1, 2, 6, 7, 8}));
}

TEST(csv_reader, only_a_line_without_characters_is_blank) {
  text_source source("a\n\n\"\"\n \n");
  command::csv_reader reader(source, "a.csv");
  std::vector<bool> blank;
  while (reader.next()) blank.push_back(reader.is_blank());
  EXPECT_EQ(blank, (std::vector<bool>{false, true, false, false}));
}

TEST(csv_reader, a_line_of_blanks_has_neither_quotes_nor_a_second_cell) {
  text_source source("a\n\n\"\"\n \t\n\" \"\n ,\n");
  command::csv_reader reader(source, "a.csv");
  std::vector<bool> found;
  while (reader.next()) found.push_back(reader.has_blanks_alone());
  EXPECT_EQ(found, (std::vector<bool>{false, true, false, true, false, false}));
}

TEST(csv_reader, rows_longer_than_the_buffer_are_whole) {
  const std::string text(10000, 'x');
  expect_rows("a,\"" + text + "\"\n" + text + ",b\n", {{"a", text}, {text, "b"}});
}

TEST(csv_reader, counts_every_byte_behind_the_mark) {
  text_source source(
      "\xEF\xBB\xBF"
      "a,b\r\n1,\"2\n\"\r\n3,4");
  command::csv_reader reader(source, "a.csv");
  while (reader.next()) {
  }
  EXPECT_EQ(reader.bytes_read(), 16u);
}

TEST(csv_reader, a_quote_that_is_not_closed_is_named_by_its_place) {
  expect_failure("a,b\n1,2\n3,\"4\n5,6\n",
                 "a.csv, line 3, column 2: the quote that opens here is not closed");
}

TEST(csv_reader, text_behind_a_closing_quote_is_refused) {
  expect_failure("a,b\n\"1\" ,2\n", "a.csv, line 2, column 1: text follows the closing quote");
}

TEST(csv_reader, utf16_is_refused_by_its_name) {
  expect_failure(std::string("\xFF\xFE"
                             "a\0,\0",
                             6),
                 "a.csv, line 1, column 1: the file is UTF-16; save it as UTF-8");
  expect_failure(std::string("\xFE\xFF\0a\0,", 6),
                 "a.csv, line 1, column 1: the file is UTF-16; save it as UTF-8");
}

/// Never ends, in bounded memory.
class endless_source final : public command::byte_source {
 public:
  std::size_t read(char* bytes, std::size_t count) override {
    std::memset(bytes, 'x', count);
    bytes[0] = first_;
    first_ = 'x';
    given_ += count;
    return count;
  }
  std::size_t given() const { return given_; }

 private:
  char first_ = '"';
  std::size_t given_ = 0;
};

TEST(csv_reader, a_row_that_does_not_end_stops_at_the_limit) {
  endless_source source;
  command::csv_reader reader(source, "a.csv");
  try {
    reader.next();
    ADD_FAILURE() << "no failure";
  } catch (const command::failure& failure) {
    EXPECT_STREQ(failure.what(), "a.csv, line 1, column 1: the row does not end; is a quote missing?");
  }
  EXPECT_LE(source.given(), 4 * command::csv_reader::longest_row);
}

}  // namespace
