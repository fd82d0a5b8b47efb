// fmt's functions that are no templates, and the templates that its headers expect to find compiled. Debian
// has them as a library for its own system alone.
#include <fmt/format-inl.h>

static_assert(FMT_VERSION / 10000 == 9,
              "another version of fmt wants other templates: see its src/format.cc");

FMT_BEGIN_NAMESPACE
namespace detail {

template auto thousands_sep_impl<char>(locale_ref) -> thousands_sep_result<char>;
template auto thousands_sep_impl<wchar_t>(locale_ref) -> thousands_sep_result<wchar_t>;
template auto decimal_point_impl(locale_ref) -> char;
template auto decimal_point_impl(locale_ref) -> wchar_t;

namespace dragonbox {
template auto to_decimal(float) noexcept -> decimal_fp<float>;
template auto to_decimal(double) noexcept -> decimal_fp<double>;
}  // namespace dragonbox

}  // namespace detail
FMT_END_NAMESPACE
