#pragma once

#include "platform/windows/WindowsApi.h"

// The two interfaces by which Office talks to an add-in, as they are published. Office calls them by their
// tables, in this order of their members, and the add-in's other members by name.

namespace qel::server {

inline constexpr IID addInInterface = {
    0xb65ad801, 0xabaf, 0x11d0, {0xbb, 0x8b, 0x00, 0xa0, 0xc9, 0x0f, 0x27, 0x44}};
inline constexpr IID ribbonInterface = {
    0x000c0396, 0x0000, 0x0000, {0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

// NOLINTBEGIN(cppcoreguidelines-virtual-class-destructor): their tables have none
/// IDTExtensibility2. `custom` is an empty array.
struct AddIn : public IDispatch {
    virtual HRESULT STDMETHODCALLTYPE OnConnection(IDispatch* application, int connectMode, IDispatch* addIn,
                                                   SAFEARRAY** custom) = 0;
    virtual HRESULT STDMETHODCALLTYPE OnDisconnection(int removeMode, SAFEARRAY** custom) = 0;
    virtual HRESULT STDMETHODCALLTYPE OnAddInsUpdate(SAFEARRAY** custom) = 0;
    virtual HRESULT STDMETHODCALLTYPE OnStartupComplete(SAFEARRAY** custom) = 0;
    virtual HRESULT STDMETHODCALLTYPE OnBeginShutdown(SAFEARRAY** custom) = 0;
};

/// IRibbonExtensibility.
struct RibbonSource : public IDispatch {
    virtual HRESULT STDMETHODCALLTYPE GetCustomUI(BSTR ribbonId, BSTR* xml) = 0;
};
// NOLINTEND(cppcoreguidelines-virtual-class-destructor)

} // namespace qel::server
