// What the system of Windows leaves open or crashes on.
#include <gtest/gtest.h>

#include "platform/variant.h"
#include "test_object.h"

namespace {

using ovf::variant;

TEST(variant_layout, is_the_one_of_64_bit_windows) {
  VARIANT value{};
  EXPECT_EQ(reinterpret_cast<char*>(&value.dblVal) - reinterpret_cast<char*>(&value), 8);
  EXPECT_EQ(reinterpret_cast<char*>(&value.vt) - reinterpret_cast<char*>(&value), 0);
}

TEST(change_type, arrays_and_records_are_refused) {
  variant place;
  // An array, an array by reference, a record, a decimal, references to nothing and to null.
  for (const int type : {0x2005, 0x6003, 36, 14, 0x4000, 0x4001}) {
    VARIANT source{};
    source.vt = static_cast<VARTYPE>(type);
    EXPECT_EQ(ovf::change_type(*place.out(), source, VT_R8), DISP_E_BADVARTYPE) << type;
    EXPECT_EQ(VariantCopy(place.out(), &source), DISP_E_BADVARTYPE) << type;
    EXPECT_EQ(ovf::change_type(*place.out(), variant(1.0), source.vt), DISP_E_BADVARTYPE) << type;
  }
}

TEST(change_type, null_pointers_are_refused) {
  VARIANT value{};
  EXPECT_EQ(VariantChangeType(nullptr, &value, 0, VT_R8), E_INVALIDARG);
  EXPECT_EQ(VariantChangeType(&value, nullptr, 0, VT_R8), E_INVALIDARG);
  EXPECT_EQ(VariantClear(nullptr), E_INVALIDARG);
  value.vt = VT_BYREF | VT_R8;
  variant place;
  EXPECT_EQ(ovf::change_type(*place.out(), value, VT_R8), E_INVALIDARG);
}

TEST(change_type, an_object_whose_value_is_itself_comes_to_an_end) {
  ovtest::test_object object;
  object.value.vt = VT_DISPATCH;
  object.value.pdispVal = &object;
  VARIANT source{};
  source.vt = VT_DISPATCH;
  source.pdispVal = &object;
  variant place;
  EXPECT_EQ(ovf::change_type(*place.out(), source, VT_R8), DISP_E_TYPEMISMATCH);
}

TEST(change_type, flags_choose_the_words_and_forbid_the_property) {
  VARIANT truth{};
  truth.vt = VT_BOOL;
  truth.boolVal = VARIANT_TRUE;
  variant place;
  EXPECT_EQ(VariantChangeType(place.out(), &truth, 2, VT_BSTR), S_OK);
  EXPECT_EQ(ovf::to_text(place), u"True");
  ovtest::test_object object;
  object.value.vt = VT_R8;
  VARIANT source{};
  source.vt = VT_DISPATCH;
  source.pdispVal = &object;
  EXPECT_EQ(VariantChangeType(place.out(), &source, 1, VT_R8), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(object.calls, 0);
}

TEST(change_type, whatever_the_locale) {
  VARIANT text = variant(ovf::wide_view(u"1.5")).release();
  variant place;
  EXPECT_EQ(VariantChangeTypeEx(place.out(), &text, 0x0407, 0, VT_R8), S_OK);
  EXPECT_EQ(place.get().dblVal, 1.5);
  VariantClear(&text);
}

/// Lets go of what it is told to while it is let go of itself.
class clearing_object : public ovtest::test_object {
 public:
  ULONG STDMETHODCALLTYPE Release() override {
    if (place != nullptr) seen = place->vt;
    return test_object::Release();
  }
  VARIANT* place = nullptr;
  VARTYPE seen = 99;
};

TEST(variant_clear, is_done_before_the_object_hears_of_it) {
  clearing_object object;
  VARIANT value{};
  value.vt = VT_DISPATCH;
  value.pdispVal = &object;
  object.AddRef();
  object.place = &value;
  EXPECT_EQ(VariantClear(&value), S_OK);
  EXPECT_EQ(object.seen, VT_EMPTY);
}

}  // namespace
