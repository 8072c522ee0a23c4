#include "platform/ConnectionText.h"

#include "platform/AutomationError.h"
#include "platform/DataAccessErrors.h"
#include "platform/Text.h"

#include <fmt/format.h>

#include <algorithm>

namespace qel {

namespace {

void ReadProperty(std::string_view part, ConnectionText& connection) {
    const auto equals = part.find('=');
    if (equals == std::string_view::npos)
        throw AutomationError(errorBadConnectionText,
                              fmt::format("The connection text has a part without '=': '{}'. A path cannot "
                                          "contain ';'.",
                                          part));
    const auto name = Trimmed(part.substr(0, equals));
    const auto value = Trimmed(part.substr(equals + 1));
    if (EqualIgnoringCase(name, "Provider"))
        connection.provider = value;
    else if (EqualIgnoringCase(name, "Data Source"))
        connection.dataSource = value;
    else if (EqualIgnoringCase(name, "Initial Catalog"))
        connection.initialCatalog = value;
}

} // namespace

bool IsServerAddress(std::string_view dataSource) {
    const auto beginsWith = [&](std::string_view scheme) {
        return EqualIgnoringCase(dataSource.substr(0, scheme.size()), scheme);
    };
    return beginsWith("http://") || beginsWith("https://");
}

ConnectionText ParseConnectionText(std::string_view text) {
    ConnectionText connection;
    while (!text.empty()) {
        const auto end = std::min(text.find(';'), text.size());
        const auto part = Trimmed(text.substr(0, end));
        if (!part.empty())
            ReadProperty(part, connection);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    if (connection.dataSource.empty())
        throw AutomationError(errorBadConnectionText,
                              "The connection text names no data source: the cube file's path is empty.");
    return connection;
}

} // namespace qel
