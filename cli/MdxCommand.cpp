#include "cli/MdxCommand.h"

#include "cli/CellsetOutput.h"
#include "cli/InputLines.h"
#include "cli/LinesOutput.h"
#include "cli/OutputFields.h"
#include "cube/CellLines.h"
#include "cube/CubeConnection.h"
#include "qel/engine/Drillthrough.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace qel {

namespace {

constexpr const char* mdxDescription = "Run an MDX statement and print its cells";

constexpr const char* mdxFooter =
    R"(Columns go across, rows go down; an empty cell is empty, not 0. Members of further axes stand before
those of the rows. Amounts of cube files have all decimals of their measure, months their year.
FORMAT_STRING changes nothing; a member with the formula Format([Measures].[Amount], "#,##0.00") is a text.
DRILLTHROUGH before a statement of one cell prints the lines behind it.

Examples:
  qel mdx demo.cub LedgerFNC 'SELECT {[Measures].[Amount]} ON COLUMNS, [Firma].Members ON ROWS FROM [LedgerFNC]'
  qel mdx demo.cub LedgerFNC - --csv < statement.mdx)";

struct MdxOptions {
    std::string cubeFile, cubeName, statement;
    bool csv = false, json = false;
    MemberText names = MemberText::Caption;
};

void PrintRows(const MdxOptions& options, const Rowset& rows, std::ostream& output) {
    if (options.csv) {
        PrintRowsAsCsv(rows, output);
    } else if (options.json) {
        PrintJson(RowsJson(rows), output);
    } else {
        PrintRowsAsTable(rows, output);
    }
}

void RunMdx(const MdxOptions& options, CommandContext& context) {
    context.AllowNamed(options.cubeFile);
    const auto cube =
        context.providers.Connect(ModSetCube::ComposeConnectionText(options.cubeFile, options.cubeName));
    const std::string statement = options.statement == "-" ? ReadAll(context.input) : options.statement;
    if (engine::IsDrillthrough(statement)) {
        const auto recordset = cube.provider.CreateRecordset();
        recordset->Open(statement, cube.connection, optionsUnspecified, optionsUnspecified,
                        optionsUnspecified);
        PrintRows(options, ModSetCube::ReadRows(*recordset), context.output);
        return;
    }
    const auto cellset = cube.provider.CreateCellset();
    cellset->Open(statement, cube.connection);
    const auto grid = ReadGrid(*cellset);
    if (options.csv) {
        PrintAsCsv(grid, context.output, options.names);
    } else if (options.json) {
        PrintAsJson(grid, context.output);
    } else {
        PrintAsTable(grid, context.output, options.names);
    }
}

} // namespace

void AddMdxCommand(CLI::App& app, CommandContext& context) {
    auto* command = app.add_subcommand("mdx", mdxDescription);
    command->footer(mdxFooter);
    auto options = std::make_shared<MdxOptions>();
    command->add_option("CUBEFILE", options->cubeFile, "The cube file")->required();
    command->add_option("CUBENAME", options->cubeName, "The cube in it")->required();
    command->add_option("STATEMENT", options->statement, "The MDX statement; '-' reads standard input")
        ->required();
    auto* csv = command->add_flag("--csv", options->csv, "Print comma-separated values (RFC 4180)");
    auto* json = command->add_flag("--json", options->json, "Print JSON: axes with members, cells by row");
    json->excludes(csv);
    static const std::map<std::string, MemberText> texts = {{"caption", MemberText::Caption},
                                                            {"name", MemberText::Name},
                                                            {"unique", MemberText::UniqueName},
                                                            {"key", MemberText::Key}};
    command->add_option("--names", options->names, "What stands for a member; JSON has all of them")
        ->transform(CLI::CheckedTransformer(texts, CLI::ignore_case).description(""))
        ->option_text("caption|name|unique|key")
        ->excludes(json);
    command->callback([options, &context] { RunMdx(*options, context); });
}

} // namespace qel
