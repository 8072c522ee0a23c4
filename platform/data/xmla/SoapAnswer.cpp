#include "platform/data/xmla/SoapAnswer.h"

#include "platform/data/xmla/ServerErrors.h"

#include <fmt/format.h>

namespace qel {

void SoapAnswer::StartElement(std::string_view name, const XmlAttributes& attributes) {
    if (++depth_ == 1 && name != "Envelope") {
        throw ServerError(
            errorServerAnswer,
            fmt::format("The server's answer is not an XMLA answer: it begins with <{}>.", name));
    }
    if (faultDepth_ == 0 && name == "Fault") {
        faultDepth_ = depth_;
    }
    // Analysis Services also reports errors in answers that are not SOAP faults.
    else if (faultDepth_ == 0 && name == "Error" && !attributes.Of("Description").empty()) {
        AddToFault(attributes.Of("Description"));
    } else if (faultDepth_ == 0) {
        content_.StartElement(name, attributes);
    }
}

void SoapAnswer::EndElement(std::string_view name, const std::string& text) {
    if (faultDepth_ == 0) {
        content_.EndElement(name, text);
    } else if (name == "faultstring" || name == "desc" || name == "Text") {
        AddToFault(text);
    }
    if (faultDepth_ == depth_) {
        faultDepth_ = 0;
        AddToFault(fault_.empty() ? "The server reported a fault without a message." : "");
    }
    isComplete_ = --depth_ == 0;
}

void SoapAnswer::AddToFault(std::string_view words) {
    constexpr std::string_view blanks = " \t\r\n";
    const auto first = words.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return;
    }
    words = words.substr(first, words.find_last_not_of(blanks) - first + 1);
    fault_ += (fault_.empty() ? "" : ": ") + std::string(words);
}

} // namespace qel
