#include "server/dispatch.h"

#include "platform/type_library.h"
#include "server/report_error.h"

namespace ovf {

HRESULT take_changed(const VARIANT& argument, VARTYPE type, variant& changed) noexcept {
  const VARIANT* given = referred(argument);
  if (given == nullptr) return DISP_E_TYPEMISMATCH;
  const HRESULT status = change_type(*changed.out(), *given, type);
  return SUCCEEDED(status) || status == E_OUTOFMEMORY ? status : DISP_E_TYPEMISMATCH;
}

HRESULT take_object(const VARIANT& argument, IUnknown*& object) noexcept {
  object = nullptr;
  const VARIANT* given = referred(argument);
  if (given == nullptr) return DISP_E_TYPEMISMATCH;
  switch (given->vt) {
    case VT_EMPTY:
    case VT_NULL:
      return S_OK;
    case VT_DISPATCH:
      object = given->pdispVal;
      return S_OK;
    case VT_UNKNOWN:
      object = given->punkVal;
      return S_OK;
    case VT_BYREF | VT_DISPATCH:
      object = *given->ppdispVal;
      return S_OK;
    case VT_BYREF | VT_UNKNOWN:
      object = *given->ppunkVal;
      return S_OK;
    default:
      return DISP_E_TYPEMISMATCH;
  }
}

namespace {

bool equal_names(wide_view left, wide_view right) noexcept {
  return std::ranges::equal(left, right, {}, folded_ascii, folded_ascii);
}

/// The place of `name` among names parted by blanks, without the result's; DISPID_UNKNOWN when missing.
DISPID place_of(wide_view name, const dispatch_member& member) noexcept {
  wide_view rest = member.parameters;
  for (std::size_t i = 0; i < member.types.size(); ++i) {
    const std::size_t blank = std::min(rest.find(OLESTR(' ')), rest.size());
    if (equal_names(rest.substr(0, blank), name)) return static_cast<DISPID>(i);
    rest.remove_prefix(std::min(blank + 1, rest.size()));
  }
  return DISPID_UNKNOWN;
}

/// The arguments of a call in the order of the member's parameters.
class argument_order {
 public:
  argument_order(const dispatch_member& member, const DISPPARAMS& given) : member_(member), given_(given) {}

  /// Named arguments stand first in what the caller gives, the others follow from the last to the first.
  HRESULT arrange(dispatch_call& call, UINT* bad_argument) noexcept {
    const std::size_t count = member_.types.size();
    if (given_.cArgs != count || given_.cNamedArgs > given_.cArgs) return DISP_E_BADPARAMCOUNT;
    if (count == 0) return S_OK;
    if (given_.rgvarg == nullptr || (given_.cNamedArgs != 0 && given_.rgdispidNamedArgs == nullptr)) {
      return E_INVALIDARG;
    }
    call.arguments.fill(nullptr);
    for (UINT i = 0; i < given_.cArgs; ++i) {
      const bool named = i < given_.cNamedArgs;
      const std::size_t place = named ? named_place(given_.rgdispidNamedArgs[i]) : given_.cArgs - 1 - i;
      if (place >= count || call.arguments[place] != nullptr) {
        if (bad_argument != nullptr) *bad_argument = i;
        return DISP_E_PARAMNOTFOUND;
      }
      call.arguments[place] = &given_.rgvarg[i];
    }
    return S_OK;
  }

 private:
  std::size_t named_place(DISPID id) const noexcept {
    if (id == DISPID_PROPERTYPUT && member_.kind == DISPATCH_PROPERTYPUT) return member_.types.size() - 1;
    return id < 0 ? most_arguments : static_cast<std::size_t>(id);
  }

