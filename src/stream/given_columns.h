// The columns of a host's stream, each with the field of the table that has its name.
#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "engine/table.h"
#include "ovfile/ovfile.h"
#include "stream/column_writer.h"

namespace ovf {

/// Is told of every number that was put into a column (from 1), as a double.
using number_listener = std::function<void(LONG column, double value)>;

/// Throws `refusal`, with the name of the column where it is one.
class given_columns {
 public:
  /// Both outlive the columns; `listener` may be empty.
  given_columns(table& to, const number_listener& listener);

  void take_types(const ArrowSchema& schema);
  /// A batch of at most `room` rows, which lives until the next one is taken.
  void take_batch(const ArrowArray& batch, std::uint64_t room);
  /// Puts the values of the batch's rows `first` and so on into records. `rows_before` stand in front of the
  /// batch in the stream.
  void put(std::uint64_t rows_before, std::int64_t first, std::byte* records, std::size_t rows) const;

 private:
  struct column {
    column_type type;
    std::unique_ptr<column_writer> writer;
    column_span values;  ///< of the batch
  };

  column made_column(const ArrowSchema& type) const;
  std::uint64_t field_of(std::string_view name) const;
  value_listener heard(std::uint64_t field) const;

  table& table_;
  const number_listener& listener_;
  ansi_page page_;
  std::vector<column> columns_;
};

}  // namespace ovf
