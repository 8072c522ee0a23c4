#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace qel {

/// What a connection text says that decides which cube is opened. Other properties are left to the provider
/// that wants them.
struct ConnectionText {
    std::string provider;   ///< empty when the text names none
    std::string dataSource; ///< a path or an address, blanks at both ends removed
    /// The cube's name, which may be empty; none when the text leaves the choice to the provider.
    std::optional<std::string> initialCatalog;
    std::chrono::milliseconds synchPeriod{10'000}; ///< Auto Synch Period: how old the data may get
};

/// Reads "Name=value;Name=value;…". Names in any letter case; a value is everything up to the next ';',
/// without the blanks around it; of a name that occurs twice the last one counts. Raises AutomationError for
/// a part without '=' and for a text without a data source.
ConnectionText ParseConnectionText(std::string_view text);

/// The text as it can be shown: a password in an address in it is replaced by "***".
std::string WithoutPasswords(std::string_view text);

/// True for the address of a server, "http://…" or "https://…" in any letter case,
/// blanks before it aside.
bool IsServerAddress(std::string_view dataSource);

} // namespace qel
