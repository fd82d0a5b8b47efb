// The settings in the registry's file: one that cannot be written, and two processes at once.
#include <thread>

#include "ovfile/smart.h"
#include "support/component.h"
#include "support/long_names_session.h"

namespace ovtest {
namespace {

class long_names_registry : public long_names_session {
 protected:
  /// "master": chooses 60 times, yes at last. "others": writes 60 values of the same key beside.
  std::string answer(const std::string& question) override {
    for (int i = 0; i < 60; ++i) {
      const auto schema = make_schema();
      const bool done = question == "master"
                            ? schema->put_UseLongFieldNamesMaster(i % 2 == 1 ? VARIANT_TRUE : 0) == S_OK
                            : ovf::set_registry_number(key(), other(i), 7);
      if (!done) return "refused";
    }
    return "done";
  }
  static ovf::wide other(int i) { return ovfile::to_wide("Other" + std::to_string(i)); }
};

TEST_F(long_names_registry, refuses_a_choice_that_cannot_be_written) {
  set_environment("OVFILE_REGISTRY", session_ / "missing" / "registry.reg");
  const auto schema = make_schema();
  clear_error();
  EXPECT_EQ(E_FAIL, schema->put_UseLongFieldNamesMaster(VARIANT_TRUE));
  EXPECT_EQ("", take_error_text());
  VARIANT_BOOL truth = 7;
  EXPECT_EQ(S_OK, schema->get_UseLongFieldNamesMaster(&truth));
  EXPECT_EQ(0, truth);
  EXPECT_EQ(S_OK, schema->get_UseLongFieldNames(&truth));
  EXPECT_EQ(0, truth);
}

TEST_F(long_names_registry, loses_nothing_when_two_processes_write_at_once) {
  std::string one;
  std::string other_one;
  std::thread first([&] { one = ask("master"); });
  std::thread second([&] { other_one = ask("others"); });
  first.join();
  second.join();
  EXPECT_EQ("done", one);
  EXPECT_EQ("done", other_one);
  EXPECT_EQ(1U, master());
  for (int i = 0; i < 60; ++i) EXPECT_EQ(7U, ovf::registry_number(key(), other(i))) << i;
}

}  // namespace
}  // namespace ovtest
