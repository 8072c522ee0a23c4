#include "platform/office/OfficeText.h"

#include <rtl/textcvt.h>

namespace qel::office {

std::string FromOffice(const rtl::OUString& text) {
    const rtl::OString bytes = rtl::OUStringToOString(text, RTL_TEXTENCODING_UTF8);
    return {bytes.getStr(), static_cast<std::size_t>(bytes.getLength())};
}

rtl::OUString ToOffice(std::string_view text) {
    return {text.data(), static_cast<sal_Int32>(text.size()), RTL_TEXTENCODING_UTF8};
}

} // namespace qel::office
