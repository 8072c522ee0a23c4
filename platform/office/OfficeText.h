#pragma once

#include <rtl/ustring.hxx>
#include <string>
#include <string_view>

namespace qel::office {

/// Converts the office's UTF-16 to UTF-8. An unpaired surrogate becomes a question mark.
std::string FromOffice(const rtl::OUString& text);
rtl::OUString ToOffice(std::string_view text);

} // namespace qel::office
