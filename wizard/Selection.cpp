#include "wizard/Selection.h"

#include "platform/value/AutomationError.h"
#include "platform/value/Conversion.h"
#include "text/Text.h"
#include "wizard/LoadedCube.h"

namespace qel {

namespace {

constexpr char memberSeparator = '\t'; // never part of a member's name; also ends a list of one

Variant OneKey(const std::string& key) { return Variant::List({key.empty() ? Variant() : Variant(key)}); }

/// A member of [OBS] is looked up by its exact name; a cost centre's name becomes part of the statement.
Variant ObsMembers(const Selection& selection) {
    std::vector<Variant> keys;
    keys.reserve(selection.obsMembers.size());
    for (const std::string& member : selection.obsMembers) {
        keys.emplace_back(selection.obsLevel == costCentersLevel ? InBrackets(member) : member);
    }
    return Variant::List(keys.empty() ? std::vector<Variant>(1) : std::move(keys));
}

const std::vector<Variant>& KeysOf(const Variant& list) {
    return list.As<std::shared_ptr<const VariantArray>>()->elements;
}

/// The formula writer puts no-break spaces for the quotes of a lone key, and the value function puts quotes
/// back for OBS members alone. Statements use the first key of a list, so a second one keeps the quotes.
Variant OneKeyInFormula(const Variant& list) {
    const Variant& key = KeysOf(list).front();
    if (!key.Is<std::string>() || key.As<std::string>().find('"') == std::string::npos) {
        return list;
    }
    return Variant::List({InFormula(key.As<std::string>()), ""});
}

/// The formula writer carries the quotes of one key, the value function restores those of all.
Variant ObsMembersInFormula(const Variant& list) {
    std::vector<Variant> keys = KeysOf(list);
    if (keys.size() == 1) {
        return list;
    }
    for (Variant& key : keys) {
        key = ReplaceAll(key.As<std::string>(), "\"", "\xC2\xA0");
    }
    return Variant::List(std::move(keys));
}

std::string JoinMembers(const Selection& selection) {
    const auto& members = selection.obsMembers;
    std::string text;
    for (const std::string& member : members) {
        text += (text.empty() ? "" : std::string(1, memberSeparator)) + member;
    }
    return members.size() == 1 && !selection.isObsMemberShown ? text + memberSeparator : text;
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

/// Clears the fields unless one of them differs from the offered ones.
template <class... Fields>
void KeepIfChanged(Selection& selection, const Selection& offered, Fields... fields) {
    if (((selection.*fields == offered.*fields) && ...)) {
        ((selection.*fields = {}), ...);
    }
}

Variant TextOrNull(const std::string& text) { return text.empty() ? Variant(Null{}) : Variant(text); }

} // namespace

ValueCall CallOf(const Selection& selection) {
    return {.cubeFile = selection.cubeFile,
            .CubeName = selection.cubeName,
            .ObsName = OneKey(InBrackets(selection.obsName)),
            .ObsNum = OneKey(InBrackets(selection.obsNumber)),
            .ObsLevel = OneKey(selection.obsLevel), // found by its name as it is
            .ObsMember = ObsMembers(selection),
            .ActivityList = OneKey(InBrackets(selection.activity)),
            .Summary_Group = InBrackets(selection.summaryLevel),
            .Seif_level = InBrackets(selection.summaryMember),
            .Accounts = InBrackets(selection.account),
            .Measure = InBrackets(selection.measure),
            .MoneySet = InBrackets(selection.moneySet),
            .Plbs = InBrackets(selection.plbs),
            .RH = InBrackets(selection.rh),
            .Firma = InBrackets(selection.firma),
            .Opening_Balance = InBrackets(selection.openingBalance),
            .From_Date = selection.from,
            .To_Date = selection.to};
}

FormulaArgs ArgumentsOf(const ValueCall& call, const Locale& locale) {
    return {InFormula(call.cubeFile),
            InFormula(call.CubeName),
            OneKeyInFormula(call.ObsName),
            OneKeyInFormula(call.ObsNum),
            OneKeyInFormula(call.ObsLevel),
            ObsMembersInFormula(call.ObsMember),
            OneKeyInFormula(call.ActivityList),
            InFormula(call.Summary_Group),
            InFormula(call.Seif_level),
            InFormula(call.Accounts),
            InFormula(call.Measure),
            InFormula(call.MoneySet),
            InFormula(call.Plbs),
            InFormula(call.RH),
            InFormula(call.Firma),
            InFormula(call.Opening_Balance),
            FormatShortDate(call.From_Date, locale),
            FormatShortDate(call.To_Date, locale)};
}

Selection ChangedChoices(const Selection& chosen, const Selection& offered) {
    Selection changed = chosen;
    KeepIfChanged(changed, offered, &Selection::obsName, &Selection::obsNumber, &Selection::obsLevel,
                  &Selection::obsMembers, &Selection::isObsMemberShown);
    KeepIfChanged(changed, offered, &Selection::summaryLevel, &Selection::summaryMember);
    for (const auto field :
         {&Selection::activity, &Selection::account, &Selection::measure, &Selection::moneySet,
          &Selection::plbs, &Selection::rh, &Selection::firma, &Selection::openingBalance}) {
        KeepIfChanged(changed, offered, field);
    }
    KeepIfChanged(changed, offered, &Selection::from, &Selection::to);
    return changed;
}

TableRow RowOf(const Selection& selection) {
    TableRow row;
    for (const std::string& text :
         {selection.cubeFile, selection.cubeName, selection.obsName, selection.obsNumber, selection.obsLevel,
          JoinMembers(selection), selection.activity, selection.summaryLevel, selection.summaryMember,
          selection.account, selection.measure, selection.moneySet, selection.plbs, selection.rh,
          selection.firma, selection.openingBalance}) {
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
    const std::string obsMembers = text(FormulaArg::ObsMember);
    selection.obsMembers = SplitMembers(obsMembers);
    selection.isObsMemberShown = !obsMembers.empty() && obsMembers.find(memberSeparator) == std::string::npos;
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
