#pragma once

#include "platform/data/xmla/XmlStream.h"

#include <string>

namespace qel {

/// The SOAP envelope of an answer: passes its body on to `content` and keeps the message of a fault.
class SoapAnswer : public XmlHandler {
public:
    explicit SoapAnswer(XmlHandler& content) : content_(content) {}

    void StartElement(std::string_view name, const XmlAttributes& attributes) override;
    void EndElement(std::string_view name, const std::string& text) override;

    /// The server's error message; empty for a regular answer.
    const std::string& Fault() const { return fault_; }
    /// True when a complete envelope was read.
    bool IsComplete() const { return isComplete_; }

private:
    void AddToFault(std::string_view words);

    XmlHandler& content_;
    std::size_t depth_ = 0, faultDepth_ = 0; ///< faultDepth_: of the Fault element, 0 outside of one
    bool isComplete_ = false;
    std::string fault_;
};

} // namespace qel
