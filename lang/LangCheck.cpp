#include "lang/LangCheck.h"

#include "lang/StringTable.h"

namespace qel {

namespace {

struct NumberRows {
    std::size_t count = 0;
    bool firstIsEmpty = false;
};

LangFindings Findings(const std::map<std::int32_t, NumberRows>& numbers) {
    LangFindings findings;
    for (const auto& [number, found] : numbers) {
        findings.rows += found.count;
        if (found.count > 1) {
            findings.duplicate.push_back(number);
        }
        if (found.firstIsEmpty) {
            findings.empty.push_back(number);
        }
        if (!FindResourceString(number, Language::English)) {
            findings.unknown.push_back(number);
        }
    }
    for (const auto& entry : StringTable()) {
        if (!numbers.contains(entry.number)) {
            findings.missing.push_back(entry.number);
        }
    }
    return findings;
}

} // namespace

std::map<std::int32_t, LangFindings> CheckLangRows(const std::vector<LangRow>& rows) {
    std::map<std::int32_t, std::map<std::int32_t, NumberRows>> languages{{Language::English, {}},
                                                                         {Language::Hebrew, {}}};
    for (const auto& row : rows) {
        NumberRows& number = languages[row.language][row.number];
        if (number.count++ == 0) {
            number.firstIsEmpty = row.text.empty();
        }
    }
    std::map<std::int32_t, LangFindings> findings;
    for (const auto& [language, numbers] : languages) {
        findings[language] = Findings(numbers);
    }
    return findings;
}

} // namespace qel
