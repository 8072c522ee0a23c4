#include "cli/EvalCommand.h"

#include "batch/CallBatch.h"
#include "cli/InputLines.h"
#include "cube/CellLines.h"
#include "function/formula/FormulaError.h"
#include "function/formula/ParseFormula.h"
#include "platform/data/ConnectionText.h"
#include "platform/data/embedded/CubeSource.h"
#include "platform/value/AutomationError.h"
#include "platform/value/Conversion.h"
#include "platform/value/FailureText.h"
#include "platform/value/ValueText.h"
#include "reason/RunFormula.h"
#include "reason/ValueReason.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <memory>
#include <optional>

namespace qel {

namespace {

constexpr const char* evalDescription = "Print the value of each formula on a line of its own";

constexpr const char* evalFooter =
    R"(A formula is the text of a cell. Functions: QelF1, QeL1, QelName, RetQelName, QelFuncDemo; the class's name
before them (OrmFunctionQel4.OrmQelFunction.) may be left out. Arguments: "text" (a quote inside is doubled),
numbers, TRUE, FALSE, DATE(y,m,d), array constants {"a","b"}, or nothing between two commas. Keys of the five list
arguments (ObsName to ActivityList) stand in braces or are numbers: a plain text there is no key.
A call that fails prints #VALUE!, its reason goes to standard error, and the exit status is 1. Where a cell would show
0 instead of an error, so does this; one line on standard error then tells how many, and that qel explain tells why.
--strict tells each such error, and exits with 1. --why prints beside each 0, after a tab, why it is 0.
--against prints behind each value, after tabs, that of the same formula over another cube file, and how much the first
is more than the second.

Examples:
  qel eval '=QelF1("demo.cub","LedgerFNC",{"OBS"},{"1"},{"All"},{"All"},{"All"},"All","All","4000","Amount",
            "All","All","All","All","All","01/01/2024","31/03/2024")'
  qel eval '=QelName("demo.cub","LedgerFNC","SuperSum1","42")'
  qel eval < formulas.txt
  qel eval --against march.cub < formulas.txt)";

/// A formula as it was read: bound, or with the reason why it cannot be.
struct ReadFormula {
    std::string label; ///< says in a message which formula it is
    std::optional<FormulaCall> call;
    std::string fault;
};

/// The call of a value formula over a server's cube, otherwise null.
const ValueCall* ServerCallOf(const ReadFormula& formula) {
    const auto* value = formula.call ? std::get_if<ValueCall>(&formula.call->arguments) : nullptr;
    return value != nullptr && IsServerAddress(value->cubeFile) ? value : nullptr;
}

struct EvalOptions {
    bool strict = false; ///< errors that a cell hides are failures
    bool why = false;    ///< say why a 0 is 0
    std::string against; ///< another cube file, whose values are shown as well
};

/// Evaluates one formula after the other with one object, as the cells of a sheet do. Those that ask servers
/// are asked for together, in as few statements as their cells fit into.
class Evaluator {
public:
    Evaluator(CommandContext& context, EvalOptions options)
        : context_(context), options_(std::move(options)), batch_(context.providers),
          object_({thread_, context.providers, context.locale}),
          other_({otherThread_, context.providers, context.locale}),
          reasons_(context.providers, context.locale) {}

    ReadFormula Read(std::string_view text, std::string label) const {
        ReadFormula read{std::move(label), std::nullopt, {}};
        try {
            read.call = BindFormula(ParseFormula(text), context_.locale);
        } catch (const FormulaError& error) {
            read.fault = error.what();
        } catch (const AutomationError& error) {
            read.fault = FailureText(error);
        }
        return read;
    }

    /// Prints the values in the order of the formulas.
    void Evaluate(const std::vector<ReadFormula>& formulas) {
        const auto results = AskServers(formulas);
        for (std::size_t i = 0; i < formulas.size(); ++i) {
            if (i < results.size() && results[i]) {
                Print(formulas[i], *results[i]);
            } else {
                Evaluate(formulas[i]);
            }
        }
    }

    /// To be called at the end: a 0 in place of an error should not pass for an amount.
    void ReportHiddenErrors() {
        if (hidden_ == 0) {
            return;
        }
        context_.output.flush();
        context_.messages << fmt::format("qel eval: {} shown instead of an error, first at {}; qel explain "
                                         "with the formula tells the error\n",
                                         hidden_ == 1 ? "one 0 is" : fmt::format("{} zeros are", hidden_),
                                         firstHidden_);
    }

private:
    using Results = std::vector<std::optional<FormulaResult>>;

    /// One result per formula, none for those that are evaluated by themselves; or none at all.
    Results AskServers(const std::vector<ReadFormula>& formulas) {
        std::vector<batch::BatchedCall> calls;
        std::vector<std::size_t> places;
        for (std::size_t i = 0; i < formulas.size(); ++i) {
            if (const ValueCall* call = ServerCallOf(formulas[i])) {
                const bool isDemo = formulas[i].call->function == WorksheetFunction::QelFuncDemo;
                calls.push_back({call, &context_.locale, isDemo});
                places.push_back(i);
            }
        }
        if (calls.size() < 2) {
            return {};
        }
        Results results(formulas.size());
        auto answered = batch_.Evaluate(calls);
        for (std::size_t i = 0; i < calls.size(); ++i) {
            results[places[i]] = std::move(answered[i]);
        }
        return results;
    }

    void Evaluate(const ReadFormula& formula) {
        if (!formula.call) {
            Fail(formula.label, formula.fault);
            return;
        }
        try {
            Print(formula, RunFormula(ObjectFor(formula), *formula.call));
        } catch (const AutomationError& error) {
            Fail(formula.label, FailureText(error));
        }
    }

