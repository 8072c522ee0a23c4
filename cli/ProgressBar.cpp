#include "cli/ProgressBar.h"

#include <fmt/format.h>

#include <algorithm>

namespace qel {

namespace {

constexpr int barWidth = 30;
constexpr auto shortestPause = std::chrono::milliseconds(50);
/// Back to the line's start, and erase it.
constexpr const char* eraseLine = "\r\x1B[K";

} // namespace

ProgressBar::~ProgressBar() {
    if (!shown_.empty())
        output_ << eraseLine << std::flush;
}

void ProgressBar::Show(const std::string& step, double share) {
    if (!isTerminal_)
        return;
    const auto now = std::chrono::steady_clock::now();
    const bool isDone = share >= 1;
    if (!isDone && now - lastShown_ < shortestPause)
        return;
    share = std::clamp(share, 0.0, 1.0);
    const auto filled = static_cast<int>(share * barWidth);
    auto line =
        fmt::format("[{:#<{}}{:.<{}}] {:3.0f}%  {}", "", filled, "", barWidth - filled, share * 100, step);
    if (line == shown_)
        return;
    output_ << eraseLine << line << std::flush;
    shown_ = std::move(line);
    lastShown_ = now;
}

} // namespace qel
