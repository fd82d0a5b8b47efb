// The user's choice of long field names, the session's latch and the limit of a process.
#include <sstream>

#include "ovfile/smart.h"
#include "support/component.h"
#include "support/late_bound.h"
#include "support/long_names_session.h"

namespace ovtest {
namespace {

class long_names : public long_names_session {
 protected:
  /// Words of the question in order, one answer each: `limit` of a double and `single` of a single
  /// precision schema, `use`, `master`, `put:N`; `forget` ends the session under the process's feet.
  std::string answer(const std::string& question) override {
    std::istringstream words(question);
    std::string all;
    for (std::string word; words >> word;) all += (all.empty() ? "" : " ") + answer_to(word);
    return all;
  }

  static std::string answer_to(const std::string& word) {
    const auto schema = make_schema();
    LONG length = -7;
    VARIANT_BOOL truth = 7;
    HRESULT status = S_OK;
    if (word == "limit" || word == "single") {
      schema->put_DoublePrecision(word == "limit" ? VARIANT_TRUE : VARIANT_FALSE);
      status = schema->get_FieldNameMaxLength(&length);
      return status == S_OK ? std::to_string(length) : "failed";
    }
    if (word == "use") status = schema->get_UseLongFieldNames(&truth);
    if (word == "master") status = schema->get_UseLongFieldNamesMaster(&truth);
    if (word == "use" || word == "master") return status == S_OK ? std::to_string(truth) : "failed";
    if (word == "forget") {
      begin_session();
      return "forgotten";
    }
    const auto value = static_cast<VARIANT_BOOL>(std::stoi(word.substr(4)));
    status = schema->put_UseLongFieldNamesMaster(value);
    return status == S_OK ? "done" : status == E_FAIL ? "refused" : "failed";
  }
};

TEST_F(long_names, are_off_where_nobody_chose) {
  EXPECT_EQ("0 8 0", ask("master limit use"));
  EXPECT_EQ(0U, current());
  EXPECT_TRUE(is_marked());
  EXPECT_FALSE(master());
}

TEST_F(long_names, count_from_the_first_process_of_a_session_on) {
  ASSERT_TRUE(set_master(1));
  EXPECT_EQ("24", ask("limit"));
  EXPECT_EQ(1U, current());
  EXPECT_TRUE(is_marked());
  ASSERT_TRUE(set_master(0));
  EXPECT_EQ("24 -1 0", ask("limit use master")) << "the session keeps its choice";
}

TEST_F(long_names, chosen_in_a_session_count_in_the_next) {
  EXPECT_EQ("8 done -1 8 0", ask("limit put:-1 master limit use"));
  EXPECT_EQ("8", ask("limit"));
  ASSERT_TRUE(ovf::remove_global_atom(OLESTR("MaxFieldNameLength")));
  EXPECT_EQ("24 -1", ask("limit use"));
}

TEST_F(long_names, have_no_say_in_single_precision) {
  ASSERT_TRUE(set_master(1));
  EXPECT_EQ("8", ask("single"));
  EXPECT_FALSE(is_marked()) << "nothing was decided";
  EXPECT_EQ("24 8", ask("limit single"));
}

TEST_F(long_names, are_latched_anew_by_every_question_until_the_session_is_marked) {
  EXPECT_EQ("done -1 done 0 done -1", ask("put:-1 use put:0 use put:-1 use"));
  EXPECT_EQ(1U, current());
  EXPECT_FALSE(is_marked()) << "asking for the choice does not mark";
  ASSERT_TRUE(mark());
  EXPECT_EQ("done -1 24", ask("put:0 use limit"));
}

TEST_F(long_names, go_by_what_is_latched_in_a_marked_session) {
  ASSERT_TRUE(set_master(1));
  ASSERT_TRUE(mark());
  EXPECT_EQ("0 8", ask("use limit")) << "a session without a latched choice has none";
  ASSERT_TRUE(set_current(1));
  ASSERT_TRUE(set_master(0));
  EXPECT_EQ("-1 24", ask("use limit"));
}

TEST_F(long_names, are_decided_once_for_a_process) {
  ASSERT_TRUE(set_master(1));
  EXPECT_EQ("24 forgotten 24 0 24", ask("limit forget limit use limit"));
  EXPECT_FALSE(is_marked()) << "a process marks when it decides, and never again";
}

TEST_F(long_names, are_chosen_by_variant_true_alone) {
  EXPECT_EQ("done 0", ask("put:1 master"));
  EXPECT_EQ(0U, master());
  EXPECT_EQ("done -1", ask("put:-1 master"));
  EXPECT_EQ(1U, master());
  EXPECT_EQ("done 0", ask("put:2 master"));
  EXPECT_EQ("done 0", ask("put:0 master"));
}

TEST_F(long_names, take_any_number_but_0_for_true) {
  ASSERT_TRUE(set_master(4000000000U));
  EXPECT_EQ("-1 24", ask("master limit"));
  EXPECT_EQ(1U, current()) << "written as 1";
}

TEST_F(long_names, take_a_setting_of_another_type_for_false) {
  ASSERT_TRUE(ovf::set_registry_text(key(), OLESTR("UseLongFieldNamesMaster"), OLESTR("1")));
  EXPECT_EQ("0 8", ask("master limit"));
}

TEST_F(long_names, can_be_chosen_by_name) {
  const auto schema = make_schema();
  variant yes;
  yes.out()->vt = VT_BOOL;
  const_cast<VARIANT&>(yes.get()).boolVal = VARIANT_TRUE;
  EXPECT_EQ(S_OK, call_by_name(*schema, "UseLongFieldNamesMaster", DISPATCH_PROPERTYPUT, {yes}).status);
  EXPECT_EQ(1U, master());
  const auto read = call_by_name(*schema, "uselongfieldnamesmaster", DISPATCH_PROPERTYGET, {});
  EXPECT_EQ(S_OK, read.status);
  EXPECT_EQ(VT_BOOL, read.result.type());
  EXPECT_EQ(VARIANT_TRUE, read.result.get().boolVal);
  const auto single = call_by_name(*schema, "FieldNameMaxLength", DISPATCH_PROPERTYGET, {});
  EXPECT_EQ(S_OK, single.status);
  EXPECT_EQ(VT_I4, single.result.type());
  EXPECT_EQ(8, single.result.get().lVal);
}

TEST_F(long_names, need_a_place_for_the_answer) {
  const auto schema = make_schema();
  EXPECT_EQ(E_POINTER, schema->get_FieldNameMaxLength(nullptr));
  EXPECT_EQ(E_POINTER, schema->get_UseLongFieldNames(nullptr));
  EXPECT_EQ(E_POINTER, schema->get_UseLongFieldNamesMaster(nullptr));
  EXPECT_FALSE(current());
}

}  // namespace
}  // namespace ovtest
