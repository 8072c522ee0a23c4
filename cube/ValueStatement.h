#pragma once

#include <string>
#include <string_view>

namespace qel::ModSetCube {

/// What one worksheet call selects, as the worksheet gave it: the first key of every list, and the texts.
struct ValueSelection {
    std::string cubeName;
    std::string obsName, obsNumber, obsLevel, obsMember, activity;
    std::string summaryLevel, summaryMember, accounts, measure;
    std::string moneySet, plbs, rh, firma, openingBalance;
};

/// The periods to sum: `count` of them, ending with the member `last` (a unique name).
struct PeriodSpan {
    int count = 0;
    std::string last;
};

/// True for a selection that restricts nothing: "All" in any letter case, or nothing, blanks aside.
bool IsUnrestricted(std::string_view selection);

/// "[dimension].[member]", or empty when the member restricts nothing.
std::string MemberSlicer(std::string_view dimension, std::string_view member);

/// True when the selection's OBS level is a level of [OBS], so that the statement needs BuildObsSel's text.
bool NeedsObsSel(const ValueSelection& selection);

/// The statement exactly as it is sent. `obsSel` is BuildObsSel's text, or empty.
std::string ComposeValueStatement(const ValueSelection& selection, const PeriodSpan& span,
                                  const std::string& obsSel);

} // namespace qel::ModSetCube
