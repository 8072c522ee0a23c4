#include "cli/MembersCommand.h"

#include "cli/LocalStore.h"
#include "cli/RecordingDataAccess.h"
#include "cli/ValueText.h"
#include "cube/MemberListing.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ostream.h>

namespace qel {

namespace {

using namespace ModSetCube;

constexpr const char* description =
    "List accounts, OBS members, cost centres, activities or summary groups of a cube";

constexpr const char* footer =
    R"(KIND, and the options that it needs:
  accounts        --obs; --firma         codes and names
  account-codes   --obs; --firma         codes alone; with --recordset
  obs             --obs --level          members of a level of [OBS] whose name begins with "level"; --sub-member
  cost-centers    (--obs, --sub-member)
  activities      --obs; --sub-member
  summary-codes   --obs --level; --firma every member of a level of [SumeryCode], such as SuperSum1
  summary-names   --obs --level; --firma the same of [SumeryName], such as SuperSum1Name
  summary         --level                codes and names; with --recordset: --obs; --firma
  obs-levels      --obs --sub-member     how many levels of [OBS] have data

One member a line: its name, then the captions, with tabs between. With --recordset: the flattened table, names of the
fields first. Members without data are left out, except of summary-codes and summary-names.

Examples:
  qel members demo.cub LedgerFNC --kind accounts --obs OBS
  qel members demo.cub LedgerFNC --kind obs --obs OBS --sub-member 1 --level Level2 --statement)";

struct MembersOptions {
    std::string cubeFile, cubeName, kind, firma, obs, level;
    std::optional<std::string> subMember;
    bool statementOnly = false, recordset = false;
};

/// What one word after --kind stands for.
struct KindOfList {
    const char* name;
    std::int16_t cellset;   ///< 0 for none
    std::int16_t recordset; ///< 0 for none
    bool obsFirst;          ///< the OBS number is argument A, otherwise the firm is
    bool needsObs, needsLevel;
    std::int32_t caption; ///< the number of its title in the string table
};

constexpr const char* obsLevels = "obs-levels";

constexpr KindOfList kinds[] = {
    {"accounts", CellsetKind::Accounts, CellsetKind::Accounts, false, true, false, 1485},
    {"account-codes", 0, RecordsetKind::AccountCodes, false, true, false, 1485},
    {"obs", CellsetKind::ObsOrCostCenters, CellsetKind::ObsOrCostCenters, true, true, true, 1488},
    {"cost-centers", CellsetKind::ObsOrCostCenters, CellsetKind::ObsOrCostCenters, true, false, false, 1488},
    {"activities", CellsetKind::Activities, CellsetKind::Activities, true, true, false, 1489},
    {"summary-codes", CellsetKind::SummaryCodes, 0, false, true, true, 1484},
    {"summary-names", CellsetKind::SummaryNames, 0, false, true, true, 1484},
    {"summary", CellsetKind::SummaryGroups, RecordsetKind::SummaryGroups, false, false, true, 1484},
    {obsLevels, 0, 0, true, true, false, 1487},
};

const KindOfList& FindKind(const std::string& name) {
    for (const auto& kind : kinds) {
        if (name == kind.name) {
            return kind;
        }
    }
    throw CLI::ValidationError("--kind",
                               fmt::format("there is no kind of list '{}'; see qel members --help", name));
}

void RequireOptions(const KindOfList& kind, const MembersOptions& options) {
    const auto require = [&](bool isGiven, const char* option) {
        if (!isGiven) {
            throw CLI::ValidationError(option, fmt::format("--kind {} needs it", options.kind));
        }
    };
    require(!kind.needsObs || !options.obs.empty(), "--obs");
    require(!kind.needsLevel || !options.level.empty(), "--level");
    if (options.kind == obsLevels) {
        return require(options.subMember.has_value(), "--sub-member");
    }
    if (options.recordset && kind.recordset == 0) {
        throw CLI::ValidationError("--recordset", fmt::format("--kind {} has no recordset", options.kind));
    }
    require(options.recordset || kind.cellset != 0, "--recordset");
}

MemberListing ListingOf(const KindOfList& kind, const MembersOptions& options) {
    MemberListing listing{options.cubeName, options.recordset ? kind.recordset : kind.cellset};
    listing.argumentA = kind.obsFirst ? options.obs : options.firma;
    // A second argument that is no level's name makes the list one of cost centres.
    listing.argumentB = kind.obsFirst ? (kind.needsLevel ? options.level : "Cost_Centers") : options.obs;
    if (options.subMember) {
        listing.obsSubMember = *options.subMember;
    }
    listing.summaryLevel = options.level;
    listing.accountsMode = 1;
    return listing;
}

/// One listing on its way from the options to the output.
class MemberList {
public:
    MemberList(CommandContext& context, const KindOfList& kind, const MembersOptions& options)
        : context_(context), kind_(kind), options_(options), provider_(context.dataAccess, recording_) {}

