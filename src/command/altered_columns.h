// The columns that a table has after some are dropped, added and put in order.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "table_view.h"

namespace command {

/// As the user wrote it.
struct added_column {
  std::string name;
  std::optional<std::size_t> text_width;  ///< of a column of texts
  std::string value;                      ///< the default
};

struct alteration {
  std::vector<std::string> drop;
  std::vector<added_column> add;
  std::vector<std::string> order;
};

struct altered_column {
  LONG from;         ///< the table's column with its values; 0: it is new
  field_view field;  ///< its `column` is where it was
};

/// Takes NAME[:WIDTH][=DEFAULT] apart. Throws `wrong_usage`.
added_column parse_added_column(const std::string& argument);

/// All columns that the table shall have, in their order. Throws `failure` for an alteration that is not
/// possible.
std::vector<altered_column> altered_columns(const table_view& view, const alteration& wanted);

/// Throws `failure`.
void add_to_schema(IOvSchema& schema, const altered_column& column, const table_view& view);

}  // namespace command
