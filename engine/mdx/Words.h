#pragma once

#include <string_view>

namespace qel::engine::mdx {

/// ASCII words only; the language's own words have no other letters.
bool IsWord(std::string_view text, std::string_view word);

/// A word that starts or joins a clause and therefore is no name unless it stands in brackets.
bool IsReserved(std::string_view text);

/// A word that may follow a dot and is then no name: "Members", "Parent", "Lag", ...
bool IsMethod(std::string_view text);

} // namespace qel::engine::mdx
