#include "cli/ExplainCommand.h"

#include "cli/RecordingDataAccess.h"
#include "cli/RunFormula.h"
#include "cli/ValueText.h"
#include "cli/formula/FormulaError.h"
#include "cli/formula/ParseFormula.h"
#include "platform/data/ConnectionText.h"
#include "platform/value/Conversion.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ostream.h>

namespace qel {

namespace {

constexpr const char* description = "Show how a formula gets its value: keys, connection, statement, times";

constexpr const char* footer =
    R"(The statement stands exactly as it was sent between the lines "---- statement ----" and
"---- end of statement ----". Errors that the formula shows as 0 (QelF1) or "-" (QelName) are told.

Example (cuts the statement out and runs it):
  qel explain "$formula" | sed '1,/^---- statement/d;/^---- end of statement/,$d' | qel mdx demo.cub LedgerFNC -)";

using Clock = std::chrono::steady_clock;

double Microseconds(std::chrono::nanoseconds time) {
    return std::chrono::duration<double, std::micro>(time).count();
}

std::string ListText(const KeyList& list, const Locale& locale) {
    std::string text;
    for (const auto& key : list) {
        const auto shown = key.Is<Empty>() ? "(empty)" : fmt::format("\"{}\"", ToText(key, locale));
        text += fmt::format("{}{}", text.empty() ? "" : ", ", shown);
    }
    return text;
}

/// One formula's way, printed in sections.
class Explanation {
public:
    Explanation(CommandContext& context, const FormulaCall& call)
        : context_(context), call_(call), recorder_(context.dataAccess, recording_) {}

    void Print() {
        PrintKeyLists();
        OrmQelFunction object({thread_, recorder_, context_.locale});
        const auto firstStart = Clock::now();
        const auto value = RunFormula(object, call_, context_.locale);
        const auto firstTime = Clock::now() - firstStart;
        const Recording first = recording_;
        PrintSent(first);
        Line("value", ValueText(value));
        PrintTrapped(object, value, first);
        PrintTimes(object, first, firstTime);
    }

private:
    void Line(std::string_view label, std::string_view text) {
        fmt::print(context_.output, "{:<17}{}\n", fmt::format("{}:", label), text);
    }

    void PrintKeyLists() {
        if (const auto* value = std::get_if<ValueCall>(&call_.arguments)) {
            lists_ = NormaliseKeyLists(call_.function, *value, context_.locale);
            PrintKeyList("ObsName", lists_.ObsName);
            PrintKeyList("ObsNum", lists_.ObsNum);
            PrintKeyList("ObsLevel", lists_.ObsLevel);
            PrintKeyList("ObsMember", lists_.ObsMember);
            PrintKeyList("Activity", lists_.ActivityList);
        }
    }

    void PrintKeyList(std::string_view name, const KeyList& list) {
        Line(fmt::format("{} keys", name), ListText(list, context_.locale));
        if (list.size() > 1) {
            Line("note", fmt::format("only the first key of {} is used", name));
        }
    }

    void PrintSent(const Recording& recording) {
        for (const auto& text : recording.connectionTexts) {
            Line("connection", WithoutPasswords(text));
        }
        if (recording.statements.empty()) {
            Line("statement", "(none was sent)");
            PrintOutsideDates();
            return;
        }
        for (const auto& statement : recording.statements) {
            fmt::print(context_.output, "---- statement ----\n{}\n---- end of statement ----\n", statement);
        }
    }

    void PrintOutsideDates() {
        const auto* call = std::get_if<ValueCall>(&call_.arguments);
        if (!call || thread_.dates.CubeDates.empty() || !thread_.datesAreCurrent) {
            return;
        }
        const auto& dates = thread_.dates;
        const bool isOutside = call->From_Date <= call->To_Date &&
                               (call->To_Date < dates.CubeMinDate || call->From_Date > dates.CubeMaxDate);
        if (isOutside) {
            Line("reason", fmt::format("no statement was sent: the dates lie outside the cube's, {} to {}",
                                       ToText(dates.CubeMinDate, context_.locale),
                                       ToText(dates.CubeMaxDate, context_.locale)));
        }
    }

    /// The failure that the function shows as 0 or "-", if there is one.
    void PrintTrapped(OrmQelFunction& object, const Variant& value, const Recording& recording) {
        std::string masked;
        if (const auto* call = std::get_if<ValueCall>(&call_.arguments)) {
            const auto unmasked = RunUnmasked(object, lists_, *call);
            const bool isShown = ValueText(unmasked) == ValueText(value);
            if (unmasked.Is<std::string>() && !isShown) {
                masked = unmasked.As<std::string>();
            }
        }
        if (masked == "#ERR 11111111") {
            masked += " (the start date is later than the end date)";
        }
        if (!masked.empty()) {
            Line("masked error", masked);
        }
        if (recording.lastError) {
            Line("reason", fmt::format("{} (error {}, {})", recording.lastError->Description(),
                                       recording.lastError->Number(), recording.lastError->Source()));
        }
    }

    void PrintTimes(OrmQelFunction& object, const Recording& first, std::chrono::nanoseconds firstTime) {
        // A sheet's formulas find the cube open: the second call is what each of them costs.
        RunFormula(object, call_, context_.locale);
        const auto start = Clock::now();
        RunFormula(object, call_, context_.locale);
        const auto again = Clock::now() - start;
        Line("open", fmt::format("{:.1f} µs", Microseconds(first.openTime)));
        Line("first call",
             fmt::format("{:.1f} µs (with the opening and the cube's dates)", Microseconds(firstTime)));
        Line("compose and run", fmt::format("{:.1f} µs (the cube being open)", Microseconds(again)));
    }

    CommandContext& context_;
    const FormulaCall& call_;
    Recording recording_;
    RecordingDataAccess recorder_;
    ModSetCube::ThreadState thread_;
    KeyLists lists_;
};

void Explain(CommandContext& context, const std::string& formula) {
    try {
        const auto call = BindFormula(ParseFormula(formula), context.locale);
        Explanation(context, call).Print();
    } catch (const FormulaError& error) {
        context.messages << "qel explain: " << error.what() << '\n';
        context.failed = true;
    } catch (const AutomationError& error) {
        fmt::print(context.output, "{:<17}#VALUE!\n", "value:");
        context.output.flush();
        fmt::print(context.messages, "qel explain: {} (error {}, {})\n", error.Description(), error.Number(),
                   error.Source());
        context.failed = true;
    }
}

} // namespace

void AddExplainCommand(CLI::App& app, CommandContext& context) {
    auto* command = app.add_subcommand("explain", description);
    command->footer(footer);
    auto formula = std::make_shared<std::string>();
    command->add_option("FORMULA", *formula, "The text of a cell")->required();
    command->callback([formula, &context] { Explain(context, *formula); });
}

} // namespace qel
