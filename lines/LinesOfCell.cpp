#include "lines/LinesOfCell.h"

#include "cube/CellLines.h"
#include "function/FunctionTexts.h"
#include "function/OrmQelFunction.h"
#include "lines/CallQuestion.h"
#include "lines/LineSheet.h"
#include "lines/SheetName.h"
#include "platform/value/Conversion.h"
#include "support/ModError.h"
#include "text/CellName.h"
#include "wizard/CubeFileChoice.h"
#include "wizard/FormulaArgs.h"
#include "wizard/OwnText.h"
#include "wizard/WizardForm.h"

#include <algorithm>

namespace qel {

namespace {

namespace Text = OwnTextNumber;

constexpr std::uint64_t mostLines = 100'000;
constexpr std::uint64_t rowsOfHeading = 10; ///< with the captions, and some to spare
constexpr double readingShare = 0.4;        ///< of the time; the rest goes into writing

/// One person's command.
class CellLinesCommand {
public:
    CellLinesCommand(const WizardContext& context, const LinesPlace& place)
        : context_(context), place_(place), object_({context.thread, context.providers, context.locale}) {}

    void Run() {
        if (!place_.book.CanReadArguments()) {
            return Tell(Text::ProtectedSheet);
        }
        const CellCalls calls =
            place_.cell == nullptr ? CellCalls() : CallsOf(*place_.cell, place_.fullPath, context_.locale);
        if (calls.values.empty()) {
            return Tell(calls.names.empty() ? Text::NoValueFormula : Text::NamesHaveNoLines);
        }
        if (const auto chosen = Choose(calls.values)) {
            RunCall(calls.values[*chosen]);
        }
    }

    void RunCall(const CellCall& call) {
        if (!place_.book.CanAddSheet()) {
            return Tell(Text::ProtectedSheet);
        }
        if (!call.faulty.empty()) {
            return Tell(Text::FaultyArguments, FaultyNames(call, context_.IsHebrew()));
        }
        if (!CanOpen(context_, call.call.cubeFile)) {
            return Tell(Text::NoSuchCubeFile, call.call.cubeFile);
        }
        const ServerAction servers(context_.servers);
        const PreparedCall prepared = object_.PrepareQeLF1(call.call);
        FormulaResult result = prepared.result;
        if (prepared.query) {
            result =
                object_.Complete(prepared, ReadCell(context_.thread, context_.providers, *prepared.query));
        }
        if (const auto reason = ReasonOfNoValue(result)) {
            return Tell(Text::NoValue, *reason);
        }
        if (!prepared.query) { // dates outside those of the cube
            return Tell(Text::NoLines);
        }
        LinesBehind behind{.cell = place_.sheet + '.' + Cell(),
                           .call = call.call,
                           .value = ToDouble(result.value, context_.locale)};
        ReadAndWrite(std::move(behind), *prepared.query);
    }

    std::optional<std::size_t> Choose(const std::vector<CellCall>& calls) const {
        std::vector<std::string> texts;
        for (const CellCall& call : calls) {
            texts.push_back(CallText(texts.size() + 1, call.call));
        }
        return calls.size() == 1 ? std::optional<std::size_t>(0)
                                 : AskWhichCall(context_, {Text::LinesBehindCell, Text::WhichCall}, texts);
    }

    void ReadAndWrite(LinesBehind behind, const ModSetCube::ValueQuery& query) {
        std::unique_ptr<LongAction> action;
        const auto begin = [&] { action = place_.book.BeginAction(OwnText(context_, Text::ReadingLines)); };
        ModSetCube::LinesRequest request{.most =
                                             std::min(mostLines, place_.book.SheetRows() - rowsOfHeading)};
        if (!IsServer(context_,
                      behind.call.cubeFile)) { // a server is waited for with a box, which takes keys
            begin();
            request.progress = [&](double share) { action->Report(share * readingShare); };
        }
        behind.lines = ReadCellLines(context_.thread, context_.providers, query, request);
        if (behind.lines.rows.rows.empty()) {
            action.reset();
            return Tell(Text::NoLines);
        }
        if (!action) {
            begin();
        }
        const std::string name = SheetNameFor(place_.sheet, Cell(), place_.book.SheetNames());
        place_.book.AddSheet(ComposeLineSheet(name, std::move(behind), Words()), [&](double share) {
            action->Report(readingShare + share * (1 - readingShare));
        });
    }

    std::string Cell() const { return CellName(place_.cell->Row(), place_.cell->Column()); }

    /// Nullopt for a number.
    std::optional<std::string> ReasonOfNoValue(const FormulaResult& result) const {
        if (result.failure) {
            return result.failure->Description();
        }
        if (result.masked == "#ERR 11111111") {
            return OwnText(context_, Text::ReversedDates);
        }
        if (!result.masked.empty()) {
            return result.masked;
        }
        const bool isNumber = IsNumeric(result.value, context_.locale);
        return isNumber ? std::nullopt : std::optional(ToText(result.value, context_.locale));
    }

    LineSheetTexts Words() const {
        std::vector<std::string> arguments;
        while (arguments.size() < std::tuple_size_v<FormulaArgs>) {
            arguments.push_back(ValueArgumentName(arguments.size(), context_.IsHebrew()));
        }
        const auto text = [&](std::int32_t number) { return OwnText(context_, number); };
        return {.arguments = std::move(arguments),
                .title = text(Text::LinesBehind),
                .value = text(Text::Value),
                .lines = text(Text::Lines),
                .of = text(Text::SomeOf),
                .more = text(Text::More),
                .totalOfSome = text(Text::TotalOfSome),
                .otherTotal = text(Text::OtherTotal),
                .total = text(Text::Total),
                .isRightToLeft = context_.IsHebrew()};
    }

    void Tell(std::int32_t message, const std::string& detail = {}) const {
        Warn(context_, OwnText(context_, message) + (detail.empty() ? "" : "\r\n" + detail));
    }

    const WizardContext& context_;
    const LinesPlace& place_;
    OrmQelFunction object_;
};

void Report(const WizardContext& context, const std::function<void()>& command) {
    try {
        FindLanguage(context);
        command();
    } catch (const ActionStopped&) { // NOLINT(bugprone-empty-catch): as the person wants it
    } catch (...) {
        ModError::ReportError(context.Messages(), ModError::CurrentError(), "", "ShowLinesOfCell",
                              "OrmQelFunc");
    }
}

} // namespace

std::string FaultyNames(const CellCall& call, bool isHebrew) {
    std::string names;
    for (const std::size_t argument : call.faulty) {
        const bool isKnown = argument < std::tuple_size_v<FormulaArgs>;
        names += (names.empty() ? "" : ", ") +
                 (isKnown ? ValueArgumentName(argument, isHebrew) : std::to_string(argument + 1));
    }
    return names;
}

void ShowLinesOfCell(const WizardContext& context, const LinesPlace& place) {
    Report(context, [&] { CellLinesCommand(context, place).Run(); });
}

void ShowLinesOfCall(const WizardContext& context, const LinesPlace& place, const CellCall& call) {
    Report(context, [&] { CellLinesCommand(context, place).RunCall(call); });
}

} // namespace qel
