// Owners for C++ hosts: interface pointers, texts and variants that give back what they hold, failed
// statuses as exceptions, and the library's objects without a registration. Header only; a host links
// the library. Nothing here locks: one object, one thread at a time.
#pragma once

#include <cstdint>
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "ovfile/ovfile.h"
#include "ovfile/progress.h"

namespace ovfile {

/// UTF-16, in the system's own character type (char16_t, or wchar_t on Windows).
using wide_string = std::basic_string<OLECHAR>;
using wide_view = std::basic_string_view<OLECHAR>;

/// UTF-16 to UTF-8, appended; an unpaired surrogate becomes U+FFFD.
inline void append_utf8(std::string& out, wide_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    std::uint32_t c = static_cast<std::uint16_t>(text[i]);
    if (c < 0x80) {
      out.push_back(static_cast<char>(c));
      continue;
    }
    if (c >= 0xD800 && c < 0xE000) {
      const std::uint32_t low = i + 1 < text.size() ? static_cast<std::uint16_t>(text[i + 1]) : 0;
      const bool pair = c < 0xDC00 && low >= 0xDC00 && low < 0xE000;
      c = pair ? 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00) : 0xFFFD;
      if (pair) ++i;
    }
    const int more = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    constexpr std::uint32_t lead[] = {0, 0xC0, 0xE0, 0xF0};
    out.push_back(static_cast<char>(lead[more] | (c >> (6 * more))));
    for (int k = more - 1; k >= 0; --k) out.push_back(static_cast<char>(0x80 | ((c >> (6 * k)) & 0x3F)));
  }
}

inline std::string to_utf8(wide_view text) {
  std::string out;
  out.reserve(text.size());
  append_utf8(out, text);
  return out;
}

/// Takes the first character off a UTF-8 text, which is not empty. What is no valid UTF-8 (overlong
/// forms, surrogates and values above U+10FFFF included) loses one byte and answers U+FFFD with
/// `valid` false.
inline std::uint32_t take_utf8(std::string_view& text, bool& valid) noexcept {
  const auto byte = [&](std::size_t i) -> std::uint32_t {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
  };
  const std::uint32_t first = byte(0);
  valid = true;
  if (first < 0x80) {
    text.remove_prefix(1);
    return first;
  }
  const int more = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
  std::uint32_t c = first & (0x3Fu >> more);
  valid = first >= 0xC2 && first < 0xF5;
  for (int k = 1; valid && k <= more; ++k) {
    valid = (byte(static_cast<std::size_t>(k)) & 0xC0) == 0x80;
    c = (c << 6) | (byte(static_cast<std::size_t>(k)) & 0x3F);
  }
  constexpr std::uint32_t least[] = {0, 0x80, 0x800, 0x10000};
  valid = valid && c >= least[more] && c <= 0x10FFFF && !(c >= 0xD800 && c < 0xE000);
  text.remove_prefix(valid ? static_cast<std::size_t>(more) + 1 : 1);
  return valid ? c : 0xFFFD;
}

/// UTF-8 to UTF-16, appended; a byte that is no UTF-8 becomes U+FFFD.
inline void append_wide(wide_string& out, std::string_view text) {
  bool valid = true;
  while (!text.empty()) {
    const std::uint32_t c = take_utf8(text, valid);
    if (c < 0x10000) {
      out.push_back(static_cast<OLECHAR>(c));
    } else {
      out.push_back(static_cast<OLECHAR>(0xD800 + ((c - 0x10000) >> 10)));
      out.push_back(static_cast<OLECHAR>(0xDC00 + ((c - 0x10000) & 0x3FF)));
    }
  }
}

inline wide_string to_wide(std::string_view utf8) {
  wide_string out;
  out.reserve(utf8.size());
  append_wide(out, utf8);
  return out;
}

