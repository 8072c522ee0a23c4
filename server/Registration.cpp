#include "server/Registration.h"

#include "OrmFunctionQel4.h"
#include "platform/windows/ProviderFailure.h"
#include "server/Classes.h"
#include "server/ExcelLists.h"
#include "server/RegistryTree.h"
#include "server/ServerModule.h"

namespace qel::server {

namespace {

const std::wstring version = L"17.0"; // of the type library
const std::wstring description = L"QRN Function QeL 17";
/// The system's marshaller of automation interfaces.
const std::wstring automationProxy = L"{00020424-0000-0000-C000-000000000046}";
const std::wstring platform = sizeof(void*) == 8 ? L"win64" : L"win32";

RegistryTree TreeOf(RegistrationScope scope) {
    return {scope == RegistrationScope::User ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE, L"Software\\Classes"};
}

std::wstring TextOf(REFGUID id) {
    constexpr int length = 39; // including braces and the terminating null
    wchar_t text[length];
    ::StringFromGUID2(id, text, length);
    return text;
}

std::wstring ClassKey(REFCLSID id) { return L"CLSID\\" + TextOf(id); }
std::wstring InterfaceKey(const AutomationClass& type) { return L"Interface\\" + TextOf(type.interfaceId); }
std::wstring LibraryKey() { return L"TypeLib\\" + TextOf(LIBID_OrmFunctionQel4); }

/// What every creatable class has.
void RegisterCreation(const RegistryTree& tree, const std::wstring& progId, REFCLSID id,
                      const std::wstring& path) {
    const std::wstring key = ClassKey(id);
    tree.SetText(key, L"", progId);
    tree.SetText(key + L"\\InprocServer32", L"", path);
    tree.SetText(key + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
    tree.SetText(key + L"\\ProgID", L"", progId);
    tree.SetText(progId, L"", progId);
    tree.SetText(progId + L"\\CLSID", L"", TextOf(id));
}

void RegisterClass(const RegistryTree& tree, const AutomationClass& type, const std::wstring& path) {
    RegisterCreation(tree, type.progId, type.classId, path);
    const std::wstring key = ClassKey(type.classId);
    tree.SetText(key + L"\\Programmable", L"",
                 L""); // Excel lists only programmable classes as automation add-ins
    tree.SetText(key + L"\\TypeLib", L"", TextOf(LIBID_OrmFunctionQel4));
    tree.SetText(key + L"\\Version", L"", version);
}

void RegisterInterface(const RegistryTree& tree, const AutomationClass& type) {
    const std::wstring key = InterfaceKey(type);
    tree.SetText(key, L"", std::wstring(L"_") + type.name);
    tree.SetText(key + L"\\ProxyStubClsid32", L"", automationProxy);
    tree.SetText(key + L"\\TypeLib", L"", TextOf(LIBID_OrmFunctionQel4));
    tree.SetText(key + L"\\TypeLib", L"Version", version);
}

void RegisterLibrary(const RegistryTree& tree, const std::wstring& path) {
    const std::wstring key = LibraryKey() + L"\\" + version;
    tree.SetText(key, L"", description);
    tree.SetText(key + L"\\0\\" + platform, L"", path);
    tree.SetText(key + L"\\FLAGS", L"", L"0");
    tree.SetText(key + L"\\HELPDIR", L"", path.substr(0, path.find_last_of(L'\\')));
}

/// The ProgID, by which scripts and formulas find the class, is shared by both bitnesses.
void UnregisterClass(const RegistryTree& tree, const std::wstring& progId, REFCLSID id) {
    tree.Remove(ClassKey(id));
    if (!tree.OtherBitnessHas(ClassKey(id))) {
        tree.Remove(progId);
    }
}

void UnregisterLibrary(const RegistryTree& tree) {
    const std::wstring key = LibraryKey() + L"\\" + version;
    tree.Remove(key + L"\\0\\" + platform);
    tree.RemoveIfChildless(key + L"\\0");
    if (!tree.Has(key + L"\\0")) {
        tree.Remove(key);
    }
    tree.RemoveIfChildless(LibraryKey());
}

} // namespace

void Register(RegistrationScope scope) {
    const RegistryTree tree = TreeOf(scope);
    const std::wstring path = ServerPath();
    const RibbonClass& ribbon = ClassOfRibbon();
    try {
        for (const ServerClass& serverClass : ServerClasses()) {
            RegisterClass(tree, serverClass.automation, path);
            RegisterInterface(tree, serverClass.automation);
        }
        RegisterLibrary(tree, path);
        if (scope == RegistrationScope::User) {
            RegisterCreation(tree, ribbon.progId, ribbon.classId, path);
            AddToExcel(OfficeOfUser());
        }
    } catch (const AutomationError&) {
        Unregister(scope);
        throw;
    }
}

void Unregister(RegistrationScope scope) {
    const RegistryTree tree = TreeOf(scope);
    for (const ServerClass& serverClass : ServerClasses()) {
        const AutomationClass& type = serverClass.automation;
        UnregisterClass(tree, type.progId, type.classId);
        tree.Remove(InterfaceKey(type));
    }
    UnregisterLibrary(tree);
    if (scope == RegistrationScope::User) {
        const RibbonClass& ribbon = ClassOfRibbon();
        UnregisterClass(tree, ribbon.progId, ribbon.classId);
        if (!tree.OtherBitnessHas(ClassKey(ribbon.classId))) {
            RemoveFromExcel(OfficeOfUser());
        }
    }
}

} // namespace qel::server
