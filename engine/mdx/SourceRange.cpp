#include "engine/mdx/SourceRange.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>

namespace qel::engine::mdx {

namespace {

constexpr std::size_t excerptBefore = 12;
constexpr std::size_t excerptAfter = 36;

bool IsContinuationByte(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

std::size_t CountCharacters(std::string_view text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return !IsContinuationByte(c); }));
}

/// The part of the statement around `at` as one line, cut at character boundaries.
std::string Excerpt(std::string_view statement, std::size_t at) {
    std::size_t first = at > excerptBefore ? at - excerptBefore : 0;
    std::size_t last = std::min(statement.size(), at + excerptAfter);
    while (first > 0 && IsContinuationByte(statement[first])) {
        --first;
    }
    while (last < statement.size() && IsContinuationByte(statement[last])) {
        ++last;
    }
    std::string excerpt(statement.substr(first, last - first));
    std::replace_if(
        excerpt.begin(), excerpt.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return fmt::format("{}{}{}", first > 0 ? "…" : "", excerpt, last < statement.size() ? "…" : "");
}

} // namespace

void RaiseAt(ErrorKind kind, const Source& source, SourceRange range, std::string_view message) {
    const std::string_view statement = source.text;
    const std::string owner =
        source.owner.empty() ? "" : fmt::format("the cube's definition of {}, ", source.owner);
    const std::size_t at = std::min<std::size_t>(range.begin, statement.size());
    const std::string_view before = statement.substr(0, at);
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const std::size_t lineStart = before.rfind('\n') == std::string_view::npos ? 0 : before.rfind('\n') + 1;
    throw EngineError(kind, fmt::format("{}line {}, column {}: {}, near \"{}\"", owner, line,
                                        CountCharacters(before.substr(lineStart)) + 1, message,
                                        Excerpt(statement, at)));
}

} // namespace qel::engine::mdx
