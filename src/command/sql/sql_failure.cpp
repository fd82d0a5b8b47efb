#include "sql/sql_failure.h"

#include <charconv>

#include "console.h"
#include "failure.h"
#include "sql/scan_failure.h"

namespace command {
namespace {

/// Two characters that no name and no message has side by side.
constexpr const char* own_words_mark = "\x1F\x02";

std::string in_one_line(std::string_view words) {
  std::string line;
  bool broken = false;
  for (const char c : words) {
    if (c == '\n' || (broken && c == ' ')) {
      broken = true;
      continue;
    }
    if (broken && !line.empty()) line += ' ';
    broken = false;
    line += c;
  }
  return line;
}

/// What stands behind "LINE " in a message: the line's number, a colon and the line, then a mark under the
/// place. Counted without our own lines; empty where the place is in one of them.
std::string shown_place(std::string_view place, std::size_t own_lines) {
  std::size_t number = 0;
  const char* const end = place.data() + place.size();
  const char* const stop = std::from_chars(place.data(), end, number).ptr;
  if (number <= own_lines) return {};
  const std::string digits = std::to_string(number - own_lines);
  const auto shorter = static_cast<std::size_t>(stop - place.data()) - digits.size();
  std::string shown = "LINE " + digits + std::string(stop, end);
  const std::size_t mark = shown.find('\n');
  if (mark != shown.npos && shown.find_first_not_of(' ', mark + 1) > mark + shorter) {
    shown.erase(mark + 1, shorter);
  }
  if (shown.back() != '\n') shown += '\n';
  return shown;
}

/// What goes wrong inside the library is told with the calls that led to it.
std::string_view without_calls(std::string_view words) {
  return words.substr(0, words.find("\n\nStack Trace"));
}

/// What the library says of rows that were asked for after the statement had failed leads to why it had.
std::string_view first_words(std::string_view words) {
  constexpr std::string_view asked_in_vain = "closed pending query result\nError: ";
  const std::size_t at = words.find(asked_in_vain);
  return at == words.npos ? words : words.substr(at + asked_in_vain.size());
}

/// A thread that fails stops the others, and the library may tell of their stop instead.
bool is_stop(std::string_view words) { return words.starts_with("INTERRUPT Error"); }

/// With one thread there is nobody to be stopped.
constexpr const char* unknown_reason =
    "the statement failed, and DuckDB does not tell why; with --threads 1 it does";

/// The library puts its kind of error before what one of its functions says; our words stand alone.
void strip_to_own(std::string& line) {
  const std::size_t at = line.find(own_words_mark);
  if (at != line.npos) line.erase(0, at + std::string_view(own_words_mark).size());
}

}  // namespace

std::string own_sql_words(const std::string& words) { return own_words_mark + words; }

void throw_sql_failure(std::string_view words, std::size_t own_lines, const scan_failure& scans) {
  throw_if_interrupted();
  words = first_words(words);
  const std::string scan_words = scans.words();
  if (is_stop(words)) words = scan_words.empty() ? unknown_reason : std::string_view(scan_words);
  // The message; then, behind "LINE 1:", the statement and a mark under the place.
  constexpr std::string_view before_place = "\nLINE ";
  const std::size_t place = words.find(before_place);
  std::string line = in_one_line(without_calls(words.substr(0, place)));
  strip_to_own(line);
  if (place == words.npos) throw failure(line);
  const std::string shown = shown_place(words.substr(place + before_place.size()), own_lines);
  if (shown.empty()) throw failure(line);
  throw marked_failure(line, shown);
}

}  // namespace command
