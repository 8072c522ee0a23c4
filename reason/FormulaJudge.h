#pragma once

#include "batch/CallBatch.h"
#include "reason/ZeroReasons.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qel {

enum class Verdict : std::uint8_t {
    Sound,       ///< an amount, also one that is 0, or a name
    HiddenError, ///< 0 or "-" in the place of an error
    Outdated,    ///< "Outdated Cube Version"
    NoFile,      ///< 0 or "-", because the cube's file is missing
    Fails        ///< a cell shows #VALUE!
};

/// What is to be told about a formula.
struct Judgement {
    Verdict verdict = Verdict::Sound;
    std::vector<Reason> reasons; ///< why, unless it is sound or fails
    std::string failure;         ///< of one that fails
};

/// Why, on one line, in a language of lang/StringTable.h; a failure is in the provider's words.
std::string JudgementText(const Judgement& judgement, std::int16_t language);

/// Evaluates many formulas and judges their results: whether a person who reads the sheet would be misled.
class FormulaJudge {
public:
    FormulaJudge(const Providers& providers, const Locale& locale, batch::CallBatch& batch)
        : providers_(providers), locale_(locale), batch_(batch) {}

    /// Evaluates the call unless its result is known. Does not throw.
    Judgement Of(const FormulaCall& call, const std::optional<FormulaResult>& known = std::nullopt);

private:
    Judgement OfResult(const FormulaCall& call, const std::string& cubeFile, const std::string& cube,
                       const FormulaResult& result);
    bool IsMissing(const std::string& cubeFile);

    Providers providers_;
    const Locale& locale_;
    batch::CallBatch& batch_;
    std::map<std::string, bool> missing_;                         ///< by cube file, as it was found first
    std::map<std::string, std::unique_ptr<ZeroReasons>> reasons_; ///< by cube file and cube
};

} // namespace qel
