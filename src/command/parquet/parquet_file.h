// Parquet files, which the SQL database reads and writes.
#pragma once

#include <string>

#include "sql/sql_database.h"

namespace command {

/// Whether a file's name says that it holds Parquet.
bool is_named_as_parquet(const std::string& name);
/// Whether it does, or is a folder, where such files may be.
bool is_parquet(const std::string& name);
bool is_named_as_json(const std::string& name);

/// Runs a COPY that writes `file`, which takes the place of `target` and is not known to the user.
/// Throws what sql_database.h lists.
void write_for(sql_database& database, const std::string& statement, const std::string& file,
               const std::string& target);

/// Makes the file `target`, or leaves it as it was, from the rows of a query; `option` is one more of the
/// COPY that writes it. Throws what sql_database.h lists.
void write_parquet(sql_database& database, const std::string& query, const std::string& target,
                   const std::string& option = {});

}  // namespace command
