// The reference tables beside the source tree: which there are, what they say, and copies to work on.
#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace ovtest {

/// The folder of reference tables; may not be there.
std::filesystem::path reference_folder();

/// Names without `.json`, those of subfolders as `folder/name`; sorted. Empty when there is no folder.
std::vector<std::string> reference_names();

/// With `file` as the table's name once it is unpacked.
nlohmann::json reference_json(const std::string& name);

/// Copies the table `name` (a path relative to the folder, `.ovt` included) into `folder` under the same
/// relative name, unpacked when it is packed. Empty when it is packed and nothing here can unpack it.
std::optional<std::filesystem::path> copy_reference(const std::string& file,
                                                    const std::filesystem::path& folder);

/// A test's name from a file's: letters, digits and underscores.
std::string test_name(std::string name);

}  // namespace ovtest
