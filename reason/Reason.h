#pragma once

#include "platform/value/AutomationDate.h"
#include "platform/value/AutomationError.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace qel {

/// The numbers of the reasons' texts among the component's strings (lang/strings.csv).
enum class ReasonCode : std::int32_t {
    DidYouMean = 1600, // the endings of a reason with nearest names
    ItHas,
    ItHasMore,
    NoMember,
    NoLevel,
    OtherLevel,
    NoDimension,
    NoKey,
    TooFewArguments,
    NoToDate,
    ReversedDates,
    NoPeriods,
    DatesBefore,
    DatesBehind,
    OnlyToDateBehind,
    FromDateBehind,
    SwappedDate,
    OnePeriod,
    SeveralPeriods,
    StartsWithin,
    ToDateAlone,
    NoneStarts,
    LeftOut,
    Ignored,
    Without,
    WithoutDates,
    NothingTogether,
    FirstKeyOnly,
    Failure,
    OutsideDates,
    OutdatedCube,
    NoFile
};

/// Names that exist, beside one that does not.
struct NearestNames {
    std::vector<std::string> names = {};
    bool areNear = false;         ///< like the name; otherwise the first ones that there are
    std::size_t furtherCount = 0; ///< how many more there are, of those that are not near
};

/// A statement about a formula in plain words, in the languages of the component.
struct Reason {
    /// A text, or a day that each language writes in its own way.
    struct Field {
        // NOLINTBEGIN(google-explicit-constructor): lists of fields mix texts and days
        Field(std::string written) : text(std::move(written)) {}
        Field(const char* written) : text(written) {}
        Field(AutomationDate date) : day(date) {}
        // NOLINTEND(google-explicit-constructor)

        std::string text = {};
        std::optional<AutomationDate> day = {};
    };

    ReasonCode code = ReasonCode::Failure;
    std::vector<Field> fields = {};
    std::string argument = {}; ///< the one that it is about, by the interface's name; may be empty
    NearestNames nearest = {};
};

/// The reason in a language of lang/StringTable.h, without a full stop: "ObsMember: [OBS].[Level2] has no
/// member \"Nort\"; did you mean \"North\"?".
std::string ReasonText(const Reason& reason, std::int16_t language);
/// In English, as the commands print them.
std::string ReasonText(const Reason& reason);
std::vector<std::string> ReasonTexts(const std::vector<Reason>& reasons);

/// What a provider says of its failure, with its number.
Reason FailureReason(const AutomationError& failure);

/// "13 January 2011".
std::string DayText(AutomationDate date, std::int16_t language);

} // namespace qel
