#include "cli/ProgressBar.h"

#include "text/ShownText.h"

#include <fmt/format.h>

#include <algorithm>

namespace qel {

namespace {

constexpr int barWidth = 30;
constexpr auto shortestPause = std::chrono::milliseconds(50);
/// Back to the line's start, and erase it.
constexpr const char* eraseLine = "\r\x1B[K";

std::string FirstCharacters(std::string text, int count) {
    const auto startsCharacter = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; };
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (startsCharacter(text[i]) && count-- == 0) {
            return text.substr(0, i);
        }
    }
    return text;
}

} // namespace

ProgressBar::~ProgressBar() {
    if (!shown_.empty()) {
        output_ << eraseLine << std::flush;
    }
}

void ProgressBar::Show(const std::string& step, double share) {
    if (columns_ <= 0) {
        return;
    }
    const auto now = std::chrono::steady_clock::now();
    const bool isDone = share >= 1;
    if (!isDone && now - lastShown_ < shortestPause) {
        return;
    }
    share = std::clamp(share, 0.0, 1.0);
    const auto filled = static_cast<int>(share * barWidth);
    // A line that wraps could not be erased, and the last column wraps on some terminals.
    auto line = FirstCharacters(fmt::format("[{:#<{}}{:.<{}}] {:3.0f}%  {}", "", filled, "",
                                            barWidth - filled, share * 100, OnOneShownLine(step)),
                                columns_ - 1);
    if (line == shown_) {
        return;
    }
    output_ << eraseLine << line << std::flush;
    shown_ = std::move(line);
    lastShown_ = now;
}

} // namespace qel
