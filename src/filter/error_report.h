// Failures that hosts can read: the error information of the calling thread.
#pragma once

#include "filter/characters.h"

namespace ovf::filter {

/// Becomes the thread's error information, source "OvFilter". Where that cannot be, nothing is published.
void report(REFIID iid, const wide& message) noexcept;

}  // namespace ovf::filter
