#include "lang/LangCheck.h"
#include "platform/tables/xml/XmlTableReader.h"
#include "platform/value/AutomationError.h"

#include <cstdint>
#include <cstdlib>
#include <string>

// Any bytes are either read as a language table that counts all its rows, or rejected.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    try {
        const auto rows = qel::LangRowsOf(qel::ParseXmlTable(bytes, "Lang.rs"));
        std::size_t counted = 0;
        for (const auto& [language, findings] : qel::CheckLangRows(rows)) {
            counted += findings.rows;
        }
        if (counted != rows.size()) {
            std::abort();
        }
    } catch (const qel::AutomationError&) {
        return 0;
    }
    return 0;
}
