#pragma once

#include "platform/windows/WindowsApi.h"

namespace qel::windows {

/// Controls that are made while it lives look as the user's desktop does, when the module of this code brings
/// the manifest that asks for it; otherwise they look as the host's do.
class VisualStyles {
public:
    VisualStyles();
    ~VisualStyles();
    VisualStyles(const VisualStyles&) = delete;
    VisualStyles& operator=(const VisualStyles&) = delete;

private:
    ULONG_PTR cookie_ = 0;
};

} // namespace qel::windows
