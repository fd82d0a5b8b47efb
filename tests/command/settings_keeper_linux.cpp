// Settings and mark are files of the test's own already, through the environment.
#include "command/settings_keeper.h"

#include <cstdlib>
#include <filesystem>

#include "support/file_bytes.h"

namespace ovtest {
namespace {

std::filesystem::path mark() {
  return std::filesystem::path(std::getenv("OVFILE_ATOMS")) / "MaxFieldNameLength";
}

}  // namespace

settings_keeper::settings_keeper() {
  std::filesystem::create_directory(mark().parent_path());
  write_bytes(mark(), {});
}

settings_keeper::~settings_keeper() = default;

void settings_keeper::unmark() { std::filesystem::remove(mark()); }

bool settings_keeper::is_marked() { return std::filesystem::exists(mark()); }

}  // namespace ovtest
