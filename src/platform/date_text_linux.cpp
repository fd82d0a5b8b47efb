// Dates as text and back, in the invariant form: month/day/year, a 12-hour clock, English month names.
#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>

#include "platform/variant_conversions_linux.h"

namespace ovf::conversion {

namespace {

using std::chrono::day;
using std::chrono::days;
using std::chrono::month;
using std::chrono::sys_days;
using std::chrono::year;
using std::chrono::year_month_day;

constexpr sys_days first_day{year{1899} / 12 / 30};
constexpr int seconds_a_day = 86400;

void append_number(wide& text, int number, std::ptrdiff_t width = 1) {
  char digits[12];
  char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  if (end - digits < width) text.append(static_cast<std::size_t>(width - (end - digits)), u'0');
  text.append(digits, end);
}

void append_day(wide& text, const year_month_day& date) {
  append_number(text, static_cast<int>(static_cast<unsigned>(date.month())));
  text.push_back(u'/');
  append_number(text, static_cast<int>(static_cast<unsigned>(date.day())));
  text.push_back(u'/');
  append_number(text, static_cast<int>(date.year()));
}

void append_time(wide& text, int seconds) {
  const int hour = seconds / 3600;
  append_number(text, hour % 12 == 0 ? 12 : hour % 12);
  text.push_back(u':');
  append_number(text, seconds / 60 % 60, 2);
  text.push_back(u':');
  append_number(text, seconds % 60, 2);
  text.append(hour < 12 ? u" AM" : u" PM");
}

}  // namespace

std::optional<wide> date_text(double date) {
  if (!is_date(date)) return {};
  const double whole = std::trunc(date);
  const double part = std::abs(date - whole);
  auto seconds = static_cast<int>(std::lround(part * seconds_a_day));
  sys_days at = first_day + days(static_cast<int>(whole));
  if (seconds == seconds_a_day) {
    at += days(1);
    seconds = 0;
  }
  const year_month_day civil{at};
  if (static_cast<int>(civil.year()) > 9999) return {};
  wide text;
  const bool has_day = whole != 0 || part == 0;
  // Day 0 without a time of its own is midnight, not a day.
  if (date == 0) {
    append_time(text, 0);
    return text;
  }
  if (has_day) append_day(text, civil);
  if (has_day && part != 0) text.push_back(u' ');
  if (part != 0) append_time(text, seconds);
  return text;
}

namespace {

constexpr std::array<wide_view, 12> month_names{u"january",   u"february", u"march",    u"april",
                                                u"may",       u"june",     u"july",     u"august",
                                                u"september", u"october",  u"november", u"december"};

/// 1 to 12, or 0 for what is no month's name, long or of three letters.
int month_of(wide_view name) {
  for (std::size_t i = 0; i < month_names.size(); ++i) {
    if (name == month_names[i] || name == month_names[i].substr(0, 3)) return static_cast<int>(i) + 1;
  }
  return 0;
}

struct number_token {
  int value;
  std::ptrdiff_t digits;

  bool is_year() const { return digits > 2 || value > 31; }
};

/// Two digits stand for the hundred years that begin with 1950.
int full_year(int value) { return value >= 100 ? value : value < 50 ? value + 2000 : value + 1900; }

std::optional<double> day_number(int y, int m, int d) {
  const int full = full_year(y);
  if (full > 9999 || m > 12 || d > 31) return {};
  const year_month_day date{year{full}, month{static_cast<unsigned>(m)}, day{static_cast<unsigned>(d)}};
  if (!date.ok()) return {};
  return static_cast<double>((sys_days{date} - first_day).count());
}

class date_reader {
 public:
  explicit date_reader(wide_view text) : rest_(text.substr(0, std::min(text.find(u'\0'), text.size()))) {}

  std::optional<double> read() {
    skip_spaces();
    while (!rest_.empty()) {
      if (!read_part()) return {};
      skip_spaces();
    }
    if (separator_) return {};
    return value();
  }

 private:
  static bool is_space(char16_t unit) { return unit == u' ' || (unit >= 0x09 && unit <= 0x0D); }
  static bool is_digit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }
  static bool is_letter(char16_t unit) { return (unit | 32) >= u'a' && (unit | 32) <= u'z'; }

  char16_t front() const { return rest_.empty() ? u'\0' : rest_.front(); }
  void skip() { rest_.remove_prefix(1); }
  void skip_spaces() {
    while (is_space(front())) skip();
  }

