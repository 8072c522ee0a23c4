#pragma once

namespace qel::server {

/// Machine: for all users, which requires an administrator. User: only for the current user.
enum class RegistrationScope { Machine, User };

/// Writes the classes, interfaces and type library with the DLL's current path; for a user, adds them to that
/// user's Excel, too. A failure leaves nothing behind. Raises AutomationError with the system's result code.
void Register(RegistrationScope scope);

/// Removes what Register writes, except what a DLL of the other bitness uses. Raises like Register.
void Unregister(RegistrationScope scope);

} // namespace qel::server
