#pragma once

#include <string>
#include <string_view>

namespace qel::engine {

/// A text escaped as an attribute value.
std::string XmlEscaped(std::string_view text);

} // namespace qel::engine
