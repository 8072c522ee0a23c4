#include "engine/eval/FormatText.h"

#include "engine/eval/CellArithmetic.h"
#include "engine/mdx/ReservedWords.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace qel::engine {

namespace {

struct NamedFormat {
    std::string_view name, picture;
};

constexpr NamedFormat namedFormats[] = {
    {"Standard", "#,##0.00"},
    {"Fixed", "0.00"},
    {"Percent", "0.00%"},
    {"Currency", "$#,##0.00;($#,##0.00)"},
    {"Scientific", "0.00E+00"},
    {"Yes/No", "\"Yes\";\"Yes\";\"No\""},
    {"True/False", "\"True\";\"True\";\"False\""},
    {"On/Off", "\"On\";\"On\";\"Off\""},
    {"Short Time", "hh:nn"},
    {"Medium Time", "hh:nn AM/PM"},
};

/// Their form depends on a machine's settings.
constexpr std::string_view localFormats[] = {"General Date", "Long Date", "Medium Date", "Short Date",
                                             "Long Time"};

/// The picture's letters and signs, without texts in quotes and characters behind a backslash.
std::string Signs(std::string_view picture) {
    std::string signs;
    for (std::size_t i = 0; i < picture.size(); ++i) {
        if (picture[i] == '"') {
            i = std::min(picture.find('"', i + 1), picture.size());
        } else if (picture[i] == '\\') {
            ++i;
        } else {
            signs += picture[i];
        }
    }
    return signs;
}

bool IsDatePicture(std::string_view picture) {
    const std::string signs = Signs(picture);
    return signs.find_first_of("0#") == std::string::npos &&
           signs.find_first_of("yYmMdDhHnNsSqQwW") != std::string::npos;
}

std::string_view SectionFor(const CellValue& value, const std::vector<std::string_view>& sections) {
    const std::size_t wanted = value.isEmpty ? 3 : value.number < 0 ? 1 : value.number == 0 ? 2 : 0;
    if (value.isEmpty) {
        return sections.size() > wanted ? sections[wanted] : std::string_view();
    }
    return wanted < sections.size() && !sections[wanted].empty() ? sections[wanted] : sections[0];
}

} // namespace

std::vector<std::string_view> SectionsOf(std::string_view picture) {
    std::vector<std::string_view> sections;
    std::size_t start = 0;
    for (std::size_t i = 0; i < picture.size(); ++i) {
        if (picture[i] == '"') {
            i = std::min(picture.find('"', i + 1), picture.size());
        } else if (picture[i] == '\\') {
            ++i;
        } else if (picture[i] == ';') {
            sections.push_back(picture.substr(start, i - start));
            start = i + 1;
        }
    }
    sections.push_back(picture.substr(std::min(start, picture.size())));
    return sections;
}

std::string FormatText(const CellValue& value, std::string_view format, std::string& fault) {
    for (const std::string_view local : localFormats) {
        if (mdx::IsWord(format, local)) {
            fault = fmt::format(
                "the format {} depends on a machine's settings; write a picture such as yyyy-mm-dd", local);
            return {};
        }
    }
    for (const NamedFormat& named : namedFormats) {
        format = mdx::IsWord(format, named.name) ? named.picture : format;
    }
    if (!value.isEmpty && !std::isfinite(value.number)) {
        return std::isnan(value.number) ? "NaN" : value.number < 0 ? "-Infinity" : "Infinity";
    }
    if (format.empty() || mdx::IsWord(format, "General Number")) {
        return value.isEmpty ? std::string() : FormatNumber(value, {}, fault);
    }
    if (IsDatePicture(format)) {
        return value.isEmpty ? std::string() : FormatDate(value.number, format, fault);
    }
    const std::vector<std::string_view> sections = SectionsOf(format);
    const std::string_view section = SectionFor(value, sections);
    // A section for negative numbers writes their sign itself.
    const bool hasOwn = value.number < 0 && section.data() != sections[0].data();
    const CellValue shown = hasOwn ? Negate(value) : value;
    return value.isEmpty && section.empty() ? std::string() : FormatNumber(shown, section, fault);
}

} // namespace qel::engine
