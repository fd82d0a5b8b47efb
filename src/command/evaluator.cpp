#include "evaluator.h"

namespace command {

ovfile::pointer<IOvFilter> new_evaluator() {
  ovfile::pointer<IOvFilter> made;
  void* object = nullptr;
  if (SUCCEEDED(CoCreateInstance(CLSID_OvFilter, nullptr, CLSCTX_ALL, IID_IOvFilter, &object))) {
    *made.out() = static_cast<IOvFilter*>(object);
  }
  return made;
}

}  // namespace command
