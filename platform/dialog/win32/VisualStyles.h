#pragma once

#include "platform/windows/WindowsApi.h"

namespace qel::windows {

/// During its lifetime, controls are created with the desktop's visual style if this module has the manifest
/// for it; otherwise with the host's style.
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
