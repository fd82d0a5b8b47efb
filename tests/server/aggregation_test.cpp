// Identity and lifetime of objects, alone and inside another one.
#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <utility>

#include "platform/object.h"
#include "support/component.h"

namespace ovtest {
namespace {

/// Everything that the library knows of its classes; what a class lacks it must say.
const IID all_interfaces[] = {IID_IUnknown,          IID_IDispatch,           IID_ISupportErrorInfo,
                              IID_IOvTable,          IID_IZuCommonDataTable,  IID_IOvTableMaintenance,
                              IID_IOvSchema,         IID_IZuCommonDataSchema, IID_IOvTableADO,
                              IID_IProvideClassInfo, IID_IOvProgressSource};

ovfile::pointer<IUnknown> ask(IUnknown& object, REFIID iid) {
  ovfile::pointer<IUnknown> answer;
  void* found = &answer;
  const HRESULT status = object.QueryInterface(iid, &found);
  EXPECT_EQ(SUCCEEDED(status), found != nullptr);
  if (FAILED(status)) {
    EXPECT_EQ(E_NOINTERFACE, status);
  } else {
    *answer.out() = static_cast<IUnknown*>(found);
  }
  return answer;
}

HRESULT make(REFCLSID class_id, IUnknown* outer, REFIID iid, void** out) {
  void* found = nullptr;
  const HRESULT status = DllGetClassObject(class_id, IID_IClassFactory, &found);
  if (FAILED(status)) return status;
  ovfile::pointer<IClassFactory> factory;
  *factory.out() = static_cast<IClassFactory*>(found);
  return factory->CreateInstance(outer, iid, out);
}

/// Interfaces of the whole object, whoever of the two implements them, must name one object: from each
/// one every other is reached, and the unknown is always the same.
void hold_together(IUnknown& whole) {
  const auto identity = ask(whole, IID_IUnknown);
  ASSERT_TRUE(identity);
  std::vector<IID> answered;
  for (const IID& iid : all_interfaces) {
    if (ask(whole, iid)) answered.push_back(iid);
  }
  EXPECT_GE(answered.size(), 4U);
  for (const IID& from : answered) {
    const auto start = ask(whole, from);
    EXPECT_EQ(identity.get(), ask(*start.get(), IID_IUnknown).get());
    EXPECT_EQ(start.get(), ask(*start.get(), from).get()) << "asked again, the same pointer";
    for (const IID& to : answered) EXPECT_TRUE(ask(*start.get(), to)) << "reached from everywhere";
  }
}

/// An object of a host that takes one of the library's in.
class outer_object final : public IUnknown {
 public:
  explicit outer_object(REFCLSID class_id) {
    void* made = nullptr;
    EXPECT_EQ(S_OK, make(class_id, this, IID_IUnknown, &made));
    *inner_.out() = static_cast<IUnknown*>(made);
  }
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
    if (!(iid == IID_IUnknown)) return inner_->QueryInterface(iid, out);
    *out = static_cast<IUnknown*>(this);
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
  ULONG STDMETHODCALLTYPE Release() override { return --references; }
  IUnknown& inner() const { return *inner_.get(); }

  ULONG references = 1;  ///< lives on the stack, whatever the count

