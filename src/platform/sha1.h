// SHA-1 digests: the system's cryptography provider on Windows, written out on Linux. For telling tables
// apart, not for security.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace ovf {

/// The provider cannot be had.
struct sha1_unavailable {};
/// A digest cannot be begun or go on.
struct sha1_failed {};

/// One digest in the making.
class sha1 {
 public:
  using digest = std::array<std::uint8_t, 20>;

  /// Throws sha1_unavailable, sha1_failed.
  sha1();
  ~sha1();
  sha1(const sha1&) = delete;
  sha1& operator=(const sha1&) = delete;

  /// Throws sha1_failed.
  void add(std::span<const std::byte> bytes);
  /// Ends it; nothing can be added afterwards. Throws sha1_failed.
  digest finish();

 private:
  struct state;
  std::unique_ptr<state> state_;
};

}  // namespace ovf
