#include "cli/ExplainCommand.h"

#include "cli/FailureText.h"
#include "cli/PeriodNotes.h"
#include "cli/Recording.h"
#include "cli/RunFormula.h"
#include "cli/ValueText.h"
#include "cli/ZeroReasons.h"
#include "function/formula/FormulaError.h"
#include "function/formula/ParseFormula.h"
#include "platform/data/ConnectionText.h"
#include "platform/value/Conversion.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ostream.h>

namespace qel {

namespace {

constexpr const char* explainDescription =
    "Show how a formula gets its value: keys, connection, statement, times";

constexpr const char* explainFooter =
    R"(The statement stands exactly as it was sent between the lines "---- statement ----" and
"---- end of statement ----". Errors that the formula shows as 0 (QelF1) or "-" (QelName) are printed. For a
0 it prints the reason: dates that select no period, unknown members with the nearest existing ones, or the restriction
that leaves no amount.

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
    Explanation(CommandContext& context, const Formula& formula, const FormulaCall& call)
        : context_(context), formula_(formula), call_(call),
          object_({thread_, Listening(context.providers), context.locale}) {}

    void Print() {
        PrintKeyLists();
        const auto start = Clock::now();
        const FormulaResult result = RunFormula(object_, call_);
        const auto time = Clock::now() - start;
        const auto openTime = recording_.openTime;
        PrintSent();
        PrintPeriods();
        Line("value", ValueText(result.value));
        PrintTrapped(result);
        PrintReasons(result);
        PrintTimes(openTime, time);
    }

private:
    Providers Listening(Providers providers) {
        providers.observer = &recording_;
        return providers;
    }

    void Line(std::string_view label, std::string_view text) {
        fmt::print(context_.output, "{:<17}{}\n", fmt::format("{}:", label), text);
    }

    /// Every list is made before one is printed: a call that fails prints none.
    void PrintKeyLists() {
        const auto* value = std::get_if<ValueCall>(&call_.arguments);
        if (value == nullptr) {
            return;
        }
        constexpr const char* names[] = {"ObsName", "ObsNum", "ObsLevel", "ObsMember", "Activity"};
        std::size_t number = 0;
        for (const auto list : valueCallLists) {
            PrintKeyList(names[number++], KeysOf(call_.function, value->*list, context_.locale));
        }
    }

    void PrintKeyList(std::string_view name, const KeyList& list) {
        Line(fmt::format("{} keys", name), ListText(list, context_.locale));
        if (list.size() > 1) {
            Line("note", fmt::format("only the first key of {} is used", name));
        }
    }

    void PrintSent() {
        for (const auto& text : recording_.connectionTexts) {
            Line("connection", WithoutPasswords(text));
        }
        if (recording_.statements.empty()) {
            Line("statement", "(none was sent)");
            PrintOutsideDates();
            return;
        }
        for (const auto& statement : recording_.statements) {
            fmt::print(context_.output, "---- statement ----\n{}\n---- end of statement ----\n", statement);
        }
    }

    void PrintOutsideDates() {
        const auto* call = std::get_if<ValueCall>(&call_.arguments);
        if (!call || thread_.dates.CubeDates.empty() || !thread_.dates.earlier.empty() ||
            !thread_.datesAreCurrent) {
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

    /// Which periods the dates select, and how their texts are read.
    void PrintPeriods() {
        const auto* call = std::get_if<ValueCall>(&call_.arguments);
        if (call == nullptr) {
            return;
        }
        for (const auto& note : SwappedDates(formula_, *call, context_.locale)) {
            Line("note", note);
        }
        if (!thread_.datesAreCurrent) {
            return;
        }
        const char* label = "periods";
        for (const auto& note : PeriodNotes(thread_.dates, *call, context_.locale)) {
            Line(label, note);
            label = "note";
        }
    }

    /// Prints the known reasons why a value formula shows 0.
    void PrintReasons(const FormulaResult& result) {
        ZeroReasons reasons(context_.providers, context_.locale);
        for (const auto& note : reasons.Ignored(call_)) {
            Line("note", note);
        }
        if (!ShowsZero(result, context_.locale)) {
            return;
        }
        auto found = reasons.Of(call_);
        if (found.empty() && !result.failure) {
            found = reasons.Alternatives(call_);
        }
        for (const auto& reason : found) {
            Line("why", reason);
        }
    }

    /// The failure that the function shows as 0 or "-", if there is one.
    void PrintTrapped(const FormulaResult& result) {
        std::string masked = result.masked;
        if (masked == "#ERR 11111111") {
            masked += " (the start date is later than the end date)";
        }
        if (!masked.empty()) {
            Line("masked error", masked);
        }
        if (result.failure) {
            Line("reason", FailureText(*result.failure));
        }
    }

    void PrintTimes(std::chrono::nanoseconds openTime, std::chrono::nanoseconds firstTime) {
        // A sheet's formulas find the cube open: a later call is what each of them costs.
        RunFormula(object_, call_);
        const auto start = Clock::now();
        RunFormula(object_, call_);
        const auto again = Clock::now() - start;
        Line("open", fmt::format("{:.1f} µs", Microseconds(openTime)));
        Line("first call",
             fmt::format("{:.1f} µs (with the opening and the cube's dates)", Microseconds(firstTime)));
        Line("compose and run", fmt::format("{:.1f} µs (the cube being open)", Microseconds(again)));
    }

    CommandContext& context_;
    const Formula& formula_;
    const FormulaCall& call_;
    Recording recording_;
    ModSetCube::ThreadState thread_;
    OrmQelFunction object_;
};

void Explain(CommandContext& context, const std::string& formula) {
    try {
        const Formula parsed = ParseFormula(formula);
        const auto call = BindFormula(parsed, context.locale);
        Explanation(context, parsed, call).Print();
    } catch (const FormulaError& error) {
        context.messages << "qel explain: " << error.what() << '\n';
        context.failed = true;
    } catch (const AutomationError& error) {
        fmt::print(context.output, "{:<17}#VALUE!\n", "value:");
        context.output.flush();
        context.messages << "qel explain: " << FailureText(error) << '\n';
        context.failed = true;
    }
}

} // namespace

void AddExplainCommand(CLI::App& app, CommandContext& context) {
    auto* command = app.add_subcommand("explain", explainDescription);
    command->footer(explainFooter);
    auto formula = std::make_shared<std::string>();
    auto dates = std::make_shared<bool>(false);
    command->add_option("FORMULA", *formula, "The text of a cell");
    command->add_flag("--dates", *dates, "Print the rules by which dates select periods, with examples");
    command->require_option(1);
    command->callback([formula, dates, &context] {
        *dates ? fmt::print(context.output, "{}", dateRules) : Explain(context, *formula);
    });
}

} // namespace qel
