#include "failure.h"

#include <new>

#include "ovfile/smart.h"

namespace command {

std::string words_of(const std::exception& error) {
  const auto* const call = dynamic_cast<const ovfile::error*>(&error);
  const bool lacked_memory = dynamic_cast<const std::bad_alloc*>(&error) != nullptr ||
                             (call != nullptr && call->status() == E_OUTOFMEMORY);
  return lacked_memory ? "there is not enough memory" : error.what();
}

}  // namespace command
