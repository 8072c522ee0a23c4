#include "wizard/CubeFileChoice.h"

#include "platform/data/ConnectionText.h"
#include "platform/value/AutomationError.h"
#include "platform/value/Conversion.h"
#include "support/ModError.h"
#include "support/SettingPaths.h"
#include "text/CaseFold.h"
#include "text/Utf8Path.h"

namespace qel {

namespace {

constexpr std::string_view listedEnding = "FNC";
constexpr std::string_view cubeFileEnding = "cub"; // case-sensitive
constexpr std::int32_t invalidFileText = 1364;

bool IsListed(std::string_view catalog) {
    return catalog.size() >= listedEnding.size() &&
           EqualIgnoringCase(catalog.substr(catalog.size() - listedEnding.size()), listedEnding);
}

} // namespace

bool IsServer(const WizardContext& context, const std::string& cubeFile) {
    return context.servers != nullptr && IsServerAddress(cubeFile);
}

bool CanOpen(const WizardContext& context, const std::string& cubeFile) {
    return IsServer(context, cubeFile) || FileExists(cubeFile);
}

std::optional<std::int32_t> CubeFileFault(const WizardContext& context, const std::string& cubeFile) {
    if (cubeFile.empty()) {
        return noCubeFileText;
    }
    if (IsServer(context, cubeFile)) {
        return std::nullopt;
    }
    if (!cubeFile.ends_with(cubeFileEnding) || !FileExists(cubeFile)) {
        return invalidFileText;
    }
    return std::nullopt;
}

std::string AskForCubeFile(Dialog& dialog, const char* control, const std::string& cubeFileNow) {
    const auto folder =
        IsServerAddress(cubeFileNow) ? std::filesystem::path() : PathFromSetting(cubeFileNow).parent_path();
    return dialog.AskForFile(control, {.title = std::string(componentName) + " - Open a file",
                                       .filter = "Cub files(*.cub)|*.cub",
                                       .startFolder = PathToUtf8(folder)});
}

std::shared_ptr<Connection> OpenCubeFile(const Providers& providers, const std::string& cubeFile) {
    return providers
        .Connect("Provider=MSOLAP;Data Source=" + cubeFile + ";Client Cache Size=25;Auto Synch Period=10000")
        .connection;
}

bool SetCube(const WizardContext& context, ChoiceBox& cubes, Connection* connection) {
    cubes.Clear();
    cubes.Enable(connection != nullptr);
    std::vector<MemberChoice> catalogs;
    if (connection != nullptr) {
        const auto rows = connection->OpenSchema(schemaCatalogs);
        for (; !rows->AtEnd(); rows->MoveNext()) {
            const std::string name = ToText(rows->FieldValueNamed("CATALOG_NAME"), context.locale);
            if (IsListed(name)) {
                catalogs.push_back({name, name});
            }
        }
    }
    if (catalogs.empty()) {
        context.Messages().Show(MessageBoxStyle::Exclamation, "", "Not valid cube");
        return false;
    }
    // The first one is chosen, even if the connection's default is another.
    cubes.Fill(std::move(catalogs));
    return true;
}

} // namespace qel
