// Several programs work on one table at once, as on the share of a mine: two append, one sets values, one
// sorts and makes it anew, one reads. In the end every row and value that was accepted is there.
// OVFILE_SOAK_SECONDS says for how long each precision: a whole check gives half a minute.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <map>
#include <random>
#include <set>
#include <thread>

#include "command/command_test.h"
#include "ovfile/smart.h"
#include "support/started_program_linux.h"

namespace {

using clock_type = std::chrono::steady_clock;
using names = std::vector<std::string>;

constexpr LONG id_column = 1;
constexpr LONG value_column = 2;

int seconds() {
  const char* const asked = std::getenv("OVFILE_SOAK_SECONDS");
  return asked != nullptr ? std::atoi(asked) : 3;
}

/// What one program did, a line for each deed; it may be killed at any time.
class journal {
 public:
  explicit journal(const std::filesystem::path& file) : out_(file, std::ios::app) {}
  void note(const std::string& what, double id, double value = 0) {
    out_ << what << ' ' << std::to_string(id) << ' ' << std::to_string(value) << std::endl;
  }

 private:
  std::ofstream out_;
};

struct deed {
  std::string what;
  double id;
  double value;
};

std::vector<deed> deeds_of(const std::filesystem::path& file) {
  std::ifstream in(file);
  std::vector<deed> all;
  for (deed each; in >> each.what >> each.id >> each.value;) all.push_back(each);
  return all;
}

class soak_test : public ovtest::command_test {
 protected:
  ~soak_test() override {
    for (const pid_t each : running_) ::kill(each, SIGKILL);
  }

  std::filesystem::path table() const { return folder() / "t.ovt"; }
  std::filesystem::path journal_of(const std::string& who) const { return aside_ / who; }

  ovfile::pointer<IOvTable> opened(LONG read_only) const {
    auto made = ovfile::create_table();
    const ovfile::text name(std::string_view(table().native()));
    if (made->Open(name.get(), read_only) != S_OK) return {};
    return made;
  }

  /// Runs `work` again and again in a process of its own until the time is over.
  void start(const std::function<void()>& work) {
    const auto end = clock_type::now() + std::chrono::seconds(seconds());
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child != 0) {
      running_.push_back(child);
      return;
    }
    try {
      while (clock_type::now() < end) work();
      ::_exit(0);
    } catch (...) {
      ::_exit(1);
    }
  }
  void wait_for_all() {
    for (const pid_t each : std::exchange(running_, {})) {
      int status = -1;
      EXPECT_EQ(::waitpid(each, &status, 0), each);
      EXPECT_EQ(status, 0);
    }
  }

  void append_rows(int who) const;
  void set_a_value() const;
  void make_anew() const;
  void read_all() const;

  ovtest::scratch_folder aside_;
  std::vector<pid_t> running_;
};

/// A number below `sides`.
unsigned roll(unsigned sides) {
  static std::mt19937 dice(static_cast<unsigned>(::getpid()));
  return static_cast<unsigned>(dice()) % sides;
}

/// A table that somebody has open is not replaced: for a part of every second nobody else has it.
void leave_time_to_replace() {
  using std::chrono::milliseconds;
  const auto now = std::chrono::duration_cast<milliseconds>(clock_type::now().time_since_epoch());
  const auto within = now % std::chrono::seconds(1);
  if (within < milliseconds(300)) std::this_thread::sleep_for(milliseconds(300) - within);
}

void soak_test::append_rows(int who) const {
  static journal done(journal_of("appender" + std::to_string(who)));
  static double next = who * 1'000'000;
  leave_time_to_replace();
  ::usleep(2000);
  const auto rows = opened(0);
  if (!rows) return;
  const double first = next;
  bool accepted = true;
  for (unsigned count = 1 + roll(5); count > 0 && accepted; --count) {
    accepted = rows->AddRow() == S_OK && rows->SetColumnDouble(id_column, next) == S_OK;
    ++next;
  }
  accepted = rows->Close() == S_OK && accepted;
  for (double id = first; id < next; ++id) done.note(accepted ? "accepted" : "perhaps", id);
}

void soak_test::set_a_value() const {
  static journal done(journal_of("setter"));
  static double next = 1;
  leave_time_to_replace();
  ::usleep(1000);
  const auto rows = opened(0);
  LONG count = 0;
  if (!rows || rows->GetRowCount(&count) != S_OK || count == 0) return;
  double id = 0;
  if (rows->GetRowAt(1 + static_cast<LONG>(roll(static_cast<unsigned>(count)))) != S_OK) return;
  if (rows->GetColumnAsDouble(id_column, &id) != S_OK) return;
  const bool set = rows->SetColumnDouble(value_column, next) == S_OK;
  done.note(rows->Close() == S_OK && set ? "accepted" : "perhaps", id, next);
  ++next;
}

void soak_test::make_anew() const {
  static const std::vector<names> ways = {{"sort", "t.ovt", "--by", "ID"},
                                          {"sort", "t.ovt", "--by", "VALUE", "--descending"},
                                          {"alter", "t.ovt", "--add", "MORE=1"},
                                          {"alter", "t.ovt", "--drop", "MORE"}};
  static journal done(journal_of("replacer"));
  static std::size_t next = 0;
  const int status = run(ways[next++ % ways.size()]).status;
  done.note(status == 0 ? "accepted" : "refused", static_cast<double>(next));
  ::usleep(20000);
}

