#include "base/file_replacement.h"

#include <utility>

#include "base/file_copy.h"
#include "base/system_error.h"

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

constexpr int most_tries = 5;

wide name_beside(wide_view folder) {
  const wide prefix = wide(hidden_prefix()) + OLESTR("NEW");
  return absolute_path(temporary_name(folder, prefix));
}

/// Whether a file can be made in the folder; else the system's last error tells why not.
bool takes_files(wide_view folder) {
  const wide name = name_beside(folder);
  if (files().open(name, open_mode::make_copy) == nullptr) return false;
  return files().remove(name);
}

}  // namespace

file_replacement::~file_replacement() { discard(); }

bool file_replacement::begin() noexcept try {
  wide behind_links;
  if (!files().resolve(target_, behind_links)) return false;
  target_ = std::move(behind_links);
  if (file_stamp now; !before_) {
    if (!files().stamp(target_, now)) return false;
    before_ = now;
    files().wait_past(now);
  }
  beside_ = make(folder_of(target_), open_mode::make_copy);
  return beside_ || make_elsewhere();
} catch (...) {
  return false;
}

bool file_replacement::begin_beside() noexcept try {
  wide behind_links;
  replaces_ = files().resolve(target_, behind_links);
  if (replaces_) {
    target_ = std::move(behind_links);
  } else if (!is_missing(last_system_error())) {
    return false;
  }
  takes_any_ = true;
  beside_ = make(folder_of(target_), replaces_ ? open_mode::make_copy : open_mode::make_first);
  return beside_;
} catch (...) {
  return false;
}

bool file_replacement::make(wide_view folder, open_mode mode) {
  wide name = name_beside(folder);
  copy_ = files().open(name, mode);
  if (copy_ == nullptr) return false;
  copy_name_ = std::move(name);
  if (copy_->stamp(made_)) return true;
  discard();
  return false;
}

bool file_replacement::make_elsewhere() {
  const system_code reason = last_system_error();
  const wide temporary = files().temporary_folder();
  if ((!temporary.empty() && make(temporary, open_mode::make_copy)) || make({}, open_mode::make_copy)) {
    if (takes_files(folder_of(target_))) return true;
    discard();
    return false;
  }
  set_last_system_error(reason);
  return false;
}

const wide& file_replacement::writer_name() noexcept {
  try {
    if (copy_ != nullptr) writer_name_ = files().second_name(*copy_);
  } catch (...) {
    writer_name_.clear();
  }
  if (!writer_name_.empty()) return writer_name_;
  copy_.reset();
  return copy_name_;
}

bool file_replacement::bring_beside() {
  const passing_file elsewhere{std::exchange(copy_name_, {}), std::move(copy_)};
  if (!make(folder_of(target_), open_mode::make_copy)) return false;
  beside_ = true;
  return copy_from(*elsewhere.opened, 0, *copy_);
}

bool file_replacement::open_copy() {
  constexpr system_code not_there = 2;  // on every system
  file_stamp found;
  copy_ = files().open(copy_name_, open_mode::edit);
  if (copy_ == nullptr) return false;
  if (copy_->stamp(found) && found.is_of_same_file(made_)) return true;
  copy_.reset();
  set_last_system_error(not_there);
  return false;
}

bool file_replacement::take_rights() {
  old_ = files().open(target_, open_mode::look);
  if (old_ == nullptr) return takes_any_ && is_missing(last_system_error());
  // Another file under the name is somebody's who would get the content of this one with its rights.
  if (file_stamp now; !takes_any_) {
    if (!old_->stamp(now)) return false;
    was_changed_ = now != before_;
    if (was_changed_) return false;
  }
  return files().carry_rights(*old_, *copy_);
}

bool file_replacement::is_as_expected() {
  // Now, while the caller still has the file open: a system may note the last write when that ends.
  file_stamp now;
  if (!files().stamp(target_, now)) return false;
  was_changed_ = now != before_;
  return !was_changed_;
}

bool file_replacement::settle() noexcept try {
  if (settled_) return true;
  if ((copy_ == nullptr && !open_copy()) || (!beside_ && !bring_beside())) return false;
  if (!take_rights() || !copy_->sync()) return false;
  settled_ = takes_any_ || is_as_expected();
  return settled_;
} catch (...) {
  return false;
}

bool file_replacement::commit(std::unique_ptr<file>& own) noexcept {
  if (!settle()) return false;
  old_.reset();
  if (!files().replace_open(own, copy_, copy_name_, target_, expected())) return refused();
  finish();
  return true;
}

bool file_replacement::commit() noexcept {
  for (int tries = 1; settle(); ++tries) {
    if (replace_or_name()) {
      finish();
      return true;
    }
    const system_code reason = last_system_error();
    const bool is_another = is_other_file(reason) || (old_ == nullptr && already_exists(reason));
    if (!takes_any_ || !is_another || tries == most_tries) return refused();
    settled_ = false;
  }
  return false;
}

bool file_replacement::replace_or_name() {
  if (old_ != nullptr) return files().replace_open(old_, copy_, copy_name_, target_, expected());
  return files().name_first(copy_, copy_name_, target_);
}

bool file_replacement::refused() noexcept {
  const system_code reason = last_system_error();
  was_changed_ = !takes_any_ && is_other_file(reason);
  old_.reset();  // others would see that it is in use
  set_last_system_error(reason);
  return false;
}

void file_replacement::finish() noexcept {
  copy_name_.clear();
  copy_.reset();
  old_.reset();
  // The file stands under its name either way; a folder that cannot wait leaves the moment to the system.
  (void)files().sync_folder(folder_of(target_));
}

void file_replacement::discard() noexcept {
  if (copy_name_.empty()) return;
  copy_.reset();
  remove_quietly(copy_name_);
  copy_name_.clear();
}

}  // namespace ovf
