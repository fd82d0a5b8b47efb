// What is wrong with an expression, and where.
#pragma once

#include <cstddef>
#include <exception>
#include <string>
#include <string_view>

#include "filter/characters.h"

namespace ovf::filter {

class expression_error : public std::exception {
 public:
  /// `position` counts characters from 0; the message tells it from 1.
  expression_error(wide what, std::size_t position) : message_(std::move(what)) {
    append(" at position " + std::to_string(position + 1));
  }
  expression_error(std::string_view what, std::size_t position)
      : expression_error(wide(what.begin(), what.end()), position) {}

  const wide& message() const noexcept { return message_; }
  const char* what() const noexcept override { return "expression_error"; }

 private:
  void append(std::string_view ascii) { message_.append(ascii.begin(), ascii.end()); }

  wide message_;
};

}  // namespace ovf::filter
