#include "engine/build/TotalLine.h"

#include "engine/build/PlainSigns.h"
#include "text/CaseFold.h"

#include <algorithm>
#include <iterator>

namespace qel::engine {

namespace {

bool NamesTotal(std::string_view field) {
    constexpr std::string_view words[] = {"total", "subtotal", "sub-total", "grand total", "סה\"כ",
                                          "סה''כ", "סה״כ",     "סהכ",       "סך הכל",      "סך-הכל"};
    const std::string text = FoldCase(WithPlainSigns(field));
    return std::any_of(std::begin(words), std::end(words), [&](auto word) { return text.starts_with(word); });
}

bool IsPlainNumber(std::string_view field) {
    return field.find_first_of("0123456789") != std::string_view::npos &&
           field.find_first_not_of("0123456789.,'-+() ") == std::string_view::npos;
}

} // namespace

bool IsProbableTotal(const RecordReader& record) {
    const std::size_t columns = record.Header().size();
    std::vector<std::string_view> filled;
    for (std::size_t i = 0; i < std::min(record.FieldCount(), columns); ++i) {
        if (!record.Field(i).empty()) {
            filled.push_back(record.Field(i));
        }
    }
    if (filled.empty() || filled.size() == columns) {
        return false;
    }
    const bool isSparse = filled.size() * 2 <= columns;
    return NamesTotal(filled.front()) ||
           (isSparse &&
            (std::any_of(filled.begin(), filled.end(), NamesTotal) ||
             (record.Field(0).empty() && std::all_of(filled.begin(), filled.end(), IsPlainNumber))));
}

} // namespace qel::engine
