// Columns on their way from a table's batches into a query's vectors.
#pragma once

#include "duckdb/duckdb_abi.h"
#include "sql/scanned_table.h"

namespace command {

struct column_form {
  bool is_text;
  bool is_float;       ///< the batches have numbers of 4 bytes
  bool is_widened;     ///< these go out as those of 8 bytes that their shortest digits say
  bool absent_is_nan;  ///< instead of null, for numbers
};

/// Copies the reader's rows of its i-th column, those that are chosen alone where there is a choice.
void copy_column(const duckdb::functions& library, const range_reader& reader, std::size_t i,
                 const column_form& form, duckdb::vector vector);

}  // namespace command
