#include "platform/tables/xml/XmlTableReader.h"

#include "platform/tables/RecordsetXml.h"
#include "text/CaseFold.h"

#include <fmt/format.h>
#include <pugixml.hpp>

namespace qel {

namespace {

XmlElement ElementOf(const pugi::xml_node& node, int depth = 1) {
    XmlElement element{.name = node.name(), .attributes = {}, .children = {}};
    for (const auto& attribute : node.attributes()) {
        element.attributes.emplace_back(attribute.name(), attribute.value());
    }
    for (const auto& child : node.children()) {
        if (child.type() == pugi::node_element && depth < deepestRecordsetElement) {
            element.children.push_back(ElementOf(child, depth + 1));
        }
    }
    return element;
}

} // namespace

PersistedTable ParseXmlTable(const std::string& bytes, const std::string& name) {
    RequireXmlForm(bytes, name);
    pugi::xml_document document;
    const auto result =
        document.load_buffer(bytes.data(), bytes.size(), pugi::parse_default | pugi::parse_declaration);
    if (!result) {
        throw RecordsetFault(name,
                             fmt::format("is damaged at byte {}: {}", result.offset, result.description()));
    }
    const std::string encoding = document.child("xml").attribute("encoding").value();
    if (!encoding.empty() && !EqualIgnoringCase(encoding, "utf-8") &&
        !EqualIgnoringCase(encoding, "utf-16")) {
        throw RecordsetFault(name, fmt::format("is written in '{}'; save it as UTF-8", encoding));
    }
    return TableFromXml(ElementOf(document.document_element()), name);
}

PersistedTable XmlTableReader::Read(const std::string& path) {
    return ParseXmlTable(RecordsetBytes(path), path);
}

} // namespace qel
