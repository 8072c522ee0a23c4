#include "cli/SettingsCommand.h"

#include "cli/LocalStore.h"
#include "platform/database/DatabaseFile.h"
#include "platform/value/AutomationError.h"
#include "store/LocalDb.h"
#include "store/ModAPI.h"
#include "store/ModPublics.h"
#include "support/Folders.h"
#include "support/SettingPaths.h"
#include "text/CaseFold.h"
#include "text/Text.h"
#include "text/Utf8Path.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ostream.h>

namespace qel {

namespace {

constexpr const char* settingsDescription = "Show the suite's settings: value, and where each stands";

constexpr const char* settingsExamples =
    R"(Examples:
  qel settings
  qel settings set MDBPath /srv/pralix
  qel settings set QelUILanguage 1)";

constexpr const char* setFooter =
    R"(NAME is one of
  MDBPath        the suite's data folder, and the local database's; it is made when only the last part is missing
  TempPath       the suite's temporary folder
  QelUILanguage  0 English, 1 Hebrew, 2 a further language of Lang.rs; in Qel.ini of MDBPath
  FileCube       the wizard's last cube file; in Cub.ini of MDBPath)";

constexpr const char* helpFile = "PralixHeb.chm";

std::string Presence(const std::string& path) { return FileExists(path) ? "there" : "missing"; }

std::string DatabaseState(const std::string& path) {
    switch (IdentifyDatabaseFile(PathFromSetting(path))) {
    case DatabaseFileKind::Missing:
        return "missing";
    case DatabaseFileKind::Sqlite:
        return "there";
    case DatabaseFileKind::Jet:
        return "made by Microsoft Jet, which is not to be had here; it is left as it is";
    case DatabaseFileKind::Unreadable:
        return "cannot be read";
    default:
        return "no database";
    }
}

/// Prints one setting a line: name, value, where it stands.
class SettingsList {
public:
    SettingsList(LocalStore& store, CommandContext& context) : store_(store), context_(context) {}

    void Print() {
        auto& environment = store_.environment;
        const std::string key = store_.system->PlaceOfKey();
        Line("MDBPath", ModAPI::GetRegSetting(environment, ModAPI::mdbPathValue), key);
        Line("TempPath", ModAPI::GetRegSetting(environment, ModAPI::tempPathValue), key);
        const auto language =
            ModPublics::ReadQelIni(environment, ModPublics::languageSection, ModPublics::languageKey);
        Line("QelUILanguage", language, "[Qel] of " + QelIni());
        const auto folder = ModAPI::LocalDbFolder(environment);
        Line("FileCube", LastCubeFile(folder),
             fmt::format("[FileCube] F of {}{}", folder, ModPublics::cubIniFile));
        const auto database = folder + ModAPI::localDbFile;
        Line("local database", database,
             fmt::format("{}; engine: {}", DatabaseState(database), environment.database.Name()));
        const auto component = environment.componentFolder + pathSeparator;
        Line("language table", component + ModLangFrm::langTableFile,
             Presence(component + ModLangFrm::langTableFile));
        Line("help file", component + helpFile, Presence(component + helpFile));
        for (const auto& file : {std::string(), QelIni(), folder + ModPublics::cubIniFile}) {
            Warn(PathFromSetting(file));
        }
    }

private:
    /// Known after the first reading of it.
    std::string QelIni() const {
        return store_.environment.suiteFolder + pathSeparator + ModPublics::qelIniFile;
    }

    /// A setting in a file that cannot be understood looks as if it were not set.
    void Warn(const std::filesystem::path& file) {
        if (const auto fault = store_.system->FaultOfContent(file)) {
            fmt::print(context_.messages, "qel: {}\n", fault->Description());
        }
    }

    /// As ReadCubIniSection, which would make the folder.
    std::string LastCubeFile(const std::string& folder) {
        return store_.environment.profiles.ReadString(ModPublics::cubeFileSection, ModPublics::cubeFileKey,
                                                      maxCubeFile, folder + ModPublics::cubIniFile);
    }

    void Line(std::string_view name, const std::string& value, const std::string& place) {
        fmt::print(context_.output, "{}\t{}\t{}\n", name, value.empty() ? "(not set)" : value, place);
    }

