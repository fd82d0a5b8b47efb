// Whole columns of a table by batches, in both directions.
//
//   read_plan, read_types    what a request asks for, and the types of the answer
//   table_stream_read        the stream that hands out batches
//   column_builder           columns out of records: numbers, texts, dictionaries of texts
//   array_export             their memory, handed over to hosts
//   table_stream_append      rows of a host's stream into a table
//   array_import             a host's types and arrays, checked before a value is read
//   column_writer            values of a host's column into records
//   ansi_text                the code page of files, and UTF-8
#pragma once

#include <functional>
#include <memory>

#include "stream/read_plan.h"
#include "stream/table_owner.h"

namespace ovf {

/// Makes a stream of what the plan asks of the table that is open now. Throws and leaves `out` as it was.
void read_table(std::unique_ptr<table_owner> from, const read_plan& plan, ArrowArrayStream& out);

/// Is told of every number that was put into a column (from 1), as a double.
using number_listener = std::function<void(LONG column, double value)>;

/// Appends the rows of a stream, which stays the caller's to release, and answers how many they were.
/// `listener` may be empty. Throws MyExceptionClass for what does not fit, with column and row; whatever
/// it throws, the table has the rows that it had.
std::uint64_t append_to_table(const table_owner& to, ArrowArrayStream& from, const number_listener& listener);

}  // namespace ovf
