// A call of the library that works for long: a bar shows how far it has come, and a stop that was asked for
// ends it.
#pragma once

#include <string>

#include "ovfile/progress.h"
#include "table_view.h"

namespace command {

class progress_sink;

/// While one lives, the table's calls are followed.
class long_call {
 public:
  /// `title` is the bar's. A table that does not tell how far it has come is left to itself.
  long_call(const table_view& view, std::string title);
  ~long_call();
  long_call(const long_call&) = delete;
  long_call& operator=(const long_call&) = delete;

  /// Whether a request to stop that an `interrupt_guard` notes reaches the table's calls.
  bool can_be_stopped() const noexcept { return static_cast<bool>(source_); }
  /// Throws `interrupted` when the call with this status was stopped because the user asked for it.
  static void throw_if_stopped(HRESULT status);

 private:
  ovfile::pointer<IOvProgressSource> source_;
  ovfile::pointer<progress_sink> sink_;
};

}  // namespace command
