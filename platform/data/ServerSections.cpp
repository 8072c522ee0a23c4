#include "platform/data/ServerSections.h"

#include "text/CaseFold.h"

namespace qel {

std::vector<std::string> ServerSections(std::string_view origin) {
    constexpr std::string_view http = "http://", https = "https://";
    std::vector<std::string> sections = {std::string(origin)};
    const bool isEncrypted = origin.starts_with(https);
    const std::string_view host = origin.substr(isEncrypted ? https.size() : http.size());
    const auto colon = host.rfind(':');
    const bool hasPort = colon != std::string_view::npos && !host.ends_with(')'); // "(::1)" is an address
    if (hasPort || (!isEncrypted && !origin.starts_with(http))) {
        return sections;
    }
    sections.push_back(sections.front() + (isEncrypted ? ":443" : ":80"));
    if (isEncrypted && !EqualIgnoringCase(host, "Limits")) {
        sections.emplace_back(host);
    }
    return sections;
}

} // namespace qel
