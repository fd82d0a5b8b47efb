#include "parquet/parquet_union.h"

#include <algorithm>
#include <map>

#include "sql/query_columns.h"
#include "words.h"

namespace command {
namespace {

using duckdb::type_id;

struct file_column {
  std::string name;
  type_id type;
  std::string type_name;
};

/// Files that follow one another and have the same columns.
struct file_run {
  std::vector<std::string> files;
  std::vector<file_column> columns;
};

enum class conversion { none, to_double, to_text };

struct common_column {
  std::string name;
  std::string type_name;
  conversion way = conversion::none;
};

std::string reading(const std::vector<std::string>& files, bool with_names) {
  const std::string names = with_names ? ", filename = " + sql_text(file_name_column) : std::string();
  return fmt::format("read_parquet({}, hive_partitioning = false{})", list_of(files), names);
}

/// What a file's columns are, as a text that other files with the same columns have too. Asked of all files
/// at once the texts are in no certain order.
std::map<std::string, std::string> layouts(sql_database& database, const std::vector<std::string>& files) {
  std::map<std::string, std::string> found;
  sql_result rows = database.run(fmt::format(
      "select file_name, cast({{'n': name, 't': type, 'l': type_length, 'r': repetition_type = 'REPEATED', "
      "'c': num_children, 'o': converted_type, 's': scale, 'p': precision, 'y': logical_type}} as varchar) "
      "from parquet_schema({})",
      list_of(files)));
  while (rows.next()) {
    for (std::size_t i = 0; i < rows.rows(); ++i) found[std::string(rows.text(0, i))] += rows.text(1, i);
  }
  return found;
}

bool are_alike(const std::map<std::string, std::string>& layouts) {
  return std::all_of(layouts.begin(), layouts.end(),
                     [&](const auto& one) { return one.second == layouts.begin()->second; });
}

std::vector<file_column> columns_of(sql_database& database, const std::string& file) {
  const std::string rows = reading({file}, false);
  std::vector<file_column> columns;
  for (const sql_column& column : database.shape_of("select * from " + rows).columns) {
    columns.push_back({column.name, column.type, {}});
  }
  std::size_t at = 0;
  for (sql_result found = database.run("select column_type from (describe from " + rows + ")");
       found.next();) {
    for (std::size_t i = 0; i < found.rows(); ++i) columns.at(at++).type_name = found.text(0, i);
  }
  return columns;
}

std::vector<file_run> runs_of(sql_database& database, const std::vector<std::string>& files) {
  std::vector<file_run> runs;
  std::string last;
  for (const std::string& file : files) {
    const std::string layout = layouts(database, {file}).begin()->second;
    if (runs.empty() || layout != last) runs.push_back({{}, columns_of(database, file)});
    runs.back().files.push_back(file);
    last = layout;
  }
  return runs;
}

/// SQL takes AU and Au for the same.
bool is_same_name(const std::string& one, const std::string& other) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 'a' - 'A') : c; };
  return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                    [&](char left, char right) { return lower(left) == lower(right); });
}

const file_column* find_column(const file_run& run, const std::string& name) {
  const auto found = std::find_if(run.columns.begin(), run.columns.end(),
                                  [&](const file_column& one) { return is_same_name(one.name, name); });
  return found == run.columns.end() ? nullptr : &*found;
}

/// Whether a double holds all values of the column in these files.
bool fits_double(sql_database& database, const file_run& run, const file_column& column) {
  sql_result found = database.run(fmt::format("select cast({} as double) from {}",
                                              need_of(sql_name(column.name), column.type, column.type_name),
                                              reading(run.files, false)));
  return found.next() && found.values<double>(0)[0] < 0;
}

common_column common_of(sql_database& database, const std::vector<file_run>& runs, const std::string& name) {
  common_column made{name, {}};
  bool same = true;
  for (const file_run& run : runs) {
    const file_column* const column = find_column(run, name);
    if (column == nullptr) continue;
    if (made.type_name.empty()) made.type_name = column->type_name;
    same = same && column->type_name == made.type_name;
  }
  if (same) return made;
  const bool fits = std::all_of(runs.begin(), runs.end(), [&](const file_run& run) {
    const file_column* const column = find_column(run, name);
    return column == nullptr || (is_numeric(column->type) && fits_double(database, run, *column));
  });
  made.way = fits ? conversion::to_double : conversion::to_text;
  made.type_name = fits ? "double" : "varchar";
  return made;
}

