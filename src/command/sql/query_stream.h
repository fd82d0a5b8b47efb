// A query's rows as a stream of arrays, for a table to append.
#pragma once

#include <string>
#include <vector>

#include "ovfile/stream.h"
#include "sql/row_count.h"
#include "sql/sql_result.h"

namespace command {

struct stream_column {
  std::string name;
  bool is_text;     ///< the query gives it as text, else as numbers
  bool is_float;    ///< of 4 bytes instead of 8
  bool is_widened;  ///< these go on as those of 8 bytes that their shortest digits say
};

/// As many columns as the query has. What goes wrong while rows are fetched ends the stream with its words.
/// `count` receives how many rows have gone. It and the database must outlive the stream.
ovfile::arrow_stream stream_rows(sql_result rows, std::vector<stream_column> columns, row_count& count);

}  // namespace command
