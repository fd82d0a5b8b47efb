// What a process holds of the system.
#pragma once

#include <cstddef>
#include <filesystem>

namespace ovtest {

/// Bytes that are this process's alone; 0 where leaks are found in another way.
std::size_t private_bytes();

/// Whether this process has the file open.
bool holds_file(const std::filesystem::path& path);

}  // namespace ovtest
