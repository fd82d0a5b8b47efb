#include "text_output.h"

#include <utility>

#include "console.h"
#include "failure.h"
#include "progress.h"
#include "shown_text.h"

namespace command {
namespace {

raw_file open_end(const std::string& name, std::optional<replacement>& file) {
  if (name == "-") return raw_file::standard_output();
  file.emplace(name);
  return raw_file::open_to_write(file->name(), name);
}

}  // namespace

text_output::text_output(meant_for readers) : text_output("-") { readers_ = readers; }

text_output::text_output(const std::string& name)
    : file_(open_end(name, replacement_)),
      to_terminal_(!replacement_ && is_terminal(standard_stream::output)) {}

void text_output::write() {
  std::unique_lock<std::mutex> undisturbed;
  if (to_terminal_ && !text_.empty()) undisturbed = progress::wiped();
  if (readers_ == meant_for::people) text_ = shown_lines(text_);
  file_.write(text_);
  text_.clear();
}

void text_output::finish() {
  write();
  file_.close();
  if (replacement_) replacement_->commit();
}

void print(std::string text) {
  text_output output;
  output.text() = std::move(text);
  output.finish();
}

}  // namespace command
