#include "cli/SystemStore.h"
#include "platform/database/sqlite/SqliteDatabase.h"
#include "platform/settings/files/ConfigFolder.h"
#include "platform/settings/files/FileProfiles.h"
#include "platform/settings/files/FileRegistry.h"
#include "platform/settings/files/IniFile.h"
#include "store/ModAPI.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <stdexcept>
#include <system_error>

namespace qel {

const char* const placesOfSettings =
    R"(Settings that the suite keeps in the registry stand in settings.ini of the configuration folder
($XDG_CONFIG_HOME/qel or ~/.config/qel); the rest in Qel.ini and Cub.ini of the folder MDBPath.)";

namespace {

/// The registry is a file; the local database is SQLite's.
class FileStore : public SystemStore {
public:
    Registry& Values() override { return registry_; }
    ProfileFiles& Profiles() override { return profiles_; }
    DatabaseEngine& Database() override { return database_; }

    std::string ProgramFolder() const override {
        std::error_code failed;
        const auto program = std::filesystem::read_symlink("/proc/self/exe", failed);
        return PathToUtf8(failed ? std::filesystem::current_path() : program.parent_path());
    }

    std::string PlaceOfKey() const override {
        return fmt::format("[HKEY_CURRENT_USER\\{}] of {}", ModAPI::suiteKey, PathToUtf8(file_));
    }

    void SetValue(const char* name, const std::string& text) override {
        const auto folder = file_.parent_path();
        std::error_code failed;
        std::filesystem::create_directories(folder, failed);
        if (failed) {
            throw std::runtime_error(
                fmt::format("the folder {} cannot be made: {}", PathToUtf8(folder), failed.message()));
        }
        registry_.SetValue(RootKey::CurrentUser, ModAPI::suiteKey, name, text);
    }

    std::optional<AutomationError> ProfileFault() const override { return profiles_.LastError(); }

    std::optional<AutomationError> FaultOfContent(const std::filesystem::path& profile) const override {
        return IniFile(profile.empty() ? file_ : profile).FaultOfContent();
    }

private:
    const std::filesystem::path file_ = SettingsFile();
    FileRegistry registry_{file_};
    FileProfiles profiles_;
    SqliteDatabase database_;
};

} // namespace

std::unique_ptr<SystemStore> StoreOfSystem() { return std::make_unique<FileStore>(); }

} // namespace qel
