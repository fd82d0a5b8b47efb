#include "filter/error_report.h"

namespace ovf::filter {

void report(REFIID iid, const wide& message) noexcept {
  ICreateErrorInfo* made = nullptr;
  if (FAILED(CreateErrorInfo(&made))) return;
  // The interface takes texts that it might change, and changes none.
  made->SetSource(const_cast<LPOLESTR>(OLESTR("OvFilter")));
  made->SetDescription(const_cast<LPOLESTR>(message.c_str()));
  made->SetGUID(iid);
  void* found = nullptr;
  if (SUCCEEDED(made->QueryInterface(IID_IErrorInfo, &found))) {
    auto* information = static_cast<IErrorInfo*>(found);
    SetErrorInfo(0, information);
    information->Release();
  }
  made->Release();
}

}  // namespace ovf::filter
