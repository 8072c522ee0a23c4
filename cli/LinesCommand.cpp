#include "cli/LinesCommand.h"

#include "cli/LinesOutput.h"
#include "cli/OutputFields.h"
#include "cube/CellLines.h"
#include "function/OrmQelFunction.h"
#include "function/formula/BindFormula.h"
#include "function/formula/FormulaError.h"
#include "function/formula/ParseFormula.h"
#include "platform/value/AutomationError.h"
#include "platform/value/Conversion.h"
#include "platform/value/FailureText.h"
#include "platform/value/ValueText.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <cmath>

namespace qel {

namespace {

constexpr const char* linesDescription = "Show the lines of the ledger that a formula's value adds up";

constexpr const char* linesFooter =
    R"(The formula is the text of a cell, as in 'qel eval'. The lines come by date, then in the order of the ledger
where the cube keeps its "details", otherwise by their other keys. Below them stands their sum, which is the formula's
value; where --limit leaves lines out, it says how many there are. A line that the value counts twice is there twice.

A column is one of those that the command shows without --columns, or a level or measure by its path. For a level its
caption is shown; Key([Accounts].[AccountCodes].[AccountCode]) shows the key, Name(…) the name.

Examples:
  qel lines "$formula"
  qel lines "$formula" --columns 'date,account,[SuperSumery].[SumeryCode].[SuperSum1],Amount' --csv > lines.csv)";

struct LinesOptions {
    std::string formula;
    ModSetCube::LinesRequest request;
    bool csv = false, json = false;
};

/// The lines behind one formula, as they are printed.
class LinesOfFormula {
public:
    LinesOfFormula(CommandContext& context, const LinesOptions& options)
        : context_(context), options_(options), object_({thread_, context.providers, context.locale}) {}

    void Print() {
        const FormulaCall call = BindFormula(ParseFormula(options_.formula), context_.locale);
        const auto* value = std::get_if<ValueCall>(&call.arguments);
        if (value == nullptr) {
            Fail("the formula gives a name; only values have lines");
            return;
        }
        const PreparedCall prepared = call.function == WorksheetFunction::QelFuncDemo
                                          ? object_.PrepareQelFuncDemo(*value)
                                          : object_.PrepareQeLF1(*value);
        FormulaResult result = prepared.result;
        if (prepared.query) {
            result = object_.Complete(prepared, ReadCell(thread_, context_.providers, *prepared.query));
        }
        if (result.failure || !result.masked.empty() || !IsNumeric(result.value, context_.locale)) {
            FailWith(result);
            return;
        }
        if (prepared.query) {
            lines_ = ReadCellLines(thread_, context_.providers, *prepared.query, options_.request);
        } else { // dates outside those of the cube
            lines_.rows.total = 0;
            lines_.isComplete = true;
        }
        value_ = ToDouble(result.value, context_.locale);
        PrintLines();
        CheckSum();
    }

private:
    void PrintLines() const {
        if (options_.csv) {
            PrintRowsAsCsv(lines_.rows, context_.output);
            context_.output.flush();
            context_.messages << "qel lines: " << Summary() << '\n';
            return;
        }
        if (!options_.json) {
            if (!lines_.rows.rows.empty()) {
                PrintRowsAsTable(lines_.rows, context_.output);
                context_.output << '\n';
            }
            context_.output << Summary() << '\n';
            return;
        }
        nlohmann::ordered_json document = RowsJson(lines_.rows);
        document["complete"] = lines_.isComplete;
        document["sum"] = HasSum() ? nlohmann::ordered_json(Sum()) : nlohmann::ordered_json();
        document["value"] = value_;
        PrintJson(document, context_.output);
    }

    /// A server may answer without the column of the amounts.
    bool HasSum() const { return lines_.amount || lines_.rows.rows.empty(); }

    double Sum() const { return lines_.amount ? ModSetCube::SumOfField(lines_.rows, *lines_.amount) : 0; }

    std::string Summary() const {
        const std::size_t shown = lines_.rows.rows.size();
        const std::string value = NumberText(value_);
        if (lines_.isComplete) {
            return fmt::format("{} line{}, {}", shown, shown == 1 ? "" : "s",
                               HasSum() ? "sum " + NumberText(Sum())
                                        : "without their amounts; the formula's value is " + value);
        }
        return fmt::format("the first {} of {} lines; the value of all is {} (--limit 0 shows all)", shown,
                           lines_.rows.total ? fmt::format("{}", *lines_.rows.total) : "more", value);
    }

    void CheckSum() {
        constexpr double halfCent = 0.005;
        if (lines_.isComplete && HasSum() && std::abs(Sum() - value_) >= halfCent) {
            Fail(fmt::format("the lines add up to {}, and the formula's value is {}", NumberText(Sum()),
                             NumberText(value_)));
        }
    }

    void FailWith(const FormulaResult& result) {
        const std::string shown = result.masked.empty() ? ValueText(result.value) : result.masked;
        Fail(result.failure ? fmt::format("the formula has no value: {}", FailureText(*result.failure))
                            : fmt::format("the formula has no value: {}", shown));
    }

    void Fail(const std::string& reason) {
        context_.output.flush();
        context_.messages << "qel lines: " << reason << '\n';
        context_.failed = true;
    }

    CommandContext& context_;
    const LinesOptions& options_;
    ModSetCube::ThreadState thread_;
    OrmQelFunction object_;
    ModSetCube::CellLines lines_;
    double value_ = 0;
};

void ShowLines(CommandContext& context, const LinesOptions& options) {
    try {
        LinesOfFormula(context, options).Print();
    } catch (const FormulaError& error) {
        context.messages << "qel lines: " << error.what() << '\n';
        context.failed = true;
    } catch (const AutomationError& error) {
        context.messages << "qel lines: " << FailureText(error) << '\n';
        context.failed = true;
    }
}

} // namespace

void AddLinesCommand(CLI::App& app, CommandContext& context) {
    auto* command = app.add_subcommand("lines", linesDescription);
    command->footer(linesFooter);
    auto options = std::make_shared<LinesOptions>();
    command->add_option("FORMULA", options->formula, "The text of a cell")->required();
    auto* csv = command->add_flag("--csv", options->csv, "Print comma-separated values (RFC 4180)");
    auto* json = command->add_flag("--json", options->json,
                                   "Print JSON: columns, rows, total, complete, sum and value");
    json->excludes(csv);
    command->add_option("--limit", options->request.most, "Show at most N lines; 0 for all (default 10000)")
        ->option_text("N");
    command
        ->add_option("--columns", options->request.columns,
                     "Show these columns, and the amounts; separated by commas")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->option_text("COLUMN,...");
    command->callback([options, &context] { ShowLines(context, *options); });
}

} // namespace qel
