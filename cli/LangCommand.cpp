#include "cli/LangCommand.h"

#include "lang/LangCheck.h"
#include "lang/StringTable.h"
#include "platform/tables/xml/XmlTableReader.h"
#include "platform/value/AutomationError.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ostream.h>

namespace qel {

namespace {

constexpr const char* langFooter =
    R"(Of every language in the table, and of English (0) and Hebrew (1) in any case, prints how many rows it has and
which numbers are missing, have no text, occur twice or are unknown to this component. Unknown numbers are no fault:
the suite's other programs have texts of their own. Exit status 1 when English or Hebrew has any other finding.

Example:
  qel lang check examples/lang/Lang.rs)";

void PrintNumbers(std::ostream& output, std::string_view what, const std::vector<std::int32_t>& numbers) {
    if (!numbers.empty()) {
        fmt::print(output, "  {}: {}\n", what, fmt::join(numbers, ", "));
    }
}

bool HasFault(const LangFindings& findings) {
    return !findings.missing.empty() || !findings.empty.empty() || !findings.duplicate.empty();
}

std::vector<LangRow> RowsIn(const std::string& file) {
    const auto table = XmlTableReader().Read(file);
    try {
        return LangRowsOf(table);
    } catch (const AutomationError& error) {
        throw AutomationError(error.Number(), fmt::format("{}: {}", file, error.Description()),
                              error.Source());
    }
}

void Check(CommandContext& context, const std::string& file) {
    const auto rows = RowsIn(file);
    for (const auto& [language, findings] : CheckLangRows(rows)) {
        fmt::print(context.output, "language {}: {} rows\n", language, findings.rows);
        PrintNumbers(context.output, "missing", findings.missing);
        PrintNumbers(context.output, "without a text", findings.empty);
        PrintNumbers(context.output, "more than once", findings.duplicate);
        PrintNumbers(context.output, "unknown", findings.unknown);
        const bool mustBeWhole = language == Language::English || language == Language::Hebrew;
        context.failed = context.failed || (mustBeWhole && HasFault(findings));
    }
}

} // namespace

void AddLangCommand(CLI::App& app, CommandContext& context) {
    auto* lang = app.add_subcommand("lang", "Language tables of the dialogs' texts");
    lang->require_subcommand(1);
    lang->fallthrough();
    auto* check = lang->add_subcommand("check", "List what a language table Lang.rs lacks");
    check->footer(langFooter);
    auto file = std::make_shared<std::string>();
    check->add_option("FILE", *file, "The language table, in XML form")->required();
    check->callback([file, &context] { Check(context, *file); });
}

} // namespace qel
