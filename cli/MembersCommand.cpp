#include "cli/MembersCommand.h"

#include "cli/LocalStore.h"
#include "cube/MemberListing.h"
#include "platform/value/AutomationError.h"
#include "platform/value/ValueText.h"
#include "reason/Recording.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ostream.h>

namespace qel {

namespace {

using namespace ModSetCube;

constexpr const char* membersDescription =
    "List accounts, OBS members, cost centres, activities or summary groups of a cube";

constexpr const char* membersFooter =
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

Each line holds one member: its name, then its captions, separated by tabs. With --recordset: the flattened table, with
the names of its fields first. Members without data are left out, except of summary-codes and summary-names.

Examples:
  qel members demo.cub LedgerFNC --kind accounts --obs OBS
  qel members demo.cub LedgerFNC --kind obs --obs OBS --sub-member 1 --level Level2 --statement)";

struct MembersOptions {
    std::string cubeFile, cubeName, kind, firma, obs, level;
    std::optional<std::string> subMember;
    bool statementOnly = false, recordset = false;
};

constexpr const char* obsLevels = "obs-levels";

ListedMembers Accounts(const MembersOptions& options) { return AccountsListing{options.firma, options.obs}; }

ListedMembers AccountCodes(const MembersOptions& options) {
    return AccountCodesListing{options.firma, options.obs};
}

ListedMembers ObsMembersOf(const MembersOptions& options) {
    return ObsListing{options.obs, options.level, options.subMember};
}

ListedMembers CostCenters(const MembersOptions& options) {
    return ObsListing{options.obs, "Cost_Centers", options.subMember}; // no level of [OBS] has that name
}

ListedMembers Activities(const MembersOptions& options) {
    return ActivitiesListing{options.obs, options.subMember};
}

template <SummaryLevelListing::By by>
ListedMembers SummaryLevel(const MembersOptions& options) {
    return SummaryLevelListing{by, options.level, options.firma, options.obs, options.subMember};
}

ListedMembers SummaryGroups(const MembersOptions& options) {
    if (options.recordset) {
        return SummaryGroupsOfObsListing{options.level, options.firma, options.obs};
    }
    return SummaryGroupsListing{options.level, options.firma};
}

/// What one word after --kind stands for.
struct KindOfList {
    const char* name;
    ListedMembers (*members)(const MembersOptions&); ///< null for a count of levels
    bool hasCellset, hasRecordset;
    bool needsObs, needsLevel;
    std::int32_t caption; ///< the number of its title in the string table
};

constexpr KindOfList kinds[] = {
    {"accounts", Accounts, true, true, true, false, 1485},
    {"account-codes", AccountCodes, false, true, true, false, 1485},
    {"obs", ObsMembersOf, true, true, true, true, 1488},
    {"cost-centers", CostCenters, true, true, false, false, 1488},
    {"activities", Activities, true, true, true, false, 1489},
    {"summary-codes", SummaryLevel<SummaryLevelListing::By::Code>, true, false, true, true, 1484},
    {"summary-names", SummaryLevel<SummaryLevelListing::By::Name>, true, false, true, true, 1484},
    {"summary", SummaryGroups, true, true, false, true, 1484},
    {obsLevels, nullptr, false, false, true, false, 1487},
};

/// "accounts|account-codes|…"
std::string KindNames() {
    std::string names;
    for (const auto& kind : kinds) {
        names += (names.empty() ? "" : "|") + std::string(kind.name);
    }
    return names;
}

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
    if (options.recordset && !kind.hasRecordset) {
        throw CLI::ValidationError("--recordset", fmt::format("--kind {} has no recordset", options.kind));
    }
    require(options.recordset || kind.hasCellset, "--recordset");
}

/// One listing on its way from the options to the output.
class MemberList {
public:
    MemberList(CommandContext& context, const KindOfList& kind, const MembersOptions& options)
        : context_(context), kind_(kind), options_(options), providers_(context.providers) {
        providers_.observer = &recording_;
    }

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
            lines_.push_back(std::to_string(CountObsLevels(providers_, options_.cubeName, options_.cubeFile,
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

    MemberListing Listing() const { return {options_.cubeName, kind_.members(options_)}; }

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
        const auto cellset = ListMembersCellset(providers_, options_.cubeFile, Listing());
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
        const auto rows =
            providers_.For(ComposeConnectionText(options_.cubeFile, options_.cubeName)).CreateRecordset();
        OpenMemberRecordset(thread, providers_, opened, *rows, options_.cubeFile, Listing());
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
    Providers providers_;
    std::vector<std::string> lines_;
};

void ListMembers(CommandContext& context, const MembersOptions& options) {
    const KindOfList& kind = FindKind(options.kind);
    RequireOptions(kind, options);
    context.AllowNamed(options.cubeFile);
    if (options.kind == "obs" && !NamesObsLevel(options.level)) {
        fmt::print(context.messages, "qel: '{}' does not begin with \"level\", so cost centres are listed\n",
                   options.level);
    }
    MemberList(context, kind, options).Print();
}

} // namespace

void AddMembersCommand(CLI::App& app, CommandContext& context) {
    auto* command = app.add_subcommand("members", membersDescription);
    command->footer(membersFooter);
    auto options = std::make_shared<MembersOptions>();
    command->add_option("CUBEFILE", options->cubeFile, "The cube file")->required();
    command->add_option("CUBENAME", options->cubeName, "The cube in it")->required();
    command->add_option("--kind", options->kind, "What to list, see below")
        ->required()
        ->option_text(KindNames() + " REQUIRED");
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
