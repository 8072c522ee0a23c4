#include "cli/CheckWorkbookCommand.h"

#include "batch/CallBatch.h"
#include "cli/OutputFields.h"
#include "cli/ProgressBar.h"
#include "cli/TextTable.h"
#include "lang/StringTable.h"
#include "platform/data/ConnectionText.h"
#include "reason/FormulaJudge.h"
#include "text/Text.h"
#include "text/Utf8Path.h"
#include "workbook/WorkbookError.h"
#include "workbook/WorkbookFile.h"
#include "workbook/cells/SheetCalls.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <filesystem>

namespace qel {

namespace {

constexpr const char* checkDescription = "List the formulas of a workbook whose 0 hides an error";

constexpr const char* checkFooter =
    R"(Reads .xlsx, .xlsm and .ods files without a spreadsheet, evaluates every formula of ours in them, and lists
  hidden error    a 0 or "-" in the place of an error, with the reason
  outdated cube   Outdated Cube Version
  no cube file    the formula's cube file is missing
  #VALUE!         the formula fails, and its cell shows so
  not checked     an argument is computed in a way that is not known here, or the file does not have its value
Every call counts, one in a branch of IF that is not taken, too. Cells and names that arguments refer to have the values
that the file keeps. A relative path of a cube file starts at
the folder of the workbook; if there is no such file, at the current folder. The exit status is 1 if anything is found,
or a file cannot be read. What is not checked alone is no failure; --strict takes it for one.

Examples:
  qel check-workbook report.xlsx
  qel check-workbook *.ods --csv > findings.csv)";

constexpr const char* notChecked = "not checked";
constexpr const char* failing = "#VALUE!";

struct CheckOptions {
    std::vector<std::string> files;
    bool csv = false, json = false, strict = false;
};

struct ListedFormula {
    std::string file, sheet, cell, finding, reason;

    std::vector<std::string> Fields() const { return {file, sheet, cell, finding, reason}; }
};

const std::vector<std::string> listHeader = {"file", "sheet", "cell", "finding", "reason"};

const char* NameOf(Verdict verdict) {
    switch (verdict) {
    case Verdict::Outdated:
        return "outdated cube";
    case Verdict::NoFile:
        return "no cube file";
    case Verdict::Fails:
        return failing;
    default:
        return "hidden error";
    }
}

/// Evaluates the formulas of workbooks and keeps what is found.
class WorkbookCheck {
public:
    explicit WorkbookCheck(CommandContext& context)
        : context_(context), batch_(context.providers), judge_(context.providers, context.locale, batch_) {}

    /// Raises WorkbookError.
    void Check(const std::string& file) {
        const auto path = PathFromUtf8(file);
        const WorkbookContent workbook = ReadWorkbook(path);
        auto calls = FindSheetCalls(workbook, context_.locale);
        for (SheetCall& call : calls) {
            CompletePath(call, path.parent_path());
        }
        const auto known = AskServers(calls);
        ProgressBar bar(context_.terminal, context_.terminalColumns);
        constexpr std::size_t step = 256;
        for (std::size_t i = 0; i < calls.size(); ++i) {
            if (i % step == 0) {
                bar.Show("checking", static_cast<double>(i) / static_cast<double>(calls.size()));
            }
            const SheetCall& call = calls[i];
            Found place{file, workbook.sheets[call.sheet].name, CellName(call.place)};
            call.call ? Judge(place, *call.call, known[i])
                      : List(place, call.isUnread ? notChecked : failing, call.fault);
        }
        formulas_ += calls.size();
    }

    std::size_t Formulas() const { return formulas_; }
    const std::vector<ListedFormula>& Listed() const { return listed_; }

private:
    struct Found {
        std::string file, sheet, cell;
    };
    using Results = std::vector<std::optional<FormulaResult>>;

    static void CompletePath(SheetCall& call, const std::filesystem::path& folder) {
        if (!call.call) {
            return;
        }
        std::visit(
            [&](auto& arguments) {
                const std::string file(Trimmed(arguments.cubeFile));
                std::error_code failure; // set for an invalid path
                const auto beside = folder / PathFromSetting(file);
                if (!file.empty() && !IsServerAddress(file) && std::filesystem::exists(beside, failure)) {
                    arguments.cubeFile = PathToUtf8(beside);
                }
            },
            call.call->arguments);
    }

