// SHA-512 (FIPS 180-4), and the way in which package registries write it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "raw_file.h"

namespace command {

class sha512 {
 public:
  using digest = std::array<std::uint8_t, 64>;

  void add(std::string_view bytes);
  /// The digest of all that was added; nothing can be added any more.
  digest finish();

 private:
  static constexpr std::size_t block = 128;

  void take_block(const char* bytes);

  std::array<std::uint64_t, 8> state_ = {0x6A09E667F3BCC908, 0xBB67AE8584CAA73B, 0x3C6EF372FE94F82B,
                                         0xA54FF53A5F1D36F1, 0x510E527FADE682D1, 0x9B05688C2B3E6C1F,
                                         0x1F83D9ABFB41BD6B, 0x5BE0CD19137E2179};
  std::uint64_t bytes_ = 0;
  std::string rest_;  ///< what is no whole block yet
};

/// "sha512-" and the digest in base 64.
std::string integrity_of(const sha512::digest& digest);
/// That of all that can still be read from a file.
std::string integrity_of(raw_file& file);
/// Whether a text can be one.
bool is_integrity(std::string_view text) noexcept;

}  // namespace command
