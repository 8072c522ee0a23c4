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
      function_({thread_, *embedded_, locale_}) {}

FormulaCell::FormulaCell(std::string cubeFile, std::uint64_t variety, Providers providers)
    : cubeFile_(std::move(cubeFile)), variety_(variety), function_({thread_, std::move(providers), locale_}) {
}

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

ValueCall FormulaCell::CallOf(const Selection& selection) {
    ValueCall call;
    call.cubeFile = cubeFile_;
    call.CubeName = selection.cube == LedgerCube::Months ? "LedgerFNC" : "LedgerHebrewFNC";
    // Blanks around "All" would make the summary level a level's name.
    call.Summary_Group = selection.summaryLevel.empty() ? "All" : selection.summaryLevel;
    call.Seif_level = Text(selection.summaryMember);
    call.Accounts = Text(selection.account);
    call.Measure = Text(selection.measure);
    call.MoneySet = Text(selection.moneySet);
    call.Plbs = Text(selection.plbs);
    call.RH = Text(selection.rh);
    call.Firma = Text(selection.firm);
    call.Opening_Balance = Text(selection.openingBalance);
    call.ActivityList = Key(selection.activity);
    call.ObsMember = OneKey(QuotesCarried(selection.obsMember));
    call.ObsLevel = OneKey(selection.obsLevel.empty() ? "All" : selection.obsLevel);
    call.ObsNum = NumberKey(selection.obsNumber);
    call.ObsName = OneKey(selection.obsName);
    call.From_Date = DateOrNone(selection.from);
    call.To_Date = DateOrNone(selection.to);
    return call;
}

double FormulaCell::Value(const Selection& selection) {
    const Variant result = function_.QeLF1(CallOf(selection)).value;
    if (result.Is<double>()) {
        return result.As<double>();
    }
    if (result.Is<std::int16_t>()) {
        return result.As<std::int16_t>();
    }
    throw std::runtime_error("A cell holds a " + result.TypeName() + " for " + Describe(selection));
}

} // namespace qel::ledger
