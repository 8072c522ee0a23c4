#pragma once

// The system's headers, in the order that they need.
// clang-format off
#include <windows.h>
#include <ole2.h>
#include <oleauto.h>
#include <ocidl.h>
#include <olectl.h>
// clang-format on
