#include "engine/values.h"
#include "platform/decimal_tidy.h"
#include "storage/special_values.h"
#include "stream/nullable_builder.h"

namespace ovf {
namespace {

template <class Value, class Number>
Value shown(Number number) noexcept {
  if constexpr (sizeof(Value) == sizeof(Number)) {
    return number;
  } else {
    return tidied(number);
  }
}

/// Numbers of a precision, as `Value`.
template <class Precision, class Value>
class number_builder final : public nullable_builder {
 public:
  using number = typename Precision::number;

  number_builder(const field& from, const record_layout& layout, const value_choices& choices)
      : nullable_builder(layout, choices),
        order_(layout.order),
        is_implicit_(from.is_implicit()),
        offset_(is_implicit_ ? 0 : (from.atoms.front().position - 1) * Precision::word_bytes),
        // Implicit fields read their default as the file holds it.
        constant_(shown<Value>(
            load_number<Precision>(from.atoms.front().default_word.data(), byte_order::native))) {}

  std::size_t row_bytes() const noexcept override { return sizeof(Value); }

 private:
  void begin_values(std::size_t rows) override { values_ = raw_buffer(rows * sizeof(Value)); }

  void take_values(const std::byte* records, std::size_t rows) override {
    Value* to = values_.as<Value>() + taken();
    if (is_implicit_) {
      std::fill_n(to, rows, constant_);
    } else {
      gather(records + offset_, rows, to);
    }
    if (absent_as_null()) mark_absent(to, rows);
  }

  column_data finish_values() override {
    column_data made;
    made.buffers[1] = std::move(values_);
    made.buffer_count = 2;
    return made;
  }

  void gather(const std::byte* from, std::size_t rows, Value* to) const noexcept {
    switch (order_) {
      case byte_order::native:
        return gather_as<byte_order::native>(from, rows, to);
      case byte_order::bytes_swapped:
        return gather_as<byte_order::bytes_swapped>(from, rows, to);
      case byte_order::halves_swapped:
        return gather_as<byte_order::halves_swapped>(from, rows, to);
      case byte_order::reversed:
        return gather_as<byte_order::reversed>(from, rows, to);
    }
  }

  template <byte_order Order>
  void gather_as(const std::byte* from, std::size_t rows, Value* to) const noexcept {
    const std::size_t between = stride();
    for (std::size_t i = 0; i < rows; ++i) {
      to[i] = shown<Value>(load_number<Precision>(from + i * between, Order));
    }
  }

  void mark_absent(const Value* values, std::size_t rows) noexcept {
    constexpr auto absent = static_cast<Value>(static_cast<number>(absent_value));
    for (std::size_t i = 0; i < rows; ++i) {
      if (values[i] == absent) miss(i);
    }
  }

  byte_order order_;
  bool is_implicit_;
  std::size_t offset_;
  Value constant_;
  raw_buffer values_;
};

}  // namespace

std::unique_ptr<column_builder> make_number_builder(const field& from, const record_layout& layout,
                                                    const value_choices& choices) {
  if (layout.is_double) {
    return std::make_unique<number_builder<double_precision, double>>(from, layout, choices);
  }
  if (choices.widened) {
    return std::make_unique<number_builder<single_precision, double>>(from, layout, choices);
  }
  return std::make_unique<number_builder<single_precision, float>>(from, layout, choices);
}

}  // namespace ovf
