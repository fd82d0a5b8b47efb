// A table's file made anew: written as a copy beside it, it takes the file's place in one step. Whatever
// ends the work before that (a failure, the end of the process) leaves the file as it was.
//
//   file_replacement made(path);
//   if (!made.begin()) …                  // nowhere to make a copy
//   … write made.copy() …
//   if (!made.commit(own)) …              // refused: `own` goes on with the old file
#pragma once

#include <memory>
#include <optional>

#include "platform/file.h"

namespace ovf {

/// Failures are answered, not thrown; the system's last error tells the reason. The destructor deletes a
/// copy that was not put in place.
class file_replacement {
 public:
  /// `target`: an existing file. Where it is a link, the file behind the link is replaced.
  explicit file_replacement(wide target) : target_(std::move(target)) {}
  ~file_replacement();
  file_replacement(const file_replacement&) = delete;
  file_replacement& operator=(const file_replacement&) = delete;

  /// Makes the empty copy: beside the file, else in the folder for temporary files, else in the current
  /// folder.
  [[nodiscard]] bool begin() noexcept;
  /// The copy, open for reading and writing, from `begin` to `close` or `commit`.
  file& copy() noexcept { return *copy_; }
  /// Its absolute path, for writers that open it by themselves after `close`.
  const wide& copy_name() const noexcept { return copy_name_; }
  void close() noexcept { copy_.reset(); }

  /// What the file was like when its content was read, where that was before `begin`.
  void expect(const file_stamp& before) noexcept { before_ = before; }
  /// All but the last step: the copy is brought beside the file, gets its permissions and stands on the
  /// disk. Refused when the file was changed since it was read; `was_changed` tells that afterwards.
  [[nodiscard]] bool settle() noexcept;
  bool was_changed() const noexcept { return was_changed_; }
  /// Settles the copy and puts it in the file's place. Refused while anybody else has the file open. `own`
  /// is the caller's own open file: the old one if refused, else the new one.
  [[nodiscard]] bool commit(std::unique_ptr<file>& own) noexcept;
  /// The same for a caller who has closed the file.
  [[nodiscard]] bool commit() noexcept;

 private:
  bool make(wide_view folder);
  /// Copies a copy that could not be made beside the file there: only on one volume is it one step.
  bool bring_beside();
  void discard() noexcept;

  wide target_;  ///< the path behind links once the work has begun
  wide copy_name_;
  std::unique_ptr<file> copy_;
  std::optional<file_stamp> before_;
  bool beside_ = false;
  bool settled_ = false;
  bool was_changed_ = false;
};

}  // namespace ovf
