// A disk that forgets, in front of the real file system: it remembers what each file held when somebody last
// waited for it, and when the machine stops, what was written since is lost or half of it is. Names are on
// the disk once their folder was waited for; a file that took another's place without that may be found
// under the name or not.
#pragma once

#include <map>

#include "support/failing_files.h"
#include "support/file_bytes.h"

namespace ovtest {

/// What becomes of what nobody waited for when the machine stops.
enum class loss {
  all,            ///< files are as they were last waited for, names as when their folder was
  second_half,    ///< of what differs from the disk, the first half of the bytes arrived; names arrived
  contents_only,  ///< names arrived, no bytes
  all_but_header  ///< the first page and the size arrived: a disk takes what waits in any order
};

class forgetful_files final : public ovf::file_system {
  using name_map = std::map<ovf::wide, bytes>;
  struct disk {
    name_map synced;  ///< what files held when somebody last waited for them
    name_map named;   ///< what stands under the names on the disk
    int calls = 0;    ///< that change or wait for something
    int last = 0;     ///< the machine stops at this call; 0: never
    bool stopped = false;
    /// False from the moment on when the machine stops.
    bool goes_on() noexcept {
      ++calls;
      if (calls == last) stopped = true;
      return !stopped;
    }
  };
  std::shared_ptr<disk> disk_ = std::make_shared<disk>();

 public:
  /// What stands under these names by now is on the disk.
  explicit forgetful_files(const std::vector<ovf::wide>& names) : before_(ovf::use_files(this)) {
    for (const ovf::wide& name : names) {
      const ovf::wide path = whole(name);
      disk_->synced[path] = disk_->named[path] = content(path);
    }
  }
  ~forgetful_files() override { ovf::use_files(before_); }
  forgetful_files(const forgetful_files&) = delete;
  forgetful_files& operator=(const forgetful_files&) = delete;

  /// The machine stops at the nth change of a file from now on: it and everything later fails.
  void stop_at(int nth) {
    disk_->calls = 0;
    disk_->last = nth;
  }
  bool has_stopped() const noexcept { return disk_->stopped; }
  /// So many attempts to make a copy fail from now on.
  int copies_refused = 0;

  /// What whoever starts the machine again finds under a name.
  bytes found(const ovf::wide& given, loss what) const {
    const ovf::wide name = whole(given);
    const bytes now = content(name);
    if (what == loss::all) return at(disk_->named, name);
    const bytes kept = at(disk_->synced, name);
    if (what == loss::all_but_header) return with_header(kept, now);
    return what == loss::contents_only ? kept : torn(kept, now);
  }

  std::unique_ptr<ovf::file> open(ovf::wide_view name, ovf::open_mode mode) noexcept override {
    if (mode == ovf::open_mode::make_copy && copies_refused > 0) {
      --copies_refused;
      return nullptr;
    }
    const bool changes =
        mode != ovf::open_mode::read && mode != ovf::open_mode::look && mode != ovf::open_mode::edit;
    if ((changes && !disk_->goes_on()) || disk_->stopped) return nullptr;
    auto real = ovf::system_files().open(name, mode);
    if (real == nullptr) return nullptr;
    return std::make_unique<watched>(disk_, whole(ovf::wide(name)), std::move(real));
  }
  ovf::file_kind kind(ovf::wide_view name) noexcept override { return ovf::system_files().kind(name); }
  bool stamp(ovf::wide_view name, ovf::file_stamp& found) noexcept override {
    return ovf::system_files().stamp(name, found);
  }
  void wait_past(const ovf::file_stamp& stamp) noexcept override { ovf::system_files().wait_past(stamp); }
  bool remove(ovf::wide_view name) noexcept override {
    return disk_->goes_on() && ovf::system_files().remove(name);
  }
  bool replace(ovf::wide_view from, ovf::wide_view to) noexcept override {
    if (!disk_->goes_on() || !ovf::system_files().replace(from, to)) return false;
    moved(from, to);
    return true;
  }
  bool replace_open(std::unique_ptr<ovf::file>& own, std::unique_ptr<ovf::file>& copy, ovf::wide_view from,
                    ovf::wide_view to, const ovf::file_stamp* expected) noexcept override {
    if (!disk_->goes_on()) return false;
    if (!ovf::system_files().replace_open(real_of(own), real_of(copy), from, to, expected)) return false;
    moved(from, to);
    if (auto* opened = dynamic_cast<watched*>(own.get())) opened->rename(ovf::wide(to));
    return true;
  }
  bool resolve(ovf::wide_view name, ovf::wide& path) noexcept override {
    return ovf::system_files().resolve(name, path);
  }
  bool name_first(std::unique_ptr<ovf::file>& copy, ovf::wide_view from,
                  ovf::wide_view to) noexcept override {
    if (!disk_->goes_on() || !ovf::system_files().name_first(real_of(copy), from, to)) return false;
    moved(from, to);
    return true;
  }
  /// What is written is noted under the file's own name.
  ovf::wide second_name(ovf::file&) noexcept override { return {}; }
  bool carry_rights(ovf::file& old, ovf::file& copy) noexcept override {
    return disk_->goes_on() && ovf::system_files().carry_rights(real_of(old), real_of(copy));
  }
  bool sync_folder(ovf::wide_view folder) noexcept override {
    if (!disk_->goes_on()) return false;
    for (const auto& [name, held] : disk_->synced) {
      if (ovf::folder_of(name) == folder) disk_->named[name] = held;
    }
    return true;
  }
  ovf::wide temporary_folder() override { return ovf::system_files().temporary_folder(); }

