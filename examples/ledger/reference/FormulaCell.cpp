#include "examples/ledger/reference/FormulaCell.h"

#include <array>
#include <charconv>
#include <stdexcept>

namespace qel::ledger {
namespace {

constexpr std::string_view noBreakSpace = "\u00A0";

/// In an OBS member, formulas write a double quote as a no-break space.
std::string QuotesCarried(const std::string& member) {
    std::string carried;
    for (const char character : member) {
        if (character == '"') {
            carried += noBreakSpace;
        } else {
            carried += character;
        }
    }
    return carried;
}

AutomationDate DateOrNone(const std::optional<CalendarDay>& day) {
    return day ? DateFromDay(*day) : AutomationDate{};
}

Variant OneKey(std::string key) { return Variant::List({Variant(std::move(key))}); }

} // namespace

FormulaCell::FormulaCell(std::string cubeFile, std::uint64_t variety)
    : cubeFile_(std::move(cubeFile)), variety_(variety), embedded_(std::make_unique<EmbeddedDataAccess>()),
      function_(FunctionContext{thread_, *embedded_, locale_}) {}

FormulaCell::FormulaCell(std::string cubeFile, std::uint64_t variety, DataAccess& dataAccess)
    : cubeFile_(std::move(cubeFile)), variety_(variety),
      function_(FunctionContext{thread_, dataAccess, locale_}) {}

std::string FormulaCell::Unrestricted() {
    static constexpr std::array<const char*, 4> ways{"All", "all", " ALL ", ""};
    return ways[variety_.Below(ways.size())];
}

std::string FormulaCell::Text(const std::string& member) {
    if (member.empty()) {
        return Unrestricted();
    }
    return variety_.Below(4) == 0 ? "  " + member + " " : member;
}

Variant FormulaCell::Key(const std::string& member) {
    if (member.empty()) {
        // A plain text, neither array nor range, is not a key.
        return variety_.Below(2) == 0 ? Variant("All") : OneKey(Unrestricted());
    }
    double number = 0;
    const auto [end, error] = std::from_chars(member.data(), member.data() + member.size(), number);
    if (error == std::errc{} && end == member.data() + member.size() && variety_.Below(3) == 0) {
        return Variant(number);
    }
    return OneKey(member);
}

Variant FormulaCell::NumberKey(const std::string& obsNumber) {
    return obsNumber.empty() ? OneKey(std::string(1, '\0')) : Key(obsNumber);
}

double FormulaCell::Value(const Selection& selection) {
    std::string cubeName = selection.cube == LedgerCube::Months ? "LedgerFNC" : "LedgerHebrewFNC";
    // With blanks around it, "All" would be taken as the name of a level.
    std::string summaryLevel = selection.summaryLevel.empty() ? "All" : selection.summaryLevel;
    std::string summaryMember = Text(selection.summaryMember), accounts = Text(selection.account),
                measure = Text(selection.measure), moneySet = Text(selection.moneySet),
                plbs = Text(selection.plbs), rh = Text(selection.rh), firm = Text(selection.firm),
                openingBalance = Text(selection.openingBalance), cubeFile = cubeFile_;
    const Variant result =
        function_.QeLF1(cubeFile, cubeName, OneKey(selection.obsName), NumberKey(selection.obsNumber),
                        OneKey(selection.obsLevel.empty() ? "All" : selection.obsLevel),
                        OneKey(QuotesCarried(selection.obsMember)), Key(selection.activity), summaryLevel,
                        summaryMember, accounts, measure, moneySet, plbs, rh, firm, openingBalance,
                        DateOrNone(selection.from), DateOrNone(selection.to));
    if (result.Is<double>()) {
        return result.As<double>();
    }
    if (result.Is<std::int16_t>()) {
        return result.As<std::int16_t>();
    }
    throw std::runtime_error("A cell holds a " + result.TypeName() + " for " + Describe(selection));
}

} // namespace qel::ledger
