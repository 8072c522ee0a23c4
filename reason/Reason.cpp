#include "reason/Reason.h"

#include "lang/StringTable.h"
#include "platform/value/FailureText.h"

#include <fmt/args.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>

namespace qel {

namespace {

std::string Composed(ReasonCode code, const std::vector<Reason::Field>& fields, std::int16_t language) {
    fmt::dynamic_format_arg_store<fmt::format_context> values;
    for (const Reason::Field& field : fields) {
        values.push_back(field.day ? DayText(*field.day, language) : field.text);
    }
    return fmt::vformat(ResourceString(static_cast<std::int32_t>(code), language), values);
}

std::string NearestText(const NearestNames& nearest, std::int16_t language) {
    if (nearest.names.empty()) {
        return {};
    }
    const std::string names = fmt::format("\"{}\"", fmt::join(nearest.names, "\", \""));
    if (nearest.areNear) {
        return Composed(ReasonCode::DidYouMean, {names}, language);
    }
    return nearest.furtherCount == 0
               ? Composed(ReasonCode::ItHas, {names}, language)
               : Composed(ReasonCode::ItHasMore, {names, std::to_string(nearest.furtherCount)}, language);
}

} // namespace

std::string ReasonText(const Reason& reason, std::int16_t language) {
    return (reason.argument.empty() ? "" : reason.argument + ": ") +
           Composed(reason.code, reason.fields, language) + NearestText(reason.nearest, language);
}

std::string ReasonText(const Reason& reason) { return ReasonText(reason, Language::English); }

std::vector<std::string> ReasonTexts(const std::vector<Reason>& reasons) {
    std::vector<std::string> texts(reasons.size());
    std::transform(reasons.begin(), reasons.end(), texts.begin(),
                   [](const Reason& reason) { return ReasonText(reason); });
    return texts;
}

Reason FailureReason(const AutomationError& failure) { return {ReasonCode::Failure, {FailureText(failure)}}; }

std::string DayText(AutomationDate date, std::int16_t language) {
    constexpr std::array english = {"January", "February", "March",     "April",   "May",      "June",
                                    "July",    "August",   "September", "October", "November", "December"};
    constexpr std::array hebrew = {"בינואר", "בפברואר", "במרץ",    "באפריל",   "במאי",    "ביוני",
                                   "ביולי",  "באוגוסט", "בספטמבר", "באוקטובר", "בנובמבר", "בדצמבר"};
    const CalendarDay day = DayFromDate(date);
    const auto& months = language == Language::Hebrew ? hebrew : english;
    return fmt::format("{} {} {}", day.day, months[static_cast<std::size_t>(day.month) - 1], day.year);
}

} // namespace qel
