#pragma once

#include <string>
#include <string_view>

namespace qel {

/// Whether the text's first letter is written from right to left.
[[nodiscard]] bool BeginsRightToLeft(std::string_view text);

/// The text with the marks by which it reads in the direction of its first letter wherever it is shown.
/// Otherwise signs at its ends, and numbers within, move to the wrong side.
[[nodiscard]] std::string InOwnDirection(std::string_view text);

/// The same of a line that is drawn alone: its end closes the direction. Systems that leave room for a
/// closing mark would move the line.
[[nodiscard]] std::string LineInOwnDirection(std::string_view text);

/// The same of a text's lines, each in the direction in which the text begins. A text that begins from left
/// to right is left alone.
[[nodiscard]] std::string LinesInOwnDirection(std::string_view text);

/// The text without such marks.
[[nodiscard]] std::string WithoutDirection(std::string_view text);

} // namespace qel
