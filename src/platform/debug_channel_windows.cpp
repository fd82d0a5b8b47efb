#include "platform/debug_channel.h"

namespace ovf {

void write_system_debug_output(wide_view message) { OutputDebugStringW(wide(message).c_str()); }

}  // namespace ovf