void soak_test::read_all() const {
  static journal done(journal_of("reader"));
  leave_time_to_replace();
  const auto rows = opened(1);
  LONG count = 0;
  if (!rows || rows->GetRowCount(&count) != S_OK || count == 0) return;
  std::set<double> seen;
  if (rows->GetFirstRow() != S_OK) return;
  for (LONG row = 1; row <= count; ++row) {
    double id = 0;
    if (rows->GetColumnAsDouble(id_column, &id) != S_OK) break;
    if (id == 0 || !seen.insert(id).second) done.note("wrong", id, row);
    if (row < count && rows->GetNextRow() != S_OK) break;
  }
  done.note("read", static_cast<double>(seen.size()));
}

class soak_of_precision_test : public soak_test, public testing::WithParamInterface<bool> {};

TEST_P(soak_of_precision_test, every_accepted_row_and_value_is_there) {
  write("in.csv", "ID,VALUE\n1,0\n");
  names import = {"import", "in.csv", "t.ovt"};
  if (GetParam()) import.push_back("--single");
  run_quietly(import);
  for (const int who : {1, 2}) start([this, who] { append_rows(who); });
  start([this] { set_a_value(); });
  start([this] { make_anew(); });
  start([this] { read_all(); });
  wait_for_all();

  const auto rows = opened(1);
  ASSERT_TRUE(rows);
  LONG count = 0;
  ASSERT_EQ(rows->GetRowCount(&count), S_OK);
  std::map<double, double> found;
  ASSERT_EQ(rows->GetFirstRow(), S_OK);
  for (LONG row = 1; row <= count; ++row) {
    double id = 0;
    double value = 0;
    ASSERT_EQ(rows->GetColumnAsDouble(id_column, &id), S_OK);
    ASSERT_EQ(rows->GetColumnAsDouble(value_column, &value), S_OK);
    EXPECT_TRUE(found.emplace(id, value).second) << id << " stands there twice";
    if (row < count) {
      ASSERT_EQ(rows->GetNextRow(), S_OK);
    }
  }

  std::size_t appended = 0;
  for (const char* who : {"appender1", "appender2"}) {
    for (const deed& each : deeds_of(journal_of(who))) {
      if (each.what != "accepted") continue;
      EXPECT_EQ(found.count(each.id), 1U) << each.id << " is lost";
      ++appended;
    }
  }
  std::map<double, deed> last;
  for (const deed& each : deeds_of(journal_of("setter"))) last.insert_or_assign(each.id, each);
  for (const auto& [id, each] : last) {
    if (each.what == "accepted") {
      EXPECT_EQ(found[id], each.value) << "the value of " << id << " is lost";
    }
  }
  std::size_t replaced = 0;
  for (const deed& each : deeds_of(journal_of("replacer"))) replaced += each.what == "accepted" ? 1U : 0U;
  std::size_t read = 0;
  for (const deed& each : deeds_of(journal_of("reader"))) {
    EXPECT_NE(each.what, "wrong") << "row " << each.value << " of a reader has " << each.id;
    read += each.what == "read" ? 1U : 0U;
  }
  EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
  RecordProperty("appended", std::to_string(appended));
  RecordProperty("set", std::to_string(last.size()));
  RecordProperty("replaced", std::to_string(replaced));
  RecordProperty("read", std::to_string(read));
  EXPECT_GT(appended, 100U);
  EXPECT_GT(last.size(), 20U);
  EXPECT_GT(replaced, 0U);
  EXPECT_GT(read, 0U);
}

INSTANTIATE_TEST_SUITE_P(precisions, soak_of_precision_test, testing::Bool(),
                         [](const auto& each) { return each.param ? "single" : "double"; });

/// Rows that go to a table while `import` makes another one of its name: to the old one, which stays then, or
/// to the new one.
TEST_F(soak_test, rows_never_go_to_a_table_that_is_replaced) {
  std::string csv = "ID,VALUE\n";
  for (int i = 1; i <= 3000; ++i) csv += std::to_string(i) + ",0\n";
  write("in.csv", csv);
  run_quietly({"import", "in.csv", "t.ovt"});
  constexpr int enough = 25;
  int refused = 0;  // for the row that somebody else had in hand
  for (int tries = 1; refused < enough && tries <= 40 * enough; ++tries) {
    ovtest::started_program other({program(), "import", "in.csv", "t.ovt"}, folder().path());
    other.go_on();
    ::usleep(roll(15000));
    const auto rows = opened(0);
    const double id = 1'000'000 + tries;
    const bool added = rows && rows->AddRow() == S_OK && rows->SetColumnDouble(id_column, id) == S_OK;
    const int status = other.wait().status;
    if (!added || rows->Close() != S_OK) continue;
    refused += status == 0 ? 0 : 1;
    const auto now = opened(1);
    LONG count = 0;
    double last = 0;
    ASSERT_TRUE(now);
    EXPECT_EQ(now->GetRowCount(&count), S_OK);
    EXPECT_EQ(now->GetRowAt(count), S_OK);
    EXPECT_EQ(now->GetColumnAsDouble(id_column, &last), S_OK);
    EXPECT_EQ(last, id);
  }
  EXPECT_EQ(refused, enough);
}

}  // namespace
