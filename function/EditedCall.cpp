#include "function/EditedCall.h"

#include "cube/ValueQuery.h"
#include "function/ArgumentText.h"
#include "function/FormulaResult.h"
#include "function/formula/ComputedArgument.h"
#include "function/formula/FormulaError.h"
#include "function/formula/ParseFormula.h"
#include "platform/value/AutomationError.h"
#include "platform/value/Conversion.h"
#include "text/Text.h"
#include "wizard/LoadedCube.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace qel {

namespace {

namespace Arg = FormulaArg;
using ModSetCube::ObsPart;
using ModSetCube::ValueQuery;

constexpr std::size_t nameArguments = 4;

std::string WithoutBrackets(const std::string& key) { return ReplaceAll(key, "]]", "]"); }

std::string MemberOrAll(const std::string& key) { return key.empty() ? allMembers : WithoutBrackets(key); }

std::vector<Variant> ElementsOf(const Variant& value) {
    return value.IsArray() ? value.As<std::shared_ptr<const VariantArray>>()->elements
                           : std::vector<Variant>{value};
}

/// The keys as texts; one that is empty stays Empty. Raises as ToText.
Variant KeysOf(const Variant& value, const Locale& locale) {
    std::vector<Variant> keys;
    for (const Variant& element : ElementsOf(value)) {
        std::string text = ToText(element, locale);
        keys.push_back(text.empty() ? Variant() : Variant(std::move(text)));
    }
    return Variant::List(std::move(keys));
}

/// The value of the one cell that a reference names; any other value itself.
const Variant& OnlyCell(const Variant& value) {
    if (!value.IsArray()) {
        return value;
    }
    const auto& elements = value.As<std::shared_ptr<const VariantArray>>()->elements;
    return elements.size() == 1 ? elements.front() : value;
}

std::string TrimmedText(const Variant& value, const Locale& locale) {
    return std::string(Trimmed(ToText(value, locale)));
}

AutomationDate DateOf(const Variant& value, const Locale& locale) {
    return value.Is<Empty>() ? AutomationDate() : ToDate(value, locale);
}

/// The value of an expression that can be computed without the spreadsheet; nothing for any other expression
/// and for a single reference.
std::optional<Variant> Computed(const std::string& argument, const ArgumentReader& reader) {
    const auto lookUp = [&](const std::string& word) {
        if (word == argument) { // a single reference may name a list of cells
            throw PlatformError(ErrorNumber::TypeMismatch);
        }
        const Variant value = reader.evaluate(word);
        const Variant& cell = OnlyCell(value);
        if (cell.Is<double>() &&
            cell.As<double>() == 0) { // it may be an empty cell, which adds nothing to a text
            throw PlatformError(ErrorNumber::TypeMismatch);
        }
        return cell;
    };
    if (reader.locale.nullDate != 0) { // its dates are other numbers
        return std::nullopt;
    }
    try {
        return ComputedArgument(argument, lookUp);
    } catch (const AutomationError&) { // the spreadsheet knows better
        return std::nullopt;
    }
}

/// Empty for an omitted argument; none for one that is no constant.
std::optional<Variant> ConstantOf(const std::string& argument, const Locale& locale) {
    if (argument.empty()) {
        return Variant();
    }
    try {
        const FormulaDates dates = {.nullDate = locale.nullDate, .takesYearsBefore1900 = false};
        const auto constant = ParseFormula("F(" + argument + ")", dates).arguments;
        if (constant.size() == 1) {
            return constant.front().value;
        }
    } catch (const FormulaError&) { // NOLINT(bugprone-empty-catch): it is no constant
    }
    return std::nullopt;
}

Variant Evaluated(const std::string& argument, const ArgumentReader& reader) {
    auto computed = Computed(argument, reader);
    return computed ? *std::move(computed) : reader.evaluate(argument);
}

ValueQuery QueryOf(const ValueCall& call, const Locale& locale) {
    const auto first = [](const Variant& list) { return ElementsOf(list).front(); };
    return ModSetCube::QueryOf(call,
                               {first(call.ObsName), first(call.ObsNum), first(call.ObsLevel),
                                FirstWithQuotesRestored(ElementsOf(call.ObsMember), locale),
                                first(call.ActivityList)},
                               locale);
}

/// The OBS members without the empty key that may end the list.
std::vector<std::string> ObsMembersOf(const ValueCall& call, const Locale& locale) {
    std::vector<std::string> members;
    for (const Variant& key : WithQuotesRestored(ElementsOf(call.ObsMember), locale)) {
        if (std::string member(Trimmed(key.As<std::string>())); !member.empty()) {
            members.push_back(std::move(member));
        }
    }
    return members;
}

bool TakesList(std::size_t argument) { return argument >= Arg::ObsName && argument <= Arg::ActivityList; }

/// The texts of a call, where the arguments have them; null for the others.
constexpr std::array<std::string ValueCall::*, 18> texts = {&ValueCall::cubeFile,
                                                            &ValueCall::CubeName,
                                                            nullptr,
                                                            nullptr,
                                                            nullptr,
                                                            nullptr,
                                                            nullptr,
                                                            &ValueCall::Summary_Group,
                                                            &ValueCall::Seif_level,
                                                            &ValueCall::Accounts,
                                                            &ValueCall::Measure,
                                                            &ValueCall::MoneySet,
                                                            &ValueCall::Plbs,
                                                            &ValueCall::RH,
                                                            &ValueCall::Firma,
                                                            &ValueCall::Opening_Balance,
                                                            nullptr,
                                                            nullptr};

/// The part of a query that an argument gives alone; null for the others.
constexpr std::array<std::string ValueQuery::*, 18> keys = {nullptr,
                                                            &ValueQuery::cubeName,
                                                            &ValueQuery::obsName,
                                                            nullptr,
                                                            nullptr,
                                                            nullptr,
                                                            &ValueQuery::activity,
                                                            &ValueQuery::summaryLevel,
                                                            nullptr,
                                                            &ValueQuery::accounts,
                                                            &ValueQuery::measure,
                                                            &ValueQuery::moneySet,
                                                            &ValueQuery::plbs,
                                                            &ValueQuery::rh,
                                                            &ValueQuery::firma,
                                                            &ValueQuery::openingBalance,
                                                            nullptr,
                                                            nullptr};

} // namespace

