// What a report publishes, and what it answers.
#include "server/report_error.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

#include "support/component.h"

namespace ovtest {
namespace {

struct published {
  bool there = false;
  std::string description;
  bool has_source = false;
  std::string source;
  GUID interface_id{};
  bool has_help_file = false;
  std::string help_file;
  DWORD help_context = 0;
};

published take_published() {
  ovfile::pointer<IErrorInfo> info;
  published taken;
  if (GetErrorInfo(0, info.out()) != S_OK) return taken;
  bstr description;
  bstr source;
  bstr help_file;
  info->GetDescription(description.out());
  info->GetSource(source.out());
  info->GetHelpFile(help_file.out());
  info->GetGUID(&taken.interface_id);
  info->GetHelpContext(&taken.help_context);
  taken.there = true;
  taken.description = description.utf8();
  taken.has_source = source.get() != nullptr;
  taken.source = source.utf8();
  taken.has_help_file = help_file.get() != nullptr;
  taken.help_file = help_file.utf8();
  return taken;
}

constexpr CLSID unknown_class{0x11111111, 0x2222, 0x3333, {4, 4, 4, 4, 4, 4, 4, 4}};

class report_error : public testing::Test {
 protected:
  void SetUp() override { clear_error(); }
  void TearDown() override { clear_error(); }
};

TEST_F(report_error, publishes_text_source_and_interface) {
  EXPECT_EQ(E_FAIL,
            ovf::ReportError(CLSID_OvTable, OLESTR("File does not exist"), 0, nullptr, IID_IOvTable, E_FAIL));
  const published error = take_published();
  EXPECT_EQ("File does not exist", error.description);
  EXPECT_EQ("OvFile.OvTable.1", error.source);
  EXPECT_TRUE(IsEqualGUID(IID_IOvTable, error.interface_id));
  EXPECT_FALSE(error.has_help_file);
  EXPECT_EQ(0U, error.help_context);
  EXPECT_FALSE(take_published().there) << "it is taken once";
}

TEST_F(report_error, knows_the_sources_without_a_registration) {
  ovf::ReportError(CLSID_OvSchema, OLESTR("x"), 0, nullptr, IID_IOvSchema, E_FAIL);
  EXPECT_EQ("OvFile.OvSchema.1", take_published().source);
  ovf::ReportError(CLSID_OvTableADO, OLESTR("x"), 0, nullptr, IID_IOvTableADO, E_FAIL);
  EXPECT_EQ("OvFile.OvTableADO.1", take_published().source);
  ovf::ReportError(unknown_class, OLESTR("x"), 0, nullptr, IID_IOvTable, E_FAIL);
  const published error = take_published();
  EXPECT_EQ("x", error.description);
  EXPECT_FALSE(error.has_source);
}

TEST_F(report_error, replaces_what_was_published_before) {
  ovf::ReportError(CLSID_OvTable, OLESTR("first"), 0, nullptr, IID_IOvTable, E_FAIL);
  ovf::ReportError(CLSID_OvTable, OLESTR("second"), 0, nullptr, IID_IOvTable, E_FAIL);
  EXPECT_EQ("second", take_published().description);
  EXPECT_FALSE(take_published().there);
}

TEST_F(report_error, answers_the_status_given_or_an_exception) {
  EXPECT_EQ(E_ACCESSDENIED,
            ovf::ReportError(CLSID_OvTable, OLESTR("x"), 0, nullptr, IID_IOvTable, E_ACCESSDENIED));
  EXPECT_EQ(DISP_E_EXCEPTION, ovf::ReportError(CLSID_OvTable, OLESTR("x"), 0, nullptr, IID_IOvTable, S_OK));
}

TEST_F(report_error, sets_help_only_when_both_parts_are_given) {
  ovf::ReportError(CLSID_OvTable, OLESTR("x"), 7, OLESTR("ovfile.chm"), IID_IOvTable, E_FAIL);
  published error = take_published();
  EXPECT_EQ(7U, error.help_context);
  EXPECT_EQ("ovfile.chm", error.help_file);
  ovf::ReportError(CLSID_OvTable, OLESTR("x"), 7, nullptr, IID_IOvTable, E_FAIL);
  EXPECT_EQ(0U, take_published().help_context);
  ovf::ReportError(CLSID_OvTable, OLESTR("x"), 0, OLESTR("ovfile.chm"), IID_IOvTable, E_FAIL);
  EXPECT_FALSE(take_published().has_help_file);
}

TEST_F(report_error, resource_101_is_the_read_only_message) {
  const auto number = ovf::message_id::read_only_file;
  EXPECT_EQ(101U, static_cast<unsigned>(number));
  EXPECT_EQ(E_FAIL, ovf::ReportError(CLSID_OvTable, number, 0, nullptr, IID_IOvTable, E_FAIL));
  EXPECT_EQ("SetColumn failed, file is open in read-only mode", take_published().description);
}

TEST_F(report_error, resource_100_is_the_components_name) {
  ovf::ReportError(CLSID_OvTable, ovf::message_id::component_name, 0, nullptr, IID_IOvTable, E_FAIL);
  EXPECT_EQ("OvFile", take_published().description);
}

TEST_F(report_error, a_resource_that_does_not_exist_is_unknown) {
  ovf::ReportError(CLSID_OvTable, static_cast<ovf::message_id>(4711), 0, nullptr, IID_IOvTable, E_FAIL);
  EXPECT_EQ("Unknown Error", take_published().description);
}

TEST_F(report_error, a_resource_without_a_status_has_its_own) {
  const auto number = ovf::message_id::read_only_file;
  EXPECT_EQ(static_cast<HRESULT>(0x80040065),
            ovf::ReportError(CLSID_OvTable, number, 0, nullptr, IID_IOvTable, S_OK));
}

TEST_F(report_error, belongs_to_its_thread) {
  std::thread([] {
    ovf::ReportError(CLSID_OvTable, OLESTR("theirs"), 0, nullptr, IID_IOvTable, E_FAIL);
    clear_error();
  }).join();
  EXPECT_FALSE(take_published().there);
}

struct reporting_class {
  static constexpr CLSID class_id = CLSID_OvTable;
  static constexpr IID interface_id = IID_IOvTable;
};

TEST_F(report_error, the_guard_turns_exceptions_into_reports) {
  const reporting_class object;
  EXPECT_EQ(E_FAIL, ovf::guard(object, [] { throw MyExceptionClass(OLESTR("index out of bounds")); }));
  EXPECT_EQ("index out of bounds", take_published().description);
  EXPECT_EQ(E_FAIL, ovf::guard(object, [] { throw std::out_of_range("ov_size_t_2_long"); }));
  EXPECT_EQ("ov_size_t_2_long", take_published().description);
  EXPECT_EQ(E_FAIL, ovf::guard(object, [] { throw std::runtime_error("d\xC3\xA9j\xC3\xA0"); }));
  EXPECT_EQ("d\xC3\xA9j\xC3\xA0", take_published().description);
}

TEST_F(report_error, the_guard_reports_nothing_where_there_is_nothing_to_say) {
  const reporting_class object;
  EXPECT_EQ(E_OUTOFMEMORY, ovf::guard(object, [] { throw std::bad_alloc(); }));
  EXPECT_EQ(E_FAIL, ovf::guard(object, [] { throw 7; }));
  EXPECT_EQ(S_OK, ovf::guard(object, [] {}));
  EXPECT_EQ(S_FALSE, ovf::guard(object, [] { return S_FALSE; }));
  EXPECT_FALSE(take_published().there);
}

}  // namespace
}  // namespace ovtest
