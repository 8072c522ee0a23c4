#include "function/DetailTable.h"

#include "lang/StringTable.h"
#include "text/Text.h"

#include <vector>

namespace qel {

namespace {

struct Label {
    const char* english;
    const char* hebrew;
};

constexpr Label labels[] = {
    {"Cube", "קוביה"},
    {"Cube Name", "שם קוביה"},
    {"OBS", "OBS"},
    {"OBS Number", "OBS Number"},
    {"OBS Level", "OBS Level"},
    {"OBS Member", "OBS Member"},
    {"Activity", "פעילויות"},
    {"Summary Group", "סעיף מרמה"},
    {"Account Level", "סעיפים"},
    {"Accounts", "חשבונות"},
    {"Measure", "Measure"},
    {"Money Set", "סידרת כסף"},
    {"Plbs", "פ/ת/ה/תכ"},
    {"RH", "RH"},
    {"Firma", "פירמה"},
    {"Opening Balance", "יתרת פתיחה"},
    {"From Date", "מתאריך"},
    {"To Date", "עד תאריך"},
};

constexpr std::size_t firstList = 2, lastList = 6;        // parts that lose their braces
constexpr std::size_t firstTrimmed = 7, lastTrimmed = 15; // parts that lose their blanks

std::vector<std::string> SplitAtCommas(const std::string& text) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (auto comma = text.find(','); comma != std::string::npos; comma = text.find(',', start)) {
        parts.push_back(text.substr(start, comma - start));
        start = comma + 1;
    }
    parts.push_back(text.substr(start));
    return parts;
}

std::string ValueOf(const std::string& part, std::size_t index) {
    std::string value = ReplaceAll(part, "\"", "");
    if (index >= firstList && index <= lastList) {
        value = ReplaceAll(ReplaceAll(value, "}", ""), "{", "");
    }
    if (index >= firstTrimmed && index <= lastTrimmed) {
        Trim(value);
    }
    return value;
}

} // namespace

std::shared_ptr<const VariantArray> ComposeDetailTable(const std::string& argumentText, std::int16_t iLang) {
    const auto parts = SplitAtCommas(argumentText);
    const std::size_t rows = parts.size() + 1; // one to spare
    VariantArray table{ElementType::Variant, {{0, static_cast<std::int32_t>(rows) - 1}, {0, 1}}, {}};
    table.elements.resize(rows * 2);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        table.elements[rows + i] = ValueOf(parts[i], i);
    }
    for (std::size_t i = 0; i < std::size(labels); ++i) {
        table.elements.at(i) = iLang == Language::Hebrew ? labels[i].hebrew : labels[i].english;
    }
    return std::make_shared<const VariantArray>(std::move(table));
}

} // namespace qel
