// Late binding: the table of one dual interface's methods, looked up by name and number, and the one
// Invoke for all of them.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

#include "platform/dispatch.h"
#include "server/dispatch_member.h"

namespace ovf {

/// Order of names without regard to case. They are plain ASCII, so no locale has a say.
constexpr OLECHAR folded_ascii(OLECHAR unit) noexcept {
  return unit >= OLESTR('A') && unit <= OLESTR('Z') ? static_cast<OLECHAR>(unit - OLESTR('A') + OLESTR('a'))
                                                    : unit;
}
constexpr bool precedes_without_case(wide_view left, wide_view right) noexcept {
  return std::lexicographical_compare(
      left.begin(), left.end(), right.begin(), right.end(),
      [](OLECHAR one, OLECHAR other) { return folded_ascii(one) < folded_ascii(other); });
}

/// The members of an interface in the order of their numbers, and their order by name.
template <std::size_t Count>
struct member_list {
  std::array<dispatch_member, Count> members;
  std::array<std::uint8_t, Count> by_name;

  consteval explicit member_list(const std::array<dispatch_member, Count>& given)
      : members(given), by_name() {
    static_assert(Count <= 256);
    if (!std::ranges::is_sorted(members, {}, &dispatch_member::id)) throw "the numbers ascend";
    for (std::size_t i = 0; i < Count; ++i) by_name[i] = static_cast<std::uint8_t>(i);
    std::ranges::sort(by_name, [this](std::uint8_t left, std::uint8_t right) {
      return precedes_without_case(members[left].name, members[right].name);
    });
  }
};

class method_table final : public dispatch_methods {
 public:
  /// `list` lives as long as the table. The identifiers are those under which an exception that leaves a
  /// method is reported.
  template <std::size_t Count>
  constexpr method_table(const member_list<Count>& list, const CLSID& class_id, const IID& interface_id)
      : members_(list.members), by_name_(list.by_name), class_id_(class_id), interface_id_(interface_id) {}

  HRESULT type_info_count(UINT* count) const noexcept override;
  HRESULT type_info(UINT index, ITypeInfo** info) const noexcept override;
  HRESULT ids_of_names(REFIID reserved, LPOLESTR* names, UINT count, DISPID* ids) const noexcept override;
  HRESULT invoke(IDispatch* object, DISPID id, REFIID reserved, WORD flags, DISPPARAMS* arguments,
                 VARIANT* result, EXCEPINFO* exception, UINT* bad_argument) const noexcept override;

  std::span<const dispatch_member> members() const noexcept { return members_; }

 private:
  /// A property has one entry for its getter and one for its putter.
  std::span<const dispatch_member> members_with(DISPID id) const noexcept;
  const dispatch_member* find(DISPID id, WORD flags) const noexcept;
  DISPID id_of(wide_view name) const noexcept;
  DISPID parameter_of(DISPID member, wide_view name) const noexcept;
  /// Calls the method; what it throws becomes a report.
  HRESULT call(const dispatch_member& member, IDispatch* object, dispatch_call& call) const noexcept;

  std::span<const dispatch_member> members_;
  std::span<const std::uint8_t> by_name_;
  CLSID class_id_;
  IID interface_id_;
};

}  // namespace ovf
