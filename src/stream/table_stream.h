// Whole columns of a table by batches, in both directions.
//
//   read_plan, read_types    what a request asks for, and the types of the answer
//   table_stream_read        the stream that hands out batches
//   column_builder           columns out of records: numbers, texts, dictionaries of texts
//   array_export             their memory, handed over to hosts
//   table_stream_append      rows of a host's stream into a table
//   given_columns            its columns and the table's fields, brought together by their names
//   array_import             a host's types and arrays, checked before a value is read
//   column_writer            values of a host's column into records
//   ansi_text                the code page of files, and UTF-8
#pragma once

#include <functional>
#include <memory>

#include "stream/given_columns.h"
#include "stream/read_plan.h"
#include "stream/table_owner.h"

namespace ovf {

/// Makes a stream of what the plan asks of the table that is open now. Throws and leaves `out` as it was.
void read_table(std::unique_ptr<table_owner> from, const read_plan& plan, ArrowArrayStream& out);

/// Who hears of rows while they are appended; each may be empty. The latter two may throw to stop that.
struct append_watch {
  number_listener numbers;
  std::function<void(std::uint64_t rows)> rows;  ///< so many more were put
  std::function<void()> finished;                ///< all were put, and none counts yet
};

/// Appends the rows of a stream, which stays the caller's to release, and answers how many they were.
/// Throws MyExceptionClass for what does not fit, with column and row; whatever it throws, the table has
/// the rows that it had.
std::uint64_t append_to_table(const table_owner& to, ArrowArrayStream& from, const append_watch& watch);

}  // namespace ovf
