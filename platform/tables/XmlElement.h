#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qel {

/// An element of an XML document as the machine's parser read it; names carry their prefixes as written.
struct XmlElement {
    std::string name;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::vector<XmlElement> children;

    /// Null when there is none of that name.
    const std::string* Attribute(std::string_view attribute) const {
        for (const auto& [known, value] : attributes) {
            if (known == attribute) {
                return &value;
            }
        }
        return nullptr;
    }
    /// The first of that name; an empty element when there is none.
    const XmlElement& Child(std::string_view child) const {
        static const XmlElement none;
        for (const auto& known : children) {
            if (known.name == child) {
                return known;
            }
        }
        return none;
    }
};

} // namespace qel
