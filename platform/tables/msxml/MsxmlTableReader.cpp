#include "platform/tables/msxml/MsxmlTableReader.h"

#include "platform/tables/RecordsetXml.h"
#include "platform/windows/DispatchObject.h"
#include "platform/windows/ProviderFailure.h"

#include <fmt/format.h>

#include <cstring>
#include <map>
#include <new>

namespace qel::windows {

namespace {

constexpr std::int32_t elementNode = 1; // NODE_ELEMENT

/// The parser takes an array of bytes and detects their declared encoding.
OwnedVariant ByteArray(const std::string& bytes) {
    OwnedVariant value;
    V_ARRAY(&value.Get()) = ::SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()));
    if (V_ARRAY(&value.Get()) == nullptr) {
        throw std::bad_alloc();
    }
    V_VT(&value.Get()) = VT_ARRAY | VT_UI1;
    void* data = nullptr;
    Check(::SafeArrayAccessData(V_ARRAY(&value.Get()), &data), "The array's bytes cannot be written");
    std::memcpy(data, bytes.data(), bytes.size());
    ::SafeArrayUnaccessData(V_ARRAY(&value.Get()));
    return value;
}

std::vector<DispatchObject> NodesOf(const DispatchObject& list) {
    const std::int32_t count = list.Number(L"length");
    std::vector<DispatchObject> nodes;
    nodes.reserve(static_cast<std::size_t>(count));
    for (std::int32_t i = 0; i < count; ++i) {
        nodes.push_back(list.Child(L"item", ArgumentList(i)));
    }
    return nodes;
}

/// Reads elements and collects their namespace declarations, which not every MSXML lists as attributes.
class Elements {
public:
    XmlElement Read(const DispatchObject& root) {
        XmlElement element = ElementOf(root, 1);
        for (const auto& [prefix, uri] : namespaces_) {
            element.attributes.emplace_back("xmlns:" + prefix, uri);
        }
        return element;
    }

private:
    XmlElement ElementOf(const DispatchObject& node, int depth) {
        XmlElement element{.name = NameOf(node), .attributes = {}, .children = {}};
        for (const DispatchObject& attribute : NodesOf(node.Child(L"attributes"))) {
            element.attributes.emplace_back(NameOf(attribute), attribute.Text(L"text"));
        }
        if (depth == deepestRecordsetElement) {
            return element;
        }
        for (const DispatchObject& child : NodesOf(node.Child(L"childNodes"))) {
            if (child.Number(L"nodeType") == elementNode) {
                element.children.push_back(ElementOf(child, depth + 1));
            }
        }
        return element;
    }

    std::string NameOf(const DispatchObject& node) {
        std::string name = node.Text(L"nodeName");
        const auto colon = name.find(':');
        if (colon != std::string::npos && !namespaces_.contains(name.substr(0, colon))) {
            namespaces_[name.substr(0, colon)] = node.Text(L"namespaceURI");
        }
        return name;
    }

    std::map<std::string, std::string> namespaces_;
};

} // namespace

PersistedTable MsxmlTableReader::Read(const std::string& path) {
    const std::string bytes = RecordsetBytes(path);
    const auto document = DispatchObject::Create(L"Msxml2.DOMDocument.6.0");
    document.Put(L"async", ToArgument(0));
    CallArguments input;
    input.push_back(ByteArray(bytes));
    document.Call(L"load", std::move(input));
    const DispatchObject fault = document.Child(L"parseError");
    if (fault.Number(L"errorCode") != 0) {
        throw RecordsetFault(
            path, fmt::format("is damaged in line {}: {}", fault.Number(L"line"), fault.Text(L"reason")));
    }
    return TableFromXml(Elements().Read(document.Child(L"documentElement")), path);
}

} // namespace qel::windows
