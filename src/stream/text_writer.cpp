#include <algorithm>

#include "engine/values.h"
#include "stream/column_writer.h"

namespace ovf {
namespace {

constexpr wide_view bad_offsets = OLESTR("the text's offsets lead out of its buffer");
constexpr wide_view not_utf8 = OLESTR("the text is no UTF-8");
constexpr wide_view not_in_page = OLESTR("the text has a character outside the ANSI code page");
constexpr wide_view has_nul = OLESTR("the text has a NUL character");
constexpr wide_view too_long = OLESTR("the text is longer than the column");

/// What is stored of a text.
std::string_view kept(std::string_view text) noexcept {
  return text.substr(0, text.find_last_not_of(" \t") + 1);
}

template <class Precision>
class text_writer final : public column_writer {
 public:
  text_writer(const field& to, const record_layout& layout, const ansi_page& page)
      : field_(to),
        page_(page),
        stride_(layout.record_bytes),
        width_(to.atoms.size() * format::text_word_chars),
        is_in_rows_(to.has_stored_words()),
        is_mixed_(std::ranges::any_of(to.atoms, [](const atom& each) { return each.position == 0; })),
        constant_(kept(default_text_of(to))) {}

  void put(const column_span& from, std::int64_t first, std::byte* records, std::size_t rows) override {
    for (std::size_t i = 0; i < rows; ++i) {
      const std::int64_t row = first + static_cast<std::int64_t>(i);
      const std::int64_t place = from.place_of(row);
      const auto text = place == column_span::null ? std::string_view() : from.values.text_at(place);
      if (!text) throw bad_value{row, wide(bad_offsets)};
      take(row, *text);
      if (!is_as_the_header_has_it()) throw bad_value{row, wide(not_the_constant)};
      if (is_in_rows_) put_text<Precision>(field_, records + i * stride_, ansi_);
    }
  }

 private:
  /// The words that have no place in the rows: all of them of an implicit column, and of others mostly none.
  bool is_as_the_header_has_it() const {
    if (!is_in_rows_) return ansi_ == constant_;
    const auto word = [](std::string_view text, std::size_t i) {
      const std::size_t begin = std::min(i * format::text_word_chars, text.size());
      return kept(text.substr(begin, format::text_word_chars));
    };
    for (std::size_t i = 0; is_mixed_ && i < field_.atoms.size(); ++i) {
      if (field_.atoms[i].position == 0 && word(ansi_, i) != word(constant_, i)) return false;
    }
    return true;
  }

  /// The text as the file has it.
  void take(std::int64_t row, std::string_view utf8) {
    const std::string_view text = kept(utf8);
    const ansi_page::outcome outcome = page_.from_utf8(text, ansi_);
    if (outcome == ansi_page::outcome::not_utf8) throw bad_value{row, wide(not_utf8)};
    if (outcome == ansi_page::outcome::not_in_page) throw bad_value{row, wide(not_in_page)};
    if (ansi_.find('\0') != std::string::npos) throw bad_value{row, wide(has_nul)};
    if (ansi_.size() > width_) throw bad_value{row, wide(too_long)};
  }

  field field_;
  const ansi_page& page_;
  std::size_t stride_;
  std::size_t width_;
  bool is_in_rows_;
  bool is_mixed_;
  std::string constant_;
  std::string ansi_;
};

}  // namespace

std::unique_ptr<column_writer> make_text_writer(const field& to, const record_layout& layout,
                                                const ansi_page& page) {
  if (layout.is_double) return std::make_unique<text_writer<double_precision>>(to, layout, page);
  return std::make_unique<text_writer<single_precision>>(to, layout, page);
}

std::unique_ptr<column_writer> make_writer(const field& to, const record_layout& layout, value_kind kind,
                                           const ansi_page& page, const value_listener& listener) {
  const bool takes_text = to.kind == field_kind::alphanumeric;
  if (kind != value_kind::nothing && is_text(kind) != takes_text) {
    refuse(takes_text ? OLESTR("it holds numbers, and the table's column texts")
                      : OLESTR("it holds texts, and the table's column numbers"));
  }
  return takes_text ? make_text_writer(to, layout, page) : make_number_writer(to, layout, kind, listener);
}

}  // namespace ovf
