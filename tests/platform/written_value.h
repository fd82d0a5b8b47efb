// Values of variants as the tables of conversions write them: a name of a type and a text. Reals end in
// their bits (`0.1/3FB999999999999A`), currencies are ten-thousandths (`cy:1000`), errors hexadecimal;
// in texts \xHH and \uHHHH are characters by number and C{*N} is C repeated N times.
#pragma once

#include <string>
#include <string_view>

#include "platform/variant.h"

namespace ovtest {

/// The type's number; throws std::invalid_argument for a name that is none.
VARTYPE type_named(std::string_view name);
/// A variant of that type. Throws std::invalid_argument.
ovf::variant written_value(std::string_view type, std::string_view value);
/// What a variant's value is written like: reals as bits alone, texts with `C{*N}` resolved.
std::string shown(const VARIANT& value);
/// `written` in the form of `shown`.
std::string normal_form(std::string_view type, std::string_view written);

}  // namespace ovtest
