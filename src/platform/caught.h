// What keeps exceptions inside the functions that hosts call by name.
#pragma once

#include <new>

#include "ovfile/ovfile.h"

namespace ovf {

/// Runs a body whose exceptions must not reach the caller.
template <class Body>
HRESULT caught(Body&& body) noexcept {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_FAIL;
  }
}

}  // namespace ovf
