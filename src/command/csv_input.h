// The bytes of a CSV, twice: a regular file is read again, anything else (standard input, a pipe) is
// copied to a temporary file while it is read the first time.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "raw_file.h"

namespace command {

/// Bytes in order.
class byte_source {
 public:
  virtual ~byte_source() = default;
  /// Up to `count` bytes; 0 at the end alone. Throws `failure`.
  virtual std::size_t read(char* bytes, std::size_t count) = 0;
};

class csv_input final : public byte_source {
 public:
  /// `-` is standard input. Throws `failure`.
  explicit csv_input(const std::string& name);

  const std::string& name() const noexcept { return file_.name(); }
  /// The number of bytes; 0 while it is not known.
  std::uint64_t size() const noexcept { return copy_ && !from_copy_ ? 0 : size_; }

  std::size_t read(char* bytes, std::size_t count) override;
  /// Goes back to the first byte, after everything was read once.
  void start_again();

 private:
  raw_file file_;
  std::optional<raw_file> copy_;
  bool from_copy_ = false;
  std::uint64_t size_ = 0;
};

}  // namespace command
