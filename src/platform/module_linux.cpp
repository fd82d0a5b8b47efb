#include "platform/module.h"
#include "platform/module_strings.h"

namespace ovf {

std::optional<wide> string_resource(unsigned number) {
  switch (number) {
    case 100:
      return OLESTR("") OVFILE_STRING_100;
    case 101:
      return OLESTR("") OVFILE_STRING_101;
    default:
      return std::nullopt;
  }
}

}  // namespace ovf
