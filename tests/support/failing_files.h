// A file system that fails where a test wants it to, in front of the real one. Every call is counted
// under its name; the test decides which ones fail.
#pragma once

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "base/file.h"
#include "base/system_error.h"
#include "ovfile/exception.h"
#include "platform/debug_channel.h"
#include "support/wide_path.h"

namespace ovtest {

/// The code that failing calls leave: input/output error on Linux, access denied on Windows.
inline constexpr ovf::system_code failing_code = 5;

enum class call {
  open,
  size,
  seek,
  read,
  write,
  set_end,
  sync,
  remove,
  replace,
  resolve,
  rights,
  stamp,
  wait
};

/// What becomes of one call.
enum class fate {
  works,
  fails,
  falls_short  ///< half of the bytes are moved, and the call claims success
};

class failing_files final : public ovf::file_system {
  using decision = std::function<fate(call, const ovf::wide&)>;

  /// What the files that were opened through here share with it; they may outlive it.
  struct shared {
    decision decide;
    std::map<call, int> counts;
    std::size_t bytes_read = 0;

    fate ask(call kind, ovf::wide_view name) {
      ++counts[kind];
      const fate how = decide(kind, ovf::wide(name));
      if (how != fate::works) ovf::set_last_system_error(failing_code);
      return how;
    }
  };
  std::shared_ptr<shared> shared_ = std::make_shared<shared>();

 public:
  failing_files() {
    fail_nothing();
    before_ = ovf::use_files(this);
  }
  ~failing_files() override {
    fail_nothing();
    ovf::use_files(before_);
  }
  failing_files(const failing_files&) = delete;
  failing_files& operator=(const failing_files&) = delete;

  /// Asked at every call, with the file's name.
  decision& decide = shared_->decide;

  /// The `nth` call of that kind from now on (1 is the next) fails, once.
  void fail_nth(call kind, int nth, fate how = fate::fails) {
    decide = [kind, left = nth, how](call now, const ovf::wide&) mutable {
      return now == kind && --left == 0 ? how : fate::works;
    };
  }
  /// Every call of that kind fails from now on.
  void fail_all(call kind, fate how = fate::fails) {
    decide = [kind, how](call now, const ovf::wide&) { return now == kind ? how : fate::works; };
  }
  void fail_nothing() {
    decide = [](call, const ovf::wide&) { return fate::works; };
  }

  std::unique_ptr<ovf::file> open(ovf::wide_view name, ovf::open_mode mode) noexcept override {
    if (shared_->ask(call::open, name) != fate::works) return nullptr;
    auto real = ovf::system_files().open(name, mode);
    if (real == nullptr) return nullptr;
    return std::make_unique<watched>(shared_, ovf::wide(name), std::move(real));
  }
  ovf::file_kind kind(ovf::wide_view name) noexcept override { return ovf::system_files().kind(name); }
  bool stamp(ovf::wide_view name, ovf::file_stamp& found) noexcept override {
    return shared_->ask(call::stamp, name) == fate::works && ovf::system_files().stamp(name, found);
  }
  void wait_past(const ovf::file_stamp& stamp) noexcept override {
    (void)shared_->ask(call::wait, {});
    ovf::system_files().wait_past(stamp);
  }
  bool remove(ovf::wide_view name) noexcept override {
    return shared_->ask(call::remove, name) == fate::works && ovf::system_files().remove(name);
  }
  bool replace(ovf::wide_view from, ovf::wide_view to) noexcept override {
    return shared_->ask(call::replace, to) == fate::works && ovf::system_files().replace(from, to);
  }
  bool replace_open(std::unique_ptr<ovf::file>& own, std::unique_ptr<ovf::file>& copy, ovf::wide_view from,
                    ovf::wide_view to, const ovf::file_stamp* expected) noexcept override {
    if (shared_->ask(call::replace, to) != fate::works) return false;
    return ovf::system_files().replace_open(real_of(own), real_of(copy), from, to, expected);
  }
  bool resolve(ovf::wide_view name, ovf::wide& path) noexcept override {
    return shared_->ask(call::resolve, name) == fate::works && ovf::system_files().resolve(name, path);
  }
  bool name_first(std::unique_ptr<ovf::file>& copy, ovf::wide_view from,
                  ovf::wide_view to) noexcept override {
    return shared_->ask(call::replace, to) == fate::works &&
           ovf::system_files().name_first(real_of(copy), from, to);
  }
  ovf::wide second_name(ovf::file& opened) noexcept override {
    return ovf::system_files().second_name(real_of(opened));
  }
  bool carry_rights(ovf::file& old, ovf::file& copy) noexcept override {
    return shared_->ask(call::rights, {}) == fate::works &&
           ovf::system_files().carry_rights(real_of(old), real_of(copy));
  }
  bool sync_folder(ovf::wide_view folder) noexcept override {
    return shared_->ask(call::sync, folder) == fate::works && ovf::system_files().sync_folder(folder);
  }
  ovf::wide temporary_folder() override { return ovf::system_files().temporary_folder(); }

