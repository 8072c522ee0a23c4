#include "engine/build/RecordReader.h"

namespace qel::engine {

namespace {

constexpr std::string_view noBreakBlank = "\xC2\xA0";

std::string_view Trimmed(std::string_view text) {
    const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
    for (;;) {
        if (text.empty()) {
            return text;
        }
        if (isBlank(text.front())) {
            text.remove_prefix(1);
        } else if (isBlank(text.back())) {
            text.remove_suffix(1);
        } else if (text.substr(0, 2) == noBreakBlank) {
            text.remove_prefix(2);
        } else if (text.size() >= 2 && text.substr(text.size() - 2) == noBreakBlank) {
            text.remove_suffix(2);
        } else {
            return text;
        }
    }
}

} // namespace

void RecordFields::Clear() {
    text.clear();
    places.clear();
}

void RecordFields::Add(std::string_view field) {
    places.emplace_back(text.size(), field.size());
    text.append(field);
}

std::string_view RecordReader::Field(std::size_t column) const {
    const auto [offset, length] = fields_.places[column];
    return Trimmed(std::string_view(fields_.text).substr(offset, length));
}

} // namespace qel::engine
