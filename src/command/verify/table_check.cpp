#include "verify/table_check.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <optional>
#include <set>
#include <string_view>

#include "failure.h"
#include "field_names.h"
#include "folder_names.h"
#include "progress.h"
#include "replacement.h"
#include "table_limits.h"
#include "utf8_path.h"
#include "verify/readable_rows.h"
#include "words.h"

namespace command {
namespace {

constexpr double most_entries = 256;

bool is_whole_number(double value) noexcept {
  return std::isfinite(value) && value >= 0 && value == std::trunc(value);
}

void check_counts(const table_header& header, std::vector<finding>& found) {
  const auto check = [&](double count, const char* what) {
    if (!is_whole_number(count))
      found.push_back({fmt::format("the header's {} is no count: {}", what, count)});
  };
  check(header.atoms, "number of entries");
  if (is_whole_number(header.atoms) && header.atoms > most_entries) {
    found.push_back(
        {fmt::format("the header's number of entries is more than a table has: {}", header.atoms)});
  }
  constexpr std::uint64_t page_words = 508;
  const std::uint64_t fit = page_words / std::max<std::uint64_t>(header.record_words(), 1);
  if (header.record_words() != 0 && is_whole_number(header.records_in_last) &&
      header.records_in_last > static_cast<double>(fit)) {
    found.push_back({fmt::format("the header counts {} records in the last page, of which {} fit",
                                 header.records_in_last, fit)});
  }
  if (is_whole_number(header.pages) && header.pages < static_cast<double>(header.header_pages())) {
    found.push_back({fmt::format("the header counts {} pages, and takes {} itself", header.pages,
                                 header.header_pages())});
  }
  check(header.pages, "number of pages");
  check(header.records_in_last, "number of records in the last page");
}

void check_size(const table_header& header, std::vector<finding>& found) {
  if (!is_whole_number(header.pages)) return;
  const double pages = std::max(header.pages, static_cast<double>(header.header_pages()));
  const double counted = pages * static_cast<double>(header.page_bytes());
  const double beyond = static_cast<double>(header.bytes) - counted;
  if (beyond <= 0) return;
  found.push_back({fmt::format("{:.0f} bytes follow the last page that the header counts", beyond), false});
}

/// The words of each field stand side by side, numbered from 1. Those of implicit texts are numbered from 2
/// by some.
void check_order(const std::vector<dictionary_entry>& entries, std::vector<finding>& found) {
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const dictionary_entry& entry = entries[i];
    const bool goes_on =
        i > 0 && entries[i - 1].name == entry.name && entries[i - 1].type == 'A' && entry.type == 'A';
    const double expected = goes_on ? entries[i - 1].ordinal + 1 : 1;
    if (entry.ordinal == expected || (entry.position == 0 && entry.type == 'A')) continue;
    found.push_back(
        {fmt::format("the header has word {} of it where word {} belongs", entry.ordinal, expected), false, 0,
         entry.name});
  }
}

void check_positions(const std::vector<dictionary_entry>& entries, std::vector<finding>& found) {
  const auto stored = static_cast<double>(
      std::count_if(entries.begin(), entries.end(), [](const auto& each) { return each.position != 0; }));
  std::set<double> taken;
  for (const dictionary_entry& entry : entries) {
    if (entry.position == 0) continue;
    if (!is_whole_number(entry.position) || entry.position > stored) {
      found.push_back({fmt::format("its place {} is not in a record of {} words", entry.position, stored),
                       true, 0, entry.name});
    } else if (!taken.insert(entry.position).second) {
      found.push_back(
          {fmt::format("its place {} is another column's too", entry.position), true, 0, entry.name});
    }
  }
}

/// Programs take such a text for one value of all rows, or for one of each.
void check_first_words(const std::vector<dictionary_entry>& entries, std::vector<finding>& found) {
  for (const header_field& field : fields_in(entries)) {
    if (!field.is_partly_stored) continue;
    found.push_back({"its first word stands in the header alone, others in the rows", false, 0, field.name});
  }
}

void check_names(const std::vector<dictionary_entry>& entries, bool is_double, std::vector<finding>& found) {
  constexpr std::size_t longest_double = 24;
  constexpr std::size_t longest_single = 8;
  std::set<std::string> names;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const dictionary_entry& entry = entries[i];
    if (i > 0 && entries[i - 1].name == entry.name && entry.type == 'A' && entry.ordinal != 1) continue;
    const std::string problem = name_problem(entry.name, is_double ? longest_double : longest_single);
    if (!problem.empty()) found.push_back({"its name is not allowed: " + problem, false, 0, entry.name});
    if (!names.insert(entry.name).second)
      found.push_back({"another column has its name", false, 0, entry.name});
    if (entry.type != 'A' && entry.type != 'N') {
      found.push_back({"its type is neither that of texts nor that of numbers", false, 0, entry.name});
    }
  }
}

