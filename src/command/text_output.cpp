#include "text_output.h"

#include "failure.h"

namespace command {
namespace {

raw_file open_end(const std::string& name, std::optional<replacement>& file) {
  if (name == "-") return raw_file::standard_output();
  file.emplace(name);
  return raw_file::open_to_write(file->name(), name);
}

}  // namespace

text_output::text_output(const std::string& name) : file_(open_end(name, replacement_)) {}

void text_output::write() {
  file_.write(text_);
  text_.clear();
}

void text_output::finish() {
  write();
  file_.close();
  if (replacement_) replacement_->commit();
}

}  // namespace command
