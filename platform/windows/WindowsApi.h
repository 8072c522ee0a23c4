#pragma once

// The system's headers, in the order that they require. clang-format off
#include <ocidl.h>
#include <ole2.h>
#include <oleauto.h>
#include <olectl.h>
#include <windows.h>
// clang-format on
