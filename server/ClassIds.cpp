// The identifiers of the type library, its interfaces and classes: the only file that defines them.

#include "platform/windows/WindowsApi.h"
// clang-format off
#include <initguid.h>
#include "OrmFunctionQel4.h"
// clang-format on
