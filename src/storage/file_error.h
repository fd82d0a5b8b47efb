// Failures of table files. What the file system refuses becomes a `file_error` whose text carries the
// system's code and message; what is wrong with a file or a request becomes a MyExceptionClass.
#pragma once

#include <cstdint>
#include <stdexcept>

#include "base/system_error.h"
#include "base/text.h"
#include "ovfile/exception.h"

namespace ovf {

/// `what()` is UTF-8.
class file_error : public std::runtime_error {
 public:
  explicit file_error(wide_view message) : file_error(message, last_system_error()) {}
  file_error(wide_view message, system_code code)
      : std::runtime_error(utf8_from_wide(message)), code_(code) {}

  /// The system's, as it was when this was thrown: unwinding may change the last error.
  system_code code() const noexcept { return code_; }

 private:
  system_code code_;
};

/// A header that no table can have, or no table at all.
[[noreturn]] void fail_not_a_table();
/// More atoms than the precision allows.
[[noreturn]] void fail_unrecognised();

/// Writes a text to the debug channel and throws it.
[[noreturn]] void fail_told(wide_view message);
/// A page of records cannot be held in memory, or not written from there.
inline constexpr wide_view cannot_cache = OLESTR("error caching page");

/// A text with %x and %s filled by the system's last error.
wide with_system_error(wide_view pattern);
/// Writes the filled text to the debug channel and throws it.
[[noreturn]] void fail_with_system_error(wide_view pattern);
/// Writes the filled text to the debug channel alone.
void note_system_error(wide_view pattern) noexcept;

/// A host's 32-bit integer for a count; std::out_of_range with `text` when it does not fit.
std::int32_t narrowed(std::uint64_t count, const char* text);
inline std::int32_t int_of(std::uint64_t count) { return narrowed(count, "ov_size_t_2_int"); }
inline std::int32_t long_of(std::uint64_t count) { return narrowed(count, "ov_size_t_2_long"); }

}  // namespace ovf
