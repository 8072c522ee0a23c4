#pragma once

#include "text/ShownText.h"

#include <ostream>
#include <streambuf>
#include <string>

namespace qel {

/// While it lives, what is written to a stream is shown without the characters that could change a terminal
/// or the text around them, see ShownText.
class ShownStream : private std::streambuf {
public:
    explicit ShownStream(std::ostream& stream) : stream_(stream), target_(stream.rdbuf(this)) {}
    ~ShownStream() override { stream_.rdbuf(target_); }
    ShownStream(const ShownStream&) = delete;
    ShownStream& operator=(const ShownStream&) = delete;

    /// What the stream wrote to before.
    std::streambuf* Target() const { return target_; }

private:
    std::streamsize xsputn(const char* text, std::streamsize count) override;
    int_type overflow(int_type character) override;
    int sync() override { return target_->pubsync(); }

    std::ostream& stream_;
    std::streambuf* target_;
    ShownText filter_{ShownText::Lines::Keep};
};

} // namespace qel
