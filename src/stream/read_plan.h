// What a request to read asks of a table, checked.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/table.h"
#include "ovfile/stream.h"
#include "stream/column_builder.h"

namespace ovf {

/// A request that cannot be met; the message says why.
class bad_request : public MyExceptionClass {
 public:
  using MyExceptionClass::MyExceptionClass;
};

struct read_plan {
  std::vector<std::uint64_t> fields;  ///< indexes, in the stream's order
  std::uint64_t first_row = 1;
  std::uint64_t rows = 0;
  std::uint64_t rows_per_batch = 0;  ///< 0: as it suits
  value_choices choices;
};

/// Throws bad_request.
read_plan plan_of(const OvStreamRequest& request, table& from);

/// The type of the batches, with its metadata.
type_description type_of(const read_plan& plan, table& from);

}  // namespace ovf
