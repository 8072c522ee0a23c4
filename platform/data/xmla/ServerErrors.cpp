#include "platform/data/xmla/ServerErrors.h"

namespace qel {

AutomationError ServerError(std::int32_t number, std::string description) {
    return {number, std::move(description), serverProvider};
}

AutomationError AnswerTooLarge() {
    return ServerError(errorServerAnswer,
                       "The server's answer is too large; AnswerMegabytes in servers.ini sets the limit.");
}

std::string ShownMessage(std::string_view text) {
    constexpr std::size_t longest = 1'000;
    const bool isCut = text.size() > longest;
    text = text.substr(0, longest);
    const auto last = [&text] { return static_cast<unsigned char>(text.back()); };
    while (isCut && !text.empty() && last() >= 0x80 && last() < 0xC0) {
        text.remove_suffix(1); // not within a character
    }
    if (isCut && !text.empty() && last() >= 0xC0) {
        text.remove_suffix(1);
    }
    std::string shown;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const std::string_view two = text.substr(i, 2), three = text.substr(i, 3);
        if (byte < 0x20 || byte == 0x7F) {
            shown += ' ';
        } else if (two >= "\xC2\x80" && two <= "\xC2\x9F") { // U+0080 to U+009F
            shown += ' ';
            i += 1;
        } else if ((three >= "\xE2\x80\xAA" && three <= "\xE2\x80\xAE") || // U+202A to U+202E
                   (three >= "\xE2\x81\xA6" && three <= "\xE2\x81\xA9")) { // U+2066 to U+2069
            i += 2;
        } else {
            shown += text[i];
        }
    }
    return isCut ? shown + "…" : shown;
}

bool IsLostServer(const AutomationError& error) {
    return error.Number() >= errorServerUnreachable && error.Number() <= errorServerAnswer;
}

} // namespace qel
