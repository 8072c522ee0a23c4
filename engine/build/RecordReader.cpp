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

std::string_view RecordReader::Field(std::size_t column) const {
    return Trimmed(std::string_view(text_).substr(fields_[column].first, fields_[column].second));
}

void RecordReader::ClearFields() {
    text_.clear();
    fields_.clear();
}

void RecordReader::AddField(std::string_view text) {
    fields_.emplace_back(text_.size(), text.size());
    text_.append(text);
}

} // namespace qel::engine
