#include "platform/atoms.h"

namespace ovf {

bool global_atom_exists(wide_view name) noexcept {
  try {
    return GlobalFindAtomW(wide(name).c_str()) != 0;
  } catch (...) {
    return false;
  }
}

bool add_global_atom(wide_view name) noexcept {
  try {
    return GlobalAddAtomW(wide(name).c_str()) != 0;
  } catch (...) {
    return false;
  }
}

bool remove_global_atom(wide_view name) noexcept {
  try {
    const ATOM atom = GlobalFindAtomW(wide(name).c_str());
    if (atom == 0) return false;
    GlobalDeleteAtom(atom);
    return true;
  } catch (...) {
    return false;
  }
}

}  // namespace ovf
