// Whether the tests and what they start are compiled with the address sanitizer, which needs time and memory
// of its own.
#pragma once

namespace ovtest {

#if defined(__has_feature)
inline constexpr bool is_sanitized = __has_feature(address_sanitizer);
#elif defined(__SANITIZE_ADDRESS__)
inline constexpr bool is_sanitized = true;
#else
inline constexpr bool is_sanitized = false;
#endif

}  // namespace ovtest
