#pragma once

#include "platform/data/xmla/ServerOptions.h"

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qel {

/// The attributes of an element, by their names without prefixes.
class XmlAttributes {
public:
    void Add(std::string_view name, std::string_view value) { values_.emplace_back(name, value); }
    /// Empty when the attribute is missing.
    std::string_view Of(std::string_view name) const;

private:
    std::vector<std::pair<std::string_view, std::string_view>> values_;
};

/// Receives a document's elements in order, by their names without prefixes.
class XmlHandler {
public:
    virtual ~XmlHandler() = default;
    virtual void StartElement(std::string_view name, const XmlAttributes& attributes) = 0;
    /// `text` is the text after the element's start tag or, if it has children, after its last child.
    virtual void EndElement(std::string_view name, const std::string& text) = 0;
};

/// Parses a document that arrives in pieces, without keeping it. Raises AutomationError for malformed XML,
/// for a document type (which no answer needs, and whose entities can expand without bounds) and beyond the
/// limits. What the handler raises is passed on.
class XmlStream {
public:
    XmlStream(XmlHandler& handler, const ServerLimits& limits);
    ~XmlStream();
    XmlStream(const XmlStream&) = delete;
    XmlStream& operator=(const XmlStream&) = delete;

    void Read(std::string_view piece);
    /// Ends the document. Raises AutomationError when it is incomplete.
    void Finish();

private:
    struct Parser;
    std::unique_ptr<Parser> parser_;
};

} // namespace qel