  const dispatch_member& member_;
  const DISPPARAMS& given_;
};

/// Fills the record from the thread's error information, which is taken away; without any it carries the
/// status alone.
void describe_failure(HRESULT status, EXCEPINFO* exception) noexcept {
  if (exception == nullptr) return;
  exception->scode = status;
  IErrorInfo* info = nullptr;
  if (GetErrorInfo(0, &info) != S_OK || info == nullptr) return;
  info->GetSource(&exception->bstrSource);
  info->GetDescription(&exception->bstrDescription);
  info->GetHelpFile(&exception->bstrHelpFile);
  info->GetHelpContext(&exception->dwHelpContext);
  info->Release();
}

}  // namespace

HRESULT method_table::type_info_count(UINT* count) const noexcept {
  if (count == nullptr) return E_POINTER;
  *count = has_type_library() ? 1 : 0;
  return S_OK;
}

HRESULT method_table::type_info(UINT index, ITypeInfo** info) const noexcept {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  return index == 0 ? find_type_info(interface_id_, info) : DISP_E_BADINDEX;
}

std::span<const dispatch_member> method_table::members_with(DISPID id) const noexcept {
  const auto first = std::ranges::lower_bound(members_, id, {}, &dispatch_member::id);
  const auto last = std::find_if(first, members_.end(), [id](const auto& member) { return member.id != id; });
  return {first, last};
}

const dispatch_member* method_table::find(DISPID id, WORD flags) const noexcept {
  if ((flags & DISPATCH_PROPERTYPUTREF) != 0) flags |= DISPATCH_PROPERTYPUT;
  for (const dispatch_member& member : members_with(id)) {
    if ((member.kind & flags) != 0) return &member;
  }
  return nullptr;
}

DISPID method_table::id_of(wide_view name) const noexcept {
  const auto name_of = [this](std::uint8_t index) { return members_[index].name; };
  const auto found = std::ranges::lower_bound(by_name_, name, precedes_without_case, name_of);
  if (found == by_name_.end() || precedes_without_case(name, name_of(*found))) return DISPID_UNKNOWN;
  return members_[*found].id;
}

DISPID method_table::parameter_of(DISPID member, wide_view name) const noexcept {
  for (const dispatch_member& candidate : members_with(member)) {
    const DISPID place = place_of(name, candidate);
    if (place != DISPID_UNKNOWN) return place;
  }
  return DISPID_UNKNOWN;
}

HRESULT method_table::ids_of_names(REFIID reserved, LPOLESTR* names, UINT count, DISPID* ids) const noexcept {
  if (!(reserved == IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  if (names == nullptr || ids == nullptr) return E_POINTER;
  if (count == 0) return E_INVALIDARG;
  bool all_known = true;
  for (UINT i = 0; i < count; ++i) {
    const wide_view name = names[i] == nullptr ? wide_view() : wide_view(names[i]);
    ids[i] = i == 0 ? id_of(name) : parameter_of(ids[0], name);
    all_known = all_known && ids[i] != DISPID_UNKNOWN;
  }
  return all_known ? S_OK : DISP_E_UNKNOWNNAME;
}

HRESULT method_table::call(const dispatch_member& member, IDispatch* object,
                           dispatch_call& call) const noexcept {
  try {
    return member.call(object, call);
  } catch (const MyExceptionClass& error) {
    return ReportError(class_id_, error.message(), 0, nullptr, interface_id_, E_FAIL);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (const std::exception& error) {
    return report_standard(class_id_, interface_id_, error);
  } catch (...) {
    return E_FAIL;
  }
}

HRESULT method_table::invoke(IDispatch* object, DISPID id, REFIID reserved, WORD flags, DISPPARAMS* arguments,
                             VARIANT* result, EXCEPINFO* exception, UINT* bad_argument) const noexcept {
  SetErrorInfo(0, nullptr);
  if (result != nullptr) *result = VARIANT{};
  if (exception != nullptr) *exception = EXCEPINFO{};
  if (bad_argument != nullptr) *bad_argument = 0;
  if (!(reserved == IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  if (arguments == nullptr) return E_INVALIDARG;
  const dispatch_member* member = find(id, flags);
  if (member == nullptr) return DISP_E_MEMBERNOTFOUND;

  dispatch_call prepared;
  prepared.result = result;
  prepared.bad_parameter = most_arguments;
  HRESULT status = argument_order(*member, *arguments).arrange(prepared, bad_argument);
  if (FAILED(status)) return status;
  status = call(*member, object, prepared);
  if (SUCCEEDED(status)) return S_OK;
  if (prepared.bad_parameter < most_arguments) {
    const VARIANT* bad = prepared.arguments[prepared.bad_parameter];
    if (bad_argument != nullptr) *bad_argument = static_cast<UINT>(bad - arguments->rgvarg);
    return status;
  }
  describe_failure(status, exception);
  return DISP_E_EXCEPTION;
}

}  // namespace ovf