std::vector<common_column> columns_of_all(sql_database& database, const std::vector<file_run>& runs) {
  std::vector<common_column> made;
  for (const file_run& run : runs) {
    for (const file_column& column : run.columns) {
      const auto known = [&](const common_column& one) { return is_same_name(one.name, column.name); };
      if (std::any_of(made.begin(), made.end(), known)) continue;
      made.push_back(common_of(database, runs, column.name));
    }
  }
  return made;
}

std::string value_of(const file_run& run, const common_column& common) {
  const file_column* const column = find_column(run, common.name);
  if (column == nullptr) return fmt::format("cast(null as {})", common.type_name);
  std::string value = sql_name(column->name);
  const bool is_float = column->type == type_id::real;
  switch (common.way) {
    case conversion::to_double:
      // A float's digits are what it means.
      return fmt::format("cast({} as double)", is_float ? "cast(" + value + " as varchar)" : value);
    case conversion::to_text:
      return is_float || column->type == type_id::double_real
                 ? float_as_text(fmt::format("nullif(nullif({}, -1e30), cast(-1e30 as real))", value))
                 : fmt::format("cast({} as varchar)", value);
    default:
      return value;
  }
}

std::string select_of(const file_run& run, const std::vector<common_column>& columns, bool with_names) {
  std::string values;
  for (const common_column& column : columns) {
    values +=
        fmt::format("{}{} as {}", values.empty() ? "" : ", ", value_of(run, column), sql_name(column.name));
  }
  if (with_names) values += ", " + sql_name(file_name_column);
  return fmt::format("select {} from {}", values, reading(run.files, with_names));
}

/// The parts one behind the other, in parentheses that are not deep: so is the library's way through them.
std::string one_after_another(const std::vector<std::string>& parts, std::size_t begin, std::size_t end) {
  if (end - begin == 1) return "(" + parts[begin] + ")";
  const std::size_t middle = begin + (end - begin) / 2;
  return fmt::format("({} union all {})", one_after_another(parts, begin, middle),
                     one_after_another(parts, middle, end));
}

void note_absent(const std::vector<file_run>& runs, const std::vector<common_column>& columns,
                 const std::vector<std::string>& shown, std::vector<std::string>& notes) {
  for (const common_column& column : columns) {
    std::size_t first = shown.size();
    std::size_t lacking = 0;
    std::size_t at = 0;
    for (const file_run& run : runs) {
      if (find_column(run, column.name) == nullptr) {
        if (lacking == 0) first = at;
        lacking += run.files.size();
      }
      at += run.files.size();
    }
    if (lacking == 0) continue;
    const std::string others =
        lacking == 1 ? std::string() : " and " + counted(static_cast<long long>(lacking) - 1, "other file");
    notes.push_back(fmt::format("column {} is not in {}{}: absent there", column.name, shown[first], others));
  }
}

}  // namespace

std::string list_of(const std::vector<std::string>& files) {
  std::string list;
  for (const std::string& file : files) list += (list.empty() ? "[" : ", ") + sql_text(file);
  return list + "]";
}

std::string rows_of(sql_database& database, const parquet_folder& folder, std::vector<std::string>& notes) {
  const bool with_names = !folder.columns.empty();
  if (folder.files.size() == 1 || are_alike(layouts(database, folder.files))) {
    return reading(folder.files, with_names);
  }
  const std::vector<file_run> runs = runs_of(database, folder.files);
  const std::vector<common_column> columns = columns_of_all(database, runs);
  std::vector<std::string> parts;
  parts.reserve(runs.size());
  for (const file_run& run : runs) parts.push_back(select_of(run, columns, with_names));
  note_absent(runs, columns, folder.shown, notes);
  return one_after_another(parts, 0, parts.size());
}

}  // namespace command
