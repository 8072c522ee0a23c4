#include "why/MakeWhyForm.h"

#include "lines/CallQuestion.h"
#include "support/ModError.h"
#include "wizard/OwnText.h"

namespace qel {

namespace {

constexpr CallQuestionTexts whichCall = {1650, 1659};

std::unique_ptr<WhyForm> Make(const WizardContext& context, const WhyPlace& place) {
    const auto tell = [&](std::int32_t message, const std::string& detail = {}) {
        Warn(context, OwnText(context, message) + detail);
        return nullptr;
    };
    const DoubtedCalls calls(place.cell == nullptr ? CellCalls()
                                                   : CallsOf(*place.cell, place.fullPath, context.locale));
    if (calls.Count() == 0) {
        return tell(OwnTextNumber::NoFormulaOfOurs);
    }
    const auto chosen =
        calls.Count() == 1 ? std::optional<std::size_t>(0) : AskWhichCall(context, whichCall, calls.Texts());
    if (!chosen) {
        return nullptr;
    }
    if (const CellCall* value = calls.ValueAt(*chosen); value != nullptr && !value->faulty.empty()) {
        return tell(OwnTextNumber::FaultyArguments, "\r\n" + FaultyNames(*value, context.IsHebrew()));
    }
    return std::make_unique<WhyForm>(context, place, calls, *chosen);
}

} // namespace

std::unique_ptr<WhyForm> MakeWhyForm(const WizardContext& context, const WhyPlace& place) {
    try {
        FindLanguage(context);
        return Make(context, place);
    } catch (...) {
        ModError::ReportError(context.Messages(), ModError::CurrentError(), "", "MakeWhyForm", "OrmQelFunc");
        return nullptr;
    }
}

} // namespace qel
