// What the module shows to the world.
#include "filter/class_object.h"
#include "filter/module_count.h"
#include "filter/registration.h"
#include "ovfile/filter.h"

extern "C" HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID clsid, REFIID iid, void** ppv) {
  if (ppv == nullptr) return E_POINTER;
  *ppv = nullptr;
  if (!(clsid == CLSID_OvFilter)) return CLASS_E_CLASSNOTAVAILABLE;
  return ovf::filter::class_object().QueryInterface(iid, ppv);
}

extern "C" HRESULT STDAPICALLTYPE DllCanUnloadNow() { return ovf::filter::may_unload() ? S_OK : S_FALSE; }

extern "C" HRESULT STDAPICALLTYPE DllRegisterServer() { return ovf::filter::register_class(); }

extern "C" HRESULT STDAPICALLTYPE DllUnregisterServer() { return ovf::filter::unregister_class(); }
