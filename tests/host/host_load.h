// Loading the library as a stranger does: by its path, with nothing of it linked.
#pragma once

#include <set>
#include <string>

#include "ovfile/ovfile.h"

namespace ovtest {

/// The library in this process. Throws when it cannot be loaded.
class loaded_library {
 public:
  explicit loaded_library(const std::string& path);
  loaded_library(const loaded_library&) = delete;
  loaded_library& operator=(const loaded_library&) = delete;
  ~loaded_library();

  /// A name that the library exports; null when there is none.
  template <class Function>
  Function* exported(const char* name) const {
    return reinterpret_cast<Function*>(find(name));
  }

  /// A function of the component runtime: the system's, or the library's where the system has none.
  template <class Function>
  Function* runtime(const char* name) const {
    return reinterpret_cast<Function*>(find_runtime(name));
  }

  /// Everything that the library exports, as its own tables tell.
  std::set<std::string> exported_names() const;

  /// What it must export on this system, and nothing else.
  static std::set<std::string> contract();

 private:
  using any_function = void();
  any_function* find(const char* name) const;
  any_function* find_runtime(const char* name) const;

  std::string path_;
  void* handle_;
};

}  // namespace ovtest
