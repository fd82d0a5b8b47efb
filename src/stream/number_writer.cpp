#include <bit>
#include <cmath>
#include <functional>
#include <limits>
#include <type_traits>

#include "engine/values.h"
#include "platform/decimal_tidy.h"
#include "storage/special_values.h"
#include "stream/column_writer.h"
#include "stream/half_float.h"

namespace ovf {
namespace {

constexpr wide_view beyond_range = OLESTR("the number is beyond what the column can hold");
constexpr wide_view too_many_digits = OLESTR("the integer has more digits than the column can hold");

struct truth {};
struct half {};

/// The value at a place as a type that numbers are made of; a half as the float that it is.
template <class Value>
auto value_at(const value_span& from, std::int64_t place) noexcept {
  if constexpr (std::is_same_v<Value, truth>) {
    return static_cast<std::int32_t>(from.bit_at(place) ? 1 : 0);
  } else if constexpr (std::is_same_v<Value, half>) {
    return float_from_half(from.at<std::uint16_t>(place));
  } else {
    return from.at<Value>(place);
  }
}

/// A float's decimal digits in a double; the numbers with a meaning stay these numbers.
double widened(float value) noexcept {
  for (const double special : {absent_value, top_value, trace_value}) {
    if (value == static_cast<float>(special)) return special;
  }
  return tidied(value);
}

/// What a host's value is before the table narrows it.
template <class Precision, class Value>
auto as_given(Value value) noexcept {
  if constexpr (Precision::is_double && std::is_same_v<Value, float>) {
    return widened(value);
  } else {
    return value;
  }
}

template <class Precision, class Value>
bool fits(Value value) noexcept {
  if constexpr (!Precision::is_double && std::is_same_v<Value, double>) {
    return std::isnan(value) || !std::isinf(number_from<single_precision>(value));
  } else {
    return true;
  }
}

/// Whether a number of so many binary digits is the integer itself.
template <class Integer>
bool holds_exactly(int digits, Integer value) noexcept {
  const auto bits = static_cast<std::uint64_t>(value);
  const std::uint64_t magnitude = value < 0 ? 0 - bits : bits;
  return magnitude == 0 || 64 - std::countl_zero(magnitude) - std::countr_zero(magnitude) <= digits;
}

/// Whether the precision has every digit of the value. Floats are rounded to it.
template <class Precision, class Value>
bool is_exact(Value value) noexcept {
  constexpr int digits = std::numeric_limits<typename Precision::number>::digits;
  if constexpr (std::is_integral_v<Value> && std::numeric_limits<Value>::digits > digits) {
    return holds_exactly(digits, value);
  } else {
    return true;
  }
}

/// What all kinds of number writer do with a number.
template <class Precision>
class number_writer : public column_writer {
 public:
  using number = typename Precision::number;

  number_writer(const field& to, const record_layout& layout, value_listener listener)
      : order_(layout.order),
        stride_(layout.record_bytes),
        is_implicit_(to.is_implicit()),
        offset_(is_implicit_ ? 0 : (to.atoms.front().position - 1) * Precision::word_bytes),
        constant_(load_number<Precision>(to.atoms.front().default_word.data(), byte_order::native)),
        listener_(std::move(listener)) {}

 protected:
  bool puts_plainly() const noexcept { return !is_implicit_ && order_ == byte_order::native && !listener_; }
  std::byte* place(std::byte* records) const noexcept { return records + offset_; }
  std::size_t stride() const noexcept { return stride_; }

  void put_number(std::int64_t row, std::byte* record, number value, double given) const {
    if (is_implicit_) {
      const bool same = value == constant_ || (value != value && constant_ != constant_);
      if (!same) throw bad_value{row, wide(not_the_constant)};
    } else {
      store_number<Precision>(place(record), value, order_);
    }
    if (listener_) listener_(given);
  }

 private:
  byte_order order_;
  std::size_t stride_;
  bool is_implicit_;
  std::size_t offset_;
  number constant_;  ///< what every row of an implicit field reads
  value_listener listener_;
};

template <class Precision, class Value>
class writer_of final : public number_writer<Precision> {
 public:
  using number = typename Precision::number;
  using number_writer<Precision>::number_writer;

  void put(const column_span& from, std::int64_t first, std::byte* records, std::size_t rows) override {
    if constexpr (std::is_same_v<Value, number>) {
      if (from.is_plain() && this->puts_plainly()) return put_plain(from.values, first, records, rows);
    }
    for (std::size_t i = 0; i < rows; ++i) {
      const std::int64_t row = first + static_cast<std::int64_t>(i);
      put_one(from, row, records + i * this->stride());
    }
  }

 private:
  void put_plain(const value_span& from, std::int64_t first, std::byte* records, std::size_t rows) const {
    const auto* values =
        static_cast<const std::byte*>(from.values) + (from.offset + first) * std::int64_t{sizeof(number)};
    std::byte* to = this->place(records);
    const std::size_t stride = this->stride();
    for (; rows > 0; --rows, to += stride, values += sizeof(number)) std::memcpy(to, values, sizeof(number));
  }

  void put_one(const column_span& from, std::int64_t row, std::byte* record) const {
    const std::int64_t place = from.place_of(row);
    if (place == column_span::null) {
      this->put_number(row, record, static_cast<number>(absent_value), absent_value);
      return;
    }
    const auto given = as_given<Precision>(value_at<Value>(from.values, place));
    if (!fits<Precision>(given)) throw bad_value{row, wide(beyond_range)};
    if (!is_exact<Precision>(given)) throw bad_value{row, wide(too_many_digits)};
    this->put_number(row, record, static_cast<number>(given), static_cast<double>(given));
  }
};

/// Columns that say of every row that it has no value.
template <class Precision>
class null_writer final : public number_writer<Precision> {
 public:
  using number_writer<Precision>::number_writer;

  void put(const column_span&, std::int64_t first, std::byte* records, std::size_t rows) override {
    const auto absent = static_cast<typename Precision::number>(absent_value);
    for (std::size_t i = 0; i < rows; ++i) {
      this->put_number(first + static_cast<std::int64_t>(i), records + i * this->stride(), absent,
                       absent_value);
    }
  }
};

template <class Precision>
std::unique_ptr<column_writer> make_for(const field& to, const record_layout& layout, value_kind kind,
                                        const value_listener& listener) {
  const auto make = [&]<class Value>(Value) -> std::unique_ptr<column_writer> {
    return std::make_unique<writer_of<Precision, Value>>(to, layout, listener);
  };
  switch (kind) {
    case value_kind::boolean:
      return make(truth{});
    case value_kind::int8:
      return make(std::int8_t{});
    case value_kind::uint8:
      return make(std::uint8_t{});
    case value_kind::int16:
      return make(std::int16_t{});
    case value_kind::uint16:
      return make(std::uint16_t{});
    case value_kind::int32:
      return make(std::int32_t{});
    case value_kind::uint32:
      return make(std::uint32_t{});
    case value_kind::int64:
      return make(std::int64_t{});
    case value_kind::uint64:
      return make(std::uint64_t{});
    case value_kind::half_float:
      return make(half{});
    case value_kind::single_float:
      return make(float{});
    case value_kind::double_float:
      return make(double{});
    default:
      return std::make_unique<null_writer<Precision>>(to, layout, listener);
  }
}

}  // namespace

std::unique_ptr<column_writer> make_number_writer(const field& to, const record_layout& layout,
                                                  value_kind kind, const value_listener& listener) {
  if (layout.is_double) return make_for<double_precision>(to, layout, kind, listener);
  return make_for<single_precision>(to, layout, kind, listener);
}

}  // namespace ovf
