// The component model on systems that have none of their own: the binary rules, types and functions
// that hosts know from Windows, under the same names, provided by libovfile. On Windows the system's
// own headers are included instead, so that a host's source is the same on both.
//
// Interfaces are pointers to tables of plain functions, object first. Texts are UTF-16 (char16_t).
// Memory: a BSTR or VARIANT handed out belongs to the caller, one handed in stays the caller's.
#pragma once

#ifdef _WIN32

#include <windows.h>
// windows.h goes first: the automation headers build on it.
#include <oaidl.h>
#include <ocidl.h>
#include <oleauto.h>

#else

#include <cstdint>
#include <cstring>

#define STDMETHODCALLTYPE
#define STDAPICALLTYPE
#define STDMETHODIMP HRESULT
#define OVFILE_IMPORT extern "C" __attribute__((visibility("default")))
#define OLESTR(text) u##text

using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using SHORT = std::int16_t;
using USHORT = std::uint16_t;
using INT = std::int32_t;
using UINT = std::uint32_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using DWORD = std::uint32_t;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using BOOL = std::int32_t;
using HRESULT = std::int32_t;
using SCODE = std::int32_t;
using LCID = std::uint32_t;
using DISPID = std::int32_t;
using DATE = double;
using VARTYPE = std::uint16_t;
using VARIANT_BOOL = std::int16_t;
using OLECHAR = char16_t;
using LPOLESTR = OLECHAR*;
using LPCOLESTR = const OLECHAR*;
using BSTR = OLECHAR*;
using SIZE_T = std::size_t;

inline constexpr VARIANT_BOOL VARIANT_TRUE = -1;
inline constexpr VARIANT_BOOL VARIANT_FALSE = 0;

struct GUID {
  std::uint32_t Data1;
  std::uint16_t Data2;
  std::uint16_t Data3;
  std::uint8_t Data4[8];
};
static_assert(sizeof(GUID) == 16);
using IID = GUID;
using CLSID = GUID;
using REFGUID = const GUID&;
using REFIID = const IID&;
using REFCLSID = const CLSID&;

inline bool operator==(const GUID& left, const GUID& right) noexcept {
  return std::memcmp(&left, &right, sizeof(GUID)) == 0;
}
inline bool IsEqualGUID(REFGUID left, REFGUID right) noexcept { return left == right; }
inline bool IsEqualIID(REFIID left, REFIID right) noexcept { return left == right; }
inline bool IsEqualCLSID(REFCLSID left, REFCLSID right) noexcept { return left == right; }

inline constexpr GUID GUID_NULL{};
inline constexpr IID IID_NULL{};
inline constexpr GUID CLSID_NULL{};

