#include "diff_columns.h"

#include <algorithm>

#include "failure.h"
#include "field_listing.h"
#include "words.h"

namespace command {
namespace {

std::string line_of(const field_view& field, bool single) {
  const std::string value = default_words(field, single);
  return fmt::format("{} {} {}{}{}", field.name,
                     field.is_text ? fmt::format("text {}", field.width) : std::string("number"),
                     field.implicit ? "implicit" : "stored", value.empty() ? "" : " ", value);
}

void compare_texts(const char* title, const std::string& before, const std::string& after, diff_output& out) {
  if (before == after) return;
  out.begin(title);
  out.add('-', before);
  out.add('+', after);
}

bool has_line(const table_view& view, const std::string& line) {
  return std::any_of(view.fields().begin(), view.fields().end(),
                     [&](const field_view& field) { return line_of(field, view.is_single()) == line; });
}

std::string order_of(const table_view& view) {
  std::string names;
  for (const field_view& field : view.fields()) names += (names.empty() ? "" : ",") + field.name;
  return names;
}

/// Those that are not the same in both; then, where all are, their order.
void compare_columns(const table_view& before, const table_view& after, diff_output& out) {
  out.begin("columns");
  bool same = true;
  const auto tell = [&](char sign, const table_view& one, const table_view& other) {
    for (const field_view& field : one.fields()) {
      const std::string line = line_of(field, one.is_single());
      if (has_line(other, line)) continue;
      out.add(sign, line);
      same = false;
    }
  };
  tell('-', before, after);
  tell('+', after, before);
  if (same) compare_texts("order of columns", order_of(before), order_of(after), out);
}

const column_pair* find_pair(const std::vector<column_pair>& columns, const std::string& name) {
  const auto found = std::find_if(columns.begin(), columns.end(),
                                  [&](const column_pair& pair) { return pair.before.name == name; });
  return found == columns.end() ? nullptr : &*found;
}

}  // namespace

void diff_output::add(char sign, std::string_view line) {
  std::string& text = output_.text();
  if (!any_) text += fmt::format("--- {}\n+++ {}\n", before_, after_);
  any_ = true;
  if (!title_.empty()) text += fmt::format("@@ {} @@\n", title_);
  title_.clear();
  text += sign;
  text += line;
  text += '\n';
  output_.pass_on();
}

std::vector<column_pair> common_columns(const table_view& before, const table_view& after) {
  std::vector<column_pair> columns;
  for (const field_view& field : before.fields()) {
    const field_view* const other = find_field(after.fields(), field.name);
    const bool twice = find_pair(columns, field.name) != nullptr;
    if (other != nullptr && other->is_text == field.is_text && !twice) columns.push_back({field, *other});
  }
  return columns;
}

std::vector<column_pair> key_columns(const table_view& before, const table_view& after,
                                     const std::vector<column_pair>& common,
                                     const std::vector<std::string>& names) {
  std::vector<column_pair> key;
  for (const std::string& name : names) {
    const auto kind = [&](const table_view& view) { return view.field(name).is_text ? "texts" : "numbers"; };
    (void)kind(before);
    (void)kind(after);
    const column_pair* const pair = find_pair(common, name);
    if (pair == nullptr)
      throw failure(fmt::format("--key {}: {} in {}, {} in {}", name, kind(before), before.file(),
                                kind(after), after.file()));
    key.push_back(*pair);
  }
  return key;
}

void compare_definitions(const table_view& before, const table_view& after, bool ignore_description,
                         diff_output& out) {
  const auto precision = [](const table_view& view) { return view.is_single() ? "single" : "double"; };
  compare_texts("precision", precision(before), precision(after), out);
  if (!ignore_description) compare_texts("description", before.description(), after.description(), out);
  compare_columns(before, after, out);
}

}  // namespace command
