#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <vector>

#include "loaded_library.h"

namespace command {
namespace {

namespace fs = std::filesystem;

using file_header = ElfW(Ehdr);
using segment_header = ElfW(Phdr);

bool is_inside(std::uint64_t offset, std::uint64_t bytes, std::uint64_t size) {
  return offset <= size && bytes <= size - offset;
}

bool is_of_this_system(const file_header& header) {
  const file_header mine{};
  return std::memcmp(header.e_ident, ELFMAG, SELFMAG) == 0 &&
         header.e_ident[EI_CLASS] == (sizeof mine.e_entry == 8 ? ELFCLASS64 : ELFCLASS32) &&
         header.e_phentsize == sizeof(segment_header);
}

/// The loader maps what the headers promise, and touching what is not there ends the process: a file that
/// was cut off is found before. What is no library at all is left to the loader, which tells it well.
bool is_cut_off(const std::string& path) {
  std::error_code error;
  const std::uint64_t size = fs::file_size(path, error);
  std::ifstream file(path, std::ios::binary);
  file_header header{};
  if (error || !file.read(reinterpret_cast<char*>(&header), sizeof header)) return false;
  if (!is_of_this_system(header)) return false;
  const std::uint64_t sections = std::uint64_t{header.e_shnum} * header.e_shentsize;
  std::vector<segment_header> segments(header.e_phnum);
  const std::uint64_t bytes = segments.size() * sizeof(segment_header);
  if (!is_inside(header.e_shoff, sections, size) || !is_inside(header.e_phoff, bytes, size)) return true;
  file.seekg(static_cast<std::streamoff>(header.e_phoff));
  file.read(reinterpret_cast<char*>(segments.data()), static_cast<std::streamsize>(bytes));
  for (const segment_header& segment : segments) {
    if (!is_inside(segment.p_offset, segment.p_filesz, size)) return true;
  }
  return false;
}

/// The loader's words, without the name that they mostly begin with.
std::string loader_reason(const std::string& path) {
  const char* const words = ::dlerror();
  std::string reason = words == nullptr ? "the system does not tell why" : words;
  if (reason.compare(0, path.size() + 2, path + ": ") == 0) reason.erase(0, path.size() + 2);
  return reason;
}

}  // namespace

void* load_library(const std::string& path, binding functions, std::string& reason) {
  std::error_code error;
  // A name without a slash would be looked for in the system's folders.
  const std::string whole = fs::absolute(path, error).string();
  if (is_cut_off(whole)) {
    reason = "the file is cut off";
    return nullptr;
  }
  void* const library =
      ::dlopen(whole.c_str(), (functions == binding::at_once ? RTLD_NOW : RTLD_LAZY) | RTLD_LOCAL);
  if (library == nullptr) reason = loader_reason(whole);
  return library;
}

void* find_function(void* library, const char* name) noexcept { return ::dlsym(library, name); }

std::string program_folder() {
  std::error_code error;
  return fs::read_symlink("/proc/self/exe", error).parent_path().string();
}

}  // namespace command
