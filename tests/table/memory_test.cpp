// Memory that runs out while a text is handed to a host.
#include "table_host.h"

#include "recording_filter.h"
#include "support/denied_memory.h"

namespace {

using ovtest::text_of;

class Memory : public ovtest::TableHost {
 protected:
  /// A row with a text of 40 characters, which is put together in steps; one of them needs 31 bytes.
  void SetUp() override {
    auto schema = ovfile::create_schema();
    schema->AddStringColumn(text_of(std::string("NOTE")).get(), 40, nullptr, 0);
    ASSERT_EQ(create(schema), S_OK);
    ASSERT_EQ(table_->AddRow(), S_OK);
    ASSERT_EQ(table_->SetColumnString(1, text_of(std::string(40, 'x')).get()), S_OK);
  }
  template <class Call>
  static HRESULT without_memory(Call call) {
    SetErrorInfo(0, nullptr);
    ovtest::deny_allocations_of(31);
    const HRESULT status = call();
    ovtest::deny_allocations_of(0);
    return status;
  }
};

TEST_F(Memory, ATextThatCannotBeHadIsTheSystemsOwnStatus) {
  BSTR text = nullptr;
  EXPECT_EQ(without_memory([&] { return table_->GetColumnAsString(1, &text); }), E_OUTOFMEMORY);
  EXPECT_EQ(text, nullptr);
  EXPECT_EQ(ovtest::reported(), "(none)");
  VARIANT value;
  VariantInit(&value);
  EXPECT_EQ(without_memory([&] { return table_->GetColumn(1, &value); }), E_OUTOFMEMORY);
  EXPECT_EQ(value.vt, VT_EMPTY);
  EXPECT_EQ(column_text(1), std::string(40, 'x'));
}

TEST_F(Memory, ARowWhoseTextCannotBeHadDoesNotPass) {
  ovtest::filter_record record;
  const ovtest::filter_factory factory(record);
  for (const bool takes_values : {false, true}) {
    record.takes_values = takes_values;
    record.variables = {"NOTE"};
    table_ = ovfile::create_table();
    ASSERT_EQ(open(), S_OK);
    ASSERT_EQ(table_->put_FilterString(0, text_of(std::string("x")).get()), S_OK);
    VARIANT_BOOL in = 9;
    EXPECT_EQ(without_memory([&] { return table_->IsFilteredIn(0, 1, &in); }), E_OUTOFMEMORY);
    EXPECT_EQ(in, 0);
    EXPECT_EQ(table_->IsFilteredIn(0, 1, &in), S_OK);
    EXPECT_EQ(in, 1);
  }
}

}  // namespace
