// What counts as a number: signs, a currency sign and brackets around digits with commas, a point and an
// exponent; or &H and &O with the bits of a whole number.
#include <algorithm>

#include "platform/text_case.h"
#include "platform/variant_conversions_linux.h"

namespace ovf::conversion {

namespace {

constexpr std::int64_t exponent_limit = 1'000'000'000;  ///< far beyond every type, far from overflow

bool is_digit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

bool is_space(char16_t unit) {
  return (unit >= 0x09 && unit <= 0x0D) || unit == u' ' || unit == 0x85 || unit == 0xA0 || unit == 0x1680 ||
         (unit >= 0x2000 && unit <= 0x200A) || unit == 0x2028 || unit == 0x2029 || unit == 0x202F ||
         unit == 0x205F || unit == 0x3000;
}

class reader {
 public:
  reader(wide_view text, number_text& number)
      : rest_(text.substr(0, std::min(text.find(u'\0'), text.size()))), number_(number) {
    number_.negative = number_.is_bits = number_.too_many_bits = false;
    number_.bits = 0;
    number_.count = 0;
    number_.point = 0;
  }

  bool read() {
    read_front();
    const bool understood = front() == u'&' && !currency_ ? read_bits() : read_decimal();
    read_back();
    number_.negative = minus_ || bracket_;
    return understood && rest_.empty() && bracket_ == bracket_closed_;
  }

 private:
  char16_t front() const { return rest_.empty() ? u'\0' : rest_.front(); }
  void skip() { rest_.remove_prefix(1); }

  bool once(bool& flag) {
    if (flag) return false;
    flag = true;
    return true;
  }

  void read_front() {
    for (; !rest_.empty(); skip()) {
      switch (front()) {
        case u'+':
          if (!once(plus_)) return;
          break;
        case u'-':
          if (!once(minus_)) return;
          break;
        case u'(':
          if (!once(bracket_)) return;
          break;
        case u'$':
          if (!once(currency_)) return;
          break;
        default:
          if (!is_space(front())) return;
      }
    }
  }

  /// A sign after the number is no second one of its kind.
  void read_back() {
    const bool plus_before = plus_;
    const bool minus_before = minus_;
    for (; !rest_.empty(); skip()) {
      switch (front()) {
        case u'+':
          if (plus_before) return;
          break;
        case u'-':
          if (minus_before) return;
          minus_ = true;
          break;
        case u')':
          if (!bracket_ || !once(bracket_closed_)) return;
          break;
        case u'$':
          if (number_.is_bits) return;
          break;
        default:
          if (!is_space(front())) return;
      }
    }
  }

  bool read_bits() {
    skip();
    const bool hexadecimal = front() == u'H' || front() == u'h';
    if (!hexadecimal && front() != u'O' && front() != u'o') return false;
    skip();
    const unsigned width = hexadecimal ? 4 : 3;
    number_.is_bits = true;
    bool any = false;
    for (int digit = 0; (digit = bits_digit(front())) < (1 << width); skip(), any = true) {
      number_.too_many_bits = number_.too_many_bits || number_.bits >> (64 - width) != 0;
      number_.bits = number_.bits << width | static_cast<unsigned>(digit);
    }
    return any;
  }

  static int bits_digit(char16_t unit) {
    if (is_digit(unit)) return unit - u'0';
    if (unit >= u'a' && unit <= u'f') return unit - u'a' + 10;
    if (unit >= u'A' && unit <= u'F') return unit - u'A' + 10;
    return 16;
  }

  bool read_decimal() {
    if (!is_digit(front()) && front() != u'.') return false;
    bool any = false;
    bool after_point = false;
    for (; !rest_.empty(); skip()) {
      if (is_digit(front())) {
        take_digit(after_point);
        any = true;
      } else if (front() == u'.' && !after_point) {
        after_point = true;
      } else if (front() != u',') {
        break;
      }
    }
    if (!any) return false;
    // An amount of money that begins with its sign has no exponent.
    const bool has_exponent = !currency_ && (front() == u'e' || front() == u'E');
    if (has_exponent && !read_exponent()) return false;
    // Commas may also follow the exponent.
    while (front() == u',') skip();
    drop_trailing_zeros();
    return true;
  }

  void take_digit(bool after_point) {
    const char digit = static_cast<char>(front());
    if (number_.count == 0 && digit == '0') {
      if (after_point) --number_.point;
      return;
    }
    if (!after_point) ++number_.point;
    if (number_.count < number_text::capacity) {
      number_.digits[number_.count++] = digit;
    } else if (digit != '0') {
      number_.digits[number_text::capacity - 1] = '1';
    }
  }

  bool read_exponent() {
    skip();
    const bool negative = front() == u'-';
    if (negative || front() == u'+') skip();
    if (!is_digit(front())) return false;
    std::int64_t exponent = 0;
    for (; is_digit(front()); skip()) {
      exponent = std::min(exponent * 10 + (front() - u'0'), exponent_limit);
    }
    number_.point += negative ? -exponent : exponent;
    return true;
  }

  void drop_trailing_zeros() {
    while (number_.count > 0 && number_.digits[number_.count - 1] == '0') --number_.count;
    if (number_.count == 0) number_.point = 0;
  }

  wide_view rest_;
  number_text& number_;
  bool plus_ = false;
  bool minus_ = false;
  bool bracket_ = false;
  bool bracket_closed_ = false;
  bool currency_ = false;
};

}  // namespace

bool read_number(wide_view text, number_text& number) noexcept { return reader(text, number).read(); }

std::optional<bool> read_boolean(wide_view text) noexcept {
  text = text.substr(0, std::min(text.find(u'\0'), text.size()));
  if (equal_without_case(text, u"true") || text == u"#TRUE#") return true;
  if (equal_without_case(text, u"false") || text == u"#FALSE#") return false;
  return {};
}

}  // namespace ovf::conversion
