#include "tests/helpers/automation/NamedClass.h"

#include "platform/windows/ComObject.h"

#include <gtest/gtest.h>

#include <memory>

namespace qel::test {

namespace {

class FactoryDouble : public windows::ComObject<IClassFactory> {
public:
    explicit FactoryDouble(NamedClass::Factory make) : make_(std::move(make)) {}

    STDMETHODIMP CreateInstance(IUnknown* /*outer*/, REFIID id, void** object) override {
        return make_()->QueryInterface(id, object);
    }
    STDMETHODIMP LockServer(BOOL /*lock*/) override { return S_OK; }

private:
    void* Find(REFIID id) override {
        return id == IID_IUnknown || id == IID_IClassFactory ? static_cast<IClassFactory*>(this) : nullptr;
    }

    NamedClass::Factory make_;
};

std::wstring KeyOf(const std::wstring& progId) { return L"Software\\Classes\\" + progId + L"\\CLSID"; }

} // namespace

ComPointer<IClassFactory> MakeFactory(std::function<ComPointer<IDispatch>()> make) {
    return ComPointer<IClassFactory>::Adopt(std::make_unique<FactoryDouble>(std::move(make)).release());
}

NamedClass::NamedClass(std::wstring progId, Factory make)
    : progId_(std::move(progId)), factory_(MakeFactory(std::move(make))) {
    wchar_t before[100] = {};
    DWORD bytes = sizeof before;
    if (::RegGetValueW(HKEY_LOCAL_MACHINE, KeyOf(progId_).c_str(), L"", RRF_RT_REG_SZ, nullptr, before,
                       &bytes) == ERROR_SUCCESS) {
        before_ = before;
    }
    CLSID id = {};
    EXPECT_EQ(::CoCreateGuid(&id), S_OK);
    wchar_t text[39];
    ::StringFromGUID2(id, text, 39);
    Write(text);
    EXPECT_EQ(::CoRegisterClassObject(id, factory_.Get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie_),
              S_OK);
}

NamedClass::~NamedClass() {
    ::CoRevokeClassObject(cookie_);
    if (before_) {
        Write(*before_);
    } else {
        ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, (L"Software\\Classes\\" + progId_).c_str());
    }
}

void NamedClass::Write(const std::wstring& classId) const {
    EXPECT_EQ(::RegSetKeyValueW(HKEY_LOCAL_MACHINE, KeyOf(progId_).c_str(), L"", REG_SZ, classId.c_str(),
                                static_cast<DWORD>((classId.size() + 1) * sizeof(wchar_t))),
              ERROR_SUCCESS);
}

} // namespace qel::test
