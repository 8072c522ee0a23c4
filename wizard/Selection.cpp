#include "wizard/Selection.h"

#include "platform/value/AutomationError.h"
#include "platform/value/Conversion.h"
#include "text/Text.h"
#include "wizard/LoadedCube.h"

namespace qel {

namespace {

constexpr char memberSeparator = '\t'; // never part of a member's name

Variant KeyArgument(const std::string& key) { return InFormula(InBrackets(key)); }

Variant OneKey(const std::string& key) {
    if (key.empty()) {
        return Variant::List({Variant()});
    }
    const std::string name = InBrackets(key);
    // The formula writer replaces the quotes of a single key by no-break spaces, and the value function
    // restores them only for OBS members. Statements use the first key of a list, so adding a second key
    // keeps the quotes.
    if (key.find('"') != std::string::npos) {
        return Variant::List({InFormula(name), ""});
    }
    return Variant::List({name});
}

/// A member of [OBS] is looked up by its exact name; a cost centre's name becomes part of the statement.
Variant ObsMembers(const Selection& selection) {
    const auto& members = selection.obsMembers;
    std::vector<Variant> keys;
    keys.reserve(members.size());
    for (const std::string& member : members) {
        std::string key = selection.obsLevel == costCentersLevel ? InBrackets(member) : member;
        // The formula writer does this only for a single key; the value function undoes it for all keys.
        if (members.size() > 1) {
            key = ReplaceAll(key, "\"", "\xC2\xA0");
        }
        keys.emplace_back(std::move(key));
    }
    return Variant::List(keys.empty() ? std::vector<Variant>(1) : std::move(keys));
}

std::string JoinMembers(const std::vector<std::string>& members) {
    std::string text;
    for (const std::string& member : members) {
        text += (text.empty() ? "" : std::string(1, memberSeparator)) + member;
    }
    return text;
}

std::vector<std::string> SplitMembers(const std::string& text) {
    std::vector<std::string> members;
    for (std::size_t start = 0; start < text.size();) {
        const auto end = std::min(text.find(memberSeparator, start), text.size());
        members.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return members;
}

Variant TextOrNull(const std::string& text) { return text.empty() ? Variant(Null{}) : Variant(text); }

} // namespace

FormulaArgs ArgumentsOf(const Selection& selection, const Locale& locale) {
    return {InFormula(selection.cubeFile),
            InFormula(selection.cubeName),
            OneKey(selection.obsName),
            OneKey(selection.obsNumber),
            OneKey(selection.obsLevel),
            ObsMembers(selection),
            OneKey(selection.activity),
            KeyArgument(selection.summaryLevel),
            KeyArgument(selection.summaryMember),
            KeyArgument(selection.account),
            KeyArgument(selection.measure),
            KeyArgument(selection.moneySet),
            KeyArgument(selection.plbs),
            KeyArgument(selection.rh),
            KeyArgument(selection.firma),
            KeyArgument(selection.openingBalance),
            FormatShortDate(selection.from, locale),
            FormatShortDate(selection.to, locale)};
}

TableRow RowOf(const Selection& selection) {
    TableRow row;
    for (const std::string& text :
         {selection.cubeFile, selection.cubeName, selection.obsName, selection.obsNumber, selection.obsLevel,
          JoinMembers(selection.obsMembers), selection.activity, selection.summaryLevel,
          selection.summaryMember, selection.account, selection.measure, selection.moneySet, selection.plbs,
          selection.rh, selection.firma, selection.openingBalance}) {
        row.push_back(TextOrNull(text));
    }
    row.emplace_back(selection.from);
    row.emplace_back(selection.to);
    return row;
}

Selection SelectionOf(const TableRow& row, const Locale& locale) {
    Selection selection;
    if (row.size() < std::tuple_size_v<FormulaArgs>) {
        throw PlatformError(ErrorNumber::SubscriptOutOfRange);
    }
    const auto text = [&](std::size_t column, const char* otherwise = "") {
        return row[column].Is<Null>() ? std::string(otherwise) : ToText(row[column], locale);
    };
    const auto date = [&](std::size_t column) {
        return row[column].Is<Null>() ? AutomationDate{} : ToDate(row[column], locale);
    };
    selection.cubeFile = text(FormulaArg::CubeFile);
    selection.cubeName = text(FormulaArg::CubeName);
    selection.obsName = text(FormulaArg::ObsName);
    selection.obsNumber = text(FormulaArg::ObsNum);
    selection.obsLevel = text(FormulaArg::ObsLevel, allMembers);
    selection.obsMembers = SplitMembers(text(FormulaArg::ObsMember));
    selection.activity = text(FormulaArg::ActivityList, allMembers);
    selection.summaryLevel = text(FormulaArg::SummaryGroup, allMembers);
    selection.summaryMember = text(FormulaArg::SeifLevel, allMembers);
    selection.account = text(FormulaArg::Accounts, allMembers);
    selection.measure = text(FormulaArg::Measure);
    selection.moneySet = text(FormulaArg::MoneySet, allMembers);
    selection.plbs = text(FormulaArg::Plbs, allMembers);
    selection.rh = text(FormulaArg::Rh, allMembers);
    selection.firma = text(FormulaArg::Firma, allMembers);
    selection.openingBalance = text(FormulaArg::OpeningBalance, allMembers);
    selection.from = date(FormulaArg::FromDate);
    selection.to = date(FormulaArg::ToDate);
    return selection;
}

} // namespace qel
