#pragma once

#include <rtl/ustring.hxx>
#include <string>
#include <string_view>

namespace qel::office {

/// The office's UTF-16 as UTF-8; half a surrogate pair, which no text should hold, becomes a question mark.
std::string FromOffice(const rtl::OUString& text);
rtl::OUString ToOffice(std::string_view text);

} // namespace qel::office
