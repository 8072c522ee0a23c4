#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qel {

/// Names and values, in the order in which they are sent.
using XmlaPairs = std::vector<std::pair<std::string, std::string>>;

/// Escapes a text as element content. Characters that XML does not allow are dropped.
std::string XmlEscaped(std::string_view text);

/// The SOAP envelopes of the two methods.
std::string ComposeDiscover(const std::string& requestType, const XmlaPairs& restrictions,
                            const XmlaPairs& properties);
std::string ComposeExecute(const std::string& statement, const XmlaPairs& properties);

inline constexpr const char* discoverAction = "urn:schemas-microsoft-com:xml-analysis:Discover";
inline constexpr const char* executeAction = "urn:schemas-microsoft-com:xml-analysis:Execute";

} // namespace qel
