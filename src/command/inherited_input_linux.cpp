#include <fcntl.h>
#include <unistd.h>

#include <charconv>
#include <string_view>

#include "failure.h"
#include "inherited_input.h"

namespace command {

std::optional<int> inherited_input(const std::string& name) {
  int number = -1;
  if (name == "/dev/stdin") number = STDIN_FILENO;
  for (const std::string_view folder : {"/dev/fd/", "/proc/self/fd/"}) {
    if (!name.starts_with(folder)) continue;
    const char* const end = name.data() + name.size();
    const auto [rest, problem] = std::from_chars(name.data() + folder.size(), end, number);
    if (rest != end || problem != std::errc()) return {};
  }
  const int flags = number < 0 ? -1 : ::fcntl(number, F_GETFL);
  const bool is_read = number == STDIN_FILENO || (flags & O_ACCMODE) == O_RDONLY;
  if (flags < 0 || !is_read) return {};
  return number;
}

void put_in_place_of(int number, const raw_file& held) {
  if (::dup2(held.handle(), number) < 0) throw failure("cannot read " + held.name() + ": " + last_reason());
}

}  // namespace command