// Statuses: negative ones are failures.
inline constexpr HRESULT ovfile_status(std::uint32_t bits) noexcept { return static_cast<HRESULT>(bits); }
inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = ovfile_status(0x80004001);
inline constexpr HRESULT E_NOINTERFACE = ovfile_status(0x80004002);
inline constexpr HRESULT E_POINTER = ovfile_status(0x80004003);
inline constexpr HRESULT E_ABORT = ovfile_status(0x80004004);
inline constexpr HRESULT E_FAIL = ovfile_status(0x80004005);
inline constexpr HRESULT E_UNEXPECTED = ovfile_status(0x8000FFFF);
inline constexpr HRESULT E_ACCESSDENIED = ovfile_status(0x80070005);
inline constexpr HRESULT E_OUTOFMEMORY = ovfile_status(0x8007000E);
inline constexpr HRESULT E_INVALIDARG = ovfile_status(0x80070057);
inline constexpr HRESULT DISP_E_UNKNOWNINTERFACE = ovfile_status(0x80020001);
inline constexpr HRESULT DISP_E_MEMBERNOTFOUND = ovfile_status(0x80020003);
inline constexpr HRESULT DISP_E_PARAMNOTFOUND = ovfile_status(0x80020004);
inline constexpr HRESULT DISP_E_TYPEMISMATCH = ovfile_status(0x80020005);
inline constexpr HRESULT DISP_E_UNKNOWNNAME = ovfile_status(0x80020006);
inline constexpr HRESULT DISP_E_NONAMEDARGS = ovfile_status(0x80020007);
inline constexpr HRESULT DISP_E_BADVARTYPE = ovfile_status(0x80020008);
inline constexpr HRESULT DISP_E_EXCEPTION = ovfile_status(0x80020009);
inline constexpr HRESULT DISP_E_OVERFLOW = ovfile_status(0x8002000A);
inline constexpr HRESULT DISP_E_BADINDEX = ovfile_status(0x8002000B);
inline constexpr HRESULT DISP_E_UNKNOWNLCID = ovfile_status(0x8002000C);
inline constexpr HRESULT DISP_E_BADPARAMCOUNT = ovfile_status(0x8002000E);
inline constexpr HRESULT DISP_E_PARAMNOTOPTIONAL = ovfile_status(0x8002000F);
inline constexpr HRESULT TYPE_E_ELEMENTNOTFOUND = ovfile_status(0x8002802B);
inline constexpr HRESULT CLASS_E_NOAGGREGATION = ovfile_status(0x80040110);
inline constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = ovfile_status(0x80040111);
inline constexpr HRESULT REGDB_E_CLASSNOTREG = ovfile_status(0x80040154);
inline constexpr HRESULT CO_E_CLASSSTRING = ovfile_status(0x800401F3);
inline constexpr HRESULT CO_E_DLLNOTFOUND = ovfile_status(0x800401F8);
inline constexpr HRESULT CO_E_ERRORINDLL = ovfile_status(0x800401F9);
inline constexpr HRESULT CO_E_OBJNOTREG = ovfile_status(0x800401FB);
inline constexpr HRESULT SELFREG_E_TYPELIB = ovfile_status(0x80040200);
inline constexpr HRESULT SELFREG_E_CLASS = ovfile_status(0x80040201);
inline constexpr bool SUCCEEDED(HRESULT status) noexcept { return status >= 0; }
inline constexpr bool FAILED(HRESULT status) noexcept { return status < 0; }

// Variants.
enum VARENUM : VARTYPE {
  VT_EMPTY = 0,
  VT_NULL = 1,
  VT_I2 = 2,
  VT_I4 = 3,
  VT_R4 = 4,
  VT_R8 = 5,
  VT_CY = 6,
  VT_DATE = 7,
  VT_BSTR = 8,
  VT_DISPATCH = 9,
  VT_ERROR = 10,
  VT_BOOL = 11,
  VT_VARIANT = 12,
  VT_UNKNOWN = 13,
  VT_DECIMAL = 14,
  VT_I1 = 16,
  VT_UI1 = 17,
  VT_UI2 = 18,
  VT_UI4 = 19,
  VT_I8 = 20,
  VT_UI8 = 21,
  VT_INT = 22,
  VT_UINT = 23,
  VT_VOID = 24,
  VT_HRESULT = 25,
  VT_PTR = 26,
  VT_RECORD = 36,
  VT_ARRAY = 0x2000,
  VT_BYREF = 0x4000,
  VT_TYPEMASK = 0x0FFF
};

union CY {
  std::int64_t int64;  ///< ten-thousandths
};
static_assert(sizeof(CY) == 8);

struct IUnknown;
struct IDispatch;

struct VARIANT_RECORD {
  void* pvRecord;
  void* pRecInfo;
};

struct VARIANT {
  VARTYPE vt;
  WORD wReserved1;
  WORD wReserved2;
  WORD wReserved3;
  union {
    std::int64_t llVal;
    std::int32_t lVal;
    std::uint8_t bVal;
    std::int16_t iVal;
    float fltVal;
    double dblVal;
    VARIANT_BOOL boolVal;
    SCODE scode;
    CY cyVal;
    DATE date;
    BSTR bstrVal;
    IUnknown* punkVal;
    IDispatch* pdispVal;
    char cVal;
    std::uint16_t uiVal;
    std::uint32_t ulVal;
    std::uint64_t ullVal;
    std::int32_t intVal;
    std::uint32_t uintVal;
    std::uint8_t* pbVal;
    std::int16_t* piVal;
    std::int32_t* plVal;
    std::int64_t* pllVal;
    float* pfltVal;
    double* pdblVal;
    VARIANT_BOOL* pboolVal;
    SCODE* pscode;
    CY* pcyVal;
    DATE* pdate;
    BSTR* pbstrVal;
    IUnknown** ppunkVal;
    IDispatch** ppdispVal;
    VARIANT* pvarVal;
    void* byref;
    char* pcVal;
    std::uint16_t* puiVal;
    std::uint32_t* pulVal;
    std::uint64_t* pullVal;
    std::int32_t* pintVal;
    std::uint32_t* puintVal;
    VARIANT_RECORD record;
  };
};
static_assert(sizeof(VARIANT) == 24);
using VARIANTARG = VARIANT;