  bool read_part() {
    if (is_digit(front())) return read_number_part();
    if (is_letter(front())) return read_name();
    const bool is_separator = front() == u'/' || front() == u'-' || front() == u',';
    if (!is_separator || separator_ || !ready_) return false;
    separator_ = true;
    skip();
    return true;
  }

  bool read_number_part() {
    number_token number{};
    if (!read_digits(number)) return false;
    skip_spaces();
    if (front() == u':') return read_time(number.value);
    if (count_ == 0 || separator_ || ready_) {
      const wide_view before = rest_;
      if (int half = 0; read_half(half)) return set_time(number.value, 0, 0, half);
      rest_ = before;
    }
    if (count_ == numbers_.size()) return false;
    numbers_[count_++] = number;
    separator_ = false;
    ready_ = true;
    return true;
  }

  bool read_digits(number_token& number) {
    for (; is_digit(front()); skip(), ++number.digits) {
      if (number.digits == 4) return false;
      number.value = number.value * 10 + (front() - u'0');
    }
    return number.digits > 0;
  }

  wide read_letters() {
    wide name;
    for (; is_letter(front()); skip()) name.push_back(static_cast<char16_t>(front() | 32));
    return name;
  }

  bool read_name() {
    const int found = month_of(read_letters());
    if (found == 0 || month_ != 0) return false;
    month_ = found;
    separator_ = false;
    ready_ = true;
    return true;
  }

  /// AM is 1, PM is 2.
  bool read_half(int& half) {
    skip_spaces();
    const wide name = read_letters();
    half = name == u"am" ? 1 : name == u"pm" ? 2 : 0;
    return half != 0;
  }

  bool read_time(int hour) {
    int parts[2] = {0, 0};
    for (int i = 0; i < 2 && front() == u':'; ++i) {
      skip();
      skip_spaces();
      number_token number{};
      if (!read_digits(number)) return false;
      parts[i] = number.value;
      skip_spaces();
    }
    const wide_view before = rest_;
    int half = 0;
    if (!read_half(half)) rest_ = before;
    return set_time(hour, parts[0], parts[1], half);
  }

  bool set_time(int hour, int minute, int second, int half) {
    if (has_time_ || hour > 23 || minute > 59 || second > 59 || (half == 1 && hour > 12)) return false;
    if (half == 1 && hour == 12) hour = 0;
    if (half == 2 && hour < 12) hour += 12;
    has_time_ = true;
    separator_ = ready_ = false;
    hour_ = hour;
    minute_ = minute;
    second_ = second;
    return true;
  }

  std::optional<double> value() const {
    if (count_ == 0 && month_ == 0) return has_time_ ? std::optional(with_time(0)) : std::nullopt;
    const std::optional<double> at = month_ != 0 ? named_day() : numbered_day();
    if (!at) return {};
    // The time counts away from day 0 on both sides.
    return *at < 0 ? -with_time(-*at) : with_time(*at);
  }

  /// Part by part, which is how the automation library comes by its last bit.
  double with_time(double at) const { return at + hour_ / 24.0 + minute_ / 1440.0 + second_ / 86400.0; }

  std::optional<double> named_day() const {
    if (count_ != 2) return {};
    const bool year_first = numbers_[0].is_year();
    const int of_year = numbers_[year_first ? 0 : 1].value;
    return day_number(of_year, month_, numbers_[year_first ? 1 : 0].value);
  }

  std::optional<double> numbered_day() const {
    if (count_ != 3) return {};
    const auto [a, b, c] = numbers_;
    std::optional<double> found;
    if (!a.is_year()) {
      found = day_number(c.value, a.value, b.value);
      if (!found && c.is_year()) return day_number(c.value, b.value, a.value);
    }
    if (!found) found = day_number(a.value, b.value, c.value);
    if (!found) found = day_number(a.value, c.value, b.value);
    return found;
  }

  wide_view rest_;
  std::array<number_token, 3> numbers_{};
  std::size_t count_ = 0;
  int month_ = 0;
  int hour_ = 0;
  int minute_ = 0;
  int second_ = 0;
  bool has_time_ = false;
  bool separator_ = false;  ///< one was read, and nothing after it
  bool ready_ = false;      ///< a separator may follow
};

}  // namespace

std::optional<double> read_date(wide_view text) noexcept {
  try {
    return date_reader(text).read();
  } catch (...) {
    return {};
  }
}

}  // namespace ovf::conversion
