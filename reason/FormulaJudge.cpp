#include "reason/FormulaJudge.h"

#include "platform/data/ConnectionText.h"
#include "text/Text.h"
#include "text/Utf8Path.h"

#include <filesystem>

namespace qel {

Judgement FormulaJudge::Of(const FormulaCall& call, const FormulaResult& result) {
    const auto [cubeFile, cubeName] =
        std::visit([](const auto& arguments) { return std::pair(arguments.cubeFile, arguments.CubeName); },
                   call.arguments);
    const bool isValue = std::holds_alternative<ValueCall>(call.arguments);
    if (isValue && IsOutdated(result)) {
        return {Verdict::Outdated, {{ReasonCode::OutdatedCube}}};
    }
    if (result.masked.empty() && !result.failure) {
        return {};
    }
    const std::string file(Trimmed(cubeFile));
    if (IsMissing(file)) {
        return {Verdict::NoFile, {{ReasonCode::NoFile, {file}}}};
    }
    auto& reasons = reasons_[file + '\n' + cubeName];
    if (!reasons) {
        reasons = std::make_unique<ZeroReasons>(providers_, locale_);
    }
    Judgement judgement{Verdict::HiddenError, reasons->Why(call, result)};
    if (judgement.reasons.empty() && result.failure) { // a function that shows its error
        judgement.reasons = {FailureReason(*result.failure)};
    }
    return judgement;
}

bool FormulaJudge::IsMissing(const std::string& cubeFile) {
    if (IsServerAddress(cubeFile)) {
        return false;
    }
    const auto [known, isNew] = missing_.try_emplace(cubeFile, false);
    if (isNew) {
        std::error_code failure; // set for an invalid path
        known->second = !std::filesystem::exists(PathFromSetting(cubeFile), failure);
    }
    return known->second;
}

} // namespace qel
