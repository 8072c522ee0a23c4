#include "cli/InputLines.h"

#include <iterator>
#include <string_view>

namespace qel {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

} // namespace

std::optional<std::string> InputLines::NextFilled() {
    std::string line;
    while (std::getline(input_, line)) {
        ++number_;
        if (number_ == 1 && line.starts_with(byteOrderMark))
            line.erase(0, byteOrderMark.size());
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line.find_first_not_of(" \t\f\v") != std::string::npos)
            return line;
    }
    return std::nullopt;
}

std::string ReadAll(std::istream& input) {
    std::string text{std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>()};
    if (text.starts_with(byteOrderMark))
        text.erase(0, byteOrderMark.size());
    return text;
}

} // namespace qel
