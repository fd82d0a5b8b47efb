#include <cerrno>
#include <charconv>
#include <cstring>

#include "base/system_error.h"

namespace ovf {

namespace {

struct status_text {
  HRESULT status;
  const char* text;
};

constexpr status_text status_texts[] = {
    {S_OK, "The operation completed successfully."},
    {S_FALSE, "Incorrect function."},
    {E_NOTIMPL, "Not implemented."},
    {E_NOINTERFACE, "No such interface supported."},
    {E_POINTER, "Invalid pointer."},
    {E_ABORT, "Operation aborted."},
    {E_FAIL, "Unspecified error."},
    {E_UNEXPECTED, "Catastrophic failure."},
    {E_ACCESSDENIED, "Access denied."},
    {E_OUTOFMEMORY, "Not enough memory."},
    {E_INVALIDARG, "Invalid argument."},
    {DISP_E_UNKNOWNINTERFACE, "Unknown interface."},
    {DISP_E_MEMBERNOTFOUND, "Member not found."},
    {DISP_E_PARAMNOTFOUND, "Parameter not found."},
    {DISP_E_TYPEMISMATCH, "Type mismatch."},
    {DISP_E_UNKNOWNNAME, "Unknown name."},
    {DISP_E_NONAMEDARGS, "No named arguments."},
    {DISP_E_BADVARTYPE, "Bad variable type."},
    {DISP_E_EXCEPTION, "Exception occurred."},
    {DISP_E_OVERFLOW, "Out of present range."},
    {DISP_E_BADINDEX, "Invalid index."},
    {DISP_E_UNKNOWNLCID, "Unknown language."},
    {DISP_E_BADPARAMCOUNT, "Invalid number of parameters."},
    {DISP_E_PARAMNOTOPTIONAL, "Parameter not optional."},
    {TYPE_E_ELEMENTNOTFOUND, "Element not found."},
    {CLASS_E_NOAGGREGATION, "Class does not support aggregation."},
    {CLASS_E_CLASSNOTAVAILABLE, "Class not available."},
    {REGDB_E_CLASSNOTREG, "Class not registered."},
    {CO_E_CLASSSTRING, "Invalid class string."},
    {CO_E_DLLNOTFOUND, "The module of the class was not found."},
    {CO_E_ERRORINDLL, "Error in the module of the class."},
    {CO_E_OBJNOTREG, "Object is not registered."},
    {SELFREG_E_TYPELIB, "The type library could not be registered."},
    {SELFREG_E_CLASS, "The classes could not be registered."},
};

wide unknown(std::uint32_t code) {
  char digits[8];
  char* const end = std::to_chars(digits, digits + sizeof digits, code, 16).ptr;
  return wide(u"Unknown error 0x").append(digits, end);
}

}  // namespace

system_code last_system_error() noexcept { return static_cast<system_code>(errno); }

void set_last_system_error(system_code code) noexcept { errno = static_cast<int>(code); }

HRESULT last_error_status() noexcept {
  switch (errno) {
    case EACCES:
    case EPERM:
    case EROFS:
      return E_ACCESSDENIED;
    case ENOMEM:
      return E_OUTOFMEMORY;
    default:
      return E_FAIL;
  }
}

wide system_message(system_code code) {
  // The untranslated text, whatever the process's language.
  const char* text = strerrordesc_np(static_cast<int>(code));
  return text != nullptr ? wide_from_utf8(text) : unknown(code);
}

wide status_message(HRESULT status) {
  for (const status_text& known : status_texts) {
    if (known.status == status) return wide_from_utf8(known.text);
  }
  return unknown(static_cast<std::uint32_t>(status));
}

}  // namespace ovf
