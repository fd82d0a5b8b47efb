// The system's last error code, and its text. Code 0 is success.
#pragma once

#include <cstdint>

#include "base/text.h"

namespace ovf {

using system_code = std::uint32_t;

/// errno on Linux, GetLastError on Windows; per thread.
system_code last_system_error() noexcept;
void set_last_system_error(system_code code) noexcept;

/// The last error as a component status, always a failure.
HRESULT last_error_status() noexcept;

/// The system's message for a code, in its neutral language, without inserts and line ends.
wide system_message(system_code code);
/// The system's message for a component status such as DISP_E_TYPEMISMATCH.
wide status_message(HRESULT status);

}  // namespace ovf