  int count(call kind) const {
    const auto found = shared_->counts.find(kind);
    return found == shared_->counts.end() ? 0 : found->second;
  }

  std::size_t bytes_read() const { return shared_->bytes_read; }

 private:
  class watched final : public ovf::file {
   public:
    watched(std::shared_ptr<shared> owner, ovf::wide name, std::unique_ptr<ovf::file> real)
        : owner_(std::move(owner)), name_(std::move(name)), real_(std::move(real)) {}

    bool size(std::uint64_t& bytes) noexcept override {
      return owner_->ask(call::size, name_) == fate::works && real_->size(bytes);
    }
    bool seek(std::int64_t distance, ovf::seek_origin origin) noexcept override {
      return owner_->ask(call::seek, name_) == fate::works && real_->seek(distance, origin);
    }
    bool position(std::uint64_t& bytes) noexcept override { return real_->position(bytes); }
    bool stamp(ovf::file_stamp& found) noexcept override {
      return owner_->ask(call::stamp, name_) == fate::works && real_->stamp(found);
    }
    bool read(std::span<std::byte> bytes, std::size_t& done) noexcept override {
      done = 0;
      const fate how = owner_->ask(call::read, name_);
      if (how == fate::fails) return false;
      const bool is_read = real_->read(how == fate::works ? bytes : bytes.first(bytes.size() / 2), done);
      owner_->bytes_read += done;
      return is_read;
    }
    bool write(std::span<const std::byte> bytes, std::size_t& done) noexcept override {
      done = 0;
      const fate how = owner_->ask(call::write, name_);
      if (how == fate::fails) return false;
      return real_->write(how == fate::works ? bytes : bytes.first(bytes.size() / 2), done);
    }
    bool set_end() noexcept override {
      return owner_->ask(call::set_end, name_) == fate::works && real_->set_end();
    }
    bool sync() noexcept override { return owner_->ask(call::sync, name_) == fate::works && real_->sync(); }
    bool claim_growth() noexcept override { return real_->claim_growth(); }
    void give_back_growth() noexcept override { real_->give_back_growth(); }

    std::unique_ptr<ovf::file>& real() noexcept { return real_; }

   private:
    std::shared_ptr<shared> owner_;
    ovf::wide name_;
    std::unique_ptr<ovf::file> real_;
  };

  /// The system's own file, which a file that was opened before this was in use is itself.
  static std::unique_ptr<ovf::file>& real_of(std::unique_ptr<ovf::file>& opened) noexcept {
    auto* known = dynamic_cast<watched*>(opened.get());
    return known != nullptr ? known->real() : opened;
  }

  static ovf::file& real_of(ovf::file& opened) noexcept {
    auto* known = dynamic_cast<watched*>(&opened);
    return known != nullptr ? *known->real() : opened;
  }

  ovf::file_system* before_ = nullptr;
};

/// Collects what goes to the debug channel.
class debug_listener {
 public:
  debug_listener() {
    ovf::listen_to_debug_output(
        [this](ovf::wide_view text) { lines_.emplace_back(ovf::utf8_from_wide(text)); });
  }
  ~debug_listener() { ovf::listen_to_debug_output({}); }
  debug_listener(const debug_listener&) = delete;
  debug_listener& operator=(const debug_listener&) = delete;

  const std::vector<std::string>& lines() const { return lines_; }
  bool heard(const std::string& line) const {
    return std::find(lines_.begin(), lines_.end(), line) != lines_.end();
  }

 private:
  std::vector<std::string> lines_;
};

/// The text in front of the brackets, the failing code in hexadecimal and the system's words for it.
inline std::string with_failing_code(const std::string& words) {
  return words + " (5: " + ovf::utf8_from_wide(ovf::system_message(failing_code)) + ")";
}

/// What a callable throws, as UTF-8; empty when it throws nothing.
template <class Body>
std::string message_of(Body body) {
  try {
    body();
    return {};
  } catch (const MyExceptionClass& error) {
    return ovf::utf8_from_wide(error.message());
  } catch (const std::exception& error) {
    return error.what();
  }
}

}  // namespace ovtest
