#pragma once

#include <string_view>

namespace qel::engine::mdx {

/// Compares with a keyword, ignoring letter case. Keywords are ASCII.
bool IsWord(std::string_view text, std::string_view word);

/// Whether the word starts or joins a clause, so that it is a name only in brackets.
bool IsReserved(std::string_view text);

/// Whether the word names a method after a dot: "Members", "Parent", "Lag", ...
bool IsMethod(std::string_view text);

/// Whether the word names a method of a set's name: "Current", "CurrentOrdinal".
bool IsSetNameMethod(std::string_view text);

} // namespace qel::engine::mdx
