// The formatting library for a cross compiler, whose package has only its headers: compiled once, not in
// every source.
#include <fmt/format-inl.h>

namespace fmt {

template void detail::buffer<char>::append(const char*, const char*);
template void detail::vformat_to(detail::buffer<char>&, string_view, format_args, detail::locale_ref);
template detail::locale_ref::locale_ref(const std::locale&);
template std::locale detail::locale_ref::get() const;
template detail::thousands_sep_result<char> detail::thousands_sep_impl(detail::locale_ref);
template char detail::decimal_point_impl(detail::locale_ref);
template detail::dragonbox::decimal_fp<float> detail::dragonbox::to_decimal(float) noexcept;
template detail::dragonbox::decimal_fp<double> detail::dragonbox::to_decimal(double) noexcept;

} // namespace fmt
