// Owners of what DuckDB hands out, which give it back by the library's own calls.
#pragma once

#include <utility>

#include "duckdb/duckdb_abi.h"

namespace command {

template <class Handle, void (*duckdb::functions::*give_back)(Handle*)>
class duckdb_owner {
 public:
  explicit duckdb_owner(const duckdb::functions& library, Handle held = {}) noexcept
      : library_(&library), held_(held) {}
  duckdb_owner(duckdb_owner&& other) noexcept
      : library_(other.library_), held_(std::exchange(other.held_, Handle{})) {}
  duckdb_owner& operator=(duckdb_owner&& other) noexcept {
    std::swap(library_, other.library_);
    std::swap(held_, other.held_);
    return *this;
  }
  ~duckdb_owner() { reset(); }

  void reset() noexcept {
    if (held_ != Handle{}) (library_->*give_back)(&held_);
    held_ = {};
  }
  Handle get() const noexcept { return held_; }
  /// For a call that fills it.
  Handle* out() noexcept {
    reset();
    return &held_;
  }
  explicit operator bool() const noexcept { return held_ != Handle{}; }

 private:
  const duckdb::functions* library_;
  Handle held_;
};

using duckdb_config = duckdb_owner<duckdb::config, &duckdb::functions::destroy_config>;
using duckdb_extracted = duckdb_owner<duckdb::extracted, &duckdb::functions::destroy_extracted>;
using duckdb_prepared = duckdb_owner<duckdb::prepared, &duckdb::functions::destroy_prepare>;
using duckdb_chunk = duckdb_owner<duckdb::chunk, &duckdb::functions::destroy_data_chunk>;
using duckdb_type = duckdb_owner<duckdb::logical_type, &duckdb::functions::destroy_logical_type>;
using duckdb_value = duckdb_owner<duckdb::value, &duckdb::functions::destroy_value>;

}  // namespace command
