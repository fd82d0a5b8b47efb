// A folder that appears under its name only when everything in it is written.
#pragma once

#include <string>

#include "console.h"

namespace command {

class folder_replacement {
 public:
  /// Makes an empty folder beside `target`, which must not be there, or be an empty folder. Throws `failure`.
  explicit folder_replacement(const std::string& target);
  ~folder_replacement();
  folder_replacement(const folder_replacement&) = delete;
  folder_replacement& operator=(const folder_replacement&) = delete;

  /// The new folder, for whoever fills it.
  const std::string& name() const noexcept { return name_; }
  /// Waits until all in it stands on the disk, and gives it its name. Throws `failure`.
  void commit();

 private:
  interrupt_guard guard_;
  std::string target_;
  std::string name_;
};

}  // namespace command