    void Print() {
        try {
            Run();
        } catch (const AutomationError&) {
            PrintStatements(); // asked for, it is shown even when it failed
            throw;
        }
        PrintStatements();
    }

private:
    void Run() {
        if (options_.kind == obsLevels) {
            lines_.push_back(std::to_string(CountObsLevels(provider_, options_.cubeName, options_.cubeFile,
                                                           options_.obs, *options_.subMember)));
        } else if (options_.recordset) {
            RunRecordset();
        } else {
            RunCellset();
        }
        if (options_.statementOnly) {
            return;
        }
        for (const auto& line : lines_) {
            fmt::print(context_.output, "{}\n", line);
        }
        PrintTitle();
    }

    void PrintStatements() {
        for (const auto& statement : recording_.statements) {
            if (options_.statementOnly) {
                fmt::print(context_.output, "{}\n", statement);
            }
        }
    }

    /// In the user's language: "Account list: 171".
    void PrintTitle() {
        const auto count = options_.recordset ? lines_.size() - 1 : lines_.size();
        if (options_.kind != obsLevels) {
            fmt::print(context_.messages, "{}: {}\n", Title(), count);
        }
    }

    std::string Title() const {
        try {
            LocalStore store(context_.messages);
            ModLangFrm::LanguageState language{store.environment, store.tables};
            ModLangFrm::InitLanguage(language);
            return ModLangFrm::GetLangString(language, kind_.caption);
        } catch (const AutomationError&) { // a user without a folder for settings
            return ResourceString(kind_.caption, Language::English);
        }
    }

    /// A position whose code has no caption is no entry of the wizards' lists.
    void RunCellset() {
        constexpr std::int32_t rows = 1;
        const auto cellset = ListMembersCellset(provider_, options_.cubeFile, ListingOf(kind_, options_));
        for (std::int32_t position = 0; position < cellset->PositionCount(rows); ++position) {
            const auto code = cellset->MemberAt(rows, position, 0);
            if (code.caption.value_or("").empty()) {
                continue;
            }
            std::string line = code.name;
            std::string last = line;
            for (std::int32_t place = 0; place < cellset->MemberCount(rows, position); ++place) {
                const auto caption = cellset->MemberAt(rows, position, place).caption.value_or("");
                if (caption != last) {
                    line += "\t" + caption;
                }
                last = caption;
            }
            lines_.push_back(line);
        }
    }

    void RunRecordset() {
        ThreadState thread;
        OpenedCube opened;
        const auto rows = provider_.CreateRecordset();
        OpenMemberRecordset(thread, provider_, opened, *rows, options_.cubeFile, ListingOf(kind_, options_));
        const auto fields = [&](const auto& textOf) {
            std::string line;
            for (std::int32_t field = 0; field < rows->FieldCount(); ++field) {
                line += (field == 0 ? "" : "\t") + textOf(field);
            }
            lines_.push_back(line);
        };
        fields([&](std::int32_t field) { return rows->FieldName(field); });
        for (; !rows->AtEnd(); rows->MoveNext()) {
            fields([&](std::int32_t field) {
                const auto value = rows->FieldValue(field);
                return value.Is<Null>() ? std::string() : ValueText(value);
            });
        }
    }

    CommandContext& context_;
    const KindOfList& kind_;
    const MembersOptions& options_;
    Recording recording_;
    RecordingDataAccess provider_;
    std::vector<std::string> lines_;
};

void ListMembers(CommandContext& context, const MembersOptions& options) {
    const KindOfList& kind = FindKind(options.kind);
    RequireOptions(kind, options);
    if (options.kind == "obs" && !NamesObsLevel(options.level)) {
        fmt::print(context.messages, "qel: '{}' does not begin with \"level\", so cost centres are listed\n",
                   options.level);
    }
    MemberList(context, kind, options).Print();
}

} // namespace

void AddMembersCommand(CLI::App& app, CommandContext& context) {
    auto* command = app.add_subcommand("members", description);
    command->footer(footer);
    auto options = std::make_shared<MembersOptions>();
    command->add_option("CUBEFILE", options->cubeFile, "The cube file")->required();
    command->add_option("CUBENAME", options->cubeName, "The cube in it")->required();
    command->add_option("--kind", options->kind, "What to list, see below")->required();
    command->add_option("--firma", options->firma, "A member of [Firma]; All or nothing for every firm");
    command->add_option("--obs", options->obs, "A member under [ActX].[OBSx].[All]");
    command->add_option("--level", options->level, "A level of [OBS] or [SuperSumery]");
    command->add_option("--sub-member", options->subMember, "A member under --obs");
    command->add_flag("--recordset", options->recordset, "List through a flattened recordset");
    command->add_flag("--statement", options->statementOnly,
                      "Print the statement that was sent, not the members");
    command->callback([options, &context] { ListMembers(context, *options); });
}

} // namespace qel