/// As new files are named before they take their place.
bool is_left_behind(std::string_view name) {
  const bool is_hidden = name.starts_with('.');
  if (is_hidden) name.remove_prefix(1);
  if (!name.starts_with("NEW") || (!is_hidden && !name.ends_with(".tmp"))) return false;
  const std::string_view number = name.substr(3, name.find('.') - 3);
  const bool is_length = number.size() == 10 || number.size() == 12 || number.find('-') != number.npos;
  return is_length && number.find_first_not_of("0123456789abcdef-") == number.npos;
}

/// What works on tables leaves beside them when it is killed.
void look_beside(const std::string& file, std::vector<finding>& found) {
  const std::filesystem::path folder = path_of_utf8(file).parent_path();
  for (const std::string& name : names_in_folder(folder.empty() ? "." : utf8_of_path(folder))) {
    if (is_left_behind(name))
      found.push_back({fmt::format("beside it lies {}, of work that was cut off", name), false});
  }
}

/// The bytes that Windows-1252 leaves free come as control characters of the same numbers.
bool is_outside(const std::string& utf8) {
  for (const char* const sign : {"\xC2\x81", "\xC2\x8D", "\xC2\x8F", "\xC2\x90", "\xC2\x9D"}) {
    if (utf8.find(sign) != utf8.npos) return true;
  }
  return false;
}

class row_check {
 public:
  row_check(readable_rows& rows, check_result& result) : rows_(rows), result_(result) {}

  void run() {
    progress bar("reading " + rows_.table().file());
    for (LONG row = 1; row <= result_.rows_in_file; ++row) {
      try {
        const table_view& table = rows_.at(row);
        for (const field_view& field : rows_.fields()) look_at(table, field, row);
      } catch (const failure& error) {
        result_.lost.push_back(row);
        report(unreadable_, {error.what(), true, row});
      }
      bar.at(static_cast<std::uint64_t>(row), static_cast<std::uint64_t>(result_.rows_in_file));
    }
  }

 private:
  /// A table that was cut or written over has as many as it has values.
  static constexpr int most_of_a_kind = 50;

  void report(int& told, finding found) {
    if (told++ < most_of_a_kind) {
      result_.findings.push_back(std::move(found));
    } else {
      ++result_.more;
      told = most_of_a_kind;
    }
  }
  void look_at(const table_view& table, const field_view& field, LONG row) {
    if (field.implicit) return;
    if (!field.is_text) {
      const double number = table.number(field);
      if (std::isfinite(number)) return;
      const char* const what = std::isnan(number) ? "the number is no number" : "the number is infinite";
      report(no_number_, {what, true, row, field.name});
      return;
    }
    text_.clear();
    table.append_text(text_, field);
    if (is_outside(text_))
      report(outside_, {"the text has bytes outside the code page", false, row, field.name});
  }

  readable_rows& rows_;
  check_result& result_;
  std::string text_;
  int unreadable_ = 0;
  int no_number_ = 0;
  int outside_ = 0;
};

/// The library reads tables without a mark too. Returns whether there is one.
bool look_at_header(const std::string& file, bool is_read, std::vector<finding>& found) {
  try {
    const std::vector<finding> more = check_header(read_table_header(file));
    found.insert(found.end(), more.begin(), more.end());
    return true;
  } catch (const not_a_table&) {
    found.push_back({"it has no table's mark", !is_read});
    return false;
  }
}

}  // namespace

bool check_result::is_whole() const noexcept {
  return std::none_of(findings.begin(), findings.end(), [](const finding& each) { return each.is_damage; });
}

std::vector<finding> check_header(const table_header& header) {
  std::vector<finding> found;
  if (header.is_cut) found.push_back({"the file ends within the header"});
  check_counts(header, found);
  check_size(header, found);
  check_order(header.entries, found);
  check_positions(header.entries, found);
  check_first_words(header.entries, found);
  check_names(header.entries, header.is_double, found);
  return found;
}

check_result check_table(const std::string& file) {
  check_result result;
  std::optional<readable_rows> rows;
  std::string refusal;
  try {
    rows.emplace(file);
  } catch (const failure& error) {
    refusal = error.what();
  }
  const std::string target = rows ? rows->table().target() : file;
  if (!same_file(file, target)) result.findings.push_back({"it is a link to " + target, false});
  const bool is_marked = look_at_header(target, rows.has_value(), result.findings);
  if (!rows) {
    // Whatever else hinders the library is no fault of the table.
    const bool is_told =
        refusal.find("Not a valid") != refusal.npos || refusal.find("Unrecog") != refusal.npos;
    if (!is_told && result.is_whole()) throw failure(refusal);
    if (is_told && is_marked) result.findings.push_back({fmt::format("it cannot be opened: {}", refusal)});
    return result;
  }
  look_beside(target, result.findings);
  result.rows = rows->table().rows();
  result.rows_in_file = rows->count();
  if (result.rows_in_file < result.rows) {
    result.findings.push_back({fmt::format("the file ends behind row {}; its header promises {}",
                                           result.rows_in_file, result.rows)});
  }
  row_check(*rows, result).run();
  return result;
}

}  // namespace command
