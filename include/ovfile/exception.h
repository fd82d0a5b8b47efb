// The exception that leaves the library on purpose: `IOvSchema::Merge` throws it for a missing schema
// and for schemas of different precision. Inside the library it carries every field, value and bound
// error up to the interface methods, which turn it into a report.
#pragma once

#include <exception>
#include <string>
#include <utility>

#include "ovfile/component.h"

#ifdef _WIN32
#define OVFILE_VISIBLE
#else
#define OVFILE_VISIBLE __attribute__((visibility("default")))
#endif

/// Carries a UTF-16 message.
class OVFILE_VISIBLE MyExceptionClass : public std::exception {
 public:
  explicit MyExceptionClass(std::basic_string<OLECHAR> message) : message_(std::move(message)) {}

  const std::basic_string<OLECHAR>& message() const noexcept { return message_; }
  const char* what() const noexcept override { return "MyExceptionClass"; }

 private:
  std::basic_string<OLECHAR> message_;
};
