#pragma once

#include "reason/PeriodNotes.h"
#include "reason/Recording.h"
#include "reason/ZeroReasons.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qel {

/// Why a formula shows what it shows: what `qel explain` prints and the spreadsheets' windows show.
struct ValueReason {
    std::vector<ArgumentReason> arguments; ///< all that the interface has, in its order
    std::optional<PeriodChoice> periods;   ///< none when no period counts
    std::vector<Reason> notes;             ///< arguments, or keys of them, that have no effect
    FormulaResult result;                  ///< with the error that it hides
    std::string value;                     ///< of the result, as text
    std::vector<Reason> why;               ///< of a 0, of "-" and of an outdated cube
    std::optional<Reason> unsent;          ///< why no statement was sent, if dates are the reason
    /// How many lines the value adds up; none where there is no value, and where the provider tells only by
    /// reading them, as servers do.
    std::optional<std::uint64_t> lineCount;
    std::vector<std::string> connections; ///< their texts, without passwords
    std::vector<std::string> statements;  ///< exactly as they were sent
    std::chrono::nanoseconds openTime{};  ///< spent opening connections
    std::chrono::nanoseconds firstTime{}; ///< of the whole call
};

/// Asks for the reasons, over connections of its own.
class ValueReasons {
public:
    ValueReasons(const Providers& providers, const Locale& locale)
        : providers_(providers), locale_(locale), object_({thread_, Listening(providers), locale}),
          zeros_(providers, locale) {}

    /// Raises what the function raises, which a cell shows as #VALUE!.
    ValueReason Of(const FormulaCall& call);

    /// The formula's result and nothing else, over the connection that is open.
    FormulaResult Run(const FormulaCall& call) { return RunFormula(object_, call); }

private:
    Providers Listening(Providers providers) {
        providers.observer = &recording_;
        return providers;
    }
    void FindMembers(const FormulaCall& call, ValueReason& reason);
    std::optional<std::uint64_t> CountLines(const FormulaCall& call);
    std::optional<Reason> WhyUnsent(const ValueCall& call) const;

    Providers providers_;
    const Locale& locale_;
    Recording recording_;
    ModSetCube::ThreadState thread_;
    OrmQelFunction object_;
    ZeroReasons zeros_;
};

/// How much a value is above another one, as decimals, so that cents stay cents.
double ValueDifference(double value, double other);

/// The call over another cube file, to compare their values.
FormulaCall OverOtherFile(FormulaCall call, const std::string& cubeFile);

} // namespace qel
