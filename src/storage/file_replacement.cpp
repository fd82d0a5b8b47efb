#include "storage/file_replacement.h"

#include <utility>

#include "platform/system_error.h"
#include "storage/file_copy.h"

namespace ovf {
namespace {

/// Deletes the file; the system's last error stays.
void remove_quietly(wide_view name) noexcept {
  const system_code reason = last_system_error();
  files().remove(name);
  set_last_system_error(reason);
}

/// An open file that is deleted at the end, whatever ends the work on it.
struct passing_file {
  wide name;
  std::unique_ptr<file> opened;

  ~passing_file() {
    opened.reset();
    remove_quietly(name);
  }
};

}  // namespace

file_replacement::~file_replacement() { discard(); }

bool file_replacement::begin() noexcept try {
  wide behind_links;
  if (!files().resolve(target_, behind_links)) return false;
  target_ = std::move(behind_links);
  if (file_stamp now; !before_) {
    if (!files().stamp(target_, now)) return false;
    before_ = now;
  }
  beside_ = make(folder_of(target_));
  if (beside_) return true;
  const system_code reason = last_system_error();
  const wide temporary = files().temporary_folder();
  if ((!temporary.empty() && make(temporary)) || make({})) return true;
  set_last_system_error(reason);
  return false;
} catch (...) {
  return false;
}

bool file_replacement::make(wide_view folder) {
  const wide prefix = wide(hidden_prefix()) + OLESTR("NEW");
  wide name = absolute_path(temporary_name(folder, prefix));
  copy_ = files().open(name, open_mode::make_copy);
  if (copy_ == nullptr) return false;
  copy_name_ = std::move(name);
  return true;
}

bool file_replacement::bring_beside() {
  const passing_file elsewhere{std::exchange(copy_name_, {}), std::move(copy_)};
  if (!make(folder_of(target_))) return false;
  beside_ = true;
  return copy_from(*elsewhere.opened, 0, *copy_);
}

bool file_replacement::settle() noexcept try {
  if (settled_) return true;
  if (copy_ == nullptr) copy_ = files().open(copy_name_, open_mode::edit);
  if (copy_ == nullptr || (!beside_ && !bring_beside())) return false;
  if (!files().carry_rights(target_, copy_name_) || !copy_->sync()) return false;
  // Now, while the caller still has the file open: a system may note the last write when that ends.
  file_stamp now;
  if (!files().stamp(target_, now)) return false;
  was_changed_ = now != before_;
  settled_ = !was_changed_;
  return settled_;
} catch (...) {
  return false;
}

bool file_replacement::commit(std::unique_ptr<file>& own) noexcept try {
  if (!settle()) return false;
  if (!files().replace_open(own, copy_, copy_name_, target_)) return false;
  copy_name_.clear();
  copy_.reset();
  // The file stands under its name either way; a folder that cannot wait leaves the moment to the system.
  (void)files().sync_folder(folder_of(target_));
  return true;
} catch (...) {
  return false;
}

bool file_replacement::commit() noexcept {
  std::unique_ptr<file> nobody;
  return commit(nobody);
}

void file_replacement::discard() noexcept {
  if (copy_name_.empty()) return;
  copy_.reset();
  remove_quietly(copy_name_);
}

}  // namespace ovf
