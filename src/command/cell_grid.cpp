#include "cell_grid.h"

#include <cmath>
#include <limits>

#include "decimal.h"
#include "failure.h"
#include "words.h"

namespace command {
namespace {

constexpr std::array<char, 3> axis_letters = {'x', 'y', 'z'};

std::string size_flag(std::size_t axis) { return fmt::format("--{}inc", axis_letters[axis]); }
std::string origin_flag(std::size_t axis) { return fmt::format("--{}orig", axis_letters[axis]); }
std::string count_flag(std::size_t axis) { return fmt::format("--n{}", axis_letters[axis]); }

double read_value(const std::string& flag, const std::string& words) {
  const number_cell number = read_number(words);
  if (!number.is_number)
    throw wrong_usage(fmt::format("{} {}: expected a number; it {}", flag, words, number_problem(words)));
  return number.value;
}

double read_size(const std::string& flag, const std::string& words) {
  const double value = read_value(flag, words);
  if (value <= 0) throw wrong_usage(fmt::format("{} {}: expected a number above 0", flag, words));
  return value;
}

LONG read_count(const std::string& flag, const std::string& words) {
  constexpr LONG most = std::numeric_limits<LONG>::max();
  const number_cell number = read_number(words);
  const bool fits = number.is_number && number.value >= 1 && number.value <= static_cast<double>(most);
  if (!fits || number.value != std::floor(number.value)) {
    throw wrong_usage(fmt::format("{} {}: expected a whole number from 1 to {}", flag, words, most));
  }
  return static_cast<LONG>(number.value);
}

void require(const std::string& wanted_by, const std::string& flag, const std::string& words) {
  if (words.empty()) throw wrong_usage(fmt::format("{} needs {}", wanted_by, flag));
}

void check_single(const std::string& flag, const std::string& words, std::string& lost_digits) {
  bool kept = true;
  if (words.empty()) return;
  if (std::isinf(read_float(words, kept))) {
    throw failure(fmt::format("{} {} is beyond the range of single precision", flag, words));
  }
  if (!kept) lost_digits += (lost_digits.empty() ? "" : ", ") + flag;
}

/// How many cells there are is no matter of digits.
void check_single_count(const std::string& flag, LONG count) {
  if (static_cast<double>(static_cast<float>(count)) == static_cast<double>(count)) return;
  throw failure(fmt::format("{} {}: single precision cannot hold this number", flag, count));
}

}  // namespace

void cell_grid_options::add_to(const verb& owner) {
  const auto add = [&](const std::string& flag, std::string& words, const std::string& what) {
    owner.add_option(flag, words, what).type_name("NUMBER");
  };
  for (std::size_t i = 0; i < axes_.size(); ++i) {
    const char letter = static_cast<char>(axis_letters[i] - 'a' + 'A');
    add(size_flag(i), axes_[i].size, fmt::format("size of a cell along {}", letter));
    add(origin_flag(i), axes_[i].origin,
        fmt::format("where the cells begin along {} (0 by default)", letter));
    add(count_flag(i), axes_[i].count, fmt::format("number of cells along {}", letter));
  }
}

std::string cell_grid_options::first_given() const {
  for (std::size_t i = 0; i < axes_.size(); ++i) {
    if (!axes_[i].size.empty()) return size_flag(i);
    if (!axes_[i].origin.empty()) return origin_flag(i);
    if (!axes_[i].count.empty()) return count_flag(i);
  }
  return {};
}

cell_grid cell_grid_options::read(const std::string& wanted_by, bool single) const {
  cell_grid cells;
  for (std::size_t i = 0; i < axes_.size(); ++i) {
    const axis& given = axes_[i];
    require(wanted_by, size_flag(i), given.size);
    require(wanted_by, count_flag(i), given.count);
    cells.size[i] = read_size(size_flag(i), given.size);
    cells.origin[i] = given.origin.empty() ? 0 : read_value(origin_flag(i), given.origin);
    cells.count[i] = read_count(count_flag(i), given.count);
    if (!single) continue;
    check_single(size_flag(i), given.size, cells.lost_digits);
    check_single(origin_flag(i), given.origin, cells.lost_digits);
    check_single_count(count_flag(i), cells.count[i]);
  }
  return cells;
}

}  // namespace command
