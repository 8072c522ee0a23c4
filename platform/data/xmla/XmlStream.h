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
    /// Empty when there is none.
    std::string_view Of(std::string_view name) const;

private:
    std::vector<std::pair<std::string_view, std::string_view>> values_;
};

/// Hears the elements of a document in their order, by their names without prefixes.
class XmlHandler {
public:
    virtual ~XmlHandler() = default;
    virtual void StartElement(std::string_view name, const XmlAttributes& attributes) = 0;
    /// `text` is what stood between the element's start, or its last child's end, and its own end.
    virtual void EndElement(std::string_view name, const std::string& text) = 0;
};

/// Reads a document that comes in pieces, keeping nothing of it. Raises AutomationError for what is no XML,
/// for a document type (no answer needs one, and entities can be made to grow without bounds) and beyond the
/// limits; what the handler raises is passed on.
class XmlStream {
public:
    XmlStream(XmlHandler& handler, const ServerLimits& limits);
    ~XmlStream();
    XmlStream(const XmlStream&) = delete;
    XmlStream& operator=(const XmlStream&) = delete;

    void Read(std::string_view piece);
    /// At the end of the document. Raises AutomationError when it is not whole.
    void Finish();

private:
    struct Parser;
    std::unique_ptr<Parser> parser_;
};

} // namespace qel
