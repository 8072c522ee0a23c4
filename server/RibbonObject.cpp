#include "server/RibbonObject.h"

#include "function/OrmQelFunction.h"
#include "lines/LinesOfCell.h"
#include "platform/dialog/win32/SystemMessages.h"
#include "platform/sheet/automation/AutomationSheet.h"
#include "platform/sheet/automation/AutomationWorkbook.h"
#include "platform/windows/Bstr.h"
#include "platform/windows/Clipboard.h"
#include "platform/windows/DispatchObject.h"
#include "platform/windows/ProviderFailure.h"
#include "platform/windows/UserLocale.h"
#include "platform/windows/VariantConversion.h"
#include "server/RibbonXml.h"
#include "server/SuiteStore.h"
#include "server/ThreadContext.h"
#include "server/Wizards.h"
#include "server/dispatch/FailureReport.h"
#include "support/ModError.h"
#include "why/MakeWhyForm.h"
#include "wizard/OwnText.h"

#include <cwchar>
#include <filesystem>
#include <iterator>
#include <shellapi.h>

namespace qel::server {

using windows::DispatchObject;

namespace {

constexpr DISPID firstCallback = 100;

bool IsHebrew() { return LanguageOfSettings() == Language::Hebrew; }

void Tell(const std::string& text) {
    windows::SystemMessages().Show(MessageBoxStyle::Exclamation, componentName, text);
}

/// The suite's help file beside the DLL, or the installed documentation; empty without either.
std::filesystem::path HelpFile() {
    const std::filesystem::path folder = std::filesystem::path(ServerPath()).parent_path();
    for (const auto& file : {folder.parent_path() / "docs" / "excel.html", folder / "PralixHeb.chm"}) {
        if (std::filesystem::exists(file)) {
            return file;
        }
    }
    return {};
}

void Edit(OrmQelFunction& object, IDispatch* cell) {
    object.EditFormula(*windows::FormulaCellOf(cell), [](const std::string& cubeFile) { return cubeFile; });
}

/// What commands on a cell work with. Their connection is their own: the thread's stays with the worksheet's
/// cube.
class CellNeeds {
public:
    CellNeeds() : wizards_(thread_) {}

