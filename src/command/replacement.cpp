#include "replacement.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "failure.h"
#include "raw_file.h"
#include "utf8_path.h"

namespace command {
namespace {

namespace fs = std::filesystem;

/// Where the new file shall end up.
std::string resolve(const std::string& target) {
  std::error_code error;
  const fs::path path = path_of_utf8(target);
  if (target.empty()) throw failure("the name of the file to write is empty");
  const fs::file_status kind = fs::status(path, error);
  if (fs::exists(kind) && !fs::is_regular_file(kind)) {
    throw failure("cannot write " + target + ": it is not a regular file");
  }
  if (!fs::is_symlink(fs::symlink_status(path, error))) return target;
  const fs::path end = fs::canonical(path, error);
  if (error) throw failure("cannot write " + target + ": " + error.message());
  return utf8_of_path(end);
}

/// Makes the file under the first name that is free. What takes another file's place may hold what few
/// shall read, so nobody else reads it before it has that file's rights.
std::string make_beside(const std::string& target, const std::string& shown) {
  // Told at once, not when the work is done.
  if (is_in_use(target)) throw failure("cannot replace " + shown + ": it is open in another program");
  std::error_code error;
  const bool replaces = fs::exists(path_of_utf8(target), error);
  const fs::path folder = path_of_utf8(target).parent_path();
  for (int number = 0;; ++number) {
    const std::string leaf = ".NEW" + std::to_string(process_number()) + "-" + std::to_string(number);
    std::string name = utf8_of_path(folder / path_of_utf8(leaf));
    bool taken = false;
    try {
      raw_file::make_new(name, replaces, taken).close();
      return name;
    } catch (const failure&) {
      if (taken) continue;
      const char* const words = replaces ? ": no file can be made in its folder: " : ": ";
      throw failure((replaces ? "cannot replace " : "cannot create ") + shown + words + last_reason());
    }
  }
}

}  // namespace

replacement::replacement(const std::string& target)
    : shown_(target), target_(resolve(target)), name_(make_beside(target_, shown_)) {}

replacement::~replacement() {
  if (!committed_) remove_file(name_);
}

void replacement::commit() {
  throw_if_interrupted();
  sync_file(name_, shown_);
  replace_file(name_, target_, shown_);
  committed_ = true;
}

bool ends_in(const std::string& name, std::string_view suffix) {
  if (name.size() < suffix.size()) return false;
  return std::equal(suffix.rbegin(), suffix.rend(), name.rbegin(), [](char want, char have) {
    return want == (have >= 'A' && have <= 'Z' ? static_cast<char>(have - 'A' + 'a') : have);
  });
}

bool is_named_as_table(const std::string& name) { return ends_in(name, ".ovt"); }

bool is_named_as_csv(const std::string& name) { return ends_in(name, ".csv"); }

bool same_file(const std::string& left, const std::string& right) {
  std::error_code error;
  return fs::equivalent(path_of_utf8(left), path_of_utf8(right), error) && !error;
}

}  // namespace command
