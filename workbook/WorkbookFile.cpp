#include "workbook/WorkbookFile.h"

#include "workbook/WorkbookError.h"
#include "workbook/WorkbookReaders.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <chrono>

namespace qel {

namespace {

constexpr std::ptrdiff_t mostTags = 16'000'000; // in memory an element takes more than its text

int NumberIn(std::string_view text, std::size_t place, std::size_t size) {
    int number = -1;
    if (place + size <= text.size()) {
        const char* const end = text.data() + place + size;
        number = std::from_chars(text.data() + place, end, number).ptr == end ? number : -1;
    }
    return number;
}

} // namespace

WorkbookContent ReadWorkbook(const std::filesystem::path& path) {
    ZipFile file(path);
    if (file.Has("xl/workbook.xml")) {
        return ReadOpenXml(file);
    }
    if (file.Has("content.xml")) {
        return ReadOpenDocument(file);
    }
    throw WorkbookError("it is no .xlsx, .xlsm or .ods file");
}

void LoadPart(ZipFile& file, const std::string& name, pugi::xml_document& document, unsigned int options) {
    const std::string bytes = file.Read(name);
    if (std::count(bytes.begin(), bytes.end(), '<') > mostTags) {
        throw WorkbookError(fmt::format("its part {} has more than {} tags", name, mostTags));
    }
    const auto result = document.load_buffer(bytes.data(), bytes.size(), options);
    if (!result) {
        throw WorkbookError(fmt::format("its part {} is no XML: {}", name, result.description()));
    }
}

Variant DateOfText(std::string_view text, double daysBefore) {
    const int year = NumberIn(text, 0, 4), month = NumberIn(text, 5, 2), day = NumberIn(text, 8, 2);
    constexpr int firstYear = 1899;
    const std::chrono::year_month_day date(std::chrono::year(year),
                                           std::chrono::month(static_cast<unsigned>(month)),
                                           std::chrono::day(static_cast<unsigned>(day)));
    if (year < firstYear || !date.ok()) {
        return Null{};
    }
    double days = DateFromDay({year, month, day}).days - daysBefore;
    constexpr std::size_t timePlace = 11;
    if (text.size() > timePlace) {
        constexpr double hours = 24, minutes = hours * 60, seconds = minutes * 60;
        days += NumberIn(text, timePlace, 2) / hours + NumberIn(text, timePlace + 3, 2) / minutes +
                NumberIn(text, timePlace + 6, 2) / seconds;
    }
    return days;
}

} // namespace qel
