// What the recording objects have in common: they write down the method and its arguments as a text,
// fill the result with a value known for its type, and answer the status that the test sets.
#pragma once

#include <exception>
#include <sstream>
#include <string>
#include <type_traits>

#include "platform/object.h"
#include "support/component.h"

namespace ovtest {

/// Of every type the value that a recorded method hands out.
inline constexpr LONG handed_long = 42;
inline constexpr double handed_double = 2.5;
inline constexpr float handed_float = 0.5F;
inline constexpr VARIANT_BOOL handed_truth = 1;
inline constexpr double handed_variant = 3.25;
inline const wide handed_text = OLESTR("handed out");

class recorder {
 public:
  std::string last;  ///< "method(argument, argument)"
  HRESULT answer = S_OK;
  IUnknown* object = nullptr;    ///< handed out as any object; null hands out none
  std::exception_ptr exception;  ///< thrown instead of an answer

 protected:
  template <class... Arguments>
  HRESULT called(const char* method, Arguments... arguments) {
    std::ostringstream text;
    [[maybe_unused]] const char* separator = "";
    text << method << '(';
    (..., write(text, separator, arguments));
    text << ')';
    last = text.str();
    if (exception) std::rethrow_exception(exception);
    return answer;
  }

 private:
  template <class Argument>
  void write(std::ostringstream& text, const char*& separator, Argument argument) {
    if constexpr (std::is_pointer_v<Argument> && !std::is_same_v<Argument, BSTR> &&
                  !std::is_class_v<std::remove_pointer_t<Argument>>) {
      hand_out(argument);
    } else if constexpr (std::is_same_v<Argument, VARIANT*>) {
      hand_out(argument);
    } else {
      text << separator;
      separator = ", ";
      show(text, argument);
    }
  }

  static void show(std::ostringstream& text, double number) { text << number; }
  static void show(std::ostringstream& text, BSTR given) {
    if (given == nullptr) {
      text << "null";
    } else {
      text << '"' << to_utf8({given, SysStringLen(given)}) << '"';
    }
  }
  static void show(std::ostringstream& text, const VARIANT& value) { text << "VARIANT " << value.vt; }
  static void show(std::ostringstream& text, IUnknown* given) {
    text << (given == nullptr ? "no object" : "object");
  }
  template <class Integer>
  requires(std::is_integral_v<Integer> || std::is_enum_v<Integer>) static void show(std::ostringstream& text,
                                                                                    Integer number) {
    text << static_cast<long long>(number);
  }

  static void hand_out(LONG* out) { *out = handed_long; }
  static void hand_out(double* out) { *out = handed_double; }
  static void hand_out(float* out) { *out = handed_float; }
  static void hand_out(VARIANT_BOOL* out) { *out = handed_truth; }
  static void hand_out(BSTR* out) { *out = SysAllocString(handed_text.c_str()); }
  static void hand_out(VARIANT* out) {
    out->vt = VT_R8;
    out->dblVal = handed_variant;
  }
  template <class Enumeration>
  requires std::is_enum_v<Enumeration>
  static void hand_out(Enumeration* out) { *out = static_cast<Enumeration>(handed_long); }
  template <class Interface>
  requires std::is_base_of_v<IUnknown, Interface>
  void hand_out(Interface** out) {
    *out = nullptr;
    void* found = nullptr;
    if (object == nullptr || FAILED(object->QueryInterface(ovf::iid_of<Interface>, &found))) return;
    *out = static_cast<Interface*>(found);
  }
};

/// A recording object, known by its class; holds one reference.
template <class Recording, class Interface>
class recorded {
 public:
  recorded() {
    void* made = nullptr;
    if (FAILED(Recording::create(nullptr, ovf::iid_of<Interface>, &made))) throw std::bad_alloc();
    *held_.out() = static_cast<Interface*>(made);
  }
  Recording& record() const { return static_cast<Recording&>(*held_); }
  IDispatch& dispatch() const { return *held_; }
  Interface* get() const { return held_.get(); }

 private:
  owned<Interface> held_;
};

}  // namespace ovtest
