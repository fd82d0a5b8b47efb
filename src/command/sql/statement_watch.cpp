#include "sql/statement_watch.h"

#include <chrono>
#include <exception>

#include "console.h"

namespace command {
namespace {

constexpr std::chrono::milliseconds look_again{5};

}  // namespace

statement_watch::statement_watch(const duckdb::functions& library, duckdb::connection connection,
                                 const row_count& rows)
    : library_(library),
      connection_(connection),
      rows_(rows),
      thread_([this](const std::stop_token& end) { watch(end); }) {}

void statement_watch::show(const std::string& title) {
  const std::lock_guard held(mutex_);
  bar_.reset();
  if (!title.empty()) bar_.emplace(title);
}

/// It looks now and then and sleeps: waits that a wake-up ends early have been seen to last for ever on one
/// system.
void statement_watch::watch(const std::stop_token& end) {
  while (!end.stop_requested()) {
    if (is_stop_asked()) library_.interrupt(connection_);
    try {
      draw();
    } catch (const std::exception&) {
      // Work goes on without a bar that there is no memory for.
    }
    std::this_thread::sleep_for(look_again);
  }
}

void statement_watch::draw() {
  const std::lock_guard held(mutex_);
  if (!bar_) return;
  const std::uint64_t done = rows_.done();
  const std::uint64_t total = rows_.total();
  if (total > 0) {
    // Behind the last row there is more to do: nobody knows how much.
    bar_->look(done, done < total ? total : 0);
    return;
  }
  // Of its own tables and of other files the library tells a share, if it does.
  constexpr double whole = 100;
  const double share = library_.query_progress(connection_).percentage;
  const bool is_known = share > 0 && share < whole;
  bar_->look(is_known ? static_cast<std::uint64_t>(share * whole) : 0,
             is_known ? static_cast<std::uint64_t>(whole * whole) : 0);
}

}  // namespace command
