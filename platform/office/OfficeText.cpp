#include "platform/office/OfficeText.h"

#include <algorithm>
#include <rtl/textcvt.h>

namespace qel::office {

std::string FromOffice(const rtl::OUString& text) {
    const sal_Unicode *const begin = text.getStr(), *const end = begin + text.getLength();
    if (std::all_of(begin, end, [](sal_Unicode unit) { return unit < 0x80; })) { // most texts of cells are
        std::string ascii(static_cast<std::size_t>(text.getLength()), '\0');
        std::transform(begin, end, ascii.begin(), [](sal_Unicode unit) { return static_cast<char>(unit); });
        return ascii;
    }
    const rtl::OString bytes = rtl::OUStringToOString(text, RTL_TEXTENCODING_UTF8);
    return {bytes.getStr(), static_cast<std::size_t>(bytes.getLength())};
}

rtl::OUString ToOffice(std::string_view text) {
    return {text.data(), static_cast<sal_Int32>(text.size()), RTL_TEXTENCODING_UTF8};
}

} // namespace qel::office
