// The figures of a table's columns, to read and as JSON.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "number_stats.h"
#include "table_view.h"
#include "text_counter.h"

namespace command {

struct column_stats {
  field_view field;
  number_stats numbers;  ///< of a column of numbers
  text_counter texts;    ///< of one of texts
};

struct table_stats {
  std::uint64_t rows = 0;  ///< that were counted
  std::vector<column_stats> columns;
};

void append_stats_words(std::string& out, const table_view& view, const table_stats& stats);
void append_stats_json(std::string& out, const table_view& view, const table_stats& stats);

}  // namespace command
