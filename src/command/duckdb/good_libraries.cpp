#include "duckdb/good_libraries.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

#include "duckdb/duckdb_library.h"
#include "failure.h"
#include "made_folders.h"
#include "raw_file.h"
#include "replacement.h"
#include "utf8_path.h"

namespace command {
namespace {

namespace fs = std::filesystem;

/// Another first line belongs to a program that looks at libraries in another way.
constexpr std::string_view heading = "libraries that ovfile found good, 1";
constexpr std::size_t most_noted = 20;
constexpr std::uint64_t most_note_bytes = 1 << 14;

std::string notes_file() { return utf8_of_path(path_of_utf8(user_data_folder()) / "good-libraries.txt"); }

/// Each line that ends.
std::vector<std::string> lines_of(std::string_view text) {
  std::vector<std::string> lines;
  for (std::size_t end = 0; (end = text.find('\n')) != text.npos; text.remove_prefix(end + 1)) {
    lines.emplace_back(text.substr(0, end));
  }
  return lines;
}

/// The identities; none where the file is not there, or something else.
std::vector<std::string> read_notes() {
  try {
    const std::string name = notes_file();
    std::error_code error;
    // A pipe would keep us waiting.
    if (!fs::is_regular_file(path_of_utf8(name), error)) return {};
    raw_file file = raw_file::open(name);
    std::uint64_t bytes = 0;
    if (!file.is_regular(bytes) || bytes > most_note_bytes) return {};
    std::string text(static_cast<std::size_t>(bytes), '\0');
    std::size_t done = 0;
    while (const std::size_t more = file.read(text.data() + done, text.size() - done)) done += more;
    std::vector<std::string> lines = lines_of(std::string_view(text).substr(0, done));
    if (lines.empty() || lines.front() != heading) return {};
    lines.erase(lines.begin());
    return lines;
  } catch (const failure&) {
    return {};
  }
}

}  // namespace

bool is_noted_as_good(const std::string& identity) {
  const std::vector<std::string> notes = read_notes();
  return std::find(notes.begin(), notes.end(), identity) != notes.end();
}

void note_as_good(const std::string& identity) {
  std::vector<std::string> notes = read_notes();
  notes.push_back(identity);
  if (notes.size() > most_noted) notes.erase(notes.begin(), notes.end() - most_noted);
  std::string text(heading);
  for (const std::string& note : notes) text += "\n" + note;
  text += '\n';
  try {
    made_folders folders(user_data_folder());
    replacement target(notes_file());
    raw_file file = raw_file::open_to_write(target.name(), notes_file());
    file.write(text);
    file.close();
    target.commit();
    folders.keep();
  } catch (const failure&) {
    // The library is no worse for it.
  }
}

}  // namespace command
