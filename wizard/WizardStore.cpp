#include "wizard/WizardStore.h"

#include "store/LocalDb.h"
#include "store/ModAPI.h"
#include "store/ModPublics.h"
#include "support/SettingPaths.h"

namespace qel {

bool HasWizardDatabase(const WizardContext& context) {
    return FileExists(ModAPI::QelFuncMdbFile(context.Store(), ModAPI::localDbFile));
}

std::unique_ptr<DatabaseConnection> OpenWizardDatabase(const WizardContext& context) {
    CreateLocalDb(context.Store());
    return OpenLocalDb(context.Store());
}

std::string RememberedCubeFile(const WizardContext& context) {
    std::string cubeFile;
    ModPublics::ReadCubIniSection(context.Store(), ModPublics::cubeFileSection, cubeFile);
    return cubeFile;
}

void RememberCubeFile(const WizardContext& context, const std::string& cubeFile) {
    ModPublics::WriteCubIni(context.Store(), ModPublics::cubeFileSection, ModPublics::cubeFileKey, cubeFile);
}

} // namespace qel
