#include "sql/sql_rows.h"

#include "failure.h"
#include "number_text.h"
#include "words.h"

namespace command {
namespace {

using duckdb::type_id;

bool is_float(type_id type) noexcept { return type == type_id::real || type == type_id::double_real; }

bool is_number(type_id type) noexcept {
  switch (type) {
    case type_id::tiny:
    case type_id::small:
    case type_id::integer:
    case type_id::big:
    case type_id::unsigned_tiny:
    case type_id::unsigned_small:
    case type_id::unsigned_integer:
    case type_id::unsigned_big:
    case type_id::real:
    case type_id::double_real:
    case type_id::huge:
    case type_id::unsigned_huge:
    case type_id::decimal:
      return true;
    default:
      return false;
  }
}

/// Whether `append` knows the values of a statement that cannot be asked for others.
bool is_raw(type_id type) noexcept {
  return is_float(type) || type == type_id::varchar || type == type_id::boolean || type == type_id::integer ||
         type == type_id::big;
}

/// The column as it is fetched: floats and texts as they are, everything else as text.
std::string fetched(const std::string& name, type_id type, bool as_json) {
  if (is_float(type) || type == type_id::varchar) return name;
  if (as_json && !is_number(type) && type != type_id::boolean)
    return "cast(to_json(" + name + ") as varchar)";
  return "cast(" + name + " as varchar)";
}

/// Throws before the statement does anything.
void check_raw(const sql_shape& shape) {
  for (const sql_column& column : shape.columns) {
    if (is_raw(column.type)) continue;
    throw failure(fmt::format("the column {} of this statement cannot be shown; as text it can: {}::varchar",
                              column.name, column.name));
  }
}

}  // namespace

struct sql_rows::plan {
  sql_shape shape;
  std::string statement;
  std::size_t own_lines = 0;
};

sql_rows::sql_rows(sql_database& database, const std::string& statement, bool as_json)
    : sql_rows(database, [&] {
        plan made{database.shape_of(statement), statement};
        if (!made.shape.is_query) {
          check_raw(made.shape);
          return made;
        }
        std::string names;
        std::string cells;
        for (std::size_t i = 0; i < made.shape.columns.size(); ++i) {
          const std::string name = fmt::format("c{}", i);
          names += (i == 0 ? "" : ", ") + name;
          cells += (i == 0 ? "" : ", ") + fetched(name, made.shape.columns[i].type, as_json);
        }
        made.own_lines = 1;
        made.statement = fmt::format("select {} from (\n{}\n) as q({})", cells, statement, names);
        return made;
      }()) {}

sql_rows::sql_rows(sql_database& database, plan&& made)
    : is_query_(made.shape.is_query), result_(database.run(made.statement, made.own_lines)) {
  for (const sql_column& column : made.shape.columns) {
    names_.push_back(column.name);
    types_.push_back(made.shape.is_query && !is_float(column.type) ? type_id::varchar : column.type);
    aligned_right_.push_back(is_number(column.type));
    const bool plain = is_number(column.type) || column.type == type_id::boolean;
    kinds_.push_back(plain                             ? cell_kind::number
                     : column.type == type_id::varchar ? cell_kind::text
                                                       : cell_kind::other);
  }
}

bool sql_rows::next() {
  if (begun_ && ++row_ < result_.rows()) return true;
  begun_ = true;
  row_ = 0;
  return result_.next();
}

void sql_rows::append(std::string& out, std::size_t column) const {
  switch (types_[column]) {
    case type_id::boolean:
      out += result_.values<bool>(column)[row_] ? "true" : "false";
      return;
    case type_id::integer:
      out += std::to_string(result_.values<std::int32_t>(column)[row_]);
      return;
    case type_id::big:
      out += std::to_string(result_.values<std::int64_t>(column)[row_]);
      return;
    case type_id::real:
      return append_number(out, result_.values<float>(column)[row_]);
    case type_id::double_real:
      return append_number(out, result_.values<double>(column)[row_]);
    default:
      out += result_.text(column, row_);
  }
}

}  // namespace command
