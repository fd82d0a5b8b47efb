#include "server/report_error.h"

#include <memory>

#include "platform/module.h"
#include "platform/own_classes.h"

namespace ovf {

namespace {

constexpr unsigned interface_error = 0x80040000U;  ///< severity error, facility interface

struct releaser {
  template <class Object>
  void operator()(Object* object) const noexcept {
    object->Release();
  }
};
template <class Interface>
using reference = std::unique_ptr<Interface, releaser>;

/// The record, filled; null when it cannot be made.
reference<ICreateErrorInfo> make_record(REFCLSID class_id, wide_view message, DWORD help_context,
                                        const OLECHAR* help_file, REFIID interface_id) {
  ICreateErrorInfo* made = nullptr;
  if (FAILED(CreateErrorInfo(&made)) || made == nullptr) return nullptr;
  reference<ICreateErrorInfo> record(made);
  wide description(message);
  record->SetDescription(description.data());
  if (const own_class* reporting = find_own_class(class_id)) {
    wide source(reporting->versioned);
    record->SetSource(source.data());
  }
  if (help_context != 0 && help_file != nullptr) {
    wide file(help_file);
    record->SetHelpContext(help_context);
    record->SetHelpFile(file.data());
  }
  record->SetGUID(interface_id);
  return record;
}

void publish(ICreateErrorInfo& record) noexcept {
  void* found = nullptr;
  if (FAILED(record.QueryInterface(IID_IErrorInfo, &found))) return;
  const reference<IErrorInfo> info(static_cast<IErrorInfo*>(found));
  SetErrorInfo(0, info.get());
}

}  // namespace

HRESULT ReportError(REFCLSID class_id, wide_view message, DWORD help_context, const OLECHAR* help_file,
                    REFIID interface_id, HRESULT status) noexcept {
  try {
    const auto record = make_record(class_id, message, help_context, help_file, interface_id);
    if (record != nullptr) publish(*record);
  } catch (...) {
    // No memory for the message: the status alone has to do.
  }
  return status != 0 ? status : DISP_E_EXCEPTION;
}

HRESULT ReportError(REFCLSID class_id, message_id message, DWORD help_context, const OLECHAR* help_file,
                    REFIID interface_id, HRESULT status) noexcept {
  const auto number = static_cast<unsigned>(message);
  if (status == 0) status = static_cast<HRESULT>(interface_error + number);
  try {
    const auto text = string_resource(number);
    return ReportError(class_id, text ? wide_view(*text) : OLESTR("Unknown Error"), help_context, help_file,
                       interface_id, status);
  } catch (...) {
    return status;
  }
}

HRESULT report_standard(REFCLSID class_id, REFIID interface_id, const std::exception& error) noexcept {
  try {
    return ReportError(class_id, wide_from_utf8(error.what()), 0, nullptr, interface_id, E_FAIL);
  } catch (...) {
    return E_FAIL;
  }
}

}  // namespace ovf
