// Texts as indexes into those that a batch has, in the order in which they come first.
#include <functional>

#include "stream/nullable_builder.h"
#include "stream/text_column.h"
#include "stream/text_words.h"

namespace ovf {
namespace {

/// Finds the number of a text among those seen, as the code page has them.
class known_texts {
 public:
  static constexpr std::int32_t unknown = -1;

  void clear() {
    characters_.clear();
    ends_.clear();
    places_.assign(64, unknown);
  }
  std::size_t size() const noexcept { return ends_.size(); }

  /// The text's number; a new one has the next, and `is_new` is true.
  std::int32_t number_of(std::string_view text, bool& is_new) {
    std::size_t place = place_of(text);
    is_new = places_[place] == unknown;
    if (!is_new) return places_[place];
    const auto number = static_cast<std::int32_t>(ends_.size());
    characters_.append(text);
    ends_.push_back(characters_.size());
    places_[place] = number;
    if (2 * ends_.size() > places_.size()) spread();
    return number;
  }

 private:
  std::string_view at(std::int32_t number) const noexcept {
    const auto index = static_cast<std::size_t>(number);
    const std::size_t begin = index == 0 ? 0 : ends_[index - 1];
    return std::string_view(characters_).substr(begin, ends_[index] - begin);
  }
  /// Where the text stands, or would.
  std::size_t place_of(std::string_view text) const noexcept {
    const std::size_t mask = places_.size() - 1;
    std::size_t place = std::hash<std::string_view>()(text) & mask;
    while (places_[place] != unknown && at(places_[place]) != text) place = (place + 1) & mask;
    return place;
  }
  void spread() {
    places_.assign(places_.size() * 4, unknown);
    for (std::size_t i = 0; i < ends_.size(); ++i) {
      const auto number = static_cast<std::int32_t>(i);
      places_[place_of(at(number))] = number;
    }
  }

  std::string characters_;
  std::vector<std::size_t> ends_;
  std::vector<std::int32_t> places_;  ///< a power of 2 of them
};

class dictionary_builder final : public nullable_builder {
 public:
  dictionary_builder(const field& from, const record_layout& layout, const value_choices& choices,
                     const ansi_page& page)
      : nullable_builder(layout, choices),
        words_(from, layout, choices.trailing_blanks),
        room_(words_.width()),
        texts_(page) {}

  std::size_t row_bytes() const noexcept override { return sizeof(std::int32_t); }
  std::size_t most_rows() const noexcept override { return text_column::most_characters / words_.width(); }

 private:
  void begin_values(std::size_t rows) override {
    indexes_ = raw_buffer(rows * sizeof(std::int32_t));
    known_.clear();
    texts_.begin(0, 0);
  }

  void take_values(const std::byte* records, std::size_t rows) override {
    std::int32_t* to = indexes_.as<std::int32_t>() + taken();
    for (std::size_t i = 0; i < rows; ++i) {
      const std::string_view text = words_.read(records + i * stride(), room_.data());
      const bool is_null = absent_as_null() && text_words::without_blanks(text).empty();
      if (is_null) miss(i);
      to[i] = is_null ? 0 : number_of(text);
    }
  }

  column_data finish_values() override {
    column_data made;
    made.buffers[1] = std::move(indexes_);
    made.buffer_count = 2;
    made.dictionary = std::make_unique<column_data>(texts_.finish());
    return made;
  }

  std::int32_t number_of(std::string_view text) {
    bool is_new = false;
    const std::int32_t number = known_.number_of(text, is_new);
    if (is_new) {
      texts_.make_room(known_.size());
      texts_.append(text);
    }
    return number;
  }

  text_words words_;
  std::vector<char> room_;
  known_texts known_;
  text_column texts_;
  raw_buffer indexes_;
};

}  // namespace

std::unique_ptr<column_builder> make_dictionary_builder(const field& from, const record_layout& layout,
                                                        const value_choices& choices, const ansi_page& page) {
  return std::make_unique<dictionary_builder>(from, layout, choices, page);
}

}  // namespace ovf
