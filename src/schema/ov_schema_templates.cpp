// The kind of table that a schema describes, and the standard fields of the common kinds. A field that
// an adder refuses is missing; the builders succeed all the same.
#include <initializer_list>

#include "ovfile/smart.h"
#include "schema/ov_schema.h"
#include "schema/type_hint.h"

namespace ovf {

namespace {

struct standard_field {
  wide_view name;
  double value = 0.0;
};

/// As many cells as a largest index needs. Wraps like the 32 bits it is kept in.
double one_more(LONG largest) noexcept {
  return static_cast<double>(static_cast<LONG>(static_cast<ULONG>(largest) + 1U));
}

void add_fields(IOvSchema& schema, std::initializer_list<standard_field> fields, LONG implicit = 0) {
  for (const standard_field& field : fields) {
    const ovfile::text name(field.name);
    only_memory_counts(schema.AddNumericColumn(name.get(), field.value, implicit));
  }
}

}  // namespace

HRESULT COvSchema::get_TypeHint(OvFileType* pVal) {
  if (pVal == nullptr) return E_POINTER;
  *pVal = ovNothing;
  return guard(*this, [&] {
    if (type_hint_ == ovNothing) type_hint_ = type_hint_of(fields_);
    *pVal = type_hint_;
  });
}

// The model counts its cells and keeps its increments in the records, the grid does neither.
HRESULT COvSchema::CreateModelFile(double dXINC, double dYINC, double dZINC, double dXMORIG, double dYMORIG,
                                   double dZMORIG, LONG, LONG Imax, LONG, LONG Jmax, LONG, LONG Kmax) {
  return guard(*this, [&] {
    add_fields(*this, {{OLESTR("IJK")}, {OLESTR("XC")}, {OLESTR("YC")}, {OLESTR("ZC")}});
    add_fields(*this, {{OLESTR("XINC"), dXINC}, {OLESTR("YINC"), dYINC}, {OLESTR("ZINC"), dZINC}});
    add_fields(*this,
               {{OLESTR("XMORIG"), dXMORIG},
                {OLESTR("YMORIG"), dYMORIG},
                {OLESTR("ZMORIG"), dZMORIG},
                {OLESTR("NX"), one_more(Imax)},
                {OLESTR("NY"), one_more(Jmax)},
                {OLESTR("NZ"), one_more(Kmax)}},
               1);
  });
}

HRESULT COvSchema::CreateRegularGrid(double dXINC, double dYINC, double dZINC, double dXMORIG, double dYMORIG,
                                     double dZMORIG, LONG Imax, LONG Jmax, LONG Kmax, VARIANT_BOOL bIJK) {
  return guard(*this, [&] {
    if (bIJK != 0) add_fields(*this, {{OLESTR("IJK")}});
    add_fields(*this,
               {{OLESTR("XINC"), dXINC},
                {OLESTR("YINC"), dYINC},
                {OLESTR("ZINC"), dZINC},
                {OLESTR("XMORIG"), dXMORIG},
                {OLESTR("YMORIG"), dYMORIG},
                {OLESTR("ZMORIG"), dZMORIG},
                {OLESTR("NX"), static_cast<double>(Imax)},
                {OLESTR("NY"), static_cast<double>(Jmax)},
                {OLESTR("NZ"), static_cast<double>(Kmax)}},
               1);
  });
}

HRESULT COvSchema::CreatePointsFile() {
  return guard(*this, [&] { add_fields(*this, {{OLESTR("XPT")}, {OLESTR("YPT")}, {OLESTR("ZPT")}}); });
}

HRESULT COvSchema::CreateStringsFile() {
  return guard(*this, [&] {
    add_fields(*this, {{OLESTR("XP")}, {OLESTR("YP")}, {OLESTR("ZP")}, {OLESTR("PTN")}, {OLESTR("PVALUE")}});
  });
}

HRESULT COvSchema::CreateWfTriangleFile() {
  return guard(*this, [&] {
    add_fields(*this, {{OLESTR("PID1")}, {OLESTR("PID2")}, {OLESTR("PID3")}, {OLESTR("TRIANGLE")}});
  });
}

HRESULT COvSchema::CreateWfPointFile() {
  return guard(*this, [&] {
    add_fields(*this, {{OLESTR("XP")}, {OLESTR("YP")}, {OLESTR("ZP")}, {OLESTR("PID")}});
  });
}

}  // namespace ovf
