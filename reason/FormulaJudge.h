#pragma once

#include "reason/ZeroReasons.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace qel {

enum class Verdict : std::uint8_t {
    Sound,       ///< an amount, also one that is 0, or a name
    HiddenError, ///< 0 or "-" in the place of an error
    Outdated,    ///< "Outdated Cube Version"
    NoFile       ///< 0 or "-", because the cube's file is missing
};

/// What is to be told about a formula.
struct Judgement {
    Verdict verdict = Verdict::Sound;
    std::vector<Reason> reasons; ///< why, unless it is sound
};

/// Judges the results of many formulas: whether a person who reads the sheet would be misled.
class FormulaJudge {
public:
    FormulaJudge(const Providers& providers, const Locale& locale) : providers_(providers), locale_(locale) {}

    /// Does not throw.
    Judgement Of(const FormulaCall& call, const FormulaResult& result);

private:
    bool IsMissing(const std::string& cubeFile);

    Providers providers_;
    const Locale& locale_;
    std::map<std::string, bool> missing_;                         ///< by cube file, as it was found first
    std::map<std::string, std::unique_ptr<ZeroReasons>> reasons_; ///< by cube file and cube
};

} // namespace qel