/// Owns a BSTR. Constructors throw std::bad_alloc when there is no memory.
class text {
 public:
  text() noexcept = default;
  explicit text(wide_view value) : bstr_(make(value)) {}
  /// From UTF-8.
  explicit text(std::string_view utf8) : bstr_(make(to_wide(utf8))) {}
  text(const text& other) : bstr_(other.bstr_ == nullptr ? nullptr : make(other.view())) {}
  text(text&& other) noexcept : bstr_(std::exchange(other.bstr_, nullptr)) {}
  text& operator=(text other) noexcept {
    std::swap(bstr_, other.bstr_);
    return *this;
  }
  ~text() { SysFreeString(bstr_); }

  /// For a call that reads the text; null is an empty one.
  BSTR get() const noexcept { return bstr_; }
  /// For a call that hands one out: what was held is freed.
  BSTR* out() noexcept {
    SysFreeString(std::exchange(bstr_, nullptr));
    return &bstr_;
  }
  /// Hands the BSTR over to the caller.
  BSTR release() noexcept { return std::exchange(bstr_, nullptr); }
  /// Lives as long as the text is neither changed nor destroyed.
  wide_view view() const noexcept {
    return bstr_ == nullptr ? wide_view() : wide_view(bstr_, SysStringLen(bstr_));
  }
  std::string utf8() const { return to_utf8(view()); }

 private:
  static BSTR make(wide_view value) {
    BSTR made = SysAllocStringLen(value.data(), static_cast<UINT>(value.size()));
    if (made == nullptr) throw std::bad_alloc();
    return made;
  }

  BSTR bstr_ = nullptr;
};