    static constexpr std::size_t maxCubeFile = 510;
    LocalStore& store_;
    CommandContext& context_;
};

std::filesystem::path FolderOf(const std::string& value) {
    const std::string_view trimmed = Trimmed(value);
    if (trimmed.empty()) {
        throw CLI::ValidationError("VALUE", "the folder is empty");
    }
    if (trimmed.find_first_of("\r\n") != std::string_view::npos) {
        throw CLI::ValidationError("VALUE", "the folder's name has more than one line");
    }
    const auto path = std::filesystem::absolute(PathFromSetting(trimmed)).lexically_normal();
    return path.has_filename() ? path : path.parent_path(); // the component appends a separator itself
}

void RequireMdbPath(LocalStore& store, std::string_view file) {
    if (ModAPI::GetRegSetting(store.environment, ModAPI::mdbPathValue).empty()) {
        throw AutomationError(
            ErrorNumber::InvalidProcedureCall,
            fmt::format("MDBPath is not set, and {} stands in that folder: run 'qel settings set "
                        "MDBPath FOLDER' first.",
                        file));
    }
}

void RequireWritten(const LocalStore& store, std::int32_t result) {
    if (result == 0) {
        throw store.system->ProfileFault().value_or(
            AutomationError(ErrorNumber::InvalidProcedureCall, "The setting could not be written."));
    }
}

void SetLanguage(LocalStore& store, const std::string& value) {
    if (value != "0" && value != "1" && value != "2") {
        throw CLI::ValidationError("VALUE", fmt::format("'{}' is no language: 0, 1 or 2", value));
    }
    RequireMdbPath(store, ModPublics::qelIniFile);
    const auto file = ModAPI::QelFuncMdbPath(store.environment) + ModPublics::qelIniFile;
    RequireWritten(store, store.environment.profiles.WriteString(ModPublics::languageSection,
                                                                 ModPublics::languageKey, value, file));
}

void SetLastCube(LocalStore& store, const std::string& value) {
    RequireMdbPath(store, ModPublics::cubIniFile);
    RequireWritten(store, ModPublics::WriteCubIni(store.environment, ModPublics::cubeFileSection,
                                                  ModPublics::cubeFileKey, value));
}

void Set(CommandContext& context, const std::string& name, const std::string& value) {
    LocalStore store(context.messages);
    if (EqualIgnoringCase(name, ModAPI::mdbPathValue)) {
        // Made before it is stored: a folder that cannot be must not take the place of one that is.
        const auto folder = FolderOf(value);
        if (!DirExists(PathToUtf8(folder))) {
            MakeFolder(PathToUtf8(folder));
        }
        store.system->SetValue(ModAPI::mdbPathValue, PathToUtf8(folder));
    } else if (EqualIgnoringCase(name, ModAPI::tempPathValue)) {
        store.system->SetValue(ModAPI::tempPathValue, PathToUtf8(FolderOf(value)));
    } else if (EqualIgnoringCase(name, ModPublics::languageKey)) {
        SetLanguage(store, value);
    } else if (EqualIgnoringCase(name, ModPublics::cubeFileSection)) {
        SetLastCube(store, value);
    } else {
        throw CLI::ValidationError(
            "NAME", fmt::format("there is no setting '{}': MDBPath, TempPath, QelUILanguage or "
                                "FileCube",
                                name));
    }
    context.failed = store.messages.HasShown();
}

void MakeDatabase(CommandContext& context) {
    LocalStore store(context.messages);
    RequireMdbPath(store, ModAPI::localDbFile);
    CreateLocalDb(store.environment);
    context.failed = store.messages.HasShown();
}

} // namespace

void AddSettingsCommand(CLI::App& app, CommandContext& context) {
    auto* command = app.add_subcommand("settings", settingsDescription);
    command->footer(fmt::format("{}\n\n{}", placesOfSettings, settingsExamples));
    command->fallthrough();
    command->require_subcommand(0, 1);
    command->callback([command, &context] {
        if (!command->get_subcommands().empty()) {
            return;
        }
        LocalStore store(context.messages);
        SettingsList(store, context).Print();
    });

    auto* set = command->add_subcommand("set", "Change one setting");
    set->footer(setFooter);
    struct Change {
        std::string name, value;
    };
    auto change = std::make_shared<Change>();
    set->add_option("NAME", change->name, "The setting's name, in any letter case")->required();
    set->add_option("VALUE", change->value, "Its new value")->required();
    set->callback([change, &context] { Set(context, change->name, change->value); });

    auto* database =
        command->add_subcommand("make-database", "Make the wizards' local database, QelFunction17.mdb");
    database->callback([&context] { MakeDatabase(context); });
}

} // namespace qel
