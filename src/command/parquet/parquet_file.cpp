#include "parquet/parquet_file.h"

#include <filesystem>
#include <system_error>

#include "failure.h"
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

void write_for(sql_database& database, const std::string& statement, const std::string& file,
               const std::string& target) {
  try {
    database.execute(statement, 1);
  } catch (const marked_failure&) {
    throw;
  } catch (const failure& error) {
    std::string words = error.what();
    for (std::size_t at = 0; (at = words.find(file, at)) != words.npos; at += target.size()) {
      words.replace(at, file.size(), target);
    }
    // What it advises then is for those who talk to it.
    throw failure("cannot write " + target + ": " + words.substr(0, words.find(" Possible solutions:")));
  }
}

void write_parquet(sql_database& database, const std::string& query, const std::string& target,
                   const std::string& option) {
  replacement file(target);
  const std::string copy = fmt::format("copy (\n{}\n) to {} (format parquet, use_tmp_file false{}{})", query,
                                       sql_text(file.name()), option.empty() ? "" : ", ", option);
  write_for(database, copy, file.name(), target);
  file.commit();
}

}  // namespace command
