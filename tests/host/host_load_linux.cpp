#include <dlfcn.h>
#include <elf.h>

#include <cstring>
#include <stdexcept>

#include "host/host_load.h"
#include "support/file_bytes.h"

namespace ovtest {
namespace {

constexpr const char* version_node = "OVFILE_1.0";

template <class Struct>
Struct at(const bytes& image, std::size_t offset) {
  Struct value;
  if (offset + sizeof value > image.size()) throw std::runtime_error("the library's tables end early");
  std::memcpy(&value, image.data() + offset, sizeof value);
  return value;
}

Elf64_Shdr section_of_type(const bytes& image, Elf64_Word type) {
  const auto header = at<Elf64_Ehdr>(image, 0);
  for (std::size_t i = 0; i < header.e_shnum; ++i) {
    const auto section = at<Elf64_Shdr>(image, header.e_shoff + i * sizeof(Elf64_Shdr));
    if (section.sh_type == type) return section;
  }
  throw std::runtime_error("the library has no such section");
}

bool is_exported(const Elf64_Sym& symbol) {
  const unsigned binding = ELF64_ST_BIND(symbol.st_info);
  return symbol.st_shndx != SHN_UNDEF && symbol.st_shndx != SHN_ABS && binding != STB_LOCAL;
}

}  // namespace

loaded_library::loaded_library(const std::string& path)
    : path_(path), handle_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (handle_ == nullptr) throw std::runtime_error(dlerror());
}

loaded_library::~loaded_library() { dlclose(handle_); }

loaded_library::any_function* loaded_library::find(const char* name) const {
  return reinterpret_cast<any_function*>(dlvsym(handle_, name, version_node));
}

loaded_library::any_function* loaded_library::find_runtime(const char* name) const { return find(name); }

std::set<std::string> loaded_library::exported_names() const {
  const bytes image = read_bytes(path_);
  const Elf64_Shdr symbols = section_of_type(image, SHT_DYNSYM);
  const auto header = at<Elf64_Ehdr>(image, 0);
  const auto texts = at<Elf64_Shdr>(image, header.e_shoff + symbols.sh_link * sizeof(Elf64_Shdr));
  std::set<std::string> names;
  for (std::size_t offset = 0; offset < symbols.sh_size; offset += sizeof(Elf64_Sym)) {
    const auto symbol = at<Elf64_Sym>(image, symbols.sh_offset + offset);
    if (!is_exported(symbol)) continue;
    names.insert(reinterpret_cast<const char*>(image.data() + texts.sh_offset + symbol.st_name));
  }
  return names;
}

std::set<std::string> loaded_library::contract() {
  return {"DllGetClassObject", "DllCanUnloadNow", "DllRegisterServer", "DllUnregisterServer",
          "SysAllocString", "SysAllocStringLen", "SysAllocStringByteLen", "SysReAllocString",
          "SysReAllocStringLen", "SysFreeString", "SysStringLen", "SysStringByteLen", "VariantInit",
          "VariantClear", "VariantCopy", "VariantCopyInd", "VariantChangeType", "VariantChangeTypeEx",
          "CreateErrorInfo", "SetErrorInfo", "GetErrorInfo", "CoInitialize", "CoInitializeEx",
          "CoUninitialize", "CoCreateInstance", "CoGetClassObject", "CoRegisterClassObject",
          "CoRevokeClassObject", "CLSIDFromProgID", "ProgIDFromCLSID", "CLSIDFromString", "StringFromGUID2",
          "CoTaskMemAlloc", "CoTaskMemRealloc", "CoTaskMemFree",
          // What a host needs to catch the exceptions of Merge.
          "_ZTI16MyExceptionClass", "_ZTS16MyExceptionClass", "_ZTV16MyExceptionClass"};
}

}  // namespace ovtest
