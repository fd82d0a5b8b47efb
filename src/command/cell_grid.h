// The cells of a block model or a grid, as options of a command.
#pragma once

#include <array>
#include <string>

#include "arguments.h"
#include "ovfile/ovfile.h"

namespace command {

/// Along X, Y and Z.
struct cell_grid {
  std::array<double, 3> size{};
  std::array<double, 3> origin{};
  std::array<LONG, 3> count{};
  std::string lost_digits;  ///< options whose numbers single precision cannot hold exactly, apart by ", "
};

class cell_grid_options {
 public:
  /// --xinc, --xorig, --nx and so on.
  void add_to(const verb& owner);
  /// The first option that was given; empty: none.
  std::string first_given() const;
  /// Throws `wrong_usage` for an option that is missing (`wanted_by` tells whom) or makes no sense, `failure`
  /// for a number that a table of this precision cannot hold.
  cell_grid read(const std::string& wanted_by, bool single) const;

 private:
  struct axis {
    std::string size;
    std::string origin;
    std::string count;
  };
  std::array<axis, 3> axes_;
};

}  // namespace command
