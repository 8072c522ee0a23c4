#include "server/ExcelLists.h"

#include "server/Classes.h"

#include <cwchar>

namespace qel::server {

namespace {

const std::wstring comAddIns = L"Excel\\Addins";
constexpr DWORD loadAtStart = 3;

/// A version's add-ins are the values OPEN, OPEN1, OPEN2, … of its options.
std::wstring OpenName(std::size_t index) { return index == 0 ? L"OPEN" : L"OPEN" + std::to_wstring(index); }

const wchar_t* FunctionsProgId() { return ServerClasses().front().automation.progId; }

std::wstring OwnEntry() { return L"/A \"" + std::wstring(FunctionsProgId()) + L"\""; }

/// "16.0\\Excel" for each version that the user has started once.
std::vector<std::wstring> ExcelKeys(const RegistryTree& office) {
    std::vector<std::wstring> keys;
    for (const std::wstring& version : office.Children(L"")) {
        if (office.Has(version + L"\\Excel\\Options")) {
            keys.push_back(version + L"\\Excel");
        }
    }
    return keys;
}

std::optional<std::size_t> NumberOf(const std::wstring& name) {
    const std::size_t prefix = OpenName(0).size();
    const std::size_t number = name.size() > prefix ? std::wcstoul(name.c_str() + prefix, nullptr, 10) : 0;
    return _wcsicmp(name.c_str(), OpenName(number).c_str()) == 0 ? std::optional(number) : std::nullopt;
}

/// The number of an own entry, which may also stand behind a gap.
std::optional<std::size_t> FindOwnEntry(const RegistryTree& office, const std::wstring& options) {
    for (const std::wstring& name : office.ValueNames(options)) {
        const auto number = NumberOf(name);
        if (number && _wcsicmp(office.Text(options, name)->c_str(), OwnEntry().c_str()) == 0) {
            return number;
        }
    }
    return std::nullopt;
}

void AddFunctions(const RegistryTree& office, const std::wstring& excel) {
    const std::wstring options = excel + L"\\Options";
    office.RemoveValue(excel + L"\\Add-in Manager", FunctionsProgId()); // known, but not loaded
    if (FindOwnEntry(office, options)) {
        return;
    }
    std::size_t number = 0;
    while (office.Text(options, OpenName(number))) {
        ++number;
    }
    office.SetText(options, OpenName(number), OwnEntry());
}

void RemoveFunctions(const RegistryTree& office, const std::wstring& excel) {
    const std::wstring options = excel + L"\\Options";
    while (auto number = FindOwnEntry(office, options)) {
        office.RemoveValue(options, OpenName(*number));
        for (; office.Text(options, OpenName(*number + 1)); ++*number) {
            office.RenameValue(options, OpenName(*number + 1), OpenName(*number));
        }
    }
    office.RemoveValue(excel + L"\\Add-in Manager", FunctionsProgId());
}

} // namespace

RegistryTree OfficeOfUser() { return {HKEY_CURRENT_USER, L"Software\\Microsoft\\Office"}; }

void AddToExcel(const RegistryTree& office) {
    for (const std::wstring& excel : ExcelKeys(office)) {
        AddFunctions(office, excel);
    }
    const std::wstring key = comAddIns + L"\\" + ClassOfRibbon().progId;
    office.SetText(key, L"FriendlyName", L"Qel");
    office.SetText(key, L"Description", L"Wizards for formulas over cubes");
    office.SetNumber(key, L"LoadBehavior", loadAtStart);
}

void RemoveFromExcel(const RegistryTree& office) {
    for (const std::wstring& excel : ExcelKeys(office)) {
        RemoveFunctions(office, excel);
    }
    office.Remove(comAddIns + L"\\" + ClassOfRibbon().progId);
    for (const std::wstring& key : {comAddIns, std::wstring(L"Excel"), std::wstring()}) {
        office.RemoveIfEmpty(key);
    }
}

} // namespace qel::server
