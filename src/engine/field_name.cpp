#include "engine/field_name.h"

#include "engine/long_field_names.h"
#include "ovfile/exception.h"
#include "storage/format.h"

namespace ovf {
namespace {

constexpr std::string_view forbidden_anywhere = " ,!:*&=()?";
constexpr std::string_view forbidden_first = ".@";

void check_length(std::string_view name, bool is_double, name_use use) {
  if (!is_double && name.size() > format::short_name_chars) {
    throw MyExceptionClass(OLESTR("field name exceeds 8 characters"));
  }
  if (!is_double || name.size() <= field_name_limit()) return;
  throw MyExceptionClass(use == name_use::adding ? OLESTR("field name too long")
                                                 : OLESTR("field name is too long"));
}

void check_characters(std::string_view name) {
  const bool bad_first = !name.empty() && forbidden_first.find(name.front()) != std::string_view::npos;
  // A NUL would end the name for whoever reads the file.
  const bool has_nul = name.find('\0') != std::string_view::npos;
  if (bad_first || has_nul || name.find_first_of(forbidden_anywhere) != std::string_view::npos) {
    throw MyExceptionClass(OLESTR("field name contains invalid characters"));
  }
}

}  // namespace

void check_field_name(wide_view name, bool is_double, name_use use) {
  check_ansi_field_name(ansi_from_wide(name), is_double, use);
}

void check_ansi_field_name(std::string_view name, bool is_double, name_use use) {
  check_length(name, is_double, use);
  check_characters(name);
}

void fail_name_taken() { throw MyExceptionClass(OLESTR("field name already exists")); }

}  // namespace ovf
