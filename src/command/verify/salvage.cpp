#include "verify/salvage.h"

#include <algorithm>
#include <cmath>

#include "absent.h"
#include "failure.h"
#include "field_names.h"
#include "new_table.h"
#include "progress.h"
#include "replacement.h"
#include "table_limits.h"
#include "verify/readable_rows.h"
#include "words.h"

namespace command {
namespace {

class row_copier {
 public:
  row_copier(IOvTable& to, const std::vector<field_view>& fields, const std::string& shown)
      : to_(to), fields_(fields), shown_(shown) {}

  /// The row on which the table stands. Returns whether all its numbers are numbers.
  bool copy(const table_view& from) {
    check(to_.AddRow());
    bool all_kept = true;
    for (const field_view& field : fields_) {
      if (!field.implicit) all_kept = copy(from, field) && all_kept;
    }
    return all_kept;
  }

 private:
  bool copy(const table_view& from, const field_view& field) {
    if (field.is_text) {
      from.read_text(text_, field);
      check(to_.SetColumnString(field.column, text_.get()));
      return true;
    }
    const double number = from.number(field);
    const bool is_kept = std::isfinite(number);
    const double kept = is_kept ? number : absent_number;
    check(from.is_single() ? to_.SetColumnFloat(field.column, static_cast<float>(kept))
                           : to_.SetColumnDouble(field.column, kept));
    return is_kept;
  }
  void check(HRESULT status) const { check_call("cannot write " + shown_, status); }

  IOvTable& to_;
  const std::vector<field_view>& fields_;
  const std::string& shown_;
  ovfile::text text_;
};

/// The library reads names that it does not make: these are changed, which is told.
std::vector<std::string> allowed_names(const table_view& from) {
  std::vector<std::string> names;
  for (const field_view& field : from.fields()) names.push_back(field.name);
  std::vector<std::string> notes;
  std::vector<std::string> allowed = make_field_names(names, {}, longest_name(from.is_single()), notes);
  for (const std::string& note : notes) say(note);
  return allowed;
}

ovfile::pointer<IOvSchema> saved_schema(const readable_rows& rows) {
  const table_view& from = rows.table();
  const std::vector<std::string> names = allowed_names(from);
  // One that begins so would make a link of the new table.
  const std::string description = from.description().starts_with("LINK") ? "" : from.description();
  auto schema = ovfile::create_schema();
  from.check(schema->put_DoublePrecisionFlag(from.is_single() ? 0 : 1));
  from.check(schema->put_Description(ovfile::text(std::string_view(description)).get()));
  for (std::size_t i = 0; i < names.size(); ++i) {
    const field_view& field = rows.fields()[i];
    const ovfile::text name{std::string_view(names[i])};
    const ovfile::text value{std::string_view(field.text_default)};
    const LONG implicit = field.implicit ? 1 : 0;
    from.check(field.is_text ? schema->AddStringColumn(name.get(), field.width, value.get(), implicit)
                             : schema->AddNumericColumn(name.get(), field.number_default, implicit));
  }
  return schema;
}

/// Rows as ranges: "3, 10-20".
std::string listed(const std::vector<LONG>& rows) {
  std::vector<std::string> ranges;
  for (std::size_t i = 0; i < rows.size();) {
    std::size_t last = i;
    while (last + 1 < rows.size() && rows[last + 1] == rows[last] + 1) ++last;
    ranges.push_back(i == last ? std::to_string(rows[i]) : fmt::format("{}-{}", rows[i], rows[last]));
    i = last + 1;
  }
  return joined(ranges, ", ");
}

/// `made_absent` are rows of the file, as those are that are lost.
std::string lost_words(const std::string& file, const check_result& found, const std::string& target,
                       LONG rows, const std::vector<LONG>& made_absent) {
  std::string words = fmt::format("{} of {} went to {}", rows, counted(found.rows, "row"), target);
  std::vector<std::string> missing;
  if (!found.lost.empty()) missing.push_back(listed(found.lost));
  if (found.rows_in_file < found.rows) {
    missing.push_back(fmt::format("{}-{}", found.rows_in_file + 1, found.rows));
  }
  if (!missing.empty()) words += fmt::format("; of {} these are lost: {}", file, joined(missing, ", "));
  if (!made_absent.empty()) {
    words += fmt::format("; numbers that were none became absent in row{} {}",
                         made_absent.size() == 1 ? "" : "s", listed(made_absent));
  }
  return words;
}

}  // namespace

void salvage(const std::string& file, const check_result& found, const std::string& target) {
  readable_rows from(file);
  if (from.count() != found.rows_in_file) throw failure(file + ": the file was changed meanwhile");
  replacement made(target);
  LONG rows = 0;
  std::vector<LONG> made_absent;
  {
    const auto table = create_new_table(made.name(), *saved_schema(from).get(), target);
    row_copier copier(*table.get(), from.fields(), target);
    progress bar("writing");
    for (LONG row = 1; row <= found.rows_in_file; ++row) {
      throw_if_interrupted();
      bar.at(static_cast<std::uint64_t>(row), static_cast<std::uint64_t>(found.rows_in_file));
      if (std::binary_search(found.lost.begin(), found.lost.end(), row)) continue;
      if (!copier.copy(from.at(row))) made_absent.push_back(row);
      ++rows;
    }
    check_call("cannot write " + target, table->Close());
  }
  const message told(lost_words(file, found, target, rows, made_absent));
  made.commit();
  told.say();
}

}  // namespace command
