// Whether the tests and what they start are compiled with the address sanitizer, which needs time and memory
// of its own.
#pragma once

namespace ovtest {

#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool is_sanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
inline constexpr bool is_sanitized = true;
#else
inline constexpr bool is_sanitized = false;
#endif
#else
inline constexpr bool is_sanitized = false;
#endif

}  // namespace ovtest
