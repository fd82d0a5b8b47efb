#include "stream/text_column.h"
#include "stream/text_words.h"
#include "stream/validity.h"

namespace ovf {
namespace {

class text_builder final : public column_builder {
 public:
  text_builder(const field& from, const record_layout& layout, const value_choices& choices,
               const ansi_page& page)
      : words_(from, layout, choices.trailing_blanks),
        stride_(layout.record_bytes),
        absent_as_null_(choices.absent_as_null),
        texts_(page) {}

  void begin(std::size_t rows) override {
    texts_.begin(rows, rows * words_.width());
    there_ = absent_as_null_ ? validity(rows) : validity();
  }

  void take(const std::byte* records, std::size_t rows) override {
    for (std::size_t i = 0; i < rows; ++i) {
      const std::string_view text = words_.read(records + i * stride_, texts_.place(words_.width()));
      if (absent_as_null_ && text_words::without_blanks(text).empty()) {
        there_.miss(texts_.count());
        texts_.append({});
      } else {
        texts_.append(text);
      }
    }
  }

  column_data finish() override {
    column_data made = texts_.finish();
    made.nulls = there_.missing();
    made.buffers[0] = there_.take();
    return made;
  }

  std::size_t row_bytes() const noexcept override { return words_.width() + sizeof(std::int32_t); }
  std::size_t most_rows() const noexcept override { return text_column::most_characters / words_.width(); }

 private:
  text_words words_;
  std::size_t stride_;
  bool absent_as_null_;
  text_column texts_;
  validity there_;
};

}  // namespace

std::unique_ptr<column_builder> make_text_builder(const field& from, const record_layout& layout,
                                                  const value_choices& choices, const ansi_page& page) {
  return std::make_unique<text_builder>(from, layout, choices, page);
}

}  // namespace ovf
