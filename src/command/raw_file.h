// Unbuffered files and standard streams, binary on every system. Names are UTF-8. Failures throw
// `failure` with the file and the system's reason; a stop that was asked for throws `interrupted`.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace command {

class raw_file {
 public:
  static raw_file standard_input();
  static raw_file standard_output();
  /// An existing file or pipe, for reading.
  static raw_file open(const std::string& name);
  /// An existing file, for reading; anything else, which could keep the caller waiting, is refused.
  static raw_file open_regular(const std::string& name);
  /// An existing file, for writing from its beginning; messages name `shown`.
  static raw_file open_to_write(const std::string& name, const std::string& shown);
  /// A new file for writing and reading, with the rights that new files have or, when it is `secret`, for its
  /// owner alone where the system knows owners; fails when there is one already, with `taken` true.
  static raw_file make_new(const std::string& name, bool secret, bool& taken);
  /// A new file in the system's temporary folder that has gone when it is closed.
  static raw_file make_scratch();

  raw_file(raw_file&& other) noexcept;
  raw_file& operator=(raw_file&&) = delete;
  ~raw_file();

  /// The name that messages use.
  const std::string& name() const noexcept { return name_; }
  /// The C runtime's number, for a child that goes on with the file.
  int handle() const noexcept { return handle_; }

  /// Up to `count` bytes; 0 at the end alone.
  std::size_t read(char* bytes, std::size_t count);
  /// All bytes; throws `broken_pipe` when nobody reads them.
  void write(std::string_view bytes);
  /// Closes; a failure of it (a full disk that is told late) is thrown. The destructor closes in silence.
  void close();

  /// Whether it can be read a second time, and its size then.
  bool is_regular(std::uint64_t& bytes) const noexcept;
  /// The next byte that is read is the one at this position.
  void go_to(std::uint64_t position);

 private:
  raw_file(int handle, std::string name) : handle_(handle), name_(std::move(name)) {}

  /// For reading, whatever it is, without a wait for the other end of a pipe.
  static raw_file open_at_once(const std::string& name);

  int handle_;
  std::string name_;
};

/// The last error of a C function, in words.
std::string last_reason();

/// Waits until what was written to a file stands on the disk. Throws `failure`, which names `shown`.
void sync_file(const std::string& name, const std::string& shown);
/// Waits until the names in a folder stand on the disk, where the system can be asked for it.
void sync_folder(const std::string& name) noexcept;
/// Whether a program has the table open, this one included; false where that cannot be told.
bool is_in_use(const std::string& name) noexcept;
void remove_file(const std::string& name) noexcept;
/// A number that no other running process has.
unsigned long process_number() noexcept;

}  // namespace command
