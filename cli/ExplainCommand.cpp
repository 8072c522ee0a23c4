#include "cli/ExplainCommand.h"

#include "function/formula/FormulaError.h"
#include "function/formula/ParseFormula.h"
#include "platform/value/FailureText.h"
#include "reason/ValueReason.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ostream.h>

namespace qel {

namespace {

constexpr const char* explainDescription =
    "Show how a formula gets its value: members, statement, periods, hidden error, times";

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

std::string ListText(const ArgumentReason& argument) {
    std::string text;
    for (const auto& key : argument.given) {
        const std::string shown = key ? fmt::format("\"{}\"", *key) : "(empty)";
        text += (text.empty() ? "" : ", ") + shown;
    }
    return text;
}

/// One formula's way, printed in sections.
class Explanation {
public:
    Explanation(CommandContext& context, const Formula& formula, const FormulaCall& call)
        : context_(context), formula_(formula), call_(call), reasons_(context.providers, context.locale) {}

    void Print() {
        reason_ = reasons_.Of(call_);
        PrintKeyLists();
        PrintMembers();
        PrintSent();
        PrintPeriods();
        Line("value", reason_.value);
        if (reason_.lineCount) {
            Line("lines", std::to_string(*reason_.lineCount));
        }
        PrintTrapped();
        PrintReasons();
        PrintTimes();
    }

private:
    void Line(std::string_view label, std::string_view text) {
        fmt::print(context_.output, "{:<17}{}\n", fmt::format("{}:", label), text);
    }

    void Lines(std::string_view label, const std::vector<Reason>& reasons) {
        for (const Reason& reason : reasons) {
            Line(label, ReasonText(reason));
        }
    }

    void PrintKeyLists() {
        if (!std::holds_alternative<ValueCall>(call_.arguments)) {
            return;
        }
        constexpr std::ptrdiff_t firstList = 2;
        constexpr const char* names[] = {"ObsName", "ObsNum", "ObsLevel", "ObsMember", "Activity"};
        auto list = reason_.arguments.begin() + firstList;
        for (const char* name : names) {
            Line(fmt::format("{} keys", name), ListText(*list));
            if (list->given.size() > 1) {
                Line("note", ReasonText({ReasonCode::FirstKeyOnly, {name}}));
            }
            ++list;
        }
    }

    /// The members that the value is restricted to.
    void PrintMembers() {
        for (const ArgumentReason& argument : reason_.arguments) {
            std::string text;
            for (const auto& member : argument.members) {
                text += fmt::format("{}{}{}", text.empty() ? "" : "; ", member.uniqueName,
                                    member.caption == argument.key ? "" : ", " + member.caption);
            }
            if (!text.empty()) {
                Line(argument.name, text);
            }
        }
    }

    void PrintSent() {
        for (const auto& text : reason_.connections) {
            Line("connection", text);
        }
        if (reason_.statements.empty()) {
            Line("statement", "(none was sent)");
            if (reason_.unsent) {
                Line("reason", ReasonText(*reason_.unsent));
            }
            return;
        }
        for (const auto& statement : reason_.statements) {
            fmt::print(context_.output, "---- statement ----\n{}\n---- end of statement ----\n", statement);
        }
    }

    /// Which periods the dates select, and how their texts are read.
    void PrintPeriods() {
        if (const auto* call = std::get_if<ValueCall>(&call_.arguments)) {
            Lines("note", SwappedDates(formula_, *call, context_.locale));
        }
        if (reason_.periods) {
            Line("periods", ReasonText(reason_.periods->periods));
            Lines("note", reason_.periods->notes);
            Line("rule", ReasonText(reason_.periods->rule));
        }
    }

    /// What is known of why the formula shows 0.
    void PrintReasons() {
        Lines("note", reason_.notes);
        const auto& failure = reason_.result.failure;
        const std::string told = failure ? ReasonText(FailureReason(*failure)) : std::string();
        for (const auto& text : ReasonTexts(reason_.why)) {
            if (text != told) {
                Line("why", text);
            }
        }
    }

    /// The failure that the function shows as 0 or "-", if there is one.
    void PrintTrapped() {
        const FormulaResult& result = reason_.result;
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

    void PrintTimes() {
        // A sheet's formulas find the cube open: a later call is what each of them costs.
        reasons_.Run(call_);
        const auto start = Clock::now();
        reasons_.Run(call_);
        const auto again = Clock::now() - start;
        Line("open", fmt::format("{:.1f} µs", Microseconds(reason_.openTime)));
        Line("first call", fmt::format("{:.1f} µs (with the opening and the cube's dates)",
                                       Microseconds(reason_.firstTime)));
        Line("compose and run", fmt::format("{:.1f} µs (the cube being open)", Microseconds(again)));
    }

    CommandContext& context_;
    const Formula& formula_;
    const FormulaCall& call_;
    ValueReasons reasons_;
    ValueReason reason_;
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
