#include "engine/build/CsvFields.h"

#include <algorithm>

namespace qel::engine {

namespace {

/// The length of the quoted text at the start, with its quotes; 0 when it does not end.
std::size_t QuotedLength(std::string_view text) {
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (text[i] == '"' && text.substr(i, 2) != "\"\"") {
            return i + 1;
        }
        i += text[i] == '"' ? std::size_t{1} : 0;
    }
    return 0;
}

} // namespace

std::vector<std::string_view> CsvFieldsOf(std::string_view line, char delimiter) {
    std::vector<std::string_view> fields;
    line = line.substr(0, line.find_last_not_of("\r\n") + 1);
    const auto skipBlanks = [&] {
        const auto first = line.find_first_not_of(delimiter == '\t' ? " " : " \t");
        line.remove_prefix(std::min(first, line.size()));
    };
    for (bool hasMore = true; hasMore;) {
        skipBlanks();
        const bool isQuoted = line.starts_with('"');
        const std::size_t length =
            isQuoted ? QuotedLength(line) : std::min(line.find(delimiter), line.size());
        fields.push_back(line.substr(0, length));
        line.remove_prefix(length);
        skipBlanks();
        if ((isQuoted && length == 0) || (!line.empty() && line.front() != delimiter)) {
            return {};
        }
        hasMore = !line.empty();
        line.remove_prefix(hasMore ? 1 : 0);
    }
    return fields;
}

} // namespace qel::engine
