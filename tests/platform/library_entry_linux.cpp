// The library's entry point, which the class lookup calls for the library's own classes: here a class
// object that says who it is, without the library.
#include "ovfile/ovfile.h"
#include "test_object.h"

namespace {
ovtest::test_class own_class_object;
}

HRESULT DllGetClassObject(REFCLSID clsid, REFIID iid, void** ppv) {
  if (ppv == nullptr) return E_POINTER;
  *ppv = nullptr;
  if (!(clsid == CLSID_OvTable)) return CLASS_E_CLASSNOTAVAILABLE;
  return own_class_object.QueryInterface(iid, ppv);
}
