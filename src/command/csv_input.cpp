#include "csv_input.h"

namespace command {

csv_input::csv_input(const std::string& name)
    : file_(name == "-" ? raw_file::standard_input() : raw_file::open(name)) {
  // Redirected standard input may be a file whose position is not its beginning.
  if (name == "-" || !file_.is_regular(size_)) copy_.emplace(raw_file::make_scratch());
}

std::size_t csv_input::read(char* bytes, std::size_t count) {
  if (from_copy_) return copy_->read(bytes, count);
  const std::size_t done = file_.read(bytes, count);
  if (copy_) {
    copy_->write({bytes, done});
    size_ += done;
  }
  return done;
}

void csv_input::start_again() {
  from_copy_ = copy_.has_value();
  (from_copy_ ? *copy_ : file_).go_to(0);
}

}  // namespace command
