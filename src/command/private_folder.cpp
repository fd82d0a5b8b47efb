#include "private_folder.h"

#include "failure.h"

namespace command {

std::optional<private_folder> try_private_folder(const std::string& purpose) {
  try {
    return std::optional<private_folder>(std::in_place, purpose);
  } catch (const failure&) {
    return {};
  }
}

}  // namespace command
