#include "platform/debug_channel.h"

namespace ovf {

bool is_system_debug_output_on() noexcept { return IsDebuggerPresent() != 0; }

void write_system_debug_output(wide_view message) { OutputDebugStringW(wide(message).c_str()); }

}  // namespace ovf
