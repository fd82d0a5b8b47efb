// What is wrong with a table's file.
#pragma once

#include <string>
#include <vector>

#include "table_view.h"
#include "verify/table_header.h"

namespace command {

struct finding {
  std::string what;
  bool is_damage = true;  ///< else it is no harm to the table
  LONG row = 0;           ///< 0: it is of the table, or a column
  std::string column = {};
};

struct check_result {
  bool is_read = true;            ///< else the system refused the file
  std::vector<finding> findings;  ///< of rows the first ones of each kind
  long long more = 0;             ///< further ones of rows
  LONG rows = 0;                  ///< that the header promises
  LONG rows_in_file = 0;          ///< as far as the file reaches
  std::vector<LONG> lost;         ///< of these the rows that cannot be read

  bool is_whole() const noexcept;
};

/// Of the header alone, as its bytes have it.
std::vector<finding> check_header(const table_header& header);
/// Of all of it. Throws `failure` where the file cannot be read at all.
check_result check_table(const std::string& file);

}  // namespace command
