// What a file is, from the few bytes that tell: its precision and its byte order.
#pragma once

#include "storage/byte_order.h"
#include "storage/precision.h"

namespace ovf {

struct recognition {
  bool is_double = false;
  byte_order order = byte_order::native;
};

/// Looks for the precision marks, and for a plausible field count in a file without a mark (an older
/// single-precision file). Throws file_error "cannot open file NAME", and MyExceptionClass "Not a valid
/// orvexa table" or "Unrecognised file type.".
recognition recognise(wide_view name);

/// Whether a file without a mark that counts so many atoms in that byte order is found to have that order.
bool count_tells_order(std::size_t atoms, byte_order order) noexcept;

}  // namespace ovf
