#include "platform/data/ConnectionText.h"

#include "platform/data/DataAccessErrors.h"
#include "platform/value/AutomationError.h"
#include "text/CaseFold.h"
#include "text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <system_error>

namespace qel {

namespace {

/// Leaves a text that is no number to the provider that wants it.
void ReadPeriod(std::string_view text, std::chrono::milliseconds& period) {
    std::uint32_t number = 0;
    const auto [end, failed] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (failed == std::errc() && end == text.data() + text.size()) {
        period = std::chrono::milliseconds(number);
    }
}

void ReadProperty(std::string_view part, ConnectionText& connection) {
    const auto equals = part.find('=');
    if (equals == std::string_view::npos &&
        IsServerAddress(connection.dataSource)) { // it may end with a password
        throw AutomationError(errorBadConnectionText,
                              "The server's address contains ';', which is written as %3B.");
    }
    if (equals == std::string_view::npos) {
        throw AutomationError(errorBadConnectionText,
                              fmt::format("The connection text has a part without '=': '{}'. A path cannot "
                                          "contain ';'.",
                                          part));
    }
    const auto name = Trimmed(part.substr(0, equals));
    const auto value = Trimmed(part.substr(equals + 1));
    if (EqualIgnoringCase(name, "Provider")) {
        connection.provider = value;
    } else if (EqualIgnoringCase(name, "Data Source")) {
        connection.dataSource = value;
    } else if (EqualIgnoringCase(name, "Initial Catalog")) {
        connection.initialCatalog = value;
    } else if (EqualIgnoringCase(name, "Auto Synch Period")) {
        ReadPeriod(value, connection.synchPeriod);
    }
}

} // namespace

bool IsServerAddress(std::string_view dataSource) {
    const std::string_view trimmed = Trimmed(dataSource);
    const auto beginsWith = [&](std::string_view scheme) {
        return EqualIgnoringCase(trimmed.substr(0, scheme.size()), scheme);
    };
    return beginsWith("http://") || beginsWith("https://");
}

std::string WithoutPasswords(std::string_view text) {
    constexpr std::string_view afterScheme = "://";
    std::string shown;
    for (auto place = text.find(afterScheme); place != std::string_view::npos;
         place = text.find(afterScheme)) {
        place += afterScheme.size();
        shown += text.substr(0, place);
        text.remove_prefix(place);
        // A password may have any character: only what a password hardly has ends it.
        const auto userAndPassword =
            text.substr(0, std::min(text.find(";Initial Catalog="), text.find(afterScheme)));
        const auto at = userAndPassword.rfind('@');
        const auto colon = userAndPassword.find(':');
        if (at != std::string_view::npos && colon < at) {
            shown += std::string(text.substr(0, colon)) + ":***";
            text.remove_prefix(at);
        }
    }
    return shown + std::string(text);
}

ConnectionText ParseConnectionText(std::string_view text) {
    ConnectionText connection;
    while (!text.empty()) {
        const auto end = std::min(text.find(';'), text.size());
        const auto part = Trimmed(text.substr(0, end));
        if (!part.empty()) {
            ReadProperty(part, connection);
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    if (connection.dataSource.empty()) {
        throw AutomationError(errorBadConnectionText,
                              "The connection text names no data source: the cube file's path is empty.");
    }
    return connection;
}

} // namespace qel
