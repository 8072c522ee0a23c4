#include "platform/data/xmla/StatementForServer.h"

#include <vector>

namespace qel {

namespace {

/// The end of the bracketed name or double-quoted text that begins at `start`.
std::size_t EndOfQuoted(std::string_view text, std::size_t start) {
    const char closing = text[start] == '[' ? ']' : '"';
    for (std::size_t i = start + 1; i < text.size(); ++i) {
        if (text[i] != closing) {
            continue;
        }
        if (i + 1 == text.size() || text[i + 1] != closing) {
            return i + 1;
        }
        ++i;
    }
    return text.size();
}

bool OpensQuoted(char character) { return character == '[' || character == '"'; }

bool IsBlank(char character) {
    return character == ' ' || character == '\t' || character == '\r' || character == '\n';
}

std::string UnquotedName(std::string_view bracketed) {
    std::string name;
    const std::string_view inner = bracketed.substr(1, bracketed.size() < 2 ? 0 : bracketed.size() - 2);
    for (std::size_t i = 0; i < inner.size(); ++i) {
        name += inner[i];
        if (inner[i] == ']') {
            ++i;
        }
    }
    return name;
}

/// A path of bracketed names, separated by dots.
struct BracketedPath {
    std::vector<std::string_view> steps;
    std::size_t end = 0;
    bool goesOn = false; ///< a dot follows, and then something other than a bracketed name
};

BracketedPath ReadPath(std::string_view text, std::size_t start) {
    BracketedPath path;
    std::size_t place = start;
    while (place < text.size() && text[place] == '[') {
        const std::size_t end = EndOfQuoted(text, place);
        path.steps.push_back(text.substr(place, end - place));
        path.end = end;
        path.goesOn = end < text.size() && text[end] == '.';
        place = path.goesOn ? end + 1 : text.size();
    }
    return path;
}

} // namespace

std::string WithoutEmptyElements(std::string_view statement) {
    std::string text;
    bool isFirstOfSet = false; // only blanks since the opening brace
    for (std::size_t i = 0; i < statement.size(); ++i) {
        const char character = statement[i];
        if (OpensQuoted(character)) {
            const std::size_t end = EndOfQuoted(statement, i);
            text += statement.substr(i, end - i);
            i = end - 1;
            isFirstOfSet = false;
            continue;
        }
        if (isFirstOfSet && character == ',') {
            continue;
        }
        text += character;
        isFirstOfSet = character == '{' || (isFirstOfSet && IsBlank(character));
    }
    return text;
}

std::string WithMembersOfLowerLevels(std::string_view statement, const MemberLookup& find) {
    constexpr std::size_t stepsOfNameBelowHierarchy = 3;
    std::string text;
    std::size_t place = 0;
    while (place < statement.size()) {
        if (!OpensQuoted(statement[place])) {
            text += statement[place++];
            continue;
        }
        std::size_t end = EndOfQuoted(statement, place);
        std::optional<std::string> replacement;
        if (statement[place] == '[') {
            const BracketedPath path = ReadPath(statement, place);
            end = path.end;
            if (path.steps.size() == stepsOfNameBelowHierarchy && !path.goesOn) {
                replacement = find(std::string(path.steps[0]) + "." + std::string(path.steps[1]),
                                   UnquotedName(path.steps[2]));
            }
        }
        text += replacement ? *replacement : std::string(statement.substr(place, end - place));
        place = end;
    }
    return text;
}

} // namespace qel
