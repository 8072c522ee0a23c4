#include "engine/mdx/ReservedWords.h"

#include <algorithm>
#include <array>

namespace qel::engine::mdx {

namespace {

constexpr std::array<std::string_view, 17> reserved{"and",    "as",     "cell",  "dimension", "empty", "from",
                                                    "is",     "member", "non",   "not",       "on",    "or",
                                                    "select", "set",    "where", "with",      "xor"};

constexpr std::array<std::string_view, 2> setNameMethods{"current", "currentordinal"};

constexpr std::array<std::string_view, 29> methods{
    "allmembers",     "caption",     "children",     "count",      "currentmember", "defaultmember",
    "dimension",      "firstchild",  "firstsibling", "hierarchy",  "item",          "lag",
    "lastchild",      "lastsibling", "lead",         "level",      "levels",        "members",
    "member_caption", "member_key",  "name",         "nextmember", "ordinal",       "parent",
    "prevmember",     "properties",  "siblings",     "uniquename", "value"};

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

template <std::size_t Count>
bool Contains(const std::array<std::string_view, Count>& words, std::string_view text) {
    return std::any_of(words.begin(), words.end(), [&](std::string_view word) { return IsWord(text, word); });
}

} // namespace

bool IsWord(std::string_view text, std::string_view word) {
    return text.size() == word.size() && std::equal(text.begin(), text.end(), word.begin(),
                                                    [](char a, char b) { return Lower(a) == Lower(b); });
}

bool IsReserved(std::string_view text) { return Contains(reserved, text); }

bool IsMethod(std::string_view text) { return Contains(methods, text); }

bool IsSetNameMethod(std::string_view text) { return Contains(setNameMethods, text); }

} // namespace qel::engine::mdx
