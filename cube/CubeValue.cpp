#include "cube/CubeValue.h"

#include "cube/ObsMembers.h"
#include "cube/ValueStatement.h"
#include "support/ClTimming.h"

#include <utility>

namespace qel::ModSetCube {

namespace {

const std::vector<std::int32_t> firstColumnAndRow = {0, 0};

CubeValue Zero() { return {std::int16_t{0}, std::nullopt}; }

CubeValue Failed(const AutomationError& error) { return {"#ERR " + std::to_string(error.Number()), error}; }

bool IsEmptyCell(const Variant& value) {
    return value.Is<Null>() || value.Is<Empty>() ||
           (value.Is<std::string>() && value.As<std::string>().empty());
}

} // namespace

PreparedValue PrepareCubeValue(ThreadState& thread, const Locale& locale, const ValueCall& call,
                               const ValueKeys& keys, DayRange days) {
    PreparedValue prepared;
    try {
        if (auto known = ClampToCube(thread.dates, days)) {
            prepared.content = CubeValue{std::move(*known), std::nullopt};
            return prepared;
        }
        auto& query = prepared.content.emplace<ValueQuery>(QueryOf(call, keys, locale));
        prepared.hasSlicers = true;
        if (query.obsPart == ObsPart::LevelMember) {
            query.obsMembers = FindObsMembers(thread, query.obsLevel, query.obsMember);
        }
        if (auto span = FindPeriods(thread.dates, days)) {
            query.span = std::move(*span);
        } else {
            prepared.content = Zero();
        }
    } catch (const AutomationError& error) {
        prepared.content = Failed(error);
    }
    return prepared;
}

CellAnswer ReadCell(const ProviderConnection& server, const std::string& statement) {
    try {
        ClTimming timing;
        timing.Start();
        const auto cellset = server.provider.CreateCellset();
        cellset->Open(statement, server.connection);
        timing.Finish();
        Variant value = cellset->Value(firstColumnAndRow);
        cellset->Close();
        return value;
    } catch (const AutomationError& error) {
        return error;
    }
}

CellAnswer ReadCell(const ThreadState& thread, const Providers& providers, const ValueQuery& query) {
    const std::string statement = ComposeValueStatement(query);
    providers.Sending(statement);
    return ReadCell({*thread.provider, thread.CubeConnection}, statement);
}

std::optional<CellAnswer> ReadKnownCell(const PreparedCell& cell) {
    try {
        return cell.Value();
    } catch (const AutomationError&) {
        return std::nullopt;
    }
}

CellAnswer ReadCellAndKeep(ThreadState& thread, const Providers& providers, const ValueQuery& query,
                           std::string key) {
    auto cell = providers.observer == nullptr ? thread.CubeConnection->Prepare(InParts(query)) : nullptr;
    auto answer = cell ? ReadKnownCell(*cell) : std::nullopt;
    if (!answer) {
        return ReadCell(thread, providers, query);
    }
    thread.knownCells.Keep(std::move(key), std::move(cell));
    return std::move(*answer);
}

CubeValue ValueOf(CellAnswer answer) {
    if (const auto* error = std::get_if<AutomationError>(&answer)) {
        return Failed(*error);
    }
    auto& value = std::get<Variant>(answer);
    return IsEmptyCell(value) ? Zero() : CubeValue{std::move(value), std::nullopt};
}

CubeValue GetCubeValue(ThreadState& thread, const Providers& providers, const Locale& locale,
                       const ValueCall& call, const ValueKeys& keys, DayRange days) {
    PreparedValue prepared = PrepareCubeValue(thread, locale, call, keys, days);
    if (auto* known = std::get_if<CubeValue>(&prepared.content)) {
        return std::move(*known);
    }
    return ValueOf(ReadCell(thread, providers, std::get<ValueQuery>(prepared.content)));
}

} // namespace qel::ModSetCube
