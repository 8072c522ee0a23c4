#include "reason/ZeroReasons.h"

#include "cube/CubeConnection.h"
#include "platform/value/AutomationError.h"
#include "platform/value/ValueText.h"
#include "reason/PeriodNotes.h"
#include "text/Text.h"

#include <array>
#include <iterator>

namespace qel {

namespace {

constexpr const char* everything = "All";

Variant FirstOf(const KeyList& keys) { return keys.empty() ? Variant() : keys.front(); }

/// The call without one restriction, and what to say of it; only those that restrict anything.
std::vector<std::pair<Reason, ValueCall>> WithoutOne(const ValueCall& call,
                                                     const ModSetCube::ValueQuery& query) {
    std::vector<std::pair<Reason, ValueCall>> others;
    const auto add = [&](const char* name, const std::string& key, auto field, auto value) {
        others.emplace_back(Reason{ReasonCode::Without, {name, key}}, call);
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

std::vector<Reason> ZeroReasons::Why(const FormulaCall& call, const FormulaResult& result) {
    const bool isValue = std::holds_alternative<ValueCall>(call.arguments);
    if (isValue && IsOutdated(result)) {
        return {{ReasonCode::OutdatedCube}};
    }
    if (isValue ? !ShowsZero(result, locale_) : !result.failure) {
        return {};
    }
    auto reasons = Of(call);
    if (!reasons.empty()) {
        return reasons;
    }
    return result.failure ? std::vector{FailureReason(*result.failure)} : Alternatives(call);
}

std::vector<Reason> ZeroReasons::Of(const FormulaCall& call) {
    const auto* value = std::get_if<ValueCall>(&call.arguments);
    if (value == nullptr) {
        return {};
    }
    try {
        if (!OpenCubeOf(*value)) {
            return {};
        }
        auto reasons = ReasonsInDates(thread_.dates, *value, call.given, locale_);
        auto missing = MembersOfOpen(call).missing;
        std::move(missing.begin(), missing.end(), std::back_inserter(reasons));
        return reasons;
    } catch (const AutomationError& error) {
        ModSetCube::DropConnection(thread_);
        return {{ReasonCode::Failure, {error.Description()}}};
    }
}

QueryMembers ZeroReasons::MembersOf(const FormulaCall& call) {
    const auto* value = std::get_if<ValueCall>(&call.arguments);
    return value != nullptr && OpenCubeOf(*value) ? MembersOfOpen(call) : QueryMembers{};
}

QueryMembers ZeroReasons::MembersOfOpen(const FormulaCall& call) {
    if (!(namesOf_ == opened_)) {
        names_.clear();
        namesOf_ = opened_;
    }
    return FindQueryMembers(*ModSetCube::OpenCatalog(thread_)->CubeAt(0), QueryOf(call), names_);
}

std::vector<Reason> ZeroReasons::Ignored(const FormulaCall& call) const {
    const auto* value = std::get_if<ValueCall>(&call.arguments);
    if (value == nullptr) {
        return {};
    }
    const auto query = QueryOf(call);
    std::vector<Reason> ignored;
    if (query.obsPart == ModSetCube::ObsPart::Nothing && !ModSetCube::IsUnrestricted(query.obsMember)) {
        ignored.push_back({ReasonCode::Ignored, {"ObsMember", query.obsMember, "ObsLevel"}});
    }
    if (query.summaryLevel.empty() && !ModSetCube::IsUnrestricted(query.summaryMember)) {
        ignored.push_back({ReasonCode::Ignored, {"Seif_level", query.summaryMember, "Summary_Group"}});
    }
    return ignored;
}

std::vector<Reason> ZeroReasons::Alternatives(const FormulaCall& call) {
    const auto* value = std::get_if<ValueCall>(&call.arguments);
    if (value == nullptr) {
        return {};
    }
    std::vector<Reason> found;
    try {
        auto others = WithoutOne(*value, QueryOf(call));
        if (OpenCubeOf(*value)) {
            others.emplace_back(Reason{ReasonCode::WithoutDates}, *value);
            others.back().second.From_Date = thread_.dates.CubeMinDate;
            others.back().second.To_Date = thread_.dates.CubeMaxDate;
        }
        ModSetCube::ThreadState thread;
        OrmQelFunction object({thread, providers_, locale_});
        for (auto& [reason, other] : others) {
            const auto result = RunFormula(object, {call.function, other, call.given});
            if (!result.failure && !ShowsZero(result, locale_)) {
                reason.fields.emplace_back(ValueText(result.value));
                found.push_back(std::move(reason));
            }
        }
    } catch (const AutomationError&) {
        return found;
    }
    if (found.empty()) {
        found.push_back({ReasonCode::NothingTogether});
    }
    return found;
}

} // namespace qel