// Interfaces of the model itself.
inline constexpr IID IID_IUnknown{0x00000000, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IClassFactory{0x00000001, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IDispatch{0x00020400, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IErrorInfo{
    0x1CF2B120, 0x547D, 0x101B, {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};
inline constexpr IID IID_ICreateErrorInfo{
    0x22F03340, 0x547D, 0x101B, {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};
inline constexpr IID IID_ISupportErrorInfo{
    0xDF0B3D60, 0x548F, 0x101B, {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};
inline constexpr IID IID_IProvideClassInfo{
    0xB196B283, 0xBAB4, 0x101A, {0xB6, 0x9C, 0x00, 0xAA, 0x00, 0x34, 0x1D, 0x07}};

struct IUnknown {
  virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** ppvObject) = 0;
  virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
  virtual ULONG STDMETHODCALLTYPE Release() = 0;
};
using LPUNKNOWN = IUnknown*;

struct IClassFactory : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* pUnkOuter, REFIID iid, void** ppvObject) = 0;
  virtual HRESULT STDMETHODCALLTYPE LockServer(BOOL fLock) = 0;
};

struct DISPPARAMS {
  VARIANTARG* rgvarg;         ///< last argument first
  DISPID* rgdispidNamedArgs;  ///< the first cNamedArgs entries of rgvarg
  UINT cArgs;
  UINT cNamedArgs;
};

struct EXCEPINFO {
  WORD wCode;
  WORD wReserved;
  BSTR bstrSource;
  BSTR bstrDescription;
  BSTR bstrHelpFile;
  DWORD dwHelpContext;
  void* pvReserved;
  HRESULT(STDAPICALLTYPE* pfnDeferredFillIn)(EXCEPINFO*);
  SCODE scode;
};

inline constexpr WORD DISPATCH_METHOD = 1;
inline constexpr WORD DISPATCH_PROPERTYGET = 2;
inline constexpr WORD DISPATCH_PROPERTYPUT = 4;
inline constexpr WORD DISPATCH_PROPERTYPUTREF = 8;
inline constexpr DISPID DISPID_UNKNOWN = -1;
inline constexpr DISPID DISPID_PROPERTYPUT = -3;

struct ITypeInfo;  // type descriptions exist on Windows alone

struct IDispatch : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* pctinfo) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT iTInfo, LCID lcid, ITypeInfo** ppTInfo) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* rgszNames, UINT cNames, LCID lcid,
                                                  DISPID* rgDispId) = 0;
  virtual HRESULT STDMETHODCALLTYPE Invoke(DISPID dispIdMember, REFIID iid, LCID lcid, WORD wFlags,
                                           DISPPARAMS* pDispParams, VARIANT* pVarResult,
                                           EXCEPINFO* pExcepInfo, UINT* puArgErr) = 0;
};

struct IErrorInfo : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetGUID(GUID* pGUID) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetSource(BSTR* pBstrSource) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetDescription(BSTR* pBstrDescription) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetHelpFile(BSTR* pBstrHelpFile) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetHelpContext(DWORD* pdwHelpContext) = 0;
};

struct ICreateErrorInfo : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE SetGUID(REFGUID guid) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetSource(LPOLESTR szSource) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetDescription(LPOLESTR szDescription) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetHelpFile(LPOLESTR szHelpFile) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetHelpContext(DWORD dwHelpContext) = 0;
};

struct ISupportErrorInfo : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) = 0;
};

/// The library's objects answer it on Windows alone.
struct IProvideClassInfo : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** ppTI) = 0;
};

// Texts. A BSTR points to its first code unit; the 4 bytes before it hold the length in bytes, a
// 16-bit 0 stands after it. A null pointer is an empty text.
OVFILE_IMPORT BSTR SysAllocString(const OLECHAR* text);
OVFILE_IMPORT BSTR SysAllocStringLen(const OLECHAR* text, UINT units);
OVFILE_IMPORT BSTR SysAllocStringByteLen(const char* bytes, UINT count);
OVFILE_IMPORT INT SysReAllocString(BSTR* pbstr, const OLECHAR* text);
OVFILE_IMPORT INT SysReAllocStringLen(BSTR* pbstr, const OLECHAR* text, UINT units);
OVFILE_IMPORT void SysFreeString(BSTR bstr);
OVFILE_IMPORT UINT SysStringLen(BSTR bstr);
OVFILE_IMPORT UINT SysStringByteLen(BSTR bstr);

