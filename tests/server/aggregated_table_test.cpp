// A table inside an object of the host, with a schema inside another: what the library does with them goes
// through the outer objects, however little these hand on.
#include <gtest/gtest.h>

#include "support/component.h"
#include "support/scratch_folder.h"
#include "table/recording_filter.h"

namespace ovtest {
namespace {

/// Destroyed by its last release, with the inner object.
class choosy_outer_object final : public IUnknown {
 public:
  /// `only` is the one interface that is handed on; IID_NULL: all of them are, unseen.
  choosy_outer_object(REFCLSID class_id, REFIID only) : only_(only) {
    void* found = nullptr;
    EXPECT_EQ(S_OK, DllGetClassObject(class_id, IID_IClassFactory, &found));
    auto* factory = static_cast<IClassFactory*>(found);
    EXPECT_EQ(S_OK, factory->CreateInstance(this, IID_IUnknown, &found));
    factory->Release();
    inner_ = static_cast<IUnknown*>(found);
  }
  virtual ~choosy_outer_object() = default;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    *out = nullptr;
    if (iid == IID_IUnknown) {
      *out = static_cast<IUnknown*>(this);
      AddRef();
      return S_OK;
    }
    return only_ == IID_NULL || iid == only_ ? inner_->QueryInterface(iid, out) : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) {
      references_ = 1;  // what the inner object gives back while it goes counts on this one
      inner_->Release();
      delete this;
    }
    return left;
  }

 private:
  IID only_;
  IUnknown* inner_ = nullptr;
  ULONG references_ = 1;
};

template <class Interface>
owned<Interface> make_inside(REFCLSID class_id, REFIID iid, bool hands_on_everything) {
  auto* outer = new choosy_outer_object(class_id, hands_on_everything ? IID_NULL : iid);
  void* found = nullptr;
  EXPECT_EQ(S_OK, outer->QueryInterface(iid, &found));
  outer->Release();
  owned<Interface> made;
  *made.out() = static_cast<Interface*>(found);
  return made;
}

/// Whether the outer objects hand on everything, or the one interface that the test uses.
class inside_another : public testing::TestWithParam<bool> {
 protected:
  void TearDown() override {
    clear_error();
    schema_ = {};
    table_ = {};
    EXPECT_EQ(S_OK, DllCanUnloadNow());
  }

  /// XPT: 3, 1, 2.
  void create() {
    ASSERT_EQ(S_OK, schema_->CreatePointsFile());
    ASSERT_EQ(S_OK, table_->Create(path_text(path_).get(), schema_.get()));
    for (const double x : {3.0, 1.0, 2.0}) {
      ASSERT_EQ(S_OK, table_->AddRow());
      ASSERT_EQ(S_OK, table_->SetColumnDouble(1, x));
    }
  }
  std::vector<double> values() const {
    std::vector<double> found;
    for (HRESULT at = table_->GetFirstRow(); at == S_OK; at = table_->GetNextRow()) {
      found.emplace_back();
      EXPECT_EQ(S_OK, table_->GetColumnAsDouble(1, &found.back()));
    }
    return found;
  }

  scratch_folder folder_;
  std::filesystem::path path_ = folder_ / "inside.ovt";
  owned<IOvSchema> schema_ = make_inside<IOvSchema>(CLSID_OvSchema, IID_IOvSchema, GetParam());
  owned<IOvTable> table_ = make_inside<IOvTable>(CLSID_OvTable, IID_IOvTable, GetParam());
};

TEST_P(inside_another, a_table_is_made_from_a_schema_inside_another) {
  create();
  EXPECT_EQ((std::vector<double>{3, 1, 2}), values());
  owned<IOvSchema> answered;
  EXPECT_EQ(S_OK, table_->get_Schema(answered.out()));
  LONG fields = 0;
  EXPECT_EQ(S_OK, answered->get_FieldCount(&fields));
  EXPECT_EQ(3, fields);
  EXPECT_EQ(S_OK, table_->Close());
}

TEST_P(inside_another, a_table_is_sorted_and_repaired) {
  create();
  EXPECT_EQ(S_OK, table_->Sort(1, VARIANT_TRUE));
  EXPECT_EQ((std::vector<double>{1, 2, 3}), values());
  EXPECT_EQ(S_OK, schema_->AddNumericColumn(bstr("SG").get(), 2.5, 0));
  EXPECT_EQ(S_OK, table_->Repair(schema_.get()));
  EXPECT_EQ((std::vector<double>{1, 2}), values()) << "the last row is dropped";
  double density = 0;
  EXPECT_EQ(S_OK, table_->GetLastRow());
  EXPECT_EQ(S_OK, table_->GetColumnAsDouble(4, &density));
  EXPECT_EQ(2.5, density);
  EXPECT_EQ(S_OK, table_->Close());
}

TEST_P(inside_another, a_failure_carries_its_message) {
  EXPECT_EQ(E_FAIL, table_->Open(path_text(folder_ / "missing.ovt").get(), 1));
  EXPECT_EQ("File does not exist", take_error_text());
  create();
  EXPECT_EQ(S_OK, table_->Close());
  EXPECT_EQ(S_OK, table_->Open(path_text(path_).get(), 1));
  EXPECT_EQ(S_OK, table_->Close());
}

TEST_P(inside_another, rows_are_filtered) {
  filter_record record;
  record.variables = {"XPT"};
  const filter_factory evaluators(record);
  create();
  EXPECT_EQ(S_OK, table_->put_FilterString(0, bstr("XPT > 1").get()));
  EXPECT_EQ(std::vector<std::string>{"XPT > 1"}, record.expressions);
  VARIANT_BOOL passes = 0;
  EXPECT_EQ(S_OK, table_->GetFirstRow());
  EXPECT_EQ(S_OK, table_->IsFilteredIn(0, 0, &passes));
  EXPECT_EQ(1, passes);
  EXPECT_EQ(std::vector<std::string>{"3"}, record.evaluated_texts);
  EXPECT_EQ(S_OK, table_->Close());
}

INSTANTIATE_TEST_SUITE_P(an_outer_object, inside_another, testing::Bool(), [](const auto& tested) {
  return tested.param ? "that_hands_on_everything" : "that_hands_on_one_interface";
});

}  // namespace
}  // namespace ovtest
