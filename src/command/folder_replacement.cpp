#include "folder_replacement.h"

#include <filesystem>
#include <system_error>

#include "failure.h"
#include "raw_file.h"
#include "utf8_path.h"

namespace command {
namespace {

namespace fs = std::filesystem;

void check_free(const std::string& target) {
  std::error_code error;
  const fs::path path = path_of_utf8(target);
  if (!fs::exists(fs::symlink_status(path, error))) return;
  if (fs::is_directory(fs::symlink_status(path, error)) && fs::is_empty(path, error)) return;
  throw failure("cannot write " + target + ": there is something of that name already");
}

std::string without_end_separators(std::string name) {
  while (name.size() > 1 && (name.back() == '/' || name.back() == '\\')) name.pop_back();
  return name;
}

/// Waits until the folder and all in it stand on the disk.
void sync_content(const std::string& folder, const std::string& shown) {
  for (const auto& entry : fs::recursive_directory_iterator(path_of_utf8(folder))) {
    const std::string name = utf8_of_path(entry.path());
    if (entry.is_regular_file()) sync_file(name, shown);
    if (entry.is_directory()) sync_folder(name);
  }
  sync_folder(folder);
}

}  // namespace

folder_replacement::folder_replacement(const std::string& target) : target_(without_end_separators(target)) {
  if (target_.empty()) throw failure("the name of the folder to write is empty");
  check_free(target_);
  const fs::path folder = path_of_utf8(target_).parent_path();
  for (int number = 0;; ++number) {
    const std::string leaf = ".NEW" + std::to_string(process_number()) + "-" + std::to_string(number);
    name_ = utf8_of_path(folder / path_of_utf8(leaf));
    std::error_code error;
    if (fs::create_directory(path_of_utf8(name_), error)) return;
    if (error) throw failure("cannot write " + target_ + ": " + error.message());
  }
}

folder_replacement::~folder_replacement() {
  std::error_code ignored;
  if (!name_.empty()) fs::remove_all(path_of_utf8(name_), ignored);
}

void folder_replacement::commit() {
  sync_content(name_, target_);
  check_free(target_);
  std::error_code error;
  fs::remove(path_of_utf8(target_), error);  // an empty one would be in the way on some systems
  fs::rename(path_of_utf8(name_), path_of_utf8(target_), error);
  if (error) throw failure("cannot write " + target_ + ": " + error.message());
  name_.clear();
  sync_folder(utf8_of_path(path_of_utf8(target_).parent_path()));
}

}  // namespace command
