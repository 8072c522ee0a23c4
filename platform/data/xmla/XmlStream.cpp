#include "platform/data/xmla/XmlStream.h"

#include "platform/data/xmla/ServerErrors.h"

#include <fmt/format.h>

#include <algorithm>
#include <exception>
#include <expat.h>

namespace qel {

namespace {

std::string_view WithoutPrefix(std::string_view name) {
    const auto colon = name.rfind(':');
    return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

} // namespace

std::string_view XmlAttributes::Of(std::string_view name) const {
    const auto found = std::find_if(values_.begin(), values_.end(),
                                    [name](const auto& value) { return value.first == name; });
    return found == values_.end() ? std::string_view() : found->second;
}

struct XmlStream::Parser {
    Parser(XmlHandler& hears, const ServerLimits& bounds) : handler(hears), limits(bounds) {
        XML_SetUserData(expat.get(), this);
        XML_SetElementHandler(expat.get(), &OnStart, &OnEnd);
        XML_SetCharacterDataHandler(expat.get(), &OnText);
        XML_SetStartDoctypeDeclHandler(expat.get(), &OnDocumentType);
    }

    /// Runs a callback's work and keeps its exception, which must not pass through the C library.
    template <class Work>
    static void Guarded(void* self, const Work& work) {
        auto& parser = *static_cast<Parser*>(self);
        if (parser.failure) { // the parser may still deliver buffered events
            return;
        }
        try {
            work(parser);
        } catch (...) {
            parser.failure = std::current_exception();
            XML_StopParser(parser.expat.get(), XML_FALSE);
        }
    }

    static void OnStart(void* self, const char* name, const char** attributes) {
        Guarded(self, [&](Parser& parser) {
            if (++parser.depth > parser.limits.depth) {
                throw ServerError(errorServerAnswer, "The server's answer is nested too deeply.");
            }
            parser.text.clear();
            XmlAttributes list;
            for (; *attributes; attributes += 2) {
                list.Add(WithoutPrefix(attributes[0]), attributes[1]);
            }
            parser.handler.StartElement(WithoutPrefix(name), list);
        });
    }

    static void OnEnd(void* self, const char* name) {
        Guarded(self, [&](Parser& parser) {
            --parser.depth;
            parser.handler.EndElement(WithoutPrefix(name), parser.text);
            parser.text.clear();
        });
    }

    static void OnText(void* self, const char* text, int length) {
        Guarded(self, [&](Parser& parser) {
            parser.text.append(text, static_cast<std::size_t>(length));
            if (parser.text.size() > parser.limits.textBytes) {
                throw ServerError(errorServerAnswer, "A text in the server's answer is too long.");
            }
        });
    }

    static void OnDocumentType(void* self, const char* /*name*/, const char* /*systemId*/,
                               const char* /*publicId*/, int /*hasSubset*/) {
        Guarded(self, [](Parser&) {
            throw ServerError(errorServerAnswer,
                              "The server's answer is not an XMLA answer: it declares a document type.");
        });
    }

    void Feed(const char* data, int length, bool isLast) {
        const XML_Status status = XML_Parse(expat.get(), data, length, isLast ? XML_TRUE : XML_FALSE);
        if (failure) {
            std::rethrow_exception(failure);
        }
        if (status == XML_STATUS_OK) {
            return;
        }
        if (isLast) {
            throw ServerError(errorServerAnswer, "The server's answer ended before it was complete.");
        }
        throw ServerError(errorServerAnswer, fmt::format("The server's answer is not XML: {} in line {}.",
                                                         XML_ErrorString(XML_GetErrorCode(expat.get())),
                                                         XML_GetCurrentLineNumber(expat.get())));
    }

    std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> expat{XML_ParserCreate(nullptr),
                                                                       &XML_ParserFree};
    XmlHandler& handler;
    ServerLimits limits;
    std::size_t depth = 0;
    std::string text = {};
    std::exception_ptr failure = {};
};

XmlStream::XmlStream(XmlHandler& handler, const ServerLimits& limits)
    : parser_(std::make_unique<Parser>(handler, limits)) {}

XmlStream::~XmlStream() = default;

void XmlStream::Read(std::string_view piece) {
    constexpr std::size_t mostAtOnce = std::size_t{1} << 20U;
    for (; !piece.empty(); piece.remove_prefix(std::min(mostAtOnce, piece.size()))) {
        parser_->Feed(piece.data(), static_cast<int>(std::min(mostAtOnce, piece.size())), false);
    }
}

void XmlStream::Finish() { parser_->Feed("", 0, true); }

} // namespace qel
