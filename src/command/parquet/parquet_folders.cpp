#include "parquet/parquet_folders.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <set>

#include "failure.h"
#include "parquet/parquet_file.h"
#include "unique_names.h"
#include "utf8_path.h"
#include "words.h"

namespace command {
namespace {

namespace fs = std::filesystem;

struct found_file {
  std::string name;
  std::string below;              ///< the part of the name behind the folder that is read
  std::vector<std::string> keys;  ///< that the folders between have before =, as they write them
};

bool operator<(const found_file& one, const found_file& other) { return one.name < other.name; }

/// Empty where the folder's name tells of no column.
std::string key_of(const std::string& folder) {
  const std::size_t end = folder.find('=');
  return end == folder.npos || folder.find('=', end + 1) != folder.npos ? "" : folder.substr(0, end);
}

found_file describe(const fs::path& file, int depth) {
  fs::path below = file.filename();
  fs::path folder = file.parent_path();
  found_file made;
  for (; depth > 0; --depth, folder = folder.parent_path()) {
    const fs::path leaf = folder.filename();
    below = leaf / below;
    std::string key = key_of(utf8_of_path(leaf));
    if (!key.empty()) made.keys.insert(made.keys.begin(), std::move(key));
  }
  const std::u8string name = file.generic_u8string();
  made.name.assign(name.begin(), name.end());
  made.below = utf8_of_path(below);
  return made;
}

std::vector<found_file> find_files(const std::string& folder) {
  std::vector<found_file> found;
  fs::recursive_directory_iterator entries(path_of_utf8(folder));
  for (const auto end = fs::end(entries); entries != end; ++entries) {
    const std::string leaf = utf8_of_path(entries->path().filename());
    if (leaf.starts_with('.')) {
      entries.disable_recursion_pending();
    } else if (is_named_as_parquet(leaf) && entries->is_regular_file()) {
      found.push_back(describe(entries->path(), entries.depth()));
    }
  }
  std::sort(found.begin(), found.end());
  return found;
}

std::vector<found_file> files_in(const std::string& folder) {
  std::vector<found_file> found;
  try {
    found = find_files(folder);
  } catch (const fs::filesystem_error& error) {
    throw failure("cannot read " + folder + ": " + error.code().message());
  }
  if (found.empty()) throw failure(folder + " has no Parquet files in it");
  return found;
}

void check_keys(const std::string& folder, const std::vector<found_file>& files) {
  const found_file& first = files.front();
  const std::multiset<std::string> keys(first.keys.begin(), first.keys.end());
  for (const found_file& file : files) {
    if (std::multiset<std::string>(file.keys.begin(), file.keys.end()) == keys) continue;
    throw failure(fmt::format("cannot read {}: the folders of {} and {} have different columns", folder,
                              first.below, file.below));
  }
}

/// A folder's name has bytes that a file system may not like as %20.
std::string percent_decoded(const std::string& name) {
  std::string out;
  for (std::size_t i = 0; i < name.size(); ++i) {
    unsigned value = 0;
    const char* const digits = name.data() + i + 1;
    const bool coded = name[i] == '%' && i + 2 < name.size() &&
                       std::from_chars(digits, digits + 2, value, 16).ptr == digits + 2;
    out += coded ? static_cast<char>(value) : name[i];
    if (coded) i += 2;
  }
  return out;
}

std::vector<std::string> names_of(const std::string& folder, const found_file& file) {
  std::vector<std::string> names;
  for (const std::string& key : file.keys) names.push_back(percent_decoded(key));
  if (unique_names(names, letter_case::does_not_count) == names) return names;
  throw failure(fmt::format("cannot read {}: the folders of {} have a column twice", folder, file.below));
}

/// How many characters the library's own names of the files have before the part that stands below the
/// folder. It may drop a separator of those that the user wrote.
std::size_t characters_above(sql_database& database, const found_file& file) {
  sql_result found = database.run("select file from glob(" + sql_text(as_pattern(file.name)) + ")");
  if (!found.next()) throw failure("cannot open " + file.name + ": there is no such file");
  const std::string_view name = found.text(0, 0);
  const std::string_view above = name.substr(0, name.size() - std::min(name.size(), file.below.size()));
  return static_cast<std::size_t>(std::count_if(
      above.begin(), above.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string as_expression(const std::string& text) {
  std::string out;
  for (const char c : text) {
    if (std::string_view("\\.+*?()|[]{}^$").find(c) != std::string_view::npos) out += '\\';
    out += c;
  }
  return out;
}

/// What the folder of this key has behind =.
std::string value_of(const std::string& key, std::size_t above) {
  const std::string ends = fs::path::preferred_separator == '/' ? "/" : "/\\\\";
  const std::string expression = fmt::format("(?:^|[{0}]){1}=([^={0}]*)[{0}]", ends, as_expression(key));
  const std::string value = fmt::format("regexp_extract(substr({}, {}), {}, 1)", sql_name(file_name_column),
                                        above + 1, sql_text(expression));
  return fmt::format(
      "case when upper({0}) in ('NULL', '__HIVE_DEFAULT_PARTITION__') then null else url_decode({0}) end",
      value);
}

}  // namespace

std::string as_pattern(const std::string& name) {
  std::string out;
  for (const char c : name) {
    if (c == '*' || c == '?' || c == '[') {
      out += std::string("[") + c + "]";
    } else {
      out += c;
    }
  }
  return out;
}

parquet_folder open_folder(sql_database& database, const std::string& name) {
  const std::vector<found_file> files = files_in(name);
  check_keys(name, files);
  parquet_folder made;
  for (const found_file& file : files) {
    made.files.push_back(as_pattern(file.name));
    made.shown.push_back(file.below);
  }
  const std::vector<std::string> names = names_of(name, files.front());
  if (names.empty()) return made;
  const std::size_t above = characters_above(database, files.front());
  for (std::size_t i = 0; i < names.size(); ++i) {
    made.columns.push_back({names[i], value_of(files.front().keys[i], above)});
  }
  return made;
}

}  // namespace command
