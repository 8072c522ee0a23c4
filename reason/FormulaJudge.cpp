#include "reason/FormulaJudge.h"

#include "lang/StringTable.h"
#include "platform/data/ConnectionText.h"
#include "platform/value/AutomationError.h"
#include "platform/value/FailureText.h"
#include "reason/RunFormula.h"
#include "text/Text.h"
#include "text/Utf8Path.h"

#include <filesystem>
#include <tuple>

namespace qel {

std::string JudgementText(const Judgement& judgement, std::int16_t language) {
    std::string text = judgement.failure;
    for (const Reason& reason : judgement.reasons) {
        text += (text.empty() ? "" : "; ") + ReasonText(reason, language);
    }
    return text;
}

Judgement FormulaJudge::Of(const FormulaCall& call, const std::optional<FormulaResult>& known) {
    const auto& [file, cube] =
        std::visit([](const auto& arguments) { return std::tie(arguments.cubeFile, arguments.CubeName); },
                   call.arguments);
    try {
        return OfResult(call, file, cube,
                        known ? *known : RunFormula(batch_.FunctionOf(file, cube, locale_), call));
    } catch (const AutomationError& error) {
        return {.verdict = Verdict::Fails, .reasons = {}, .failure = FailureText(error)};
    }
}

Judgement FormulaJudge::OfResult(const FormulaCall& call, const std::string& cubeFile,
                                 const std::string& cube, const FormulaResult& result) {
    const bool isValue = std::holds_alternative<ValueCall>(call.arguments);
    if (isValue && IsOutdated(result)) {
        return {.verdict = Verdict::Outdated, .reasons = {{ReasonCode::OutdatedCube}}, .failure = {}};
    }
    if (result.masked.empty() && !result.failure) {
        return {};
    }
    const std::string file(Trimmed(cubeFile));
    if (IsMissing(file)) {
        return {.verdict = Verdict::NoFile, .reasons = {{ReasonCode::NoFile, {file}}}, .failure = {}};
    }
    auto& reasons = reasons_[file + '\n' + cube];
    if (!reasons) {
        reasons = std::make_unique<ZeroReasons>(providers_, locale_);
    }
    Judgement judgement{
        .verdict = Verdict::HiddenError, .reasons = reasons->Why(call, result), .failure = {}};
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
