// A table made of what a query gives.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "implicit_field.h"
#include "sql/sql_database.h"

namespace command {

/// A column that is text of this width, whatever its values; longer ones are refused.
struct text_width {
  std::string column;
  std::size_t width;
};

/// What a column of the query was in the table that it comes from: its name, place, default, and how wide its
/// texts are at least.
struct known_column {
  std::string column;
  planned_field field;
};

struct query_table_request {
  bool single = false;
  bool single_where_it_fits = false;
  std::optional<std::string> description;
  bool nan_is_absent = false;  ///< NULL is in any case
  std::string absent_text;     ///< so is a value that is written like this, where it is not empty
  std::vector<text_width> texts;
  std::vector<known_column> known;
  std::vector<planned_field> implicit;  ///< beside the columns of the query
};

/// Names for so many columns of a source, whatever the query calls them.
std::vector<std::string> own_column_names(std::size_t columns);

/// Makes the table `target`, or leaves it as it was, from the rows of `source`, which stands behind FROM and
/// is read twice. Booleans become 1 and 0; whole numbers and decimals that a double cannot hold, dates and
/// everything else become text. Returns the number of rows; `notes` receives what was changed of the names
/// and which columns lose digits. The database's bar shows how much is written, and is gone afterwards.
/// Throws what sql_database.h lists.
std::int64_t make_table(sql_database& database, const std::string& source,
                        const std::vector<sql_column>& columns, const std::string& target,
                        const query_table_request& request, std::vector<std::string>& notes);

}  // namespace command