/// Owns a VARIANT.
class variant {
 public:
  variant() noexcept { VariantInit(&value_); }
  explicit variant(double value) noexcept : variant() {
    value_.vt = VT_R8;
    value_.dblVal = value;
  }
  explicit variant(float value) noexcept : variant() {
    value_.vt = VT_R4;
    value_.fltVal = value;
  }
  explicit variant(LONG value) noexcept : variant() {
    value_.vt = VT_I4;
    value_.lVal = value;
  }
  explicit variant(text value) noexcept : variant() {
    value_.vt = VT_BSTR;
    value_.bstrVal = value.release();
  }
  /// Throws std::bad_alloc.
  variant(const variant& other) : variant() {
    // Some systems declare the source without const; it is only read.
    if (FAILED(VariantCopy(&value_, const_cast<VARIANT*>(&other.value_)))) throw std::bad_alloc();
  }
  variant(variant&& other) noexcept : variant() { std::swap(value_, other.value_); }
  variant& operator=(variant other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  ~variant() { VariantClear(&value_); }

  /// For a call that takes a variant by value; it stays this object's.
  const VARIANT& get() const noexcept { return value_; }
  /// For a call that hands one out: what was held is cleared.
  VARIANT* out() noexcept {
    VariantClear(&value_);
    return &value_;
  }

  VARTYPE type() const noexcept { return value_.vt; }
  bool is_text() const noexcept { return value_.vt == VT_BSTR; }
  /// The text of a VT_BSTR, empty for every other type; lives as long as the variant is not changed.
  wide_view view() const noexcept {
    if (!is_text() || value_.bstrVal == nullptr) return {};
    return {value_.bstrVal, SysStringLen(value_.bstrVal)};
  }
  /// The number of a VT_R8 or VT_R4, 0 for every other type.
  double number() const noexcept {
    if (value_.vt == VT_R8) return value_.dblVal;
    return value_.vt == VT_R4 ? static_cast<double>(value_.fltVal) : 0.0;
  }

 private:
  VARIANT value_;
};

/// The identifier of an interface type.
template <class Interface>
inline constexpr IID iid_of = Interface::missing_identifier;
template <>
inline constexpr IID iid_of<IOvTable> = IID_IOvTable;
template <>
inline constexpr IID iid_of<IOvSchema> = IID_IOvSchema;
template <>
inline constexpr IID iid_of<IOvTableADO> = IID_IOvTableADO;
template <>
inline constexpr IID iid_of<IZuCommonDataTable> = IID_IZuCommonDataTable;
template <>
inline constexpr IID iid_of<IZuCommonDataSchema> = IID_IZuCommonDataSchema;
template <>
inline constexpr IID iid_of<IOvTableMaintenance> = IID_IOvTableMaintenance;
template <>
inline constexpr IID iid_of<IOvProgress> = IID_IOvProgress;
template <>
inline constexpr IID iid_of<IOvProgressSource> = IID_IOvProgressSource;

/// Owns one reference to an object's interface, or nothing.
template <class Interface>
class pointer {
 public:
  pointer() noexcept = default;
  /// Adds a reference of its own.
  explicit pointer(Interface* object) noexcept : object_(object) {
    if (object_ != nullptr) object_->AddRef();
  }
  pointer(const pointer& other) noexcept : pointer(other.object_) {}
  pointer(pointer&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  pointer& operator=(pointer other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~pointer() {
    if (object_ != nullptr) object_->Release();
  }

  Interface* get() const noexcept { return object_; }
  Interface* operator->() const noexcept { return object_; }
  explicit operator bool() const noexcept { return object_ != nullptr; }

  /// For a call that hands out a reference: what was held is released.
  Interface** out() noexcept {
    if (object_ != nullptr) std::exchange(object_, nullptr)->Release();
    return &object_;
  }
  /// Hands the reference over to the caller.
  Interface* release() noexcept { return std::exchange(object_, nullptr); }

  /// Another interface of the same object; empty when it has none of that kind.
  template <class Other>
  pointer<Other> query() const noexcept {
    pointer<Other> found;
    if (object_ != nullptr) {
      void* other = nullptr;
      if (SUCCEEDED(object_->QueryInterface(iid_of<Other>, &other))) {
        *found.out() = static_cast<Other*>(other);
      }
    }
    return found;
  }

 private:
  Interface* object_ = nullptr;
};

/// A failed status with the message and source that the method published, both UTF-8.
class error : public std::exception {
 public:
  error(HRESULT status, std::string message, std::string source)
      : status_(status), message_(std::move(message)), source_(std::move(source)) {}

  /// Takes the calling thread's error information; without any the message names the status.
  static error take(HRESULT status) {
    pointer<IErrorInfo> info;
    text message;
    text source;
    if (GetErrorInfo(0, info.out()) == S_OK && info) {
      (void)info->GetDescription(message.out());
      (void)info->GetSource(source.out());
    }
    std::string words = message.utf8();
    return {status, words.empty() ? describe(status) : std::move(words), source.utf8()};
  }

  HRESULT status() const noexcept { return status_; }
  const char* what() const noexcept override { return message_.c_str(); }
  const std::string& source() const noexcept { return source_; }

 private:
  static std::string describe(HRESULT status) {
    std::string words = "failed with status 0x";
    for (int shift = 28; shift >= 0; shift -= 4) {
      words.push_back("0123456789ABCDEF"[(static_cast<std::uint32_t>(status) >> shift) & 0xF]);
    }
    return words;
  }

  HRESULT status_;
  std::string message_;
  std::string source_;
};

/// Throws `error` for a failed status; hands every other one (S_OK, S_FALSE) back.
inline HRESULT check(HRESULT status) {
  if (FAILED(status)) throw error::take(status);
  return status;
}

/// A new object of the library, whether it is registered or not. Throws `error`.
template <class Interface>
pointer<Interface> create(REFCLSID class_id) {
  void* factory_object = nullptr;
  check(DllGetClassObject(class_id, IID_IClassFactory, &factory_object));
  pointer<IClassFactory> factory;
  *factory.out() = static_cast<IClassFactory*>(factory_object);
  void* object = nullptr;
  check(factory->CreateInstance(nullptr, iid_of<Interface>, &object));
  pointer<Interface> made;
  *made.out() = static_cast<Interface*>(object);
  return made;
}

inline pointer<IOvTable> create_table() { return create<IOvTable>(CLSID_OvTable); }
inline pointer<IOvTableADO> create_record_set() { return create<IOvTableADO>(CLSID_OvTableADO); }
inline pointer<IOvSchema> create_schema() { return create<IOvSchema>(CLSID_OvSchema); }

}  // namespace ovfile
