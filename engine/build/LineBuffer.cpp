#include "engine/build/LineBuffer.h"

#include "qel/engine/EngineError.h"

#include <fmt/format.h>

#include <algorithm>

namespace qel::engine {

namespace {

constexpr std::size_t longestLine = std::size_t{16} << 20U;

} // namespace

std::string_view LineBuffer::LineAt(std::size_t offset) {
    for (std::size_t searched = offset;;) {
        const std::string_view window = std::string_view(buffer_).substr(start_);
        const auto* const end = std::find_if(window.begin() + searched, window.end(),
                                             [](char c) { return c == '\n' || c == '\r'; });
        const auto place = static_cast<std::size_t>(end - window.begin());
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
