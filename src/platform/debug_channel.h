// The system's debug output: OutputDebugStringW on Windows; on Linux lines on standard error when the
// environment sets OVFILE_DEBUG, else nothing.
#pragma once

#include <functional>

#include "base/text.h"

namespace ovf {

/// Writes one message. Never throws.
void debug_output(wide_view message) noexcept;

/// Whether anybody hears what is written: for who would have to collect it first.
bool is_debug_output_heard() noexcept;

/// Sends messages to `listener` instead until it is set empty again; for tests.
void listen_to_debug_output(std::function<void(wide_view)> listener);

/// Writes to the system's channel, whoever listens.
void write_system_debug_output(wide_view message);
/// Whether the system's channel goes anywhere.
bool is_system_debug_output_on() noexcept;

}  // namespace ovf
