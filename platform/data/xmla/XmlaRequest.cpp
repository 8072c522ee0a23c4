#include "platform/data/xmla/XmlaRequest.h"

#include <fmt/format.h>

namespace qel {

namespace {

constexpr const char* analysisNamespace = "urn:schemas-microsoft-com:xml-analysis";

std::string Elements(const XmlaPairs& pairs) {
    std::string text;
    for (const auto& [name, value] : pairs) {
        text += fmt::format("<{0}>{1}</{0}>", name, XmlEscaped(value));
    }
    return text;
}

std::string Envelope(const std::string& method, const std::string& content, const XmlaPairs& properties) {
    return fmt::format(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"
        "<SOAP-ENV:Envelope xmlns:SOAP-ENV=\"http://schemas.xmlsoap.org/soap/envelope/\">"
        "<SOAP-ENV:Body><{0} xmlns=\"{1}\">{2}<Properties><PropertyList>{3}</PropertyList></Properties>"
        "</{0}></SOAP-ENV:Body></SOAP-ENV:Envelope>",
        method, analysisNamespace, content, Elements(properties));
}

} // namespace

std::string XmlEscaped(std::string_view text) {
    std::string escaped;
    for (const char character : text) {
        switch (character) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '\r':
            escaped += "&#13;";
            break; // a raw one would be read as a line feed
        default:
            if (static_cast<unsigned char>(character) >= ' ' || character == '\t' || character == '\n') {
                escaped += character;
            }
        }
    }
    return escaped;
}

std::string ComposeDiscover(const std::string& requestType, const XmlaPairs& restrictions,
                            const XmlaPairs& properties) {
    return Envelope(
        "Discover",
        fmt::format("<RequestType>{}</RequestType><Restrictions><RestrictionList>{}</RestrictionList>"
                    "</Restrictions>",
                    XmlEscaped(requestType), Elements(restrictions)),
        properties);
}

std::string ComposeExecute(const std::string& statement, const XmlaPairs& properties) {
    return Envelope("Execute",
                    fmt::format("<Command><Statement>{}</Statement></Command>", XmlEscaped(statement)),
                    properties);
}

} // namespace qel