    /// Formulas over servers are asked for together, in as few statements as their cells fit into.
    Results AskServers(const std::vector<SheetCall>& calls) {
        std::vector<batch::BatchedCall> asked;
        std::vector<std::size_t> places;
        for (std::size_t i = 0; i < calls.size(); ++i) {
            const auto* value = calls[i].call ? std::get_if<ValueCall>(&calls[i].call->arguments) : nullptr;
            if (value != nullptr && IsServerAddress(value->cubeFile)) {
                asked.push_back(
                    {value, &context_.locale, calls[i].call->function == WorksheetFunction::QelFuncDemo});
                places.push_back(i);
            }
        }
        Results results(calls.size());
        auto answers = asked.empty() ? Results() : batch_.Evaluate(asked);
        for (std::size_t i = 0; i < answers.size(); ++i) {
            results[places[i]] = std::move(answers[i]);
        }
        return results;
    }

    void Judge(const Found& place, const FormulaCall& call, const std::optional<FormulaResult>& known) {
        const Judgement judgement = judge_.Of(call, known);
        if (judgement.verdict != Verdict::Sound) {
            List(place, NameOf(judgement.verdict), JudgementText(judgement, Language::English));
        }
    }

    void List(const Found& place, const std::string& finding, const std::string& reason) {
        listed_.push_back({place.file, place.sheet, place.cell, finding, reason});
    }

    CommandContext& context_;
    batch::CallBatch batch_;
    FormulaJudge judge_;
    std::size_t formulas_ = 0;
    std::vector<ListedFormula> listed_;
};

void PrintListed(const WorkbookCheck& check, const CheckOptions& options, std::ostream& output) {
    if (options.csv) {
        PrintCsvLine(listHeader, output);
        for (const ListedFormula& formula : check.Listed()) {
            PrintCsvLine(formula.Fields(), output);
        }
        return;
    }
    if (options.json) {
        nlohmann::ordered_json document;
        document["formulas"] = check.Formulas();
        document["findings"] = nlohmann::ordered_json::array();
        for (const ListedFormula& formula : check.Listed()) {
            nlohmann::ordered_json entry;
            const auto fields = formula.Fields();
            for (std::size_t i = 0; i < fields.size(); ++i) {
                entry[listHeader[i]] = fields[i];
            }
            document["findings"].push_back(std::move(entry));
        }
        PrintJson(document, output);
        return;
    }
    if (!check.Listed().empty()) {
        TextTable table{listHeader.size(), {listHeader}};
        for (const ListedFormula& formula : check.Listed()) {
            table.lines.push_back(formula.Fields());
        }
        PrintTable(table, output);
    }
}

void CheckWorkbooks(CommandContext& context, const CheckOptions& options) {
    WorkbookCheck check(context);
    for (const std::string& file : options.files) {
        try {
            check.Check(file);
        } catch (const WorkbookError& error) {
            context.messages << fmt::format("qel check-workbook: {}: {}\n", file, error.what());
            context.failed = true;
        }
    }
    PrintListed(check, options, context.output);
    context.output.flush();
    std::size_t unchecked = 0;
    for (const ListedFormula& formula : check.Listed()) {
        unchecked += formula.finding == notChecked ? 1U : 0U;
    }
    const std::size_t found = check.Listed().size() - unchecked;
    context.messages << fmt::format("qel check-workbook: {} formula{}, {} found, {} not checked\n",
                                    check.Formulas(), check.Formulas() == 1 ? "" : "s", found, unchecked);
    context.failed = context.failed || found > 0 || (options.strict && unchecked > 0);
}

} // namespace

void AddCheckWorkbookCommand(CLI::App& app, CommandContext& context) {
    auto* command = app.add_subcommand("check-workbook", checkDescription);
    command->footer(checkFooter);
    auto options = std::make_shared<CheckOptions>();
    command->add_option("FILE", options->files, "The workbooks")->required();
    auto* csv = command->add_flag("--csv", options->csv, "Print comma-separated values (RFC 4180)");
    auto* json = command->add_flag("--json", options->json, "Print JSON: formulas and findings");
    json->excludes(csv);
    command->add_flag("--strict", options->strict, "Fail for formulas that are not checked, too");
    command->callback([options, &context] { CheckWorkbooks(context, *options); });
}

} // namespace qel
