// A file made anew: written as a copy beside it, it takes the file's place in one step. Whatever ends the
// work before that (a failure, the end of the process) leaves the file as it was.
//
//   file_replacement made(path);
//   if (!made.begin()) …                  // nowhere to make a copy
//   … write made.copy(), or what made.writer_name() leads to …
//   if (!made.commit(own)) …              // refused: `own` goes on with the old file
//
// The copy goes by its open file from its making to the last step: who may change the folder can put another
// file, or a link, under its name, and gains nothing by it.
#pragma once

#include <memory>
#include <optional>

#include "base/file.h"

namespace ovf {

/// Failures are answered, not thrown; the system's last error tells the reason. The destructor deletes a
/// copy that was not put in place.
class file_replacement {
 public:
  /// Where it is a link, the file behind the link is replaced.
  explicit file_replacement(wide target) : target_(std::move(target)) {}
  ~file_replacement();
  file_replacement(const file_replacement&) = delete;
  file_replacement& operator=(const file_replacement&) = delete;

  /// Makes the empty copy of an existing file: beside it, else in the folder for temporary files, else in the
  /// current folder. Not elsewhere where no file can be made beside it: there the work would end in vain.
  [[nodiscard]] bool begin() noexcept;
  /// Makes the empty copy beside the target, which need not be there: the new file has the rights of new
  /// files then. What the target is at the end is replaced, also when somebody changed or made it meanwhile.
  [[nodiscard]] bool begin_beside() noexcept;
  /// Whether there was a file to replace when the work began.
  bool replaces() const noexcept { return replaces_; }
  /// The copy, open for reading and writing, from `begin` to `writer_name` or `commit`.
  file& copy() noexcept { return *copy_; }
  /// Its absolute path.
  const wide& copy_name() const noexcept { return copy_name_; }
  /// A name for those who open the copy by themselves to write it. From here on they alone do.
  const wide& writer_name() noexcept;

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
  bool make(wide_view folder, open_mode mode);
  bool make_elsewhere();
  /// Opens the copy again that somebody wrote by its name; another file under it is refused.
  bool open_copy();
  /// Copies a copy that could not be made beside the file there: only on one volume is it one step.
  bool bring_beside();
  /// Gives the copy the rights of what it replaces.
  bool take_rights();
  bool is_as_expected();
  bool replace_or_name();
  const file_stamp* expected() const noexcept { return takes_any_ ? nullptr : &*before_; }
  /// False, and what is known of the reason is noted.
  bool refused() noexcept;
  void finish() noexcept;
  void discard() noexcept;

  wide target_;  ///< the path behind links once the work has begun
  wide copy_name_;
  wide writer_name_;
  std::unique_ptr<file> copy_;
  file_stamp made_;            ///< the copy as it was made
  std::unique_ptr<file> old_;  ///< what the copy has its rights of
  std::optional<file_stamp> before_;
  bool beside_ = false;
  bool settled_ = false;
  bool replaces_ = true;
  bool takes_any_ = false;  ///< whatever stands under the name at the end
  bool was_changed_ = false;
};

}  // namespace ovf
