#include "csv_reader.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "failure.h"
#include "verify/table_header.h"
#include "words.h"

namespace command {
namespace {

constexpr std::size_t unfinished = static_cast<std::size_t>(-1);

/// The bytes that end a cell without quotes.
constexpr std::array<bool, 256> ends_cell = [] {
  std::array<bool, 256> table{};
  table[','] = table['\n'] = table['\r'] = true;
  return table;
}();

/// What a file is that begins like one of those that are taken for a CSV by mistake; null: none of them.
const char* other_kind(std::string_view start) noexcept {
  using namespace std::string_view_literals;
  static constexpr std::pair<std::string_view, const char*> known[] = {
      {"PK\x03\x04"sv, "a ZIP archive (as the files of spreadsheets are)"},
      {"PK\x05\x06"sv, "an empty ZIP archive"},
      {"\xD0\xCF\x11\xE0"sv, "an old file of a spreadsheet"},
      {"\x1F\x8B"sv, "compressed by gzip"},
      {"\xFD"
       "7zXZ\0"sv,
       "compressed by xz"},
      {"\x28\xB5\x2F\xFD"sv, "compressed by zstd"},
      {"7z\xBC\xAF"sv, "a 7z archive"},
      {"PAR1\x15"sv, "a Parquet file"},
      {"ARROW1\0"sv, "an Arrow file"},
      {"SQLite format 3\0"sv, "a database of SQLite"},
      {"%PDF-"sv, "a PDF"},
  };
  for (const auto& [begin, what] : known) {
    if (start.starts_with(begin)) return what;
  }
  constexpr std::size_t enough = 256;
  if (begins_as_table(start.substr(0, enough))) return "a table already";
  const bool is_bzip2 = start.starts_with("BZh") && start.size() >= 10 && start.substr(4, 6) == "1AY&SY";
  return is_bzip2 ? "compressed by bzip2" : nullptr;
}

/// Makes one quote of each two, in place; returns the new end.
char* halve_quotes(char* from, const char* end) {
  char* to = from;
  while (from != end) {
    const char c = *from++;
    *to++ = c;
    if (c == '"') ++from;
  }
  return to;
}

/// Line ends within a quoted cell; CR LF is one.
std::uint64_t count_lines(std::string_view text) {
  auto lines = static_cast<std::uint64_t>(std::count(text.begin(), text.end(), '\n'));
  for (std::size_t at = text.find('\r'); at != text.npos; at = text.find('\r', at + 1)) {
    if (at + 1 == text.size() || text[at + 1] != '\n') ++lines;
  }
  return lines;
}

}  // namespace

std::string csv_place(const std::string& name, std::uint64_t line, std::size_t column) {
  return name + ", line " + std::to_string(line) + ", column " + std::to_string(column);
}

csv_reader::csv_reader(byte_source& source, std::string name, std::size_t buffer)
    : source_(source), name_(std::move(name)), buffer_(buffer + 1) {
  skip_mark();
}

void csv_reader::skip_mark() {
  fill();
  const std::string_view start(buffer_.data(), std::min<std::size_t>(end_, 3));
  if (start == "\xEF\xBB\xBF") {
    begin_ = 3;
  } else if (start.starts_with("\xFF\xFE") || start.starts_with("\xFE\xFF")) {
    throw failure(name_ + ", line 1, column 1: the file is UTF-16; save it as UTF-8");
  }
  const char* const other = other_kind({buffer_.data(), end_});
  if (other != nullptr) throw failure(fmt::format("{} is {}, not a CSV", name_, other));
}

void csv_reader::fill() {
  if (begin_ > 0) {
    std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
    end_ -= begin_;
    begin_ = 0;
  } else if (end_ + 1 == buffer_.size()) {
    buffer_.resize((buffer_.size() - 1) * 2 + 1);
  }
  // Up to the brim: a row that does not fit is scanned again, and that must not happen for every piece
  // of a slow source.
  while (!at_end_ && end_ + 1 < buffer_.size()) {
    const std::size_t done = source_.read(buffer_.data() + end_, buffer_.size() - 1 - end_);
    end_ += done;
    at_end_ = done == 0;
  }
}

bool csv_reader::next() {
  line_ = next_line_;
  while (!scan_row()) {
    if (at_end_) return false;
    if (end_ - begin_ > longest_row) fail(raw_cells_.size(), "the row does not end; is a quote missing?");
    fill();
  }
  publish_cells();
  return true;
}

bool csv_reader::scan_row() {
  raw_cells_.clear();
  lines_in_cells_ = 0;
  if (begin_ == end_) return false;
  buffer_[end_] = '\n';
  const char* const bytes = buffer_.data();
  std::size_t at = begin_;
  for (;;) {
    at = at < end_ && bytes[at] == '"' ? scan_quoted(at) : scan_plain(at);
    if (at == unfinished) return false;
    if (at == end_ || bytes[at] != ',') break;
    ++at;
  }
  blank_ = at == begin_;
  bare_ = raw_cells_.front().begin == begin_;
  // A CR at the end of what was read may be the first half of a line end.
  if (at < end_ && bytes[at] == '\r' && at + 1 == end_ && !at_end_) return false;
  const std::size_t line_end = at == end_                                                    ? 0
                               : bytes[at] == '\r' && bytes[at + 1] == '\n' && at + 1 < end_ ? 2
                                                                                             : 1;
  next_line_ = line_ + lines_in_cells_ + (line_end == 0 ? 0 : 1);
  consumed_ += at + line_end - begin_;
  begin_ = at + line_end;
  return true;
}

std::size_t csv_reader::scan_plain(std::size_t at) {
  const char* const bytes = buffer_.data();
  const std::size_t begin = at;
  while (!ends_cell[static_cast<unsigned char>(bytes[at])]) ++at;
  if (at == end_ && !at_end_) return unfinished;
  raw_cells_.push_back({begin, at, false});
  return at;
}

std::size_t csv_reader::scan_quoted(std::size_t at) {
  const char* const bytes = buffer_.data();
  const std::size_t begin = at + 1;
  bool doubled = false;
  for (at = begin;; at += 2, doubled = true) {
    const void* found = std::memchr(bytes + at, '"', end_ - at);
    if (found == nullptr) {
      if (at_end_) fail(raw_cells_.size(), "the quote that opens here is not closed");
      return unfinished;
    }
    at = static_cast<std::size_t>(static_cast<const char*>(found) - bytes);
    if (at + 1 == end_ && !at_end_) return unfinished;
    if (at + 1 == end_ || bytes[at + 1] != '"') break;
  }
  raw_cells_.push_back({begin, at, doubled});
  lines_in_cells_ += count_lines({bytes + begin, at - begin});
  if (!ends_cell[static_cast<unsigned char>(bytes[at + 1])]) {
    fail(raw_cells_.size() - 1, "text follows the closing quote");
  }
  return at + 1;
}

void csv_reader::publish_cells() {
  cells_.clear();
  for (const raw_cell& cell : raw_cells_) {
    char* const begin = buffer_.data() + cell.begin;
    char* const end = buffer_.data() + cell.end;
    char* const text_end = cell.doubled_quotes ? halve_quotes(begin, end) : end;
    cells_.emplace_back(begin, static_cast<std::size_t>(text_end - begin));
  }
}

void csv_reader::fail(std::size_t cell, const std::string& what) const {
  throw failure(csv_place(name_, line_, cell + 1) + ": " + what);
}

}  // namespace command