// Variants. Arrays and records answer DISP_E_BADVARTYPE; the locale is always the invariant one.
OVFILE_IMPORT void VariantInit(VARIANTARG* pvarg);
OVFILE_IMPORT HRESULT VariantClear(VARIANTARG* pvarg);
OVFILE_IMPORT HRESULT VariantCopy(VARIANTARG* pvargDest, const VARIANTARG* pvargSrc);
OVFILE_IMPORT HRESULT VariantCopyInd(VARIANT* pvarDest, const VARIANTARG* pvargSrc);
OVFILE_IMPORT HRESULT VariantChangeType(VARIANTARG* pvargDest, const VARIANTARG* pvarSrc, USHORT flags,
                                        VARTYPE vt);
OVFILE_IMPORT HRESULT VariantChangeTypeEx(VARIANTARG* pvargDest, const VARIANTARG* pvarSrc, LCID lcid,
                                          USHORT flags, VARTYPE vt);

// Rich error information, one per thread.
OVFILE_IMPORT HRESULT CreateErrorInfo(ICreateErrorInfo** pperrinfo);
OVFILE_IMPORT HRESULT SetErrorInfo(ULONG reserved, IErrorInfo* perrinfo);
OVFILE_IMPORT HRESULT GetErrorInfo(ULONG reserved, IErrorInfo** pperrinfo);

// Classes.
inline constexpr DWORD CLSCTX_INPROC_SERVER = 1;
inline constexpr DWORD CLSCTX_INPROC_HANDLER = 2;
inline constexpr DWORD CLSCTX_LOCAL_SERVER = 4;
inline constexpr DWORD CLSCTX_ALL = 23;
inline constexpr DWORD COINIT_MULTITHREADED = 0;
inline constexpr DWORD COINIT_APARTMENTTHREADED = 2;
inline constexpr DWORD REGCLS_SINGLEUSE = 0;
inline constexpr DWORD REGCLS_MULTIPLEUSE = 1;

OVFILE_IMPORT HRESULT CoInitialize(void* reserved);
OVFILE_IMPORT HRESULT CoInitializeEx(void* reserved, DWORD dwCoInit);
OVFILE_IMPORT void CoUninitialize();
OVFILE_IMPORT HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* pUnkOuter, DWORD dwClsContext, REFIID iid,
                                       void** ppv);
OVFILE_IMPORT HRESULT CoGetClassObject(REFCLSID clsid, DWORD dwClsContext, void* reserved, REFIID iid,
                                       void** ppv);
OVFILE_IMPORT HRESULT CoRegisterClassObject(REFCLSID clsid, IUnknown* pUnk, DWORD dwClsContext, DWORD flags,
                                            DWORD* lpdwRegister);
OVFILE_IMPORT HRESULT CoRevokeClassObject(DWORD dwRegister);
OVFILE_IMPORT HRESULT CLSIDFromProgID(LPCOLESTR progId, CLSID* pclsid);
OVFILE_IMPORT HRESULT ProgIDFromCLSID(REFCLSID clsid, LPOLESTR* pprogId);
OVFILE_IMPORT HRESULT CLSIDFromString(LPCOLESTR text, CLSID* pclsid);
OVFILE_IMPORT INT StringFromGUID2(REFGUID guid, LPOLESTR text, INT cchMax);
OVFILE_IMPORT void* CoTaskMemAlloc(SIZE_T bytes);
OVFILE_IMPORT void* CoTaskMemRealloc(void* memory, SIZE_T bytes);
OVFILE_IMPORT void CoTaskMemFree(void* memory);

// The library's own entry points.
OVFILE_IMPORT HRESULT DllGetClassObject(REFCLSID clsid, REFIID iid, void** ppv);
OVFILE_IMPORT HRESULT DllCanUnloadNow();
OVFILE_IMPORT HRESULT DllRegisterServer();
OVFILE_IMPORT HRESULT DllUnregisterServer();

#endif
