#include "platform/dialog/win32/VisualStyles.h"

namespace qel::windows {

namespace {

/// Never released: this module stays loaded until the process ends.
HANDLE Context() {
    static const HANDLE context = [] {
        HMODULE module = nullptr;
        ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT |
                                 GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                             reinterpret_cast<LPCWSTR>(&Context), &module);
        ACTCTXW description = {};
        description.cbSize = sizeof(description);
        description.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
        description.hModule = module;
        description.lpResourceName = MAKEINTRESOURCEW(2); // a library's manifest
        return ::CreateActCtxW(&description);
    }();
    return context;
}

} // namespace

VisualStyles::VisualStyles() {
    if (Context() != INVALID_HANDLE_VALUE) {
        ::ActivateActCtx(Context(), &cookie_);
    }
}

VisualStyles::~VisualStyles() {
    if (cookie_ != 0) {
        ::DeactivateActCtx(0, cookie_);
    }
}

} // namespace qel::windows
