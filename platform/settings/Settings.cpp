#include "platform/settings/Settings.h"

namespace qel {

std::string RootKeyName(KeyHandle handle) {
    switch (handle) {
    case RootKey::ClassesRoot:
        return "HKEY_CLASSES_ROOT";
    case RootKey::CurrentUser:
        return "HKEY_CURRENT_USER";
    case RootKey::LocalMachine:
        return "HKEY_LOCAL_MACHINE";
    case RootKey::Users:
        return "HKEY_USERS";
    default:
        return {};
    }
}

} // namespace qel
