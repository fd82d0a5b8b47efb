#include "refused_file.h"

#include <filesystem>
#include <system_error>

#include "failure.h"
#include "raw_file.h"
#include "replacement.h"
#include "utf8_path.h"

namespace command {

void refuse_unopenable_file(const std::string& name, bool to_change) {
  // The library has looked that it is a file: opening anything else could wait for ever.
  raw_file::open(name);
  if (to_change) raw_file::open_to_write(name, name);
  if (is_in_use(name)) throw failure("cannot open " + name + ": it is open in another program");
}

void refuse_unreplaceable_file(const std::string& name) {
  if (is_in_use(name)) throw failure("cannot replace " + name + ": it is open in another program");
  const replacement trial(name);
}

void refuse_unwritable_file(const std::string& name, const std::string& shown) {
  const std::string bytes(std::size_t{1} << 16, '\0');  // more than a header has
  std::error_code error;
  // The library removes what it could not write whole, where it can.
  if (std::filesystem::exists(path_of_utf8(name), error)) {
    raw_file trial = raw_file::open_to_write(name, shown);
    trial.write(bytes);
    trial.close();
    sync_file(name, shown);
  }
  // It tries there first whether there is room.
  raw_file::make_scratch().write(bytes);
}

}  // namespace command
