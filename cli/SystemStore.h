#pragma once

#include "platform/database/DatabaseCatalog.h"
#include "platform/settings/Settings.h"
#include "platform/value/AutomationError.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace qel {

/// The suite's settings where the system keeps them: the registry, or files of the user's configuration
/// folder.
class SystemStore {
public:
    SystemStore() = default;
    virtual ~SystemStore() = default;
    SystemStore(const SystemStore&) = delete;
    SystemStore& operator=(const SystemStore&) = delete;

    virtual Registry& Values() = 0;
    virtual ProfileFiles& Profiles() = 0;
    virtual DatabaseEngine& Database() = 0;
    /// The folder of the running program; the current one where the system does not tell.
    virtual std::string ProgramFolder() const = 0;

    /// Where the suite's key of the registry stands, for people.
    virtual std::string PlaceOfKey() const = 0;
    /// Writes one of the suite's registry values. Raises when it cannot be written.
    virtual void SetValue(const char* name, const std::string& text) = 0;
    /// Why the last writing of a profile file failed.
    virtual std::optional<AutomationError> ProfileFault() const = 0;
    /// Why settings in that profile file, or in the registry without one, look as if they were not set.
    virtual std::optional<AutomationError> FaultOfContent(const std::filesystem::path& profile) const = 0;
};

/// Raises AutomationError when the place of the settings is not known.
std::unique_ptr<SystemStore> StoreOfSystem();

/// What the help of the settings tells of their places.
extern const char* const placesOfSettings;

} // namespace qel
