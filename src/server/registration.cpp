// Entering the classes into the system's registry is not there yet; hosts reach them through
// DllGetClassObject.
#include "ovfile/component.h"

extern "C" HRESULT STDAPICALLTYPE DllRegisterServer() { return E_NOTIMPL; }

extern "C" HRESULT STDAPICALLTYPE DllUnregisterServer() { return E_NOTIMPL; }
