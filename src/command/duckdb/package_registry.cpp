#include "duckdb/package_registry.h"

#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "child_process.h"
#include "environment.h"
#include "failure.h"
#include "progress.h"
#include "words.h"

namespace command {
namespace {

constexpr const char* npms_own = "https://registry.npmjs.org";
/// A form of the document with what an installation needs alone.
constexpr const char* short_form = "Accept: application/vnd.npm.install-v1+json, application/json";
/// What nobody's package reaches: an answer without an end shall not fill the disk.
constexpr std::uint64_t most_package_bytes = std::uint64_t{1} << 29;

std::string chosen_address(const std::string& address) {
  if (!address.empty()) return address;
  for (const char* const name : {"npm_config_registry", "NPM_CONFIG_REGISTRY"}) {
    if (std::string value = environment_value(name); !value.empty()) return value;
  }
  return npms_own;
}

std::vector<std::string> curl(const std::string& address) {
  // Over a network nobody sends us to a file of this machine.
  const char* const roads = address.starts_with("file://") ? "=file" : "=http,https";
  return {"curl",
          "--fail",
          "--silent",
          "--show-error",
          "--location",
          "--globoff",
          "--proto",
          roads,
          "--header",
          short_form,
          "--output",
          "-",
          "--speed-time",
          "60",
          "--speed-limit",
          "1",
          "--connect-timeout",
          "30",
          "--url",
          address};
}

std::string read_all(raw_file& file) {
  std::string text;
  char bytes[4096];
  while (const std::size_t done = file.read(bytes, sizeof bytes)) text.append(bytes, done);
  return text;
}

/// A member of a JSON object that is a text; else empty.
std::string text_of(const nlohmann::json& object, const char* name) {
  const auto found = object.is_object() ? object.find(name) : object.end();
  return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

/// Null where an object has no such member.
const nlohmann::json& member_of(const nlohmann::json& object, const std::string& name) {
  static const nlohmann::json none;
  if (!object.is_object()) return none;
  const auto found = object.find(name);
  return found == object.end() ? none : *found;
}

/// A registry may tell several digests, with blanks between them.
std::string sha512_of(std::string_view integrity) {
  const std::size_t begin = integrity.find("sha512-");
  if (begin == std::string_view::npos) return {};
  integrity.remove_prefix(begin);
  return std::string(integrity.substr(0, integrity.find_first_of(" ?")));
}

}  // namespace

package_registry::package_registry(const std::string& address) : address_(chosen_address(address)) {
  while (address_.ends_with('/')) address_.pop_back();
  for (const char* const road : {"https://", "http://", "file://"}) {
    if (address_.starts_with(road)) return;
  }
  throw failure(shown_address(address_) +
                " is no address of a registry: it begins with https://, http:// or file://");
}

published_file package_registry::find(const std::string& package, const std::string& version) const {
  std::string name = package;
  if (const std::size_t slash = name.find('/'); slash != std::string::npos) name.replace(slash, 1, "%2f");
  const std::string address = address_ + "/" + name;
  raw_file answer = get(address, 0);
  const nlohmann::json document = nlohmann::json::parse(read_all(answer), nullptr, false);
  const nlohmann::json& versions = member_of(document, "versions");
  if (!versions.is_object()) throw failure(shown_address(address) + " is no document of a package registry");
  const nlohmann::json& file = member_of(member_of(versions, version), "dist");
  published_file found{text_of(file, "tarball"), sha512_of(text_of(file, "integrity"))};
  if (found.address.empty()) {
    throw failure(fmt::format("{} has no version {} of {}", shown_address(address_), version, package));
  }
  // Copies of npm's registry hand out its documents as they are; the files are to come from the copy too.
  if (found.address.starts_with(std::string(npms_own) + "/")) {
    found.address.replace(0, std::string_view(npms_own).size(), address_);
  }
  return found;
}

raw_file package_registry::get(const std::string& address, std::uint64_t bytes) const {
  raw_file file = raw_file::make_scratch();
  progress bar("downloading " + shown_address(address));
  const child_end end = run_child({curl(address), nullptr, &file}, [&] {
    std::uint64_t done = 0;
    if (file.is_regular(done) && done > most_package_bytes) {
      throw failure(shown_address(address) + " does not come to an end");
    }
    bar.look(done, bytes);
  });
  if (end.status != 0) {
    const std::string reason = first_line(end.words);
    throw failure(fmt::format("cannot get {}: {}", shown_address(address),
                              reason.empty() ? fmt::format("curl ended with {}", end.status) : reason));
  }
  file.go_to(0);
  return file;
}

std::string shown_address(const std::string& address) {
  const std::size_t road = address.find("://");
  if (road == std::string::npos) return address;
  const std::size_t host = road + 3;
  const std::size_t at = address.substr(0, address.find('/', host)).rfind('@');
  return at == std::string::npos || at < host ? address : address.substr(0, host) + address.substr(at + 1);
}

}  // namespace command