ArgumentReader ArgumentReader::Of(const FormulaCell& cell,
                                  std::function<std::string(const std::string&)> fullPath,
                                  const Locale& locale) {
    return {[&cell](const std::string& expression) { return cell.Evaluate(expression); }, std::move(fullPath),
            locale, cell.TakesTextsAsKeys()};
}

Variant ArgumentReader::Read(const std::string& argument) const {
    auto constant = ConstantOf(argument, locale);
    return constant ? *std::move(constant) : Evaluated(argument, *this);
}

Variant ArgumentReader::ReadValue(const std::string& argument) const {
    auto constant = ConstantOf(argument, locale);
    return constant ? *std::move(constant) : OnlyCell(Evaluated(argument, *this));
}

EditedValueCall::EditedValueCall(std::vector<std::string> arguments, const ArgumentReader& reader)
    : arguments_(std::move(arguments)), locale_(reader.locale), takesTextsAsKeys_(reader.takesTextsAsKeys) {
    arguments_.resize(std::max(arguments_.size(), isFaulty_.size()));
    for (std::size_t i = 0; i < isFaulty_.size(); ++i) {
        Take(i, Variant());
        try {
            Take(i, TakesList(i) ? reader.Read(arguments_[i]) : reader.ReadValue(arguments_[i]));
        } catch (const AutomationError&) {
            isFaulty_[i] = true;
        }
    }
    call_.cubeFile = reader.fullPath(call_.cubeFile);
}

void EditedValueCall::Take(std::size_t argument, const Variant& value) {
    if (argument >= Arg::FromDate) {
        (argument == Arg::FromDate ? call_.From_Date : call_.To_Date) = DateOf(value, locale_);
    } else if (texts[argument] != nullptr) {
        call_.*texts[argument] = TrimmedText(value, locale_);
    } else if (value.Is<std::string>() && !takesTextsAsKeys_) {
        call_.*valueCallLists[argument - Arg::ObsName] = value;
    } else {
        call_.*valueCallLists[argument - Arg::ObsName] = KeysOf(value, locale_);
    }
}

std::vector<std::size_t> EditedValueCall::Faulty() const {
    std::vector<std::size_t> faulty;
    for (std::size_t i = 0; i < isFaulty_.size(); ++i) {
        if (isFaulty_[i]) {
            faulty.push_back(i);
        }
    }
    return faulty;
}

