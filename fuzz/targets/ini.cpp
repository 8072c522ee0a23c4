#include "platform/settings/files/IniFile.h"
#include "platform/value/AutomationError.h"

#include <cstdint>
#include <cstdlib>
#include <string>

// Setting an entry in any text is either rejected, or the entry reads back, the rest is unchanged, and
// setting it again changes nothing.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const qel::IniEntry entry{"Qel", "QelUILanguage"};
    qel::FindInIniText("file", text, entry);
    std::string edited;
    try {
        edited = qel::EditIniText("file", text, entry, "1");
    } catch (const qel::AutomationError&) {
        return 0;
    }
    const auto again = qel::EditIniText("file", edited, entry, "1");
    if (qel::FindInIniText("file", edited, entry) != "1" || qel::FirstLineLost(text, edited, entry) ||
        qel::FirstLineLost(edited, again, entry) || qel::EditIniText("file", again, entry, "1") != again) {
        std::abort();
    }
    return 0;
}
