#include "altered_columns.h"

#include <algorithm>

#include "cell_value.h"
#include "failure.h"
#include "field_names.h"
#include "table_limits.h"
#include "words.h"

namespace command {
namespace {

constexpr const char* add_flag = "--add ";

auto named(const std::string& name) {
  return [&name](const altered_column& column) { return column.field.name == name; };
}

bool has(const std::vector<std::string>& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

std::vector<altered_column> columns_kept(const table_view& view, const std::vector<std::string>& dropped) {
  for (const std::string& name : dropped) (void)view.field(name);
  std::vector<altered_column> columns;
  for (const field_view& field : view.fields()) {
    if (!has(dropped, field.name)) columns.push_back({field.column, field});
  }
  return columns;
}

field_view new_field(const table_view& view, const added_column& wanted) {
  const bool is_text = wanted.text_width.has_value();
  const std::size_t width = is_text ? words_of_text(*wanted.text_width) * word_characters : word_characters;
  field_view field{0, wanted.name, is_text, static_cast<LONG>(width), false, 0, {}};
  // No wider than what was asked for, although the column is.
  if (is_text) field.width = static_cast<LONG>(*wanted.text_width);
  const cell_value value = plan_value(view.file(), field, wanted.value, view.is_single());
  field.width = static_cast<LONG>(width);
  field.number_default = view.is_single() ? static_cast<double>(value.narrow) : value.number;
  field.text_default = value.text.utf8();
  if (!value.kept) say("warning: single precision loses digits of " + field.name);
  return field;
}

void add_column(std::vector<altered_column>& columns, const table_view& view, const added_column& wanted) {
  const std::string problem = name_problem(wanted.name, longest_name(view.is_single()));
  if (!problem.empty())
    throw failure(fmt::format("{}: {}{}: {}", view.file(), add_flag, wanted.name, problem));
  if (std::any_of(columns.begin(), columns.end(), named(wanted.name))) {
    throw failure(
        fmt::format("{}: {}{}: there is a column of that name", view.file(), add_flag, wanted.name));
  }
  columns.push_back({0, new_field(view, wanted)});
}

void put_first(std::vector<altered_column>& columns, const table_view& view,
               const std::vector<std::string>& order) {
  auto place = columns.begin();
  for (const std::string& name : order) {
    if (std::any_of(columns.begin(), place, named(name))) {
      throw failure(fmt::format("{}: --order {}: the column is named twice", view.file(), name));
    }
    const auto found = std::find_if(place, columns.end(), named(name));
    if (found == columns.end()) {
      if (find_field(view.fields(), name) != nullptr) {
        throw failure(fmt::format("{}: --order {}: the column is dropped", view.file(), name));
      }
      (void)view.field(name);
    }
    std::rotate(place, found, found + 1);
    ++place;
  }
}

void check_result(const std::vector<altered_column>& columns, const table_view& view) {
  std::size_t words = 0;
  bool stored = false;
  for (const altered_column& column : columns) {
    words += words_of(column.field);
    stored = stored || !column.field.implicit;
  }
  check_words(view.file(), words, view.is_single());
  if (!stored && view.rows() > 0)
    throw failure(view.file() + ": no column with values in the rows would be left");
}

}  // namespace

added_column parse_added_column(const std::string& argument) {
  const std::size_t equals = std::min(argument.find('='), argument.size());
  const std::string head = argument.substr(0, equals);
  const std::size_t colon = std::min(head.find(':'), head.size());
  added_column column;
  column.name = head.substr(0, colon);
  if (equals < argument.size()) column.value = argument.substr(equals + 1);
  if (colon < head.size()) column.text_width = read_text_width(head.substr(colon + 1));
  if (column.name.empty() || column.text_width == std::size_t{0}) {
    throw wrong_usage(fmt::format("{}{}: expected NAME[:WIDTH][=DEFAULT], a width of 1 to {}", add_flag,
                                  argument, widest_text));
  }
  return column;
}

std::vector<altered_column> altered_columns(const table_view& view, const alteration& wanted) {
  std::vector<altered_column> columns = columns_kept(view, wanted.drop);
  for (const added_column& added : wanted.add) add_column(columns, view, added);
  put_first(columns, view, wanted.order);
  check_result(columns, view);
  return columns;
}

void add_to_schema(IOvSchema& schema, const altered_column& column, const table_view& view) {
  const field_view& field = column.field;
  const ovfile::text name{std::string_view(field.name)};
  const LONG implicit = field.implicit ? 1 : 0;
  if (field.is_text) {
    const ovfile::text value{std::string_view(field.text_default)};
    view.check(schema.AddStringColumn(name.get(), field.width, value.get(), implicit));
  } else {
    view.check(schema.AddNumericColumn(name.get(), field.number_default, implicit));
  }
}

}  // namespace command
