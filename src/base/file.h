// The one seam to the file system. Everything that touches a file goes through `files()`, so that a test
// can put a failing or a stopping file system in its place. No operation throws: each answers whether
// it worked, and the reason is the system's last error (base/system_error.h).
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "base/text.h"

namespace ovf {

enum class seek_origin { begin, current, end };

/// Where the lock that stands for the right to make a file longer lies, far behind all bytes of a file.
inline constexpr std::int64_t growth_lock_position = std::int64_t{1} << 62;

/// What tells whether a file was written to, or another one stands under its name.
struct file_stamp {
  std::uint64_t volume = 0;
  std::uint64_t number = 0;  ///< of the file on its volume
  std::uint64_t bytes = 0;
  std::int64_t written = 0;  ///< when the last time, in the system's own count
  bool operator==(const file_stamp&) const = default;
  bool is_of_same_file(const file_stamp& other) const noexcept {
    return volume == other.volume && number == other.number;
  }
};

/// An open regular file with a position of its own. Closes itself; closing never fails visibly, since
/// nothing is buffered here.
class file {
 public:
  virtual ~file() = default;

  virtual bool size(std::uint64_t& bytes) noexcept = 0;
  virtual bool stamp(file_stamp& found) noexcept = 0;
  virtual bool seek(std::int64_t distance, seek_origin origin) noexcept = 0;
  /// Where the file is read or written next.
  virtual bool position(std::uint64_t& bytes) noexcept = 0;
  /// Reads up to the span's length and moves the position on; fewer bytes, down to 0, at the end.
  virtual bool read(std::span<std::byte> bytes, std::size_t& done) noexcept = 0;
  virtual bool write(std::span<const std::byte> bytes, std::size_t& done) noexcept = 0;
  /// Cuts or extends the file at the position.
  virtual bool set_end() noexcept = 0;
  /// Waits until what was written stands on the disk.
  virtual bool sync() noexcept = 0;
  /// Asks for the right to make the file longer, which one open file has at a time, of all that ask for it.
  /// False when another has it; a file system without locks gives it to everybody. Kept until it is given
  /// back or the file is closed. Not to be asked for again while it is kept.
  virtual bool claim_growth() noexcept = 0;
  virtual void give_back_growth() noexcept = 0;
};

enum class open_mode {
  read,          ///< an existing file, read only
  edit,          ///< an existing file, read and write
  edit_or_make,  ///< read and write, made when missing
  make_new,      ///< read and write, fails with `already_exists()` when there is one
  truncate,      ///< read and write, an existing file, emptied
  scratch,       ///< read and write, made exclusively, readable by its owner alone, shared with nobody
  make_copy,     ///< like scratch, but to stay: it shall take another file's place
  make_first,    ///< the same where nothing stands under the name yet, with the rights that new files have
  look           ///< like read, but a link is refused, and nobody sees that the file is in use
};

enum class file_kind { missing, regular, other };

class file_system {
 public:
  virtual ~file_system() = default;

  /// Null on failure. Folders, pipes and devices are refused. Others may read and write the file too
  /// while it is open, except where the mode says otherwise.
  virtual std::unique_ptr<file> open(wide_view name, open_mode mode) noexcept = 0;
  virtual file_kind kind(wide_view name) noexcept = 0;
  /// Of the file that the name leads to, links followed.
  virtual bool stamp(wide_view name, file_stamp& found) noexcept = 0;
  /// Waits until every further write bears another time than the stamp's: systems note the moment in steps of
  /// some milliseconds, in which several writes may fall. A time to come, as by another machine's clock, is
  /// not waited for, nor can be what is noted by the second, or by a clock that is behind.
  virtual void wait_past(const file_stamp& stamp) noexcept = 0;
  virtual bool remove(wide_view name) noexcept = 0;
  /// Puts `from` in the place of `to` in one step.
  virtual bool replace(wide_view from, wide_view to) noexcept = 0;
  /// Gives a copy, which `copy` has open as `from`, a name that no file has; fails with `already_exists()`
  /// when one has, and `copy` may be closed then.
  virtual bool name_first(std::unique_ptr<file>& copy, wide_view from, wide_view to) noexcept = 0;
  /// Puts a copy in the place of a file in one step: `copy` has `from` open and `own` has `to` open. Refused
  /// while anybody else has `to` open, and, as `is_other_file`, when the name leads to another file by now or
  /// the file is not as `expected` (null: whatever it is): nobody opens it between the look and the step.
  /// Then `own` stays as it was, `copy` may be closed. Else `own` has the new file open afterwards, and
  /// counts as its user.
  virtual bool replace_open(std::unique_ptr<file>& own, std::unique_ptr<file>& copy, wide_view from,
                            wide_view to, const file_stamp* expected) noexcept = 0;
  /// A name by which an open file can be opened once more, whatever somebody puts under its own meanwhile;
  /// empty where the system has none.
  virtual wide second_name(file& opened) noexcept = 0;
  /// The file that an existing name leads to in the end, links followed, as an absolute path.
  virtual bool resolve(wide_view name, wide& path) noexcept = 0;
  /// Gives `copy`, a new file of this user, the owner, group, permissions, access list and users' attributes
  /// of `old` as far as the system lets it. Where the group stays another one, or the list cannot be given,
  /// group and others get no rights; nobody runs it with its owner's or group's: nobody may do what he could
  /// not do before.
  virtual bool carry_rights(file& old, file& copy) noexcept = 0;
  /// Waits until a folder's entries stand on the disk.
  virtual bool sync_folder(wide_view folder) noexcept = 0;
  /// The system's folder for temporary files with a separator at its end; empty when there is none.
  virtual wide temporary_folder() = 0;
};

/// The file system in use.
file_system& files() noexcept;
/// The real one, whatever is in use.
file_system& system_files() noexcept;
/// Puts another one in use (null: the real one) and returns the one before; for tests, one thread.
file_system* use_files(file_system* other) noexcept;

/// Whether the code is what `open_mode::make_new` answers for a file that is there already.
bool already_exists(std::uint32_t code) noexcept;
/// Whether the code says that there is no such file.
bool is_missing(std::uint32_t code) noexcept;
/// Whether the code says that the name leads to another file than the one that is open, or that the file is
/// not as it was expected to be.
bool is_other_file(std::uint32_t code) noexcept;
/// Whether the code says that somebody has the file open.
bool is_in_use(std::uint32_t code) noexcept;

/// A name in `folder` that begins with `prefix` and is not taken at the moment of the call.
wide temporary_name(wide_view folder, wide_view prefix);
/// What the names of files begin with that listings leave out; empty where the system has no such rule.
wide_view hidden_prefix() noexcept;
/// The part of a path up to and including its last separator; empty when it has none.
wide_view folder_of(wide_view path) noexcept;
/// Whether a path says where it begins by itself, whatever the current folder.
bool is_absolute(wide_view path) noexcept;
/// The path with this system's separators: on Linux, names written on Windows have others.
wide with_own_separators(wide path);
/// The path with the current folder in front where it is relative.
wide absolute_path(wide_view path);

}  // namespace ovf
