#include "engine/build/LineBuffer.h"

#include "qel/engine/EngineError.h"

#include <fmt/format.h>

#include <algorithm>

namespace qel::engine {

namespace {

constexpr std::size_t longestLine = std::size_t{16} << 20U;

/// The offset of the first LF or CR at or after `start`; the text's size if there is none.
std::size_t FindLineEnd(std::string_view text, std::size_t start) {
    // Most files contain only one of the two characters; stretches bound the search for the other one.
    constexpr std::size_t stretch = 256;
    for (; start < text.size(); start += stretch) {
        const std::string_view part = text.substr(start, stretch);
        const std::size_t place = std::min(part.find('\n'), part.find('\r'));
        if (place != std::string_view::npos) {
            return start + place;
        }
    }
    return text.size();
}

} // namespace

std::string_view LineBuffer::LineAt(std::size_t offset) {
    for (std::size_t searched = offset;;) {
        const std::string_view window = std::string_view(buffer_).substr(start_);
        const std::size_t place = FindLineEnd(window, searched);
        // A CR at the end of the buffer may be followed by its LF in the next chunk.
        if (place < window.size() && (window[place] == '\n' || place + 1 < window.size() || isAtEnd_)) {
            const bool isPair = window.substr(place, 2) == "\r\n";
            return window.substr(offset, place + (isPair ? 2 : 1) - offset);
        }
        if (isAtEnd_) {
            return window.substr(offset);
        }
        if (window.size() - offset > longestLine) {
            throw EngineError(ErrorKind::InvalidData,
                              fmt::format("{}: a line has more than 16 MiB; this is no CSV file", name_));
        }
        searched = place;
        ReadMore();
    }
}

void LineBuffer::Restart(std::uint64_t offset) {
    buffer_.clear();
    start_ = 0;
    discarded_ = offset;
    isAtEnd_ = false;
}

void LineBuffer::ReadMore() {
    constexpr std::size_t chunkSize = 1 << 16;
    buffer_.erase(0, start_);
    discarded_ += start_;
    start_ = 0;
    const std::size_t size = buffer_.size();
    buffer_.resize(size + chunkSize);
    input_.read(buffer_.data() + size, static_cast<std::streamsize>(chunkSize));
    buffer_.resize(size + static_cast<std::size_t>(input_.gcount()));
    isAtEnd_ = !input_;
}

} // namespace qel::engine
