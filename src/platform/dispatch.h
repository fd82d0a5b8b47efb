// Late binding by tables: what an interface's dispatch half needs, seen from the classes. The tables
// themselves are made in server/, one for each dual interface, which is why this header only declares
// how to reach them.
#pragma once

#include "ovfile/ovfile.h"

namespace ovf {

/// The methods of one dual interface, callable by name and number.
class dispatch_methods {
 public:
  virtual HRESULT type_info_count(UINT* count) const noexcept = 0;
  virtual HRESULT type_info(UINT index, ITypeInfo** info) const noexcept = 0;
  /// Names without regard to case; the first is the member, the others its arguments.
  virtual HRESULT ids_of_names(REFIID reserved, LPOLESTR* names, UINT count, DISPID* ids) const noexcept = 0;
  /// Calls member `id` of `object`, which is the interface this table belongs to.
  virtual HRESULT invoke(IDispatch* object, DISPID id, REFIID reserved, WORD flags, DISPPARAMS* arguments,
                         VARIANT* result, EXCEPINFO* exception, UINT* bad_argument) const noexcept = 0;

 protected:
  ~dispatch_methods() = default;
};

/// The table of an interface.
template <class Interface>
const dispatch_methods& methods_of() noexcept;

template <>
const dispatch_methods& methods_of<IOvTable>() noexcept;
template <>
const dispatch_methods& methods_of<IOvSchema>() noexcept;
template <>
const dispatch_methods& methods_of<IOvTableADO>() noexcept;
template <>
const dispatch_methods& methods_of<IZuCommonDataTable>() noexcept;
template <>
const dispatch_methods& methods_of<IZuCommonDataSchema>() noexcept;

}  // namespace ovf
