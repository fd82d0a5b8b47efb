// What is wrong with a host's stream.
#pragma once

#include <cstdint>

#include "base/text.h"

namespace ovf {

/// Of the stream, a batch or a column; whoever knows which column it is puts its name in front.
struct refusal {
  wide reason;
};

[[noreturn]] inline void refuse(wide_view reason) { throw refusal{wide(reason)}; }

/// A value that the column cannot hold, of a row of the batch.
struct bad_value {
  std::int64_t row;
  wide reason;
};

}  // namespace ovf
