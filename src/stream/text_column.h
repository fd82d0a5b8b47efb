// UTF-8 texts one behind the other, as an array has them.
#pragma once

#include <cstdint>
#include <limits>

#include "stream/ansi_text.h"
#include "stream/array_export.h"

namespace ovf {

class text_column {
 public:
  explicit text_column(const ansi_page& page) : page_(page) {}

  /// Characters that one array can hold.
  static constexpr std::size_t most_characters =
      static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()) / ansi_page::growth;

  void begin(std::size_t texts, std::size_t characters) {
    offsets_ = raw_buffer((texts + 1) * sizeof(std::int32_t));
    characters_ = raw_buffer(characters);
    count_ = 0;
    used_ = 0;
    *offsets_.as<std::int32_t>() = 0;
  }

  /// Where the next text may be put, as the code page has it, with room for `width` bytes.
  char* place(std::size_t width) {
    characters_.grow(used_ + width, used_);
    return characters_.as<char>() + used_;
  }

  /// Appends a text of the code page, which may stand at `place`; there has to be room for one more.
  void append(std::string_view text) {
    if (is_ascii(text)) {
      const std::size_t length = text.size();
      char* const end = place(length);
      if (text.data() != end && length != 0) std::memcpy(end, text.data(), length);
      used_ += length;
    } else {
      kept_.assign(text);
      used_ += page_.to_utf8(kept_, place(kept_.size() * ansi_page::growth));
    }
    offsets_.as<std::int32_t>()[++count_] = static_cast<std::int32_t>(used_);
  }

  std::size_t count() const noexcept { return count_; }
  void make_room(std::size_t texts) {
    offsets_.grow((texts + 1) * sizeof(std::int32_t), (count_ + 1) * sizeof(std::int32_t));
  }

  column_data finish() {
    column_data made;
    made.length = static_cast<std::int64_t>(count_);
    made.buffers[1] = std::move(offsets_);
    made.buffers[2] = std::move(characters_);
    made.buffer_count = 3;
    return made;
  }

 private:
  const ansi_page& page_;
  raw_buffer offsets_;
  raw_buffer characters_;
  std::size_t count_ = 0;
  std::size_t used_ = 0;
  std::string kept_;  ///< a text whose place is taken by what becomes of it
};

}  // namespace ovf
