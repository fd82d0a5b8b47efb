// For callers that let a schema refuse fields without a word.
#pragma once

#include <new>

#include "ovfile/ovfile.h"

namespace ovf {

/// Throws std::bad_alloc when the status of a call says that memory ran out; everything else is let go.
inline void only_memory_counts(HRESULT status) {
  if (status == E_OUTOFMEMORY) throw std::bad_alloc();
}

}  // namespace ovf
