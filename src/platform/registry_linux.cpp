// A change is made to a copy, under a lock of its own: readers never wait and never see half a file, two
// writers lose nothing, and a kill leaves the old text or the new one.
#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <optional>

#include "base/descriptor_linux.h"
#include "platform/environment_linux.h"
#include "platform/registry_file_linux.h"
#include "platform/registry_lock_linux.h"

namespace ovf {

namespace {

std::string home_folder() {
  std::string home = environment_value("HOME");
  if (!home.empty()) return home;
  char buffer[4096];
  passwd entry{};
  passwd* found = nullptr;
  getpwuid_r(getuid(), &entry, buffer, sizeof buffer, &found);
  return found != nullptr ? found->pw_dir : "";
}

std::string folder_part(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

/// Makes the folders of the file that nobody named explicitly.
void make_folders(const std::string& folder) {
  for (std::size_t slash = folder.find('/', 1); slash != std::string::npos;
       slash = folder.find('/', slash + 1)) {
    mkdir(folder.substr(0, slash).c_str(), 0700);
  }
  mkdir(folder.c_str(), 0700);
}

struct location {
  std::string file;
  bool is_default;
};

location registry_location() {
  const std::string named = environment_value("OVFILE_REGISTRY");
  if (!named.empty()) return {named, false};
  const std::string config = environment_value("XDG_CONFIG_HOME");
  return {(config.empty() ? home_folder() + "/.config" : config) + "/orvexa/registry.reg", true};
}

bool write_all(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t done = ::write(file, bytes.data(), bytes.size());
    if (done < 0 && errno == EINTR) continue;
    if (done <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(done));
  }
  return true;
}

enum class writers { anybody, trusted };

bool is_trusted(const struct stat& facts) noexcept {
  const bool group_may_write = (facts.st_mode & S_IWGRP) != 0 && facts.st_gid != getegid();
  return (facts.st_uid == geteuid() || facts.st_uid == 0) && (facts.st_mode & S_IWOTH) == 0 &&
         !group_may_write;
}

/// Reads everything; nothing when there is no regular file that can be read, or its writers are not those.
std::optional<std::string> read_file(const std::string& name, writers by) {
  const descriptor file(open(name.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  struct stat facts {};
  if (!file || fstat(file.get(), &facts) != 0) return {};
  if (!S_ISREG(facts.st_mode)) {
    errno = EINVAL;
    return {};
  }
  if (by == writers::trusted && !is_trusted(facts)) {
    errno = EPERM;
    return {};
  }
  std::string content;
  char buffer[16384];
  for (;;) {
    const ssize_t done = ::read(file.get(), buffer, sizeof buffer);
    if (done < 0 && errno == EINTR) continue;
    if (done < 0) return {};
    if (done == 0) return content;
    content.append(buffer, static_cast<std::size_t>(done));
  }
}

/// Puts `content` in the file's place in one step. The name beside it is always the same one, so that
/// what a kill leaves there is overwritten by the next change.
bool replace_content(const std::string& name, std::string_view content) {
  struct stat facts {};
  const mode_t mode = stat(name.c_str(), &facts) == 0 ? facts.st_mode & 07777 : mode_t{0644};
  const std::string fresh = name + ".new";
  const descriptor file(open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0600));
  if (!file) return false;
  if (!write_all(file.get(), content) || fchmod(file.get(), mode) != 0 || fsync(file.get()) != 0 ||
      rename(fresh.c_str(), name.c_str()) != 0) {
    const int reason = errno;
    unlink(fresh.c_str());
    errno = reason;
    return false;
  }
  const descriptor folder(open(folder_part(name).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder) fsync(folder.get());
  return true;
}

/// A registry file that is a link stays one: what is locked and replaced is the file behind it, be it there
/// already or not, so that whoever comes by the link and whoever comes by the file wait for each other.
std::string behind_links(std::string name) {
  constexpr int most_links = 40;
  for (int links = 0; links < most_links; ++links) {
    std::error_code is_no_link;
    const std::filesystem::path target = std::filesystem::read_symlink(name, is_no_link);
    if (is_no_link) break;
    name = target.is_absolute() ? target.string() : folder_part(name) + '/' + target.string();
  }
  return name;
}

registry_document current_text() { return read_registry_file(registry_location().file); }

}  // namespace

registry_document read_registry_file(const std::string& name) {
  return registry_document(read_file(name, writers::anybody).value_or(""));
}

registry_document trusted_registry() {
  return registry_document(read_file(registry_location().file, writers::trusted).value_or(""));
}

std::optional<std::uint32_t> registry_number(const registry_key& key, wide_view name) {
  return current_text().number(key, name);
}

std::optional<wide> registry_text(const registry_key& key, wide_view name) {
  return current_text().text(key, name);
}

bool registry_key_exists(const registry_key& key) { return current_text().has_key(key); }

bool change_registry(const std::vector<registry_change>& changes) {
  constexpr std::chrono::seconds longest_wait{10};
  return change_registry_within(longest_wait, changes);
}

bool change_registry_within(std::chrono::milliseconds longest_wait,
                            const std::vector<registry_change>& changes) {
  const location where = registry_location();
  if (where.is_default) make_folders(folder_part(where.file));
  const std::string name = behind_links(where.file);
  const descriptor lock = registry_lock(name, longest_wait);
  if (!lock) return false;
  std::optional<std::string> before = read_file(name, writers::anybody);
  if (!before && errno != ENOENT) return false;
  registry_document text(before.value_or(""));
  for (const registry_change& change : changes) {
    if (!text.apply(change)) {
      errno = EINVAL;
      return false;
    }
  }
  const std::string after = text.content();
  return (before && after == *before) || replace_content(name, after);
}

}  // namespace ovf
