// The first of an import's two passes: reads the whole CSV, writes nothing, and comes back with the
// table to make, or with the first thing that is wrong.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "csv_input.h"
#include "csv_reader.h"
#include "implicit_field.h"
#include "import_request.h"

namespace command {

struct import_plan {
  bool single = false;
  std::string description;              ///< UTF-8; empty: the library's own
  std::vector<planned_field> stored;    ///< one for each column of the CSV
  std::vector<planned_field> implicit;  ///< behind them, where they have no places
  std::uint64_t rows = 0;
  std::vector<std::string> notes;  ///< what was changed, for the user
};

/// The implicit fields that the user asked for. Throws `failure`, also for a name longer than `longest`.
std::vector<planned_field> plan_implicits(const import_request& request, std::size_t longest);

/// Goes to the row that has the names of the columns, behind lines of nothing or of blanks; false where there
/// is none.
bool next_header(csv_reader& reader);

/// Throws `failure` with the place where a row has not as many cells as there are columns.
void check_cell_count(const csv_reader& reader, const std::string& file, std::size_t columns);

/// Throws `failure`.
import_plan scan_csv(csv_input& input, const import_request& request);

}  // namespace command
