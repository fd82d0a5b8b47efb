// How a failing method tells its host what went wrong: the message becomes the calling thread's error
// information, and the method returns a failing status. `guard` is the one place where the exceptions
// of the layers below become such reports.
#pragma once

#include <exception>
#include <new>
#include <type_traits>

#include "base/text.h"
#include "ovfile/exception.h"
#include "ovfile/ovfile.h"

namespace ovf {

/// String resources of the module.
enum class message_id : unsigned { component_name = 100, read_only_file = 101 };

/// Publishes `message` for `class_id` and `interface_id` and returns `status`, or DISP_E_EXCEPTION when
/// that is 0. Never fails the caller.
HRESULT ReportError(REFCLSID class_id, wide_view message, DWORD help_context, const OLECHAR* help_file,
                    REFIID interface_id, HRESULT status) noexcept;
/// The same with a string resource; "Unknown Error" when there is none of that number. A status of 0
/// becomes 0x80040000 + number.
HRESULT ReportError(REFCLSID class_id, message_id message, DWORD help_context, const OLECHAR* help_file,
                    REFIID interface_id, HRESULT status) noexcept;

/// Reports for a class that names `class_id` and `interface_id`; returns E_FAIL.
template <class Class, class Message>
HRESULT report(const Class&, Message message) noexcept {
  return ReportError(Class::class_id, message, 0, nullptr, Class::interface_id, E_FAIL);
}

/// Reports what a `std::exception` other than MyExceptionClass says.
HRESULT report_standard(REFCLSID class_id, REFIID interface_id, const std::exception& error) noexcept;

/// Runs a method's body, which returns a status or nothing (S_OK), and turns what it throws into a
/// report with E_FAIL; memory that ran out into E_OUTOFMEMORY.
template <class Class, class Body>
HRESULT guard(const Class& object, Body&& body) noexcept {
  try {
    if constexpr (std::is_void_v<std::invoke_result_t<Body>>) {
      body();
      return S_OK;
    } else {
      return body();
    }
  } catch (const MyExceptionClass& error) {
    return report(object, wide_view(error.message()));
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (const std::exception& error) {
    return report_standard(Class::class_id, Class::interface_id, error);
  } catch (...) {
    return E_FAIL;
  }
}

}  // namespace ovf
