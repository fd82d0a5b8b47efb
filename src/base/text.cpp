#include "base/text.h"

#include <charconv>
#include <cstdint>
#include <limits>
#include <new>

namespace ovf {

namespace {

constexpr std::uint32_t replacement = 0xFFFD;

bool is_high_surrogate(std::uint32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool is_low_surrogate(std::uint32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

void append_wide(wide& text, std::uint32_t code) {
  if (code >= 0x10000) {
    text.push_back(static_cast<OLECHAR>(0xD800 + ((code - 0x10000) >> 10)));
    text.push_back(static_cast<OLECHAR>(0xDC00 + ((code - 0x10000) & 0x3FF)));
  } else {
    text.push_back(static_cast<OLECHAR>(code));
  }
}

void append_utf8(std::string& text, std::uint32_t code) {
  const auto push = [&](std::uint32_t byte) { text.push_back(static_cast<char>(byte)); };
  if (code < 0x80) {
    push(code);
  } else if (code < 0x800) {
    push(0xC0 | code >> 6);
    push(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    push(0xE0 | code >> 12);
    push(0x80 | (code >> 6 & 0x3F));
    push(0x80 | (code & 0x3F));
  } else {
    push(0xF0 | code >> 18);
    push(0x80 | (code >> 12 & 0x3F));
    push(0x80 | (code >> 6 & 0x3F));
    push(0x80 | (code & 0x3F));
  }
}

/// Takes one character off the front of a UTF-8 text; the longest part of a broken one that could have
/// begun a character is taken as one replacement character.
std::uint32_t next_utf8(std::string_view& text) {
  const auto byte = [&](std::size_t i) {
    return static_cast<std::uint32_t>(static_cast<unsigned char>(text[i]));
  };
  const std::uint32_t lead = byte(0);
  std::size_t followers = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
  if (lead < 0x80 || lead < 0xC2 || lead > 0xF4) {
    text.remove_prefix(1);
    return lead < 0x80 ? lead : replacement;
  }
  std::uint32_t code = lead & (0x3Fu >> followers);
  // The second byte's bounds leave out overlong forms, surrogates and codes beyond U+10FFFF.
  std::uint32_t low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  std::uint32_t high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  std::size_t used = 1;
  for (; followers > 0 && used < text.size() && byte(used) >= low && byte(used) <= high;
       --followers, ++used) {
    code = code << 6 | (byte(used) & 0x3F);
    low = 0x80;
    high = 0xBF;
  }
  text.remove_prefix(used);
  return followers == 0 ? code : replacement;
}

template <class Number>
wide digits_of(Number number, int base) {
  char digits[24];
  char* const end = std::to_chars(digits, digits + sizeof digits, number, base).ptr;
  return wide(digits, end);
}

}  // namespace

wide wide_from_utf8(std::string_view text) {
  wide result;
  result.reserve(text.size());
  while (!text.empty()) append_wide(result, next_utf8(text));
  return result;
}

std::string utf8_from_wide(wide_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    std::uint32_t code = static_cast<std::uint32_t>(text[i]);
    if (is_high_surrogate(code) && i + 1 < text.size() &&
        is_low_surrogate(static_cast<std::uint32_t>(text[i + 1]))) {
      code = 0x10000 + ((code - 0xD800) << 10) + (static_cast<std::uint32_t>(text[++i]) - 0xDC00);
    } else if (is_high_surrogate(code) || is_low_surrogate(code)) {
      code = replacement;
    }
    append_utf8(result, code);
  }
  return result;
}

wide_view view_of(BSTR text) noexcept {
  return text == nullptr ? wide_view() : wide_view(text, SysStringLen(text));
}

BSTR bstr_or_null(wide_view text) { return text.empty() ? nullptr : new_bstr(text); }

BSTR new_bstr(wide_view text) {
  if (text.size() > std::numeric_limits<UINT>::max()) throw std::bad_alloc();
  // The system takes a null pointer as a wish for an unfilled text.
  const OLECHAR* units = text.data() != nullptr ? text.data() : OLESTR("");
  const BSTR result = SysAllocStringLen(units, static_cast<UINT>(text.size()));
  if (result == nullptr) throw std::bad_alloc();
  return result;
}

wide_format& wide_format::arg(wide_view text) {
  if (next_place() != 0) done_.append(text);
  return *this;
}

wide_format& wide_format::arg(long long number) {
  switch (next_place()) {
    case 0:
      break;
    case 'x':
      done_.append(digits_of(static_cast<unsigned long long>(number), 16));
      break;
    default:
      done_.append(digits_of(number, 10));
  }
  return *this;
}

wide wide_format::text() const {
  wide result = done_;
  result.append(rest_);
  return result;
}

OLECHAR wide_format::next_place() {
  for (std::size_t i = 0; i + 1 < rest_.size(); ++i) {
    const OLECHAR letter = rest_[i + 1];
    if (rest_[i] != '%' || (letter != 's' && letter != 'd' && letter != 'i' && letter != 'x')) continue;
    done_.append(rest_.substr(0, i));
    rest_.remove_prefix(i + 2);
    return letter;
  }
  return 0;
}

}  // namespace ovf
