#include "cli/ZeroReasons.h"

#include "cli/MemberReasons.h"
#include "cli/PeriodNotes.h"
#include "cli/RunFormula.h"
#include "cli/ValueText.h"
#include "cube/CubeConnection.h"
#include "platform/value/AutomationError.h"
#include "text/Text.h"

#include <fmt/format.h>

#include <array>

namespace qel {

namespace {

constexpr const char* everything = "All";

Variant FirstOf(const KeyList& keys) { return keys.empty() ? Variant() : keys.front(); }

/// The call without one restriction, and how that one is named; only those that restrict anything.
std::vector<std::pair<std::string, ValueCall>> WithoutOne(const ValueCall& call,
                                                          const ModSetCube::ValueQuery& query) {
    std::vector<std::pair<std::string, ValueCall>> others;
    const auto add = [&](const char* name, const std::string& key, auto field, auto value) {
        others.emplace_back(fmt::format("{} \"{}\"", name, key), call);
        others.back().second.*field = value;
    };
    const Variant allKeys = Variant::List({everything});
    if (query.obsPart != ModSetCube::ObsPart::Nothing) {
        add("ObsMember", query.obsMember, &ValueCall::ObsLevel, allKeys);
    }
    if (!query.activity.empty()) {
        add("ActivityList", query.activity, &ValueCall::ActivityList, allKeys);
    }
    if (!query.summaryLevel.empty()) {
        add("Seif_level", query.summaryMember, &ValueCall::Summary_Group, everything);
    }
    const std::array texts = {
        std::tuple("Accounts", query.accounts, &ValueCall::Accounts),
        std::tuple("MoneySet", query.moneySet, &ValueCall::MoneySet),
        std::tuple("Plbs", query.plbs, &ValueCall::Plbs),
        std::tuple("RH", query.rh, &ValueCall::RH),
        std::tuple("Firma", query.firma, &ValueCall::Firma),
        std::tuple("Opening_Balance", query.openingBalance, &ValueCall::Opening_Balance),
    };
    for (const auto& [name, key, field] : texts) {
        if (!key.empty()) {
            add(name, key, field, everything);
        }
    }
    return others;
}

} // namespace

ModSetCube::ValueQuery ZeroReasons::QueryOf(const FormulaCall& call) const {
    const auto& value = std::get<ValueCall>(call.arguments);
    const auto first = [&](const Variant& list) { return FirstOf(KeysOf(call.function, list, locale_)); };
    const auto obsMembers = WithQuotesRestored(KeysOf(call.function, value.ObsMember, locale_), locale_);
    return ModSetCube::QueryOf(value,
                               {first(value.ObsName), first(value.ObsNum), first(value.ObsLevel),
                                FirstOf(obsMembers), first(value.ActivityList)},
                               locale_);
}

bool ZeroReasons::OpenCubeOf(const ValueCall& call) {
    return ModSetCube::EnsureCurrentCubeOpen(
        thread_, providers_, opened_,
        {std::string(Trimmed(call.cubeFile)), std::string(Trimmed(call.CubeName))});
}

std::vector<std::string> ZeroReasons::Of(const FormulaCall& call) {
    const auto* value = std::get_if<ValueCall>(&call.arguments);
    if (value == nullptr) {
        return {};
    }
    try {
        if (!OpenCubeOf(*value)) {
            return {};
        }
        auto reasons = ReasonsInDates(thread_.dates, *value, call.given, locale_);
        const auto missing = FindMissingMembers(*ModSetCube::OpenCatalog(thread_)->CubeAt(0), QueryOf(call));
        reasons.insert(reasons.end(), missing.begin(), missing.end());
        return reasons;
    } catch (const AutomationError& error) {
        ModSetCube::DropConnection(thread_);
        return {error.Description()};
    }
}

std::vector<std::string> ZeroReasons::Ignored(const FormulaCall& call) const {
    const auto* value = std::get_if<ValueCall>(&call.arguments);
    if (value == nullptr) {
        return {};
    }
    const auto query = QueryOf(call);
    std::vector<std::string> ignored;
    if (query.obsPart == ModSetCube::ObsPart::Nothing && !ModSetCube::IsUnrestricted(query.obsMember)) {
        ignored.push_back(
            fmt::format("ObsMember \"{}\" is ignored, because ObsLevel is \"All\"", query.obsMember));
    }
    if (query.summaryLevel.empty() && !ModSetCube::IsUnrestricted(query.summaryMember)) {
        ignored.push_back(fmt::format("Seif_level \"{}\" is ignored, because Summary_Group is \"All\"",
                                      query.summaryMember));
    }
    return ignored;
}

std::vector<std::string> ZeroReasons::Alternatives(const FormulaCall& call) {
    const auto* value = std::get_if<ValueCall>(&call.arguments);
    if (value == nullptr) {
        return {};
    }
    std::vector<std::string> found;
    try {
        auto others = WithoutOne(*value, QueryOf(call));
        if (OpenCubeOf(*value)) {
            others.emplace_back("these dates", *value);
            others.back().second.From_Date = thread_.dates.CubeMinDate;
            others.back().second.To_Date = thread_.dates.CubeMaxDate;
        }
        ModSetCube::ThreadState thread;
        OrmQelFunction object({thread, providers_, locale_});
        for (const auto& [what, other] : others) {
            const auto result = RunFormula(object, {call.function, other, call.given});
            if (!result.failure && !ShowsZero(result, locale_)) {
                found.push_back(fmt::format("without {} it is {}", what, ValueText(result.value)));
            }
        }
    } catch (const AutomationError&) {
        return found;
    }
    if (found.empty()) {
        found.emplace_back("no amount has all of these together, nor with any one of them left out");
    }
    return found;
}

} // namespace qel
