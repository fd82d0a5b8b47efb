// The built module in this process.
#pragma once

#include <memory>

#include "ovfile/ovfile.h"
#include "ovfile/smart.h"

namespace ovtest {

/// An entry point by its name. Throws when the module or the name is not there.
void* find_filter_entry(const char* name);
/// The same of the library.
void* find_library_entry(const char* name);

template <class Function>
Function& filter_entry(const char* name) {
  return *reinterpret_cast<Function*>(find_filter_entry(name));
}

/// A table object of the built library.
ovfile::pointer<IOvTable> make_table();
/// While it is held, the library finds the built evaluator, whatever the registry says.
std::shared_ptr<void> known_evaluator();

/// Creates an evaluator by its class identifier and uses it; what fails is a failed test.
void expect_found_by_class_identifier();

}  // namespace ovtest
