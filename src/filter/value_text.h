// A value where a text is needed.
#pragma once

#include "filter/number_text.h"
#include "filter/value.h"

namespace ovf::filter {

/// The text of a value that is not absent: its own, or its number's.
class value_text {
 public:
  explicit value_text(const value& of) noexcept : view_(of.view()) {
    if (of.text != nullptr) return;
    number_ = write_number(of.number);
    view_ = number_.view();
  }
  value_text(const value_text&) = delete;
  value_text& operator=(const value_text&) = delete;

  wide_view view() const noexcept { return view_; }

 private:
  number_text number_;
  wide_view view_;
};

}  // namespace ovf::filter
