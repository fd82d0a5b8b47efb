// A new folder among the system's temporary files, for this program's user alone, which goes with its
// content.
#pragma once

#include <optional>
#include <string>

namespace command {

class private_folder {
 public:
  /// `purpose` begins the folder's name. Throws `failure`.
  explicit private_folder(const std::string& purpose);
  ~private_folder();
  private_folder(const private_folder&) = delete;
  private_folder& operator=(const private_folder&) = delete;

  const std::string& name() const noexcept { return name_; }

 private:
  std::string name_;
};

/// None where such a folder cannot be made.
std::optional<private_folder> try_private_folder(const std::string& purpose);

/// Where the system's temporary files are to lie; it may not be there.
std::string temporary_folder();

}  // namespace command
