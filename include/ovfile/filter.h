// The filter evaluator: a component of its own (`OvFilter.dll`, `libovfilter.so`) that tells whether a
// row passes an expression such as `AU >= 1.5 AND ROCK IN ('ORE', 'WASTE')`. A table object creates it
// on demand by its class identifier; any host may. The language: docs/filters.md.
//
// Values go in by one of two roads: as one text (`IOvFilter`) or one by one (`IOvFilterValues`). One
// object, one thread at a time. Variables are numbered from 0 in the order in which they first appear.
#pragma once

#include "ovfile/component.h"

inline constexpr CLSID CLSID_OvFilter{
    0x4F18D7B2, 0x93E6, 0x4A01, {0xBC, 0x57, 0xE2, 0x6A, 0x08, 0xF3, 0xD9, 0x14}};
inline constexpr IID IID_IOvFilter{
    0x8E27B4C1, 0x0F63, 0x4A5D, {0x9C, 0x18, 0x73, 0xD2, 0xE5, 0xA9, 0x4B, 0x06}};
inline constexpr IID IID_IOvFilterValues{
    0xB3E5D0F7, 0x6A18, 0x4C92, {0x8D, 0x4B, 0x15, 0xF7, 0xC2, 0x9A, 0x0E, 0x6D}};

#define OVFILE_METHOD virtual HRESULT STDMETHODCALLTYPE

/// An expression, and values for its variables as a text.
struct IOvFilter : IUnknown {
  /// Replaces the expression; all values become absent. A bad one is E_FAIL with error information whose
  /// description ends in "at position N" (1-based): then there are no variables and nothing passes. An
  /// empty expression has no variables and everything passes.
  OVFILE_METHOD SetExpression(BSTR expression) = 0;
  /// Takes the values as `SetValues` does; the result is 1 when they pass, else 0.
  OVFILE_METHOD Evaluate(BSTR values, SHORT* pResult) = 0;
  /// The values in the order of the variables, a comma between two. "-" and an empty position are absent,
  /// and so are positions that the text does not reach; the last variable takes the rest, commas included.
  /// What reads as a number may be one, INF and -INF too.
  OVFILE_METHOD SetValues(BSTR values) = 0;
  /// E_INVALIDARG for a number that no variable has. The name belongs to the caller.
  OVFILE_METHOD GetVariableName(LONG index, BSTR* pName) = 0;
  OVFILE_METHOD GetVariableCount(LONG* pCount) = 0;
};

/// The values one by one, which keeps every bit of a number and every character of a text. A value stays
/// until it is set again or the expression changes. E_INVALIDARG for a number that no variable has.
struct IOvFilterValues : IUnknown {
  /// NaN is absent.
  OVFILE_METHOD SetNumber(LONG variable, double value) = 0;
  /// The text is copied; one without characters other than blanks and tabs is absent. Beside a number it
  /// counts as the number that it reads as, beside another text as it stands.
  OVFILE_METHOD SetText(LONG variable, BSTR value) = 0;
  OVFILE_METHOD SetAbsent(LONG variable) = 0;
  /// 1 when the values pass, else 0.
  OVFILE_METHOD Test(SHORT* pResult) = 0;
};

#undef OVFILE_METHOD
