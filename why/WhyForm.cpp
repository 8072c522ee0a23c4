#include "why/WhyForm.h"

#include "platform/dialog/ReadingOrder.h"
#include "text/CellName.h"
#include "text/Text.h"
#include "why/WhyFormDesign.h"
#include "wizard/CubeFileChoice.h"
#include "wizard/OwnText.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace qel {

namespace {

namespace Own = WhyFormControl;

constexpr std::size_t rowWidth = 78; // of the list's characters, about

std::string CubeFileOf(const FormulaCall& call) {
    return std::visit([](const auto& arguments) { return std::string(Trimmed(arguments.cubeFile)); },
                      call.arguments);
}

} // namespace

DoubtedCalls::DoubtedCalls(const CellCalls& calls) : values_(calls.values) {
    for (const CellCall& value : calls.values) {
        texts_.push_back(CallText(texts_.size() + 1, value.call));
        calls_.push_back({WorksheetFunction::QeLF1, value.call, value.given});
    }
    for (const NameCall& name : calls.names) {
        texts_.push_back(fmt::format("{}. {}, {}", texts_.size() + 1, name.DimType, name.DimMember));
        calls_.push_back({WorksheetFunction::QelName, name, 4});
    }
}

WhyForm::WhyForm(const WizardContext& context, WhyPlace place, DoubtedCalls calls, std::size_t call)
    : BesideForm(context, WhyFormDesign()), place_(std::move(place)), calls_(std::move(calls)), call_(call),
      sheetName_(place_.book->ActiveSheetName()),
      cellName_(sheetName_ + '.' + CellName(place_.cell->Row(), place_.cell->Column())),
      reasons_(Context().providers, Context().locale) {
    ShowReason();
}

void WhyForm::OnLoad() { Form().SetFocus(Form().IsEnabled(Own::Lines) ? Own::Lines : Own::EditFormula); }

void WhyForm::OnClick(std::string_view control) {
    if (control == Own::Close) {
        return CloseByPerson();
    }
    RunCommand(HandlerName(control, "Click"), [&] {
        if (control == Own::Lines) {
            ShowLines();
        } else if (control == Own::EditFormula) {
            EditFormula();
        } else if (control == Own::Compare) {
            Compare();
        } else {
            Copy();
        }
    });
}

void WhyForm::ShowReason() {
    {
        const ServerAction servers(Context().servers);
        reason_ = FindReason();
    }
    texts_ = ComposeWhyTexts(reason_, Context().language.iLang);
    comparison_.clear();
    Form().SetText(Own::Heading, Heading());
    Form().SetItems(Own::Arguments, texts_.arguments);
    Form().SetItems(Own::Explanation, Wrapped(texts_.explanation, rowWidth));
    Form().SetText(Own::Statement, texts_.statement);
    Form().SetItems(Own::Comparison, {});
    Form().SetEnabled(Own::Lines, calls_.ValueAt(call_) != nullptr);
}

std::string WhyForm::Heading() const {
    return Context().IsHebrew() ? InOwnDirection(cellName_) + ": " + InOwnDirection(reason_.value)
                                : cellName_ + ": " + reason_.value;
}

ValueReason WhyForm::FindReason() {
    const FormulaCall& call = calls_.At(call_);
    ValueReason reason = reasons_.Of(call);
    if (const std::string file = CubeFileOf(call); !CanOpen(Context(), file)) {
        reason.why = {{ReasonCode::NoFile, {file}}};
        reason.result.failure.reset(); // which says the same
    }
    return reason;
}

void WhyForm::ShowLines() {
    place_.alone([&] {
        if (ReadAgain() && calls_.ValueAt(call_) != nullptr) {
            ShowLinesOfCall(Context(), {place_.cell.get(), sheetName_, *place_.book, place_.fullPath},
                            *calls_.ValueAt(call_));
        }
    });
}

void WhyForm::EditFormula() {
    place_.editFormula();
    ReadAgain();
}

bool WhyForm::ReadAgain() {
    DoubtedCalls now(CallsOf(*place_.cell, place_.fullPath, Context().locale));
    if (call_ >= now.Count()) {
        Warn(Context(), OwnText(Context(), OwnTextNumber::NoFormulaOfOurs));
        return false;
    }
    calls_ = std::move(now);
    ShowReason();
    return true;
}

void WhyForm::Compare() {
    if (!ReadAgain()) {
        return;
    }
    const FormulaCall& call = calls_.At(call_);
    const std::string file = AskForCubeFile(Form(), Own::FileDialog, CubeFileOf(call));
    if (!file.empty()) {
        const FormulaResult other = reasons_.Run(OverOtherFile(call, file));
        comparison_ =
            ComparisonTexts(reason_.result, other, file, Context().language.iLang, Context().locale);
        Form().SetItems(Own::Comparison, comparison_);
    }
}

void WhyForm::Copy() const {
    std::string text = Heading() + '\n';
    for (const auto& part : {texts_.arguments, texts_.explanation, {texts_.statement}, comparison_}) {
        text += part.empty() ? "" : fmt::format("\n{}\n", fmt::join(part, "\n"));
    }
    place_.copy(WithoutDirection(text));
}

} // namespace qel
