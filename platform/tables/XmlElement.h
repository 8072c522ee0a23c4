#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qel {

/// An element of an XML document; names keep their prefixes.
struct XmlElement {
    std::string name;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::vector<XmlElement> children;

    /// Null when the attribute is missing.
    const std::string* Attribute(std::string_view attribute) const {
        for (const auto& [known, value] : attributes) {
            if (known == attribute) {
                return &value;
            }
        }
        return nullptr;
    }
    /// The first child of that name, or an empty element.
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
