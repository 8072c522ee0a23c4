#include "cli/SystemStore.h"
#include "platform/database/jet/JetDatabase.h"
#include "platform/database/sqlite/SqliteDatabase.h"
#include "platform/settings/windows/WindowsProfiles.h"
#include "platform/settings/windows/WindowsRegistry.h"
#include "platform/windows/WideText.h"
#include "store/ModAPI.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <system_error>

namespace qel {

const char* const placesOfSettings =
    R"(MDBPath and TempPath stand in the registry, below HKEY_CURRENT_USER; the rest in Qel.ini and Cub.ini of the folder
MDBPath. They are the same that the add-in in Excel reads.)";

namespace {

/// Jet's objects need it; only this thread uses them.
class Apartment {
public:
    Apartment() : isEntered_(SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}
    ~Apartment() {
        if (isEntered_) {
            ::CoUninitialize();
        }
    }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;

private:
    bool isEntered_;
};

std::unique_ptr<DatabaseEngine> DatabaseOfMachine() {
    if (windows::JetDatabase::IsInstalled()) {
        return std::make_unique<windows::JetDatabase>();
    }
    return std::make_unique<SqliteDatabase>();
}

/// The machine's registry and profile files, and the database that the add-in uses, too.
class RegistryStore : public SystemStore {
public:
    Registry& Values() override { return registry_; }
    ProfileFiles& Profiles() override { return profiles_; }
    DatabaseEngine& Database() override { return *database_; }

    std::string ProgramFolder() const override {
        constexpr DWORD longest = 32768;
        std::wstring name(longest, L'\0');
        name.resize(::GetModuleFileNameW(nullptr, name.data(), longest));
        return PathToUtf8(std::filesystem::path(name).parent_path());
    }

    std::string PlaceOfKey() const override {
        return fmt::format("HKEY_CURRENT_USER\\{} of the registry", ModAPI::suiteKey);
    }

    void SetValue(const char* name, const std::string& text) override {
        const std::wstring wide = windows::ToWide(text);
        const auto bytes = static_cast<DWORD>((wide.size() + 1) * sizeof(wchar_t));
        const LSTATUS failed = ::RegSetKeyValueW(HKEY_CURRENT_USER, windows::ToWide(ModAPI::suiteKey).c_str(),
                                                 windows::ToWide(name).c_str(), REG_SZ, wide.c_str(), bytes);
        if (failed != ERROR_SUCCESS) {
            constexpr std::int32_t pathFileAccessError = 75;
            throw AutomationError(pathFileAccessError,
                                  fmt::format("{} cannot be written into {}: {}", name, PlaceOfKey(),
                                              std::system_category().message(static_cast<int>(failed))));
        }
    }

    /// The system tells no reason.
    std::optional<AutomationError> ProfileFault() const override { return std::nullopt; }
    std::optional<AutomationError> FaultOfContent(const std::filesystem::path& /*profile*/) const override {
        return std::nullopt;
    }

private:
    Apartment apartment_;
    windows::WindowsRegistry registry_;
    windows::WindowsProfiles profiles_;
    std::unique_ptr<DatabaseEngine> database_ = DatabaseOfMachine();
};

} // namespace

std::unique_ptr<SystemStore> StoreOfSystem() { return std::make_unique<RegistryStore>(); }

} // namespace qel
