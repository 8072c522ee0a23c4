#pragma once

#include "platform/windows/WindowsApi.h"

#include <string>

namespace qel::server {

/// The DLL itself.
HMODULE ServerModule();

/// The path of the DLL's file.
std::wstring ServerPath();

/// Keeps the DLL loaded for as long as it lives: objects, factories and locks hold one each.
class ServerUse {
public:
    ServerUse();
    ~ServerUse();
    ServerUse(const ServerUse&) = delete;
    ServerUse& operator=(const ServerUse&) = delete;
};

bool IsServerInUse();
/// Adds or takes away a use that a client has locked.
void LockServer(bool lock);

} // namespace qel::server
