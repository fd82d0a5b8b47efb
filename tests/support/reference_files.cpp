#include "support/reference_files.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include "support/shared_data.h"

namespace ovtest {

namespace fs = std::filesystem;

namespace {

void add_names(std::vector<std::string>& names, const fs::path& folder, const std::string& prefix) {
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    const fs::path& path = entry.path();
    if (path.extension() == ".json" && path.stem() != "bad") names.push_back(prefix + path.stem().string());
  }
}

/// Where the test runner put the unpacked tables, if it did.
std::optional<fs::path> unpacked_before(const fs::path& packed) {
  const char* folder = std::getenv("OVFILE_UNPACKED");
  if (folder == nullptr) return {};
  const fs::path ready = fs::path(folder) / packed.stem();
  return fs::exists(ready) ? std::optional(ready) : std::nullopt;
}

bool unpack(const fs::path& packed, const fs::path& target) {
  if (const auto ready = unpacked_before(packed)) return fs::copy_file(*ready, target);
  const std::string command = "gzip -dc \"" + packed.string() + "\" > \"" + target.string() + "\"";
  return std::system(command.c_str()) == 0;
}

}  // namespace

fs::path reference_folder() { return shared_folder() / "golden"; }

std::vector<std::string> reference_names() {
  std::vector<std::string> names;
  const fs::path folder = reference_folder();
  if (!fs::is_directory(folder)) return names;
  add_names(names, folder, "");
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    if (entry.is_directory()) add_names(names, entry.path(), entry.path().filename().string() + "/");
  }
  std::sort(names.begin(), names.end());
  return names;
}

nlohmann::json reference_json(const std::string& name) {
  const fs::path path = reference_folder() / (name + ".json");
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path.string());
  nlohmann::json table = nlohmann::json::parse(file);
  const fs::path table_file = table["file"].get<std::string>();
  if (table_file.extension() == ".gz") table["file"] = fs::path(table_file).replace_extension().string();
  return table;
}

std::optional<fs::path> copy_reference(const std::string& file, const fs::path& folder) {
  const fs::path source = reference_folder() / file;
  const fs::path target = folder / file;
  fs::create_directories(target.parent_path());
  if (!fs::exists(source)) {
    const fs::path packed = source.string() + ".gz";
    return unpack(packed, target) ? std::optional(target) : std::nullopt;
  }
  copy_writable(source, target);
  return target;
}

std::string test_name(std::string name) {
  std::replace_if(
      name.begin(), name.end(),
      [](char c) { return !((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')); },
      '_');
  return name;
}

}  // namespace ovtest
