#include "platform/object.h"

namespace ovf {

std::atomic<long>& module_lock_count() noexcept {
  static std::atomic<long> count{0};
  return count;
}

}  // namespace ovf
