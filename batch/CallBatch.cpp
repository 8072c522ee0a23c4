#include "batch/CallBatch.h"

#include "batch/GridRunner.h"
#include "text/Text.h"

namespace qel::batch {

namespace {

using Results = std::vector<std::optional<FormulaResult>>;

/// The calls over one cube that have to be asked for.
struct CubeCalls {
    std::vector<PreparedCall> prepared;
    std::vector<std::size_t> places;             ///< of the prepared calls among all
    std::vector<std::size_t> queryOf;            ///< their numbers in `queries`
    std::vector<ModSetCube::ValueQuery> queries; ///< each once
    std::map<ModSetCube::ValueQuery, std::size_t> numbers;

    void Add(PreparedCall call, std::size_t place) {
        const auto [number, isNew] = numbers.emplace(*call.query, queries.size());
        if (isNew) {
            queries.push_back(*call.query);
        }
        queryOf.push_back(number->second);
        places.push_back(place);
        prepared.push_back(std::move(call));
    }
};

} // namespace

Results CallBatch::Evaluate(std::span<const BatchedCall> calls) {
    Results results(calls.size());
    std::map<CubeCells*, CubeCalls> byCube;
    for (std::size_t i = 0; i < calls.size(); ++i) {
        const auto& [call, locale, isQelFuncDemo] = calls[i];
        CubeCells& cells = CellsOf(call->cubeFile, call->CubeName, *locale);
        try {
            auto prepared =
                isQelFuncDemo ? cells.function.PrepareQelFuncDemo(*call) : cells.function.PrepareQeLF1(*call);
            if (prepared.query) {
                byCube[&cells].Add(std::move(prepared), i);
            } else {
                results[i] = std::move(prepared.result);
            }
        } catch (const AutomationError&) { // NOLINT(bugprone-empty-catch): its own evaluation raises it
        }
    }
    for (auto& [cells, asked] : byCube) {
        const ModSetCube::ThreadState& thread = cells->state;
        if (!thread.CubeConnection) {
            continue;
        }
        const ProviderConnection server{*thread.provider, thread.CubeConnection};
        auto answers = GridRunner(server, asked.queries).Run(PlanGrids(asked.queries));
        for (std::size_t i = 0; i < asked.prepared.size(); ++i) {
            const std::size_t place = asked.places[i];
            if (const auto& answer = answers[asked.queryOf[i]]) {
                cells->locale = *calls[place].locale;
                results[place] = cells->function.Complete(asked.prepared[i], *answer);
            }
        }
    }
    return results;
}

OrmQelFunction& CallBatch::FunctionOf(const std::string& cubeFile, const std::string& cubeName,
                                      const Locale& locale) {
    return CellsOf(cubeFile, cubeName, locale).function;
}

CallBatch::CubeCells& CallBatch::CellsOf(const std::string& cubeFile, const std::string& cubeName,
                                         const Locale& locale) {
    auto& cells = cells_[{std::string(Trimmed(cubeFile)), std::string(Trimmed(cubeName))}];
    if (!cells) {
        cells = std::make_unique<CubeCells>(providers_);
    }
    cells->locale = locale;
    return *cells;
}

} // namespace qel::batch
