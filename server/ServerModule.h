#pragma once

#include "platform/windows/WindowsApi.h"

#include <string>

namespace qel::server {

/// The DLL itself.
HMODULE ServerModule();

/// The path of the DLL's file.
std::wstring ServerPath();

/// Keeps the DLL loaded during its lifetime. Every object, factory and lock holds one.
class ServerUse {
public:
    ServerUse();
    ~ServerUse();
    ServerUse(const ServerUse&) = delete;
    ServerUse& operator=(const ServerUse&) = delete;
};

[[nodiscard]] bool IsServerInUse();
/// Adds or removes a client's lock.
void LockServer(bool lock);

} // namespace qel::server
