#include "refused_file.h"

#include "failure.h"
#include "raw_file.h"
#include "replacement.h"

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

}  // namespace command
