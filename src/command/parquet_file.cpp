#include "parquet_file.h"

#include <filesystem>
#include <system_error>

#include "replacement.h"
#include "utf8_path.h"
#include "words.h"

namespace command {

bool is_named_as_parquet(const std::string& name) {
  return ends_in(name, ".parquet") || ends_in(name, ".pq");
}
bool is_parquet(const std::string& name) {
  std::error_code error;
  return is_named_as_parquet(name) || std::filesystem::is_directory(path_of_utf8(name), error);
}
bool is_named_as_json(const std::string& name) { return ends_in(name, ".json"); }

void write_parquet(sql_database& database, const std::string& query, const std::string& target,
                   const std::string& option) {
  replacement file(target);
  database.execute(fmt::format("copy (\n{}\n) to {} (format parquet, use_tmp_file false{}{})", query,
                               sql_text(file.name()), option.empty() ? "" : ", ", option));
  file.commit();
}

}  // namespace command
