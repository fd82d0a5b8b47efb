// Text on its way out, in large pieces: to standard output, or to a file that stands under its name only
// when it is whole.
#pragma once

#include <optional>
#include <string>

#include "raw_file.h"
#include "replacement.h"

namespace command {

/// What goes to standard output is for.
enum class meant_for {
  programs,  ///< every byte as it is
  people     ///< as `shown_lines` has it
};

class text_output {
 public:
  /// Standard output.
  explicit text_output(meant_for readers = meant_for::programs);
  /// A file; `-` is standard output.
  explicit text_output(const std::string& name);

  /// Where text is appended; `pass_on` now and then keeps it short.
  std::string& text() noexcept { return text_; }
  void pass_on() {
    if (text_.size() >= piece) write();
  }
  /// The rest, and the end: without this call a file never appears. Throws `failure`, `broken_pipe`.
  void finish();

 private:
  static constexpr std::size_t piece = 256 << 10;

  void write();

  std::optional<replacement> replacement_;
  raw_file file_;
  bool to_terminal_;
  meant_for readers_ = meant_for::programs;
  std::string text_;
};

/// All that goes to standard output. Throws `failure`, `broken_pipe`.
void print(std::string text);

}  // namespace command
