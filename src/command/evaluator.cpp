#include "evaluator.h"

#include <new>

namespace command {

ovfile::pointer<IOvFilter> new_evaluator() {
  ovfile::pointer<IOvFilter> made;
  void* object = nullptr;
  const HRESULT status = CoCreateInstance(CLSID_OvFilter, nullptr, CLSCTX_ALL, IID_IOvFilter, &object);
  if (status == E_OUTOFMEMORY) throw std::bad_alloc();
  if (SUCCEEDED(status)) *made.out() = static_cast<IOvFilter*>(object);
  return made;
}

}  // namespace command
