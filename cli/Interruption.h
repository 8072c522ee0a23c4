#pragma once

namespace qel {

/// While it lives, Ctrl+C, a request to end and a closed terminal do not end the program at once: Check
/// raises, so that long work takes back what it has half done.
class Interruption {
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    /// Raises std::runtime_error with `message` once the program was asked to end.
    void Check(const char* message) const;

#ifndef _WIN32
private:
    using Handler = void (*)(int);
    Handler formerInterrupt_, formerTerminate_, formerHangup_;
#endif
};

} // namespace qel
