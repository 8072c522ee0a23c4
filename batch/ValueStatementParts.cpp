#include "batch/ValueStatementParts.h"

namespace qel::batch {

namespace {

constexpr std::string_view opening = "WITH MEMBER [Date].DateSel as '   SUM( LastPeriods(";
constexpr std::string_view endOfPeriods = ",";
constexpr std::string_view endOfLast = "),[Measures]";
constexpr std::string_view startOfMeasure = ".[";
constexpr std::string_view endOfMeasure = "])    '";
constexpr std::string_view select = " SELECT  { [Date].DateSel} ON COLUMNS,  { [SuperSumery].[SumeryCode]";
constexpr std::string_view from = " }ON ROWS  From ";
constexpr std::string_view where = " where (  ";
constexpr std::string_view closing = ")";

/// The place of `what` outside of brackets, or npos.
std::size_t FindOutsideBrackets(std::string_view text, std::string_view what) {
    bool inBrackets = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!inBrackets && text.substr(i, what.size()) == what) {
            return i;
        }
        if (text[i] == '[') {
            inBrackets = true;
        } else if (text[i] == ']') {
            inBrackets = false; // a doubled one closes and opens nothing: the next one closes again
        }
    }
    return std::string_view::npos;
}

/// Cuts `text` at `end`, which must be there outside of brackets: returns what is before, leaves what is
/// behind.
std::optional<std::string> TakeUntil(std::string_view& text, std::string_view end) {
    const std::size_t place = FindOutsideBrackets(text, end);
    if (place == std::string_view::npos) {
        return std::nullopt;
    }
    std::string taken(text.substr(0, place));
    text.remove_prefix(place + end.size());
    return taken;
}

std::string Join(const ValueStatementParts& parts) {
    std::string text = std::string(opening) + parts.periods + std::string(endOfPeriods) + parts.last +
                       std::string(endOfLast) + std::string(startOfMeasure) + parts.measure +
                       std::string(endOfMeasure) + parts.obsSel + std::string(select) + parts.summaryGroup +
                       std::string(from) + parts.cubeName;
    for (std::size_t i = 0; i < parts.slicer.size(); ++i) {
        text += std::string(i == 0 ? where : ",") + parts.slicer[i];
    }
    return parts.slicer.empty() ? text : text + std::string(closing);
}

} // namespace

std::optional<ValueStatementParts> ReadValueStatement(std::string_view statement) {
    std::string_view rest = statement;
    if (!rest.starts_with(opening)) {
        return std::nullopt;
    }
    rest.remove_prefix(opening.size());
    const auto periods = TakeUntil(rest, endOfPeriods);
    const auto last = periods ? TakeUntil(rest, endOfLast) : std::nullopt;
    // A measure's name ends at the first text that ends it: with that text in the name, the parts do not fit.
    const auto measureEnd = rest.find(endOfMeasure);
    if (!last || !rest.starts_with(startOfMeasure) || measureEnd == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string measure(rest.substr(startOfMeasure.size(), measureEnd - startOfMeasure.size()));
    rest.remove_prefix(measureEnd + endOfMeasure.size());
    const auto obsSel = TakeUntil(rest, select);
    const auto group = obsSel ? TakeUntil(rest, from) : std::nullopt;
    const auto cubeName = group ? TakeUntil(rest, where) : std::nullopt;
    if (!cubeName || !rest.ends_with(closing)) {
        return std::nullopt;
    }
    rest.remove_suffix(closing.size());
    ValueStatementParts parts{*periods, *last, measure, *obsSel, *group, *cubeName, {}};
    while (const auto piece = TakeUntil(rest, ",")) {
        parts.slicer.push_back(*piece);
    }
    parts.slicer.emplace_back(rest);
    if (Join(parts) != statement) {
        return std::nullopt;
    }
    return parts;
}

} // namespace qel::batch
