// Reads a CSV row by row (RFC 4180): cells apart by commas, quoted where they hold a comma, a quote
// (doubled) or a line end; rows end with LF, CR LF or CR. A UTF-8 byte order mark is dropped. Memory is
// one buffer, which grows to the longest row and no further than `longest_row`.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "csv_input.h"

namespace command {

class csv_reader {
 public:
  /// More than this is a missing quote, not a row.
  static constexpr std::size_t longest_row = 16 << 20;

  /// `name` stands in messages. The buffer has at least 3 bytes at first.
  csv_reader(byte_source& source, std::string name, std::size_t buffer = 256 << 10);

  /// Goes to the next row; false at the end. Throws `failure` with file, line and column for what is no
  /// CSV.
  bool next();

  /// The row's cells as bytes, unquoted. They live until the next call of `next`.
  const std::vector<std::string_view>& cells() const noexcept { return cells_; }
  /// The line, from 1, in which the row begins.
  std::uint64_t line() const noexcept { return line_; }
  /// Whether the row is a line without any character.
  bool is_blank() const noexcept { return blank_; }
  /// Whether the row is a line of blanks and tabs, or of no character.
  bool has_blanks_alone() const noexcept {
    return bare_ && cells_.size() == 1 && cells_.front().find_first_not_of(" \t") == std::string_view::npos;
  }
  /// Bytes of all rows so far.
  std::uint64_t bytes_read() const noexcept { return consumed_; }

 private:
  struct raw_cell {
    std::size_t begin;
    std::size_t end;
    bool doubled_quotes;
  };

  void skip_mark();
  void fill();
  bool scan_row();
  /// Each returns the place after the cell, or `unfinished` when the buffer ends within it.
  std::size_t scan_plain(std::size_t at);
  std::size_t scan_quoted(std::size_t at);
  void publish_cells();
  [[noreturn]] void fail(std::size_t cell, const std::string& what) const;

  byte_source& source_;
  std::string name_;
  std::vector<char> buffer_;  ///< one byte longer than what is used: the scan stops there
  std::size_t begin_ = 0;     ///< where the row begins
  std::size_t end_ = 0;       ///< where the bytes read so far end
  bool at_end_ = false;       ///< the source has no more
  std::vector<raw_cell> raw_cells_;
  std::vector<std::string_view> cells_;
  std::uint64_t line_ = 0;
  std::uint64_t next_line_ = 1;
  std::uint64_t lines_in_cells_ = 0;
  std::uint64_t consumed_ = 0;
  bool blank_ = false;
  bool bare_ = false;  ///< the first cell has no quotes
};

/// "NAME, line N, column K": how messages tell a place; columns count from 1.
std::string csv_place(const std::string& name, std::uint64_t line, std::size_t column);

}  // namespace command
