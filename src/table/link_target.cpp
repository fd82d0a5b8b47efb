#include "table/link_target.h"

#include "base/file.h"

namespace ovf {
namespace {

constexpr wide_view mark = OLESTR("LINK");
constexpr wide_view end_mark = OLESTR(" .");

}  // namespace

std::optional<wide> link_target(wide_view description, wide_view path) {
  if (!description.starts_with(mark)) return std::nullopt;
  wide_view target = description.substr(mark.size());
  target = target.substr(0, target.find_last_not_of(OLESTR(' ')) + 1);
  if (target.ends_with(end_mark)) target.remove_suffix(end_mark.size());
  if (is_absolute(target)) return wide(target);
  return wide(folder_of(path)).append(target);
}

}  // namespace ovf