    WizardContext Context() {
        const WizardServices& services = wizards_.Services();
        return {thread_, *services.providers, locale_, services.toolkit, services.language, services.servers};
    }

private:
    ModSetCube::ThreadState thread_;
    Locale locale_ = windows::UserLocale();
    Wizards wizards_;
};

} // namespace

const RibbonObject::Callback RibbonObject::callbacks[7] = {
    {L"OnFunction", &RibbonObject::ShowFunctionWizard},
    {L"OnName", &RibbonObject::ShowNameWizard},
    {L"OnEditFormula", &RibbonObject::EditFormula},
    {L"OnLines", &RibbonObject::ShowLines},
    {L"OnWhy", &RibbonObject::ShowWhy},
    {L"OnRecalculate", &RibbonObject::Recalculate},
    {L"OnHelp", &RibbonObject::ShowHelp},
};

void* RibbonObject::Find(REFIID id) {
    if (id == IID_IUnknown || id == IID_IDispatch || id == addInInterface) {
        return static_cast<AddIn*>(this);
    }
    return id == ribbonInterface ? static_cast<RibbonSource*>(this) : nullptr;
}

STDMETHODIMP RibbonObject::GetTypeInfoCount(UINT* count) {
    if (count == nullptr) {
        return E_POINTER;
    }
    *count = 0;
    return S_OK;
}

STDMETHODIMP RibbonObject::GetTypeInfo(UINT /*index*/, LCID /*locale*/, ITypeInfo** info) {
    if (info == nullptr) {
        return E_POINTER;
    }
    *info = nullptr;
    return DISP_E_BADINDEX;
}

STDMETHODIMP RibbonObject::GetIDsOfNames(REFIID /*reserved*/, LPOLESTR* names, UINT count, LCID /*locale*/,
                                         DISPID* ids) {
    if (names == nullptr || ids == nullptr || count == 0) {
        return E_POINTER;
    }
    std::fill_n(ids, count, DISPID_UNKNOWN);
    for (std::size_t i = 0; i < std::size(callbacks); ++i) {
        if (_wcsicmp(names[0], callbacks[i].name) == 0) {
            ids[0] = firstCallback + static_cast<DISPID>(i);
            return count == 1 ? S_OK : DISP_E_UNKNOWNNAME; // the parameter has no name
        }
    }
    return DISP_E_UNKNOWNNAME;
}

STDMETHODIMP RibbonObject::Invoke(DISPID id, REFIID /*reserved*/, LCID /*locale*/, WORD flags,
                                  DISPPARAMS* arguments, VARIANT* /*result*/, EXCEPINFO* /*details*/,
                                  UINT* /*wrongArgument*/) {
    const auto index = static_cast<std::size_t>(id) - firstCallback;
    if (index >= std::size(callbacks) || (flags & DISPATCH_METHOD) == 0) {
        return DISP_E_MEMBERNOTFOUND;
    }
    if (arguments == nullptr || arguments->cArgs != 1) {
        return DISP_E_BADPARAMCOUNT;
    }
    return Guarded(IID_IDispatch, componentName, [&] {
        try {
            (this->*callbacks[index].work)();
        } catch (const std::exception& failure) {
            Tell(failure.what());
        }
    });
}

STDMETHODIMP RibbonObject::OnConnection(IDispatch* application, int /*connectMode*/, IDispatch* /*addIn*/,
                                        SAFEARRAY** /*custom*/) {
    application_ = windows::ComPointer<IDispatch>(application);
    return S_OK;
}

// Excel does not end while an add-in refers to it.
STDMETHODIMP RibbonObject::OnDisconnection(int /*removeMode*/, SAFEARRAY** /*custom*/) {
    application_.Reset();
    return S_OK;
}

STDMETHODIMP RibbonObject::OnBeginShutdown(SAFEARRAY** /*custom*/) {
    application_.Reset();
    return S_OK;
}

STDMETHODIMP RibbonObject::GetCustomUI(BSTR /*ribbonId*/, BSTR* xml) {
    if (xml == nullptr) {
        return E_POINTER;
    }
    *xml = nullptr;
    return Guarded(ribbonInterface, componentName,
                   [&] { *xml = windows::Bstr(RibbonXml(IsHebrew())).Release(); });
}

void RibbonObject::WithCell(const std::function<void(IDispatch* cell)>& use) const {
    const DispatchObject application(application_, "Application", windows::macroLocale);
    const windows::OwnedVariant active = application.Property(L"ActiveCell");
    const VARIANT& cell = windows::Dereferenced(active.Get());
    if (V_VT(&cell) != VT_DISPATCH || V_DISPATCH(&cell) == nullptr) {
        return Tell(NoCellText(IsHebrew()));
    }
    use(V_DISPATCH(&cell));
}

void RibbonObject::WithWizards(
    const std::function<void(OrmQelFunction& object, IDispatch* cell)>& use) const {
    WithCell([&](IDispatch* cell) {
        const auto thread = StateOfThread();
        const Locale locale = windows::UserLocale();
        Wizards wizards(*thread);
        OrmQelFunction object({*thread, ProvidersOfMachine(), locale, &wizards.Services()});
        wizards.Show([&] { use(object, cell); });
    });
}

void RibbonObject::ShowFunctionWizard() {
    WithWizards(
        [](OrmQelFunction& object, IDispatch* cell) { object.ShowFormGetVal(windows::SheetRangeOf(cell)); });
}

void RibbonObject::ShowNameWizard() {
    WithWizards(
        [](OrmQelFunction& object, IDispatch* cell) { object.ShowFormQelName(windows::SheetRangeOf(cell)); });
}

void RibbonObject::EditFormula() {
    WithWizards([](OrmQelFunction& object, IDispatch* cell) { Edit(object, cell); });
}

void RibbonObject::ShowLines() {
    WithCell([&](IDispatch* active) {
        CellNeeds needs;
        const auto cell = windows::ReadFormulaCellOf(active);
        const auto book = windows::ActiveWorkbookOf(application_.Get());
        ShowLinesOfCell(needs.Context(), {.cell = cell.get(),
                                          .sheet = book->ActiveSheetName(),
                                          .book = *book,
                                          .fullPath = [](const std::string& cubeFile) { return cubeFile; }});
    });
}

void RibbonObject::ShowWhy() {
    WithCell([&](IDispatch* active) {
        CellNeeds needs;
        const auto edit = [&] {
            WithWizards([&](OrmQelFunction& object, IDispatch*) { Edit(object, active); });
        };
        const auto form =
            MakeWhyForm(needs.Context(), {.cell = windows::ReadFormulaCellOf(active),
                                          .book = windows::ActiveWorkbookOf(application_.Get()),
                                          .fullPath = [](const std::string& cubeFile) { return cubeFile; },
                                          .editFormula = edit,
                                          .copy = &windows::CopyText});
        if (form) {
            form->ShowBeside(WindowSide::Right, [] {});
        }
    });
}

void RibbonObject::Recalculate() {
    DispatchObject(application_, "Application", windows::macroLocale).Call(L"CalculateFull");
}

void RibbonObject::ShowHelp() {
    const std::filesystem::path file = HelpFile();
    if (file.empty()) {
        return Tell(NoHelpText(IsHebrew()) + " " + VersionText());
    }
    constexpr INT_PTR lastFailure = 32; // as the function is documented
    const auto opened = reinterpret_cast<INT_PTR>(
        ::ShellExecuteW(nullptr, L"open", file.c_str(), nullptr, nullptr, SW_SHOWNORMAL));
    if (opened <= lastFailure) {
        throw windows::FailureOf(HRESULT_FROM_WIN32(::GetLastError()), windows::ToUtf8(file.wstring()));
    }
}

} // namespace qel::server