 private:
  ovfile::pointer<IUnknown> inner_;
};

class objects : public testing::TestWithParam<CLSID> {};

TEST_P(objects, alone_are_one_from_every_side) {
  void* made = nullptr;
  ASSERT_EQ(S_OK, make(GetParam(), nullptr, IID_IUnknown, &made));
  auto* object = static_cast<IUnknown*>(made);
  hold_together(*object);
  EXPECT_EQ(0U, object->Release()) << "nothing else is held";
  EXPECT_EQ(S_OK, DllCanUnloadNow());
}

TEST_P(objects, inside_another_are_one_with_it) {
  {
    outer_object outer(GetParam());
    hold_together(outer);
    EXPECT_EQ(1U, outer.references);
    const auto dispatch = ask(outer, IID_IDispatch);
    EXPECT_EQ(2U, outer.references) << "what the inner one hands out counts on the outer one";
    EXPECT_EQ(static_cast<IUnknown*>(&outer), ask(*dispatch.get(), IID_IUnknown).get());
    EXPECT_EQ(3U, dispatch->AddRef());
    EXPECT_EQ(2U, dispatch->Release());
    EXPECT_EQ(S_FALSE, DllCanUnloadNow());
  }
  EXPECT_EQ(S_OK, DllCanUnloadNow()) << "the inner one went with its outer one";
}

TEST_P(objects, inside_another_have_an_unknown_of_their_own) {
  outer_object outer(GetParam());
  EXPECT_NE(static_cast<IUnknown*>(&outer), &outer.inner());
  EXPECT_EQ(2U, outer.inner().AddRef());
  EXPECT_EQ(1U, outer.inner().Release());
  EXPECT_EQ(1U, outer.references);
  EXPECT_EQ(&outer.inner(), ask(outer.inner(), IID_IUnknown).get());
}

TEST_P(objects, are_taken_in_through_their_unknown_only) {
  outer_object outer(GetParam());
  void* made = &outer;
  EXPECT_EQ(CLASS_E_NOAGGREGATION, make(GetParam(), &outer, IID_IDispatch, &made));
  EXPECT_EQ(nullptr, made);
  EXPECT_EQ(1U, outer.references);
}

TEST_P(objects, refuse_null_pointers_and_unknown_interfaces) {
  void* made = nullptr;
  ASSERT_EQ(S_OK, make(GetParam(), nullptr, IID_IDispatch, &made));
  auto* object = static_cast<IUnknown*>(made);
  EXPECT_EQ(E_POINTER, object->QueryInterface(IID_IUnknown, nullptr));
  EXPECT_FALSE(ask(*object, IID_IClassFactory));
  EXPECT_EQ(0U, object->Release());
}

TEST_P(objects, support_error_information) {
  void* made = nullptr;
  ASSERT_EQ(S_OK, make(GetParam(), nullptr, IID_ISupportErrorInfo, &made));
  ovfile::pointer<ISupportErrorInfo> support;
  *support.out() = static_cast<ISupportErrorInfo*>(made);
  const CLSID& tested = GetParam();
  const auto expected = [&](REFCLSID of) { return tested == of ? S_OK : S_FALSE; };
  EXPECT_EQ(expected(CLSID_OvTable), support->InterfaceSupportsErrorInfo(IID_IOvTable));
  EXPECT_EQ(expected(CLSID_OvTable), support->InterfaceSupportsErrorInfo(IID_IZuCommonDataTable));
  EXPECT_EQ(expected(CLSID_OvSchema), support->InterfaceSupportsErrorInfo(IID_IOvSchema));
  EXPECT_EQ(expected(CLSID_OvSchema), support->InterfaceSupportsErrorInfo(IID_IZuCommonDataSchema));
  EXPECT_EQ(expected(CLSID_OvTableADO), support->InterfaceSupportsErrorInfo(IID_IOvTableADO));
  EXPECT_EQ(S_FALSE, support->InterfaceSupportsErrorInfo(IID_IUnknown));
}

TEST_P(objects, are_dispatched_by_their_default_interface) {
  void* made = nullptr;
  ASSERT_EQ(S_OK, make(GetParam(), nullptr, IID_IDispatch, &made));
  ovfile::pointer<IDispatch> dispatch;
  *dispatch.out() = static_cast<IDispatch*>(made);
  const std::pair<wide, DISPID> only_there = GetParam() == CLSID_OvTable ? std::pair(OLESTR("GetRowAt"), 18)
                                             : GetParam() == CLSID_OvSchema
                                                 ? std::pair(OLESTR("SetFieldType"), 11)
                                                 : std::pair(OLESTR("MoveTo"), 11);
  wide name = only_there.first;
  LPOLESTR pointer = name.data();
  DISPID id = 0;
  EXPECT_EQ(S_OK, dispatch->GetIDsOfNames(IID_NULL, &pointer, 1, 0, &id));
  EXPECT_EQ(only_there.second, id);
}

TEST_P(objects, answer_their_own_interfaces_and_no_others) {
  void* made = nullptr;
  ASSERT_EQ(S_OK, make(GetParam(), nullptr, IID_IUnknown, &made));
  ovfile::pointer<IUnknown> object;
  *object.out() = static_cast<IUnknown*>(made);
  const auto expected = [&](std::initializer_list<CLSID> of) {
    return std::find(of.begin(), of.end(), GetParam()) != of.end();
  };
  EXPECT_EQ(expected({CLSID_OvTable}), static_cast<bool>(ask(*object.get(), IID_IOvTable)));
  EXPECT_EQ(expected({CLSID_OvTable}), static_cast<bool>(ask(*object.get(), IID_IZuCommonDataTable)));
  EXPECT_EQ(expected({CLSID_OvTable, CLSID_OvTableADO}),
            static_cast<bool>(ask(*object.get(), IID_IOvTableMaintenance)));
  EXPECT_EQ(expected({CLSID_OvTable, CLSID_OvTableADO}),
            static_cast<bool>(ask(*object.get(), IID_IOvProgressSource)));
  EXPECT_FALSE(ask(*object.get(), IID_IOvProgress));
  EXPECT_EQ(expected({CLSID_OvSchema}), static_cast<bool>(ask(*object.get(), IID_IOvSchema)));
  EXPECT_EQ(expected({CLSID_OvSchema}), static_cast<bool>(ask(*object.get(), IID_IZuCommonDataSchema)));
  EXPECT_EQ(expected({CLSID_OvTableADO}), static_cast<bool>(ask(*object.get(), IID_IOvTableADO)));
}

INSTANTIATE_TEST_SUITE_P(every_class, objects,
                         testing::Values(CLSID_OvTable, CLSID_OvSchema, CLSID_OvTableADO),
                         [](const auto& tested) -> std::string {
                           if (tested.param == CLSID_OvTable) return "OvTable";
                           return tested.param == CLSID_OvSchema ? "OvSchema" : "OvTableADO";
                         });

}  // namespace
}  // namespace ovtest
