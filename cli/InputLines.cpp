#include "cli/InputLines.h"

#include <array>
#include <stdexcept>
#include <string_view>

namespace qel {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// What cannot be read must not pass for the end.
void RequireReadable(const std::istream& input) {
    if (input.bad()) {
        throw std::runtime_error("standard input cannot be read");
    }
}

} // namespace

std::optional<std::string> InputLines::NextFilled() {
    std::string line;
    while (std::getline(input_, line)) {
        ++number_;
        if (number_ == 1 && line.starts_with(byteOrderMark)) {
            line.erase(0, byteOrderMark.size());
        }
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        if (line.find_first_not_of(" \t\f\v") != std::string::npos) {
            return line;
        }
    }
    RequireReadable(input_);
    return std::nullopt;
}

std::string ReadAll(std::istream& input) {
    std::string text;
    std::array<char, 65536> piece{};
    while (input.read(piece.data(), piece.size()) || input.gcount() > 0) {
        text.append(piece.data(), static_cast<std::size_t>(input.gcount()));
    }
    RequireReadable(input);
    if (text.starts_with(byteOrderMark)) {
        text.erase(0, byteOrderMark.size());
    }
    return text;
}

} // namespace qel