Selection EditedValueCall::Choices() const {
    const ValueQuery query = QueryOf(call_, locale_);
    Selection choices;
    choices.cubeFile = call_.cubeFile;
    choices.cubeName = query.cubeName;
    choices.obsName = WithoutBrackets(query.obsName);
    choices.obsNumber = WithoutBrackets(query.obsNumber.value_or(""));
    if (query.obsPart != ObsPart::Nothing) {
        choices.obsLevel = query.obsLevel;
        choices.obsMembers = ObsMembersOf(call_, locale_);
        choices.isObsMemberShown = choices.obsMembers.size() == 1;
    }
    if (query.obsPart == ObsPart::CostCenter) {
        std::transform(choices.obsMembers.begin(), choices.obsMembers.end(), choices.obsMembers.begin(),
                       WithoutBrackets);
    }
    choices.activity = MemberOrAll(query.activity);
    choices.summaryLevel = MemberOrAll(query.summaryLevel);
    choices.summaryMember = MemberOrAll(query.summaryLevel.empty() ? "" : query.summaryMember);
    choices.account = MemberOrAll(query.accounts);
    choices.measure = WithoutBrackets(query.measure);
    choices.moneySet = MemberOrAll(query.moneySet);
    choices.plbs = MemberOrAll(query.plbs);
    choices.rh = MemberOrAll(query.rh);
    choices.firma = MemberOrAll(query.firma);
    choices.openingBalance = MemberOrAll(query.openingBalance);
    choices.from = call_.From_Date.IsZero() ? call_.To_Date : call_.From_Date;
    choices.to = call_.To_Date;
    return choices;
}

bool EditedValueCall::IsPlainText(std::size_t argument) const {
    return TakesList(argument) && (call_.*valueCallLists[argument - Arg::ObsName]).Is<std::string>();
}

bool EditedValueCall::MeansTheSame(std::size_t argument, const ValueCall& chosen) const {
    const ValueQuery before = QueryOf(call_, locale_), now = QueryOf(chosen, locale_);
    const bool isSameEnd = call_.To_Date == chosen.To_Date;
    if (IsPlainText(argument)) {
        return false;
    }
    switch (argument) {
    case Arg::CubeFile:
        return call_.cubeFile == chosen.cubeFile;
    case Arg::ObsNum:
        return before.obsNumber == now.obsNumber;
    case Arg::ObsLevel:
        return before.obsLevel == now.obsLevel;
    case Arg::ObsMember:
        return before.obsPart == now.obsPart &&
               (before.obsPart == ObsPart::Nothing ||
                ObsMembersOf(call_, locale_) == ObsMembersOf(chosen, locale_));
    case Arg::SeifLevel:
        return before.summaryLevel.empty() ? now.summaryLevel.empty()
                                           : before.summaryMember == now.summaryMember;
    case Arg::FromDate: // without a first date, the last one stands for both
        return call_.From_Date.IsZero() ? isSameEnd && chosen.From_Date == chosen.To_Date
                                        : call_.From_Date == chosen.From_Date;
    case Arg::ToDate:
        return isSameEnd;
    default:
        return before.*keys[argument] == now.*keys[argument];
    }
}

std::vector<std::string> EditedValueCall::Rewritten(const ValueCall& chosen, FormulaArgs composed,
                                                    char separator) const {
    std::vector<std::string> rewritten = arguments_;
    for (std::size_t i = 0; i < composed.size(); ++i) {
        if (isFaulty_[i] || !MeansTheSame(i, chosen)) {
            rewritten[i] = ComposeArgument(composed[i], locale_, std::string(1, separator));
        }
    }
    while (!rewritten.empty() && rewritten.back().empty()) { // the dates may be left out
        rewritten.pop_back();
    }
    return rewritten;
}

EditedNameCall::EditedNameCall(std::vector<std::string> arguments, const ArgumentReader& reader)
    : arguments_(std::move(arguments)) {
    arguments_.resize(std::max(arguments_.size(), nameArguments));
    for (const std::string& argument : arguments_) {
        try {
            values_.push_back(TrimmedText(reader.ReadValue(argument), reader.locale));
        } catch (const AutomationError&) {
            values_.emplace_back();
        }
    }
    values_.front() = reader.fullPath(values_.front());
}

NamedQuery EditedNameCall::Choice() const {
    NamedQuery choice;
    choice.cubeFile = values_[0];
    choice.cubeName = values_[1];
    choice.dimType = values_[2];
    choice.dataMember = WithoutBrackets(values_[3]);
    return choice;
}

std::vector<std::string> EditedNameCall::Rewritten(const std::vector<std::string>& chosen) const {
    std::vector<std::string> rewritten = arguments_;
    for (std::size_t i = 0; i < chosen.size(); ++i) {
        if (InFormula(values_[i]) != chosen[i]) {
            rewritten[i] = '"' + chosen[i] + '"';
        }
    }
    return rewritten;
}

} // namespace qel
