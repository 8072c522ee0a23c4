#pragma once

#include "platform/windows/ComObject.h"
#include "platform/windows/ComPointer.h"
#include "server/OfficeInterfaces.h"
#include "server/ServerModule.h"

#include <functional>

namespace qel {
class OrmQelFunction;
}

namespace qel::server {

/// Excel's ribbon: an add-in that Excel creates when it starts. What a button fails with is shown in a
/// message box, because Excel is silent about it.
class RibbonObject : public windows::ComObject<AddIn, RibbonSource> {
public:
    // IDispatch: the callbacks, each with the control that was used.
    STDMETHODIMP GetTypeInfoCount(UINT* count) override;
    STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
    STDMETHODIMP GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale,
                               DISPID* ids) override;
    STDMETHODIMP Invoke(DISPID id, REFIID reserved, LCID locale, WORD flags, DISPPARAMS* arguments,
                        VARIANT* result, EXCEPINFO* details, UINT* wrongArgument) override;

    STDMETHODIMP OnConnection(IDispatch* application, int connectMode, IDispatch* addIn,
                              SAFEARRAY** custom) override;
    STDMETHODIMP OnDisconnection(int removeMode, SAFEARRAY** custom) override;
    STDMETHODIMP OnAddInsUpdate(SAFEARRAY** /*custom*/) override { return S_OK; }
    STDMETHODIMP OnStartupComplete(SAFEARRAY** /*custom*/) override { return S_OK; }
    STDMETHODIMP OnBeginShutdown(SAFEARRAY** custom) override;

    STDMETHODIMP GetCustomUI(BSTR ribbonId, BSTR* xml) override;

private:
    struct Callback {
        const wchar_t* name;
        void (RibbonObject::*work)();
    };
    static const Callback callbacks[7];

    void* Find(REFIID id) override;

    void ShowFunctionWizard();
    void ShowNameWizard();
    void EditFormula();
    void ShowLines();
    void ShowWhy();
    void Recalculate();
    void ShowHelp();

    /// Calls with an object of the worksheet functions and the active cell; says so when there is none.
    void WithCell(const std::function<void(IDispatch* cell)>& use) const;
    void WithWizards(const std::function<void(OrmQelFunction& object, IDispatch* cell)>& use) const;

    ServerUse use_;
    windows::ComPointer<IDispatch> application_;
};

} // namespace qel::server
