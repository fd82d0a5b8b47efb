// Reads what a reference file expects.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "support/expected_reading.h"

namespace ovtest {

/// A number in the C form of hexadecimal floats, or nan, inf, -inf.
double number_from(const std::string& text);

/// The whole of a `NAME.json`, without its link.
expected_reading expected_from(const nlohmann::json& table);

/// The `expect` of a broken or odd file that opens.
expected_reading expected_from_odd(const nlohmann::json& expect, const std::string& file);

}  // namespace ovtest
