#pragma once

#include "function/OrmQelFunction.h"

#include <map>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace qel::batch {

/// One of several calls that are evaluated together.
struct BatchedCall {
    const ValueCall* call;
    const Locale* locale;
    bool isQelFuncDemo = false; ///< otherwise QeLF1
};

/// Evaluates value calls over servers, in few statements for many cells. Each cube has an object of the class
/// with a connection of its own: with one for all, it would be opened again at every change between them.
class CallBatch {
public:
    /// Cellsets of the providers may be opened by several threads on one connection.
    explicit CallBatch(Providers providers) : providers_(std::move(providers)) {}

    /// What each call gives; none for a call that is to be evaluated by itself: it raises, or its cell was
    /// not answered.
    std::vector<std::optional<FormulaResult>> Evaluate(std::span<const BatchedCall> calls);

    /// The object for a cube's calls, until it is asked for another one's.
    OrmQelFunction& FunctionOf(const std::string& cubeFile, const std::string& cubeName,
                               const Locale& locale);

private:
    struct CubeCells {
        explicit CubeCells(const Providers& providers) : function({state, providers, locale}) {}

        Locale locale; ///< of the call under way
        ModSetCube::ThreadState state;
        OrmQelFunction function;
    };

    CubeCells& CellsOf(const std::string& cubeFile, const std::string& cubeName, const Locale& locale);

    Providers providers_;
    std::map<std::pair<std::string, std::string>, std::unique_ptr<CubeCells>> cells_;
};

} // namespace qel::batch
