// What a host is told when an edit that makes a table's file anew does not come off.
#pragma once

#include "server/report_error.h"

namespace ovf {

/// Messages of one edit. A %s is filled, in this order, by the path of the table and by the reason.
struct edit_words {
  wide_view no_copy;       ///< no copy can be made; its one %s is the reason
  wide_view not_replaced;  ///< the copy was refused the table's place
  wide_view not_reopened;  ///< the copy is in its place and cannot be opened
  wide_view not_restored;  ///< the copy was refused, and (a third %s: why) the table cannot be opened again
  wide_view stopped;       ///< by the host
};

struct edit_refusal {
  wide message;
  HRESULT status;
};

/// For the exception that is being handled; one that is not of edits (table_edits.h) is thrown on.
edit_refusal refusal_in_flight(const edit_words& words);

/// Runs an edit, which returns nothing, as a method's body.
template <class Class, class Body>
HRESULT run_edit(const Class& object, const edit_words& words, Body&& body) noexcept {
  return guard(object, [&]() -> HRESULT {
    try {
      body();
      return S_OK;
    } catch (...) {
      const edit_refusal refusal = refusal_in_flight(words);
      return ReportError(Class::class_id, wide_view(refusal.message), 0, nullptr, Class::interface_id,
                         refusal.status);
    }
  });
}

}  // namespace ovf
