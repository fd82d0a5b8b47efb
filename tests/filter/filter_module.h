// The built module in this process.
#pragma once

namespace ovtest {

/// An entry point by its name. Throws when the module or the name is not there.
void* find_filter_entry(const char* name);

template <class Function>
Function& filter_entry(const char* name) {
  return *reinterpret_cast<Function*>(find_filter_entry(name));
}

/// Creates an evaluator by its class identifier and uses it; what fails is a failed test.
void expect_found_by_class_identifier();

}  // namespace ovtest
