#include "examples/ledger/reference/Selection.h"

#include <fmt/format.h>

namespace qel::ledger {
namespace {

std::string DayText(const CalendarDay& day) {
    return fmt::format("{:04}-{:02}-{:02}", day.year, day.month, day.day);
}

} // namespace

std::string Describe(const Selection& selection) {
    std::string text =
        fmt::format("{} of {} by {}", selection.measure, selection.obsName + " " + selection.obsNumber,
                    selection.cube == LedgerCube::Months ? "months" : "days");
    const auto add = [&](const char* what, const std::string& member) {
        text += member.empty() ? "" : fmt::format(", {} {}", what, member);
    };
    add("level", selection.obsLevel);
    add("member", selection.obsMember);
    add("activity", selection.activity);
    add("summary", selection.summaryLevel);
    add("group", selection.summaryMember);
    add("account", selection.account);
    add("money set", selection.moneySet);
    add("plbs", selection.plbs);
    add("rh", selection.rh);
    add("firm", selection.firm);
    add("opening", selection.openingBalance);
    return text + fmt::format(", {} to {}", selection.from ? DayText(*selection.from) : "(none)",
                              DayText(selection.to));
}

} // namespace qel::ledger
