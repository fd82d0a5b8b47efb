#include "duckdb/duckdb_trial.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

#include "duckdb/crash_report.h"
#include "duckdb/duckdb_file.h"
#include "duckdb/duckdb_owner.h"
#include "encoding.h"
#include "failure.h"
#include "private_folder.h"
#include "words.h"

namespace command {
namespace {

/// Each has to run to its end. They are small: what counts is how many parts of the library they go through.
constexpr const char* in_memory[] = {
    "create table t as select i::integer as i, i % 7 as k, i / 4.0 as x, 'hole ' || i as s, "
    "case when i % 5 > 0 then i::decimal(9, 2) end as d from range(4000) r(i)",
    "create table u as select k, count(*) as n, sum(i) as total, avg(x) as mean, min(s) as first, "
    "median(x) as middle, count(distinct d) as kinds, string_agg(s, ',' order by i) as all_of_them "
    "from t group by k having count(*) > 1",
    "create table w as select t.*, u.n, row_number() over (partition by k order by s desc) as place, "
    "lag(x) over (order by i) as before from t left join u using (k) where s like 'hole%' "
    "order by mean desc, t.i",
    "select case when (select (sum(n), sum(total), max(kinds)) from u) = (4000, 7998000, 458) "
    "and (select (count(*), sum(place), sum(x - before)) from w) = (4000, 1144858, 999.75) "
    "then 'right' else error('its answers are wrong') end",
    "select x::varchar, '1.25'::double, s[5:], regexp_replace(s, '[0-9]+', 'x'), "
    "strftime(date '2024-02-29' + i, '%Y-%m-%d') from t order by hash(s) limit 100"};

/// The same with a folder, which stands for {0}.
constexpr const char* with_files[] = {
    "copy (from t order by i) to '{0}/t.parquet' (format parquet)",
    "copy (from t order by i) to '{0}/t.csv' (format csv)",
    "select case when (select count(*) from (from '{0}/t.parquet' except all from t)) = 0 "
    "and (select count(*) from read_csv('{0}/t.csv') where i = 4 * x) = 4000 "
    "then 'right' else error('its files are wrong') end"};

class trial_database {
 public:
  trial_database(const duckdb::functions& library, const std::string& path) : library_(library), path_(path) {
    duckdb_config made(library);
    library.create_config(made.out());
    // Enough to have several, and quick where there are many cores.
    library.set_config(made.get(), "threads", "2");
    library.set_config(made.get(), "temp_directory", "");
    char* words = nullptr;
    if (library.open_ext(nullptr, &database_, made.get(), &words) == duckdb::status::failed) {
      const std::string reason = words != nullptr ? words : "it does not start";
      library.free(words);
      fail(reason);
    }
    if (library.connect(database_, &connection_) == duckdb::status::failed) fail("it takes no connection");
  }
  ~trial_database() {
    if (connection_ != nullptr) library_.disconnect(&connection_);
    if (database_ != nullptr) library_.close(&database_);
  }
  trial_database(const trial_database&) = delete;
  trial_database& operator=(const trial_database&) = delete;

  void run(const std::string& statement) const {
    duckdb::result result{};
    const duckdb::status end = library_.query(connection_, statement.c_str(), &result);
    const char* const words = end == duckdb::status::failed ? library_.result_error(&result) : nullptr;
    const std::string reason = words != nullptr ? words : "it does not tell why";
    library_.destroy_result(&result);
    if (end == duckdb::status::failed) fail(reason);
  }

 private:
  [[noreturn]] void fail(const std::string& reason) const {
    throw failure(path_ + " does not work: " + first_line(reason));
  }

  const duckdb::functions& library_;
  const std::string& path_;
  duckdb::database database_ = nullptr;
  duckdb::connection connection_ = nullptr;
};

std::string in_quotes(const std::string& text) {
  std::string inside;
  for (const char c : text) inside.append(c == '\'' ? 2 : 1, c);
  return inside;
}

/// Signals that other programs send: they say nothing of the library.
bool is_ended_from_outside(int status) noexcept {
  return status == 128 + 1 || status == 128 + 2 || status == 128 + 9 || status == 128 + 15;
}

/// What is left of a damaged file's names is no text.
bool is_text(const std::string& words) {
  const auto is_control = [](char c) { return static_cast<unsigned char>(c) < ' '; };
  return look_at_utf8(words).valid && std::none_of(words.begin(), words.end(), is_control);
}

struct out_of_time {};

duckdb_trial judge(const child_end& end, const std::string& path) {
  constexpr std::string_view own_words = "ovfile: ";
  const std::string words = first_line(end.words);
  if (end.status == 0) return {duckdb_verdict::good, words};
  if (end.status == 1 && words.starts_with(own_words)) {
    if (!is_text(words)) return {duckdb_verdict::damaged, "there is no sense in its names"};
    return {duckdb_verdict::useless, words.substr(own_words.size())};
  }
  if (is_ended_from_outside(end.status)) {
    return {duckdb_verdict::unknown, fmt::format("a trial of {} was ended with {}", path, end.status)};
  }
  return {duckdb_verdict::damaged, fmt::format("a trial of it ended with {}", end.status)};
}

}  // namespace

std::string try_duckdb_here(const std::string& path, const std::string& folder) {
  crash_in_silence();
  const duckdb::functions library = load_duckdb_file(path, binding::at_once);
  const trial_database database(library, path);
  for (const char* const statement : in_memory) database.run(statement);
  if (!folder.empty()) {
    for (const char* const statement : with_files) {
      database.run(fmt::format(fmt::runtime(statement), in_quotes(folder)));
    }
  }
  return duckdb_version(library);
}

duckdb_trial try_duckdb(const std::string& path, const std::string& program,
                        std::chrono::milliseconds limit) {
  // A damaged library leaves its process no time to clean up: the folder is this one's. That there is none is
  // not the library's fault.
  const std::optional<private_folder> scratch = try_private_folder("ovfile-trial");
  std::vector<std::string> arguments = {program, "setup", "sql", "--try", path};
  if (scratch) arguments.insert(arguments.end(), {"--folder", scratch->name()});
  const auto last = std::chrono::steady_clock::now() + limit;
  try {
    return judge(run_child({arguments},
                           [&] {
                             if (std::chrono::steady_clock::now() > last) throw out_of_time();
                           }),
                 path);
  } catch (const out_of_time&) {
    return {duckdb_verdict::damaged, "a trial of it comes to no end"};
  }
}

}  // namespace command
