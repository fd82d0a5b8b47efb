#include "platform/variant.h"

#include <gtest/gtest.h>

#include "test_object.h"

namespace {

using ovf::variant;

// Some headers declare sources as ones that might be changed.
HRESULT copy(VARIANT& dest, const VARIANT& source) {
  return VariantCopy(&dest, const_cast<VARIANT*>(&source));
}
HRESULT copy_resolved(VARIANT& dest, const VARIANT& source) {
  return VariantCopyInd(&dest, const_cast<VARIANT*>(&source));
}

VARIANT reference_to(VARTYPE type, void* place) {
  VARIANT value;
  VariantInit(&value);
  value.vt = static_cast<VARTYPE>(type | VT_BYREF);
  value.byref = place;
  return value;
}

TEST(variant_copy, of_a_text_is_a_text_of_its_own) {
  const variant source(ovf::wide_view(OLESTR("a\0b"), 3));
  const variant other(source);
  EXPECT_NE(other.get().bstrVal, source.get().bstrVal);
  EXPECT_EQ(ovf::view_of(other.get().bstrVal), ovf::wide_view(OLESTR("a\0b"), 3));
}

TEST(variant_copy, of_an_object_counts_one_more) {
  ovtest::test_object object;
  VARIANT source;
  VariantInit(&source);
  source.vt = VT_DISPATCH;
  source.pdispVal = &object;
  {
    const variant other(source);
    EXPECT_EQ(object.references, 1u);
  }
  EXPECT_EQ(object.references, 0u);
}

TEST(variant_copy, onto_itself_changes_nothing) {
  variant text(ovf::wide_view(OLESTR("same")));
  VARIANT held = text.release();
  EXPECT_EQ(copy(held, held), S_OK);
  EXPECT_EQ(ovf::view_of(held.bstrVal), OLESTR("same"));
  VariantClear(&held);
}

TEST(variant_copy, lets_go_what_the_place_held) {
  ovtest::test_object object;
  VARIANT place;
  VariantInit(&place);
  place.vt = VT_UNKNOWN;
  place.punkVal = &object;
  object.AddRef();
  EXPECT_EQ(copy(place, variant(1.5)), S_OK);
  EXPECT_EQ(object.references, 0u);
  EXPECT_EQ(place.vt, VT_R8);
}

TEST(variant_copy, of_a_reference_stays_one_and_resolves_on_demand) {
  double number = 2.5;
  const VARIANT source = reference_to(VT_R8, &number);
  VARIANT place;
  VariantInit(&place);
  EXPECT_EQ(copy(place, source), S_OK);
  EXPECT_EQ(place.vt, VT_BYREF | VT_R8);
  EXPECT_EQ(place.pdblVal, &number);
  EXPECT_EQ(copy_resolved(place, source), S_OK);
  EXPECT_EQ(place.vt, VT_R8);
  EXPECT_EQ(place.dblVal, 2.5);
}

TEST(variant_copy, resolves_every_size) {
  unsigned char byte = 200;
  short two = -2;
  LONG four = -70000;
  float real = 1.5F;
  BSTR text = SysAllocString(OLESTR("text"));
  VARIANT place;
  VariantInit(&place);
  EXPECT_EQ(copy_resolved(place, reference_to(VT_UI1, &byte)), S_OK);
  EXPECT_EQ(place.bVal, 200);
  EXPECT_EQ(copy_resolved(place, reference_to(VT_I2, &two)), S_OK);
  EXPECT_EQ(place.iVal, -2);
  EXPECT_EQ(copy_resolved(place, reference_to(VT_I4, &four)), S_OK);
  EXPECT_EQ(place.lVal, -70000);
  EXPECT_EQ(copy_resolved(place, reference_to(VT_R4, &real)), S_OK);
  EXPECT_EQ(place.fltVal, 1.5F);
  EXPECT_EQ(copy_resolved(place, reference_to(VT_BSTR, &text)), S_OK);
  EXPECT_EQ(ovf::view_of(place.bstrVal), OLESTR("text"));
  EXPECT_NE(place.bstrVal, text);
  VariantClear(&place);
  SysFreeString(text);
}

TEST(variant_copy, resolves_a_variant_and_what_it_refers_to) {
  double number = 2.5;
  VARIANT inner = reference_to(VT_R8, &number);
  VARIANT place;
  VariantInit(&place);
  EXPECT_EQ(copy_resolved(place, reference_to(VT_VARIANT, &inner)), S_OK);
  EXPECT_EQ(place.vt, VT_R8);
  EXPECT_EQ(place.dblVal, 2.5);
}

TEST(variant_copy, refuses_a_chain_of_variants) {
  VARIANT innermost;
  VariantInit(&innermost);
  VARIANT inner = reference_to(VT_VARIANT, &innermost);
  VARIANT place;
  VariantInit(&place);
  EXPECT_EQ(copy_resolved(place, reference_to(VT_VARIANT, &inner)), E_INVALIDARG);
  EXPECT_EQ(place.vt, VT_EMPTY);
}

TEST(variant_copy, resolves_in_place) {
  LONG number = 7;
  VARIANT place = reference_to(VT_I4, &number);
  EXPECT_EQ(copy_resolved(place, place), S_OK);
  EXPECT_EQ(place.vt, VT_I4);
  EXPECT_EQ(place.lVal, 7);
}

TEST(variant_clear, leaves_what_a_reference_refers_to) {
  BSTR text = SysAllocString(OLESTR("kept"));
  VARIANT value = reference_to(VT_BSTR, &text);
  EXPECT_EQ(VariantClear(&value), S_OK);
  EXPECT_EQ(value.vt, VT_EMPTY);
  EXPECT_EQ(ovf::view_of(text), OLESTR("kept"));
  SysFreeString(text);
}

TEST(variant_clear, refuses_an_unknown_type) {
  VARIANT value;
  VariantInit(&value);
  value.vt = 77;
  EXPECT_EQ(VariantClear(&value), DISP_E_BADVARTYPE);
}

TEST(change_type, in_place) {
  variant text(ovf::wide_view(OLESTR("12.5")));
  VARIANT value = text.release();
  EXPECT_EQ(ovf::change_type(value, value, VT_R8), S_OK);
  EXPECT_EQ(value.vt, VT_R8);
  EXPECT_EQ(value.dblVal, 12.5);
  EXPECT_EQ(ovf::change_type(value, value, VT_BSTR), S_OK);
  EXPECT_EQ(ovf::view_of(value.bstrVal), OLESTR("12.5"));
  VariantClear(&value);
}

TEST(change_type, a_failure_leaves_the_place_untouched) {
  variant text(ovf::wide_view(OLESTR("abc")));
  VARIANT value = text.release();
  EXPECT_EQ(ovf::change_type(value, value, VT_R8), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(value.vt, VT_BSTR);
  EXPECT_EQ(ovf::view_of(value.bstrVal), OLESTR("abc"));

  const variant large(1e300);
  EXPECT_EQ(ovf::change_type(value, large, VT_I4), DISP_E_OVERFLOW);
  EXPECT_EQ(value.vt, VT_BSTR);
  EXPECT_EQ(ovf::view_of(value.bstrVal), OLESTR("abc"));
  VariantClear(&value);
}

TEST(change_type, resolves_references) {
  BSTR text = SysAllocString(OLESTR("1e3"));
  VARIANT inner = reference_to(VT_BSTR, &text);
  const VARIANT outer = reference_to(VT_VARIANT, &inner);
  EXPECT_EQ(ovf::to_double(outer), 1000.0);
  EXPECT_EQ(ovf::to_float(inner), 1000.0F);
  EXPECT_EQ(ovf::to_text(outer), OLESTR("1e3"));
  SysFreeString(text);
}

TEST(change_type, lets_go_what_the_place_held) {
  ovtest::test_object object;
  VARIANT place;
  VariantInit(&place);
  place.vt = VT_UNKNOWN;
  place.punkVal = &object;
  object.AddRef();
  EXPECT_EQ(ovf::change_type(place, variant(2.5F), VT_R8), S_OK);
  EXPECT_EQ(object.references, 0u);
  EXPECT_EQ(place.dblVal, 2.5);
}

TEST(change_type, everything_but_null_and_errors_can_be_emptied) {
  variant place;
  EXPECT_EQ(ovf::change_type(*place.out(), variant(ovf::wide_view(OLESTR("x"))), VT_NULL), S_OK);
  EXPECT_EQ(place.type(), VT_NULL);
  EXPECT_EQ(ovf::change_type(*place.out(), variant(1.0), VT_EMPTY), S_OK);
  EXPECT_EQ(place.type(), VT_EMPTY);
  VARIANT null;
  VariantInit(&null);
  null.vt = VT_NULL;
  EXPECT_EQ(ovf::change_type(*place.out(), null, VT_EMPTY), DISP_E_TYPEMISMATCH);
  null.vt = VT_ERROR;
  EXPECT_EQ(ovf::change_type(*place.out(), null, VT_EMPTY), DISP_E_TYPEMISMATCH);
}

TEST(change_type, to_an_unknown_type) {
  variant place;
  EXPECT_EQ(ovf::change_type(*place.out(), variant(1.0), 77), DISP_E_BADVARTYPE);
  EXPECT_EQ(ovf::change_type(*place.out(), variant(1.0), VT_VARIANT), DISP_E_TYPEMISMATCH);
}

/// A variant that holds the object without counting it.
VARIANT holding(ovtest::test_object& object, VARTYPE type = VT_DISPATCH) {
  VARIANT value;
  VariantInit(&value);
  value.vt = type;
  value.pdispVal = &object;
  return value;
}

TEST(change_type_of_objects, takes_the_default_property) {
  ovtest::test_object object;
  VARIANT text = variant(ovf::wide_view(OLESTR("12.5"))).release();
  object.value = text;
  EXPECT_EQ(ovf::to_double(holding(object)), 12.5);
  EXPECT_EQ(ovf::to_text(holding(object)), OLESTR("12.5"));
  EXPECT_EQ(object.calls, 2);
  EXPECT_EQ(object.references, 0u);
  VariantClear(&object.value);
}

TEST(change_type_of_objects, fails_like_the_property) {
  ovtest::test_object object;
  object.answer = DISP_E_MEMBERNOTFOUND;
  variant place;
  EXPECT_EQ(ovf::change_type(*place.out(), holding(object), VT_R8), DISP_E_TYPEMISMATCH);
  object.answer = E_FAIL;
  EXPECT_EQ(ovf::change_type(*place.out(), holding(object), VT_BSTR), DISP_E_TYPEMISMATCH);
}

TEST(change_type_of_objects, without_late_binding_have_no_value) {
  ovtest::test_object object;
  object.value.vt = VT_R8;
  variant place;
  EXPECT_EQ(ovf::change_type(*place.out(), holding(object, VT_UNKNOWN), VT_R8), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(object.calls, 0);
}

TEST(change_type_of_objects, goes_through_the_interface_asked_for) {
  ovtest::test_object object;
  {
    variant place;
    EXPECT_EQ(ovf::change_type(*place.out(), holding(object), VT_UNKNOWN), S_OK);
    EXPECT_EQ(place.type(), VT_UNKNOWN);
    EXPECT_EQ(object.references, 1u);
    EXPECT_EQ(ovf::change_type(*place.out(), holding(object, VT_UNKNOWN), VT_DISPATCH), S_OK);
    EXPECT_EQ(object.references, 1u);
  }
  EXPECT_EQ(object.references, 0u);
  object.dispatches = false;
  variant place;
  EXPECT_EQ(ovf::change_type(*place.out(), holding(object, VT_UNKNOWN), VT_DISPATCH), E_NOINTERFACE);
}

TEST(owning_variant, swaps_moves_and_releases) {
  variant one(ovf::wide_view(OLESTR("one")));
  variant two(2.0);
  one.swap(two);
  EXPECT_EQ(one.type(), VT_R8);
  const variant three(std::move(two));
  EXPECT_EQ(ovf::to_text(three), OLESTR("one"));
  EXPECT_EQ(two.type(), VT_EMPTY);  // NOLINT(bugprone-use-after-move): an emptied variant is promised
  VARIANT mine = one.release();
  EXPECT_EQ(one.type(), VT_EMPTY);
  EXPECT_EQ(mine.dblVal, 2.0);
}

TEST(com_error, carries_status_and_text) {
  try {
    ovf::to_double(variant(ovf::wide_view(OLESTR("abc"))));
    FAIL() << "no exception";
  } catch (const ovf::com_error& error) {
    EXPECT_EQ(error.status(), DISP_E_TYPEMISMATCH);
    EXPECT_FALSE(error.message().empty());
  }
}

TEST(com_error, is_the_exception_that_interfaces_report) {
  EXPECT_THROW(ovf::to_float(variant(1e39)), MyExceptionClass);
}

}  // namespace
