#include "platform/data/xmla/ServerErrors.h"

#include "text/ShownText.h"

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
    if (text.size() <= longest) {
        return OnOneShownLine(text);
    }
    std::size_t end = longest;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) {
        --end; // not within a character
    }
    return OnOneShownLine(text.substr(0, end)) + "…";
}

bool IsLostServer(const AutomationError& error) {
    return error.Number() >= errorServerUnreachable && error.Number() <= errorServerAnswer;
}

} // namespace qel
