#include "replacement.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "base/system_error.h"
#include "base/text.h"
#include "failure.h"
#include "raw_file.h"
#include "utf8_path.h"

namespace command {
namespace {

namespace fs = std::filesystem;

/// The target as the system's files are named. A name that is no UTF-8 would be another file's.
ovf::wide checked(const std::string& target) {
  std::error_code error;
  const fs::path path = path_of_utf8(target);
  if (target.empty()) throw failure("the name of the file to write is empty");
  if (target == "-") {
    throw wrong_usage("-: this is not written to standard output; ./- is a file of that name");
  }
  const fs::file_status kind = fs::status(path, error);
  if (fs::exists(kind) && !fs::is_regular_file(kind)) {
    throw failure("cannot write " + target + ": it is not a regular file");
  }
  if (!fs::exists(kind) && fs::is_symlink(fs::symlink_status(path, error))) {
    throw failure("cannot write " + target + ": it is a link to a file that is not there");
  }
  ovf::wide name = ovf::wide_from_utf8(target);
  if (ovf::utf8_from_wide(name) != target) {
    throw failure("cannot write " + target + ": the name is not UTF-8");
  }
  return name;
}

std::string reason() { return ovf::utf8_from_wide(ovf::system_message(ovf::last_system_error())); }

/// What names promise that end otherwise than those of tables, CSV and Parquet.
constexpr std::pair<const char*, const char*> other_formats[] = {
    {".json", "JSON"},           {".ndjson", "JSON"},
    {".geojson", "GeoJSON"},     {".xml", "XML"},
    {".html", "HTML"},           {".xlsx", "a workbook"},
    {".xls", "a workbook"},      {".ods", "a workbook"},
    {".jsonl", "JSON"},          {".xlsm", "a workbook"},
    {".shp", "shapes"},          {".gpkg", "a database"},
    {".dxf", "a drawing"},       {".tsv", "cells with tabs between them"},
    {".gz", "compressed data"},  {".zip", "an archive"},
    {".bz2", "compressed data"}, {".xz", "compressed data"},
    {".zst", "compressed data"}, {".arrow", "Arrow"},
    {".feather", "Feather"},     {".db", "a database"},
    {".sqlite", "a database"},   {".duckdb", "a database"}};

constexpr const char* open_elsewhere = ": it is open in another program";
constexpr const char* another_there = ": somebody put another file in its place, or in the new one's";

}  // namespace

replacement::replacement(const std::string& target) : shown_(target), file_(checked(target)) {
  // Told at once, not when the work is done.
  if (is_in_use(shown_)) throw failure("cannot replace " + shown_ + open_elsewhere);
  if (!file_.begin_beside()) {
    const std::string why = reason();
    throw failure(file_.replaces()
                      ? "cannot replace " + shown_ + ": no file can be made in its folder: " + why
                      : "cannot create " + shown_ + ": " + why);
  }
  name_ = ovf::utf8_from_wide(file_.writer_name());
}

std::string replacement::name_for_children() const {
  constexpr std::string_view own = "/proc/self";
  if (!name_.starts_with(own)) return name_;
  // The number that this process has there, which another one's list of processes may not tell.
  return "/proc/" + fs::read_symlink(own).string() + name_.substr(own.size());
}

void replacement::commit() {
  throw_if_interrupted();
  if (!file_.settle()) throw failure("cannot write " + shown_ + ": " + reason());
  if (file_.commit()) return;
  const bool in_use = ovf::is_in_use(ovf::last_system_error());
  if (ovf::is_other_file(ovf::last_system_error())) throw failure("cannot replace " + shown_ + another_there);
  const std::string why = reason();
  throw failure("cannot replace " + shown_ + (in_use || is_in_use(shown_) ? open_elsewhere : ": " + why));
}

bool ends_in(const std::string& name, std::string_view suffix) {
  if (name.size() < suffix.size()) return false;
  return std::equal(suffix.rbegin(), suffix.rend(), name.rbegin(), [](char want, char have) {
    return want == (have >= 'A' && have <= 'Z' ? static_cast<char>(have - 'A' + 'a') : have);
  });
}

bool is_named_as_table(const std::string& name) { return ends_in(name, ".ovt"); }

bool is_named_as_csv(const std::string& name) { return ends_in(name, ".csv"); }

const char* promised_format(const std::string& name) {
  for (const auto& [suffix, what] : other_formats) {
    if (ends_in(name, suffix)) return what;
  }
  return nullptr;
}

bool same_file(const std::string& left, const std::string& right) {
  std::error_code error;
  return fs::equivalent(path_of_utf8(left), path_of_utf8(right), error) && !error;
}

}  // namespace command
