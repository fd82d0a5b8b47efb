#include "stream/nullable_builder.h"
#include "stream/text_column.h"
#include "stream/text_words.h"

namespace ovf {
namespace {

class text_builder final : public nullable_builder {
 public:
  text_builder(const field& from, const record_layout& layout, const value_choices& choices,
               const ansi_page& page)
      : nullable_builder(layout, choices), words_(from, layout, choices.trailing_blanks), texts_(page) {}

  std::size_t row_bytes() const noexcept override { return words_.width() + sizeof(std::int32_t); }
  std::size_t most_rows() const noexcept override { return text_column::most_characters / words_.width(); }

 private:
  void begin_values(std::size_t rows) override { texts_.begin(rows, rows * words_.width()); }

  void take_values(const std::byte* records, std::size_t rows) override {
    for (std::size_t i = 0; i < rows; ++i) {
      const std::string_view text = words_.read(records + i * stride(), texts_.place(words_.width()));
      const bool is_null = absent_as_null() && text_words::without_blanks(text).empty();
      if (is_null) miss(i);
      texts_.append(is_null ? std::string_view() : text);
    }
  }

  column_data finish_values() override { return texts_.finish(); }

  text_words words_;
  text_column texts_;
};

}  // namespace

std::unique_ptr<column_builder> make_text_builder(const field& from, const record_layout& layout,
                                                  const value_choices& choices, const ansi_page& page) {
  return std::make_unique<text_builder>(from, layout, choices, page);
}

}  // namespace ovf
