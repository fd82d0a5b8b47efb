// What all kinds of builder have in common: where records stand, how many values were taken, and which of
// them are there.
#pragma once

#include "stream/column_builder.h"
#include "stream/validity.h"

namespace ovf {

class nullable_builder : public column_builder {
 public:
  void begin(std::size_t rows) final {
    taken_ = 0;
    there_ = absent_as_null_ ? validity(rows) : validity();
    begin_values(rows);
  }
  void take(const std::byte* records, std::size_t rows) final {
    take_values(records, rows);
    taken_ += rows;
  }
  column_data finish() final {
    column_data made = finish_values();
    made.length = static_cast<std::int64_t>(taken_);
    made.nulls = there_.missing();
    made.buffers[0] = there_.take();
    return made;
  }

 protected:
  nullable_builder(const record_layout& layout, const value_choices& choices) noexcept
      : stride_(layout.record_bytes), absent_as_null_(choices.absent_as_null) {}

  virtual void begin_values(std::size_t rows) = 0;
  virtual void take_values(const std::byte* records, std::size_t rows) = 0;
  /// Everything but length and validity.
  virtual column_data finish_values() = 0;

  /// Bytes from one record to the next.
  std::size_t stride() const noexcept { return stride_; }
  bool absent_as_null() const noexcept { return absent_as_null_; }
  /// How many values were taken before the records at hand.
  std::size_t taken() const noexcept { return taken_; }
  /// The value of the record at hand with that index is absent, and absent values are null.
  void miss(std::size_t index) noexcept { there_.miss(taken_ + index); }

 private:
  std::size_t stride_;
  bool absent_as_null_;
  std::size_t taken_ = 0;
  validity there_;
};

}  // namespace ovf
