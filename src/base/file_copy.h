// What one open file holds, copied into another.
#pragma once

#include <cstdint>

#include "base/file.h"

namespace ovf {

/// Copies what stands from `position` to the end of `from` to where `to` stands. False when not all of it
/// arrived; the system's last error tells why.
bool copy_from(file& from, std::uint64_t position, file& to);

/// Writes all of the bytes where the file stands.
bool write_whole(file& to, std::span<const std::byte> bytes) noexcept;

}  // namespace ovf