    OrmQelFunction& ObjectFor(const ReadFormula& formula) {
        const ValueCall* call = ServerCallOf(formula);
        return call != nullptr ? batch_.FunctionOf(call->cubeFile, call->CubeName, context_.locale) : object_;
    }

    void Print(std::string_view value) { context_.output << value << '\n'; }

    void Print(const ReadFormula& formula, const FormulaResult& result) {
        const bool isNoName = result.failure && !std::holds_alternative<ValueCall>(formula.call->arguments);
        const bool hidesError = !result.masked.empty() || (options_.strict && isNoName);
        const bool explains = options_.why && ShowsZero(result, context_.locale);
        const std::string reason = hidesError || explains ? Reason(formula, result) : std::string();
        const std::string compared = options_.against.empty() ? "" : '\t' + Compared(formula, result.value);
        Print(ValueText(result.value) + compared + (explains ? "\t" + reason : ""));
        if (hidesError) {
            NoteHidden(formula.label, reason);
        }
    }

    /// The value over the other cube file, and the difference after a tab: none between texts.
    std::string Compared(const ReadFormula& formula, const Variant& value) {
        const FormulaResult other = RunFormula(other_, OverOtherFile(*formula.call, options_.against));
        if (!other.masked.empty()) {
            NoteHidden(fmt::format("{} over {}", formula.label, options_.against),
                       other.failure ? FailureText(*other.failure) : other.masked);
        }
        const bool areNumbers = IsNumeric(value, context_.locale) && IsNumeric(other.value, context_.locale);
        return ValueText(other.value) + '\t' +
               (areNumbers ? NumberText(ValueDifference(ToDouble(value, context_.locale),
                                                        ToDouble(other.value, context_.locale)))
                           : "");
    }

    void NoteHidden(const std::string& label, const std::string& reason) {
        if (options_.strict) {
            Tell(label, reason);
        } else if (hidden_++ == 0) {
            firstHidden_ = label;
        }
    }

    /// Why a formula shows 0 or "-".
    std::string Reason(const ReadFormula& formula, const FormulaResult& result) {
        if (!options_.strict && !options_.why) {
            return {};
        }
        return fmt::format("{}", fmt::join(ReasonTexts(reasons_.Why(*formula.call, result)), "; "));
    }

    void Fail(const std::string& label, std::string_view reason) {
        Print("#VALUE!");
        Tell(label, reason);
    }

    void Tell(const std::string& label, std::string_view reason) {
        // What goes to a terminal comes in the order in which it happened.
        context_.output.flush();
        context_.messages << "qel eval: " << label << ": " << reason << '\n';
        context_.failed = true;
    }

    CommandContext& context_;
    EvalOptions options_;
    batch::CallBatch batch_;
    ModSetCube::ThreadState thread_;
    OrmQelFunction object_;
    ModSetCube::ThreadState otherThread_;
    OrmQelFunction other_; ///< over the other cube file
    ZeroReasons reasons_;
    std::size_t hidden_ = 0; ///< errors that worksheets show as 0
    std::string firstHidden_;
};

void EvaluateLines(Evaluator& evaluator, CommandContext& context) {
    constexpr std::size_t mostAtOnce = 20'000;
    InputLines lines(context.input);
    std::vector<ReadFormula> waiting; // for further formulas that ask the server, and are there already
    while (true) {
        const bool isMoreThere = context.input.rdbuf()->in_avail() > 0;
        if (!isMoreThere || waiting.size() >= mostAtOnce) {
            evaluator.Evaluate(waiting);
            waiting.clear();
        }
        // A program that writes a formula and waits for its value gets it; a whole file is not flushed by
        // line.
        if (!isMoreThere) {
            context.output.flush();
        }
        const auto line = lines.NextFilled();
        if (!line) {
            break;
        }
        waiting.push_back(evaluator.Read(*line, fmt::format("line {}", lines.Number())));
        if (waiting.size() == 1 && ServerCallOf(waiting.front()) == nullptr) {
            evaluator.Evaluate(waiting);
            waiting.clear();
        }
    }
    evaluator.Evaluate(waiting);
}

} // namespace

void AddEvalCommand(CLI::App& app, CommandContext& context) {
    auto* command = app.add_subcommand("eval", evalDescription);
    command->footer(evalFooter);
    auto formulas = std::make_shared<std::vector<std::string>>();
    command->add_option("FORMULA", *formulas,
                        "The text of a cell; without any, one is read from each line of "
                        "standard input (blank lines are skipped)");
    auto options = std::make_shared<EvalOptions>();
    command->add_flag("--strict", options->strict, "Fail for errors that a cell shows as 0 or \"-\"");
    command->add_flag("--why", options->why, "Print beside each 0 why it is 0");
    command->add_option("--against", options->against, "Print the values over this cube file, too")
        ->option_text("OTHER.cub");
    command->callback([formulas, options, &context] {
        context.AllowNamed(options->against);
        if (!options->against.empty() && !IsServerAddress(options->against)) {
            RequireCubeFile(options->against);
        }
        Evaluator evaluator(context, *options);
        if (formulas->empty()) {
            EvaluateLines(evaluator, context);
        }
        std::vector<ReadFormula> read;
        for (std::size_t i = 0; i < formulas->size(); ++i) {
            read.push_back(evaluator.Read((*formulas)[i], fmt::format("formula {}", i + 1)));
        }
        evaluator.Evaluate(read);
        evaluator.ReportHiddenErrors();
    });
}

} // namespace qel