 private:
  class watched final : public ovf::file {
   public:
    watched(std::shared_ptr<disk> owner, ovf::wide name, std::unique_ptr<ovf::file> real)
        : owner_(std::move(owner)), name_(std::move(name)), real_(std::move(real)) {}

    bool size(std::uint64_t& size) noexcept override { return real_->size(size); }
    bool seek(std::int64_t distance, ovf::seek_origin origin) noexcept override {
      return real_->seek(distance, origin);
    }
    bool position(std::uint64_t& bytes) noexcept override { return real_->position(bytes); }
    bool stamp(ovf::file_stamp& found) noexcept override { return real_->stamp(found); }
    bool read(std::span<std::byte> into, std::size_t& done) noexcept override {
      return real_->read(into, done);
    }
    bool write(std::span<const std::byte> from, std::size_t& done) noexcept override {
      done = 0;
      return owner_->goes_on() && real_->write(from, done);
    }
    bool set_end() noexcept override { return owner_->goes_on() && real_->set_end(); }
    bool sync() noexcept override {
      if (!owner_->goes_on()) return false;
      owner_->synced[name_] = content(name_);
      // A file that has its name on the disk is found there with what it holds.
      if (owner_->named.count(name_) != 0) owner_->named[name_] = owner_->synced[name_];
      return true;
    }

    bool claim_growth() noexcept override { return real_->claim_growth(); }
    void give_back_growth() noexcept override { real_->give_back_growth(); }

    std::unique_ptr<ovf::file>& real() noexcept { return real_; }
    void rename(ovf::wide name) { name_ = std::move(name); }

   private:
    std::shared_ptr<disk> owner_;
    ovf::wide name_;
    std::unique_ptr<ovf::file> real_;
  };

  static std::unique_ptr<ovf::file>& real_of(std::unique_ptr<ovf::file>& opened) noexcept {
    auto* known = dynamic_cast<watched*>(opened.get());
    return known != nullptr ? known->real() : opened;
  }
  static ovf::file& real_of(ovf::file& opened) noexcept {
    auto* known = dynamic_cast<watched*>(&opened);
    return known != nullptr ? *known->real() : opened;
  }
  /// The spelling in which the library names a file that it replaces.
  static ovf::wide whole(const ovf::wide& name) {
    ovf::wide path;
    return ovf::system_files().resolve(name, path) ? path : name;
  }
  static bytes content(const ovf::wide& name) {
    const std::filesystem::path path(std::u16string(name.begin(), name.end()));
    return std::filesystem::exists(path) ? read_bytes(path) : bytes();
  }
  static bytes at(const name_map& files, const ovf::wide& name) {
    const auto found = files.find(name);
    return found == files.end() ? bytes() : found->second;
  }
  /// A file has its new size then, and zeros where nothing arrived.
  static bytes with_header(bytes kept, const bytes& now) {
    constexpr std::size_t header_bytes = 4096;
    kept.resize(std::max(kept.size(), now.size()));
    std::copy_n(now.begin(), std::min(now.size(), header_bytes), kept.begin());
    return kept;
  }
  /// The first half of the bytes from the first difference on are the new ones.
  static bytes torn(bytes kept, const bytes& now) {
    const std::size_t shared = std::min(kept.size(), now.size());
    std::size_t first = 0;
    while (first < shared && kept[first] == now[first]) ++first;
    const std::size_t end = first + (now.size() - first + 1) / 2;
    kept.resize(std::max(kept.size(), end));
    std::copy(now.begin() + static_cast<std::ptrdiff_t>(first),
              now.begin() + static_cast<std::ptrdiff_t>(end),
              kept.begin() + static_cast<std::ptrdiff_t>(first));
    return kept;
  }
  void moved(ovf::wide_view from, ovf::wide_view to) {
    disk_->synced[ovf::wide(to)] = at(disk_->synced, ovf::wide(from));
    disk_->synced.erase(ovf::wide(from));
  }

  ovf::file_system* before_;
};

}  // namespace ovtest
