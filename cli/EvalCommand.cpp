#include "cli/EvalCommand.h"

#include "cli/InputLines.h"
#include "cli/RunFormula.h"
#include "cli/ValueText.h"
#include "cli/formula/FormulaError.h"
#include "cli/formula/ParseFormula.h"
#include "platform/AutomationError.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <memory>

namespace qel {

namespace {

constexpr const char* description = "Print the value of each formula, one a line";

constexpr const char* footer =
    R"(A formula is the text of a cell. Functions: QelF1, QeL1, QelName, RetQelName, QelFuncDemo; the class's name
before them (OrmFunctionQel4.OrmQelFunction.) may be left out. Arguments: "text" (a quote inside is doubled),
numbers, TRUE, FALSE, DATE(y,m,d), array constants {"a","b"}, or nothing between two commas. Keys of the five list
arguments (ObsName to ActivityList) stand in braces or are numbers: a plain text there is no key.
A call that fails prints #VALUE!, its reason goes to standard error, and the exit status is 1.

Examples:
  qel eval '=QelF1("demo.cub","LedgerFNC",{"OBS"},{"1"},{"All"},{"All"},{"All"},"All","All","4000","Amount",
            "All","All","All","All","All","01/01/2024","31/03/2024")'
  qel eval '=QelName("demo.cub","LedgerFNC","SuperSum1","42")'
  qel eval < formulas.txt)";

/// Evaluates one formula after the other with one object, as the cells of a sheet do.
class Evaluator {
public:
    explicit Evaluator(CommandContext& context)
        : context_(context), object_({thread_, context.dataAccess, context.locale}) {}

    /// `label` says in a message which formula it is.
    void Evaluate(std::string_view text, const std::string& label) {
        try {
            const auto call = BindFormula(ParseFormula(text), context_.locale);
            Print(ValueText(RunFormula(object_, call, context_.locale)));
        } catch (const FormulaError& error) {
            Fail(label, error.what());
        } catch (const AutomationError& error) {
            Fail(label,
                 fmt::format("{} (error {}, {})", error.Description(), error.Number(), error.Source()));
        }
    }

private:
    void Print(std::string_view value) { context_.output << value << '\n'; }

    void Fail(const std::string& label, std::string_view reason) {
        Print("#VALUE!");
        // What goes to a terminal comes in the order in which it happened.
        context_.output.flush();
        context_.messages << "qel eval: " << label << ": " << reason << '\n';
        context_.failed = true;
    }

    CommandContext& context_;
    ModSetCube::ThreadState thread_;
    OrmQelFunction object_;
};

void EvaluateLines(Evaluator& evaluator, CommandContext& context) {
    InputLines lines(context.input);
    while (true) {
        // A program that writes a formula and waits for its value gets it; a whole file is not flushed by
        // line.
        if (context.input.rdbuf()->in_avail() <= 0)
            context.output.flush();
        const auto line = lines.NextFilled();
        if (!line)
            return;
        evaluator.Evaluate(*line, fmt::format("line {}", lines.Number()));
    }
}

} // namespace

void AddEvalCommand(CLI::App& app, CommandContext& context) {
    auto* command = app.add_subcommand("eval", description);
    command->footer(footer);
    auto formulas = std::make_shared<std::vector<std::string>>();
    command->add_option("FORMULA", *formulas,
                        "The text of a cell; without any, one is read from each line of "
                        "standard input (blank lines are skipped)");
    command->callback([formulas, &context] {
        Evaluator evaluator(context);
        if (formulas->empty())
            EvaluateLines(evaluator, context);
        for (std::size_t i = 0; i < formulas->size(); ++i)
            evaluator.Evaluate((*formulas)[i], fmt::format("formula {}", i + 1));
    });
}

} // namespace qel
