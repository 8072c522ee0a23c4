#pragma once

namespace qel::server {

/// Machine: for every user, which only an administrator may do. User: for the current user alone.
enum class RegistrationScope { Machine, User };

/// Writes the classes, interfaces and type library, with the path that the DLL has now. Writes nothing when
/// it fails. Raises AutomationError with the system's result code.
void Register(RegistrationScope scope);

/// Removes what Register writes. What serves a DLL of the other bitness stays. Raises as Register.
void Unregister(RegistrationScope scope);

} // namespace qel::server
