#include "tests/helpers/automation/AutomationClient.h"

#include "platform/windows/Bstr.h"
#include "platform/windows/VariantConversion.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace qel::test {

Apartment::Apartment() { EXPECT_EQ(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK); }
Apartment::~Apartment() { ::CoUninitialize(); }

ComPointer<IDispatch> CreateByName(const wchar_t* progId) {
    CLSID classId = {};
    EXPECT_EQ(::CLSIDFromProgID(progId, &classId), S_OK);
    ComPointer<IDispatch> object;
    EXPECT_EQ(::CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.ReceiveVoid()),
              S_OK);
    return object;
}

OwnedVariant Text(const std::string& text) { return windows::ToAutomation(text); }
OwnedVariant Number(double number) { return windows::ToAutomation(number); }
OwnedVariant Day(double days) { return windows::ToAutomation(AutomationDate{days}); }
OwnedVariant Missing() { return windows::ToAutomation(ErrorValue{parameterNotFound}); }

OwnedVariant Texts(const std::vector<std::string>& texts, LONG lowerBound) {
    OwnedVariant array;
    V_VT(&array.Get()) = VT_ARRAY | VT_VARIANT;
    V_ARRAY(&array.Get()) = ::SafeArrayCreateVector(VT_VARIANT, lowerBound, static_cast<ULONG>(texts.size()));
    for (LONG i = 0; i < static_cast<LONG>(texts.size()); ++i) {
        OwnedVariant element = Text(texts[static_cast<std::size_t>(i)]);
        LONG index = lowerBound + i;
        EXPECT_EQ(::SafeArrayPutElement(V_ARRAY(&array.Get()), &index, &element.Get()), S_OK);
    }
    return array;
}

OwnedVariant ReferenceTo(OwnedVariant& value) {
    OwnedVariant reference;
    V_VT(&reference.Get()) = VT_BYREF | VT_VARIANT;
    V_VARIANTREF(&reference.Get()) = &value.Get();
    return reference;
}

CallResult Invoke(IDispatch* object, const wchar_t* member, Arguments& arguments,
                  const std::vector<const wchar_t*>& names, WORD flags) {
    CallResult result;
    std::vector<LPOLESTR> asked = {const_cast<LPOLESTR>(member)};
    for (const wchar_t* name : names) {
        asked.push_back(const_cast<LPOLESTR>(name));
    }
    std::vector<DISPID> ids(asked.size());
    result.status = object->GetIDsOfNames(IID_NULL, asked.data(), static_cast<UINT>(asked.size()),
                                          LOCALE_USER_DEFAULT, ids.data());
    if (FAILED(result.status)) {
        return result;
    }
    std::vector<VARIANT> reversed;
    for (auto argument = arguments.rbegin(); argument != arguments.rend(); ++argument) {
        reversed.push_back(argument->Get());
    }
    std::vector<DISPID> named(ids.rbegin(), ids.rend() - 1);
    if ((flags & DISPATCH_PROPERTYPUT) != 0) {
        named = {DISPID_PROPERTYPUT};
    }
    DISPPARAMS parameters = {reversed.data(), named.data(), static_cast<UINT>(reversed.size()),
                             static_cast<UINT>(named.size())};
    EXCEPINFO details = {};
    result.status = object->Invoke(ids[0], IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters,
                                   result.value.Receive(), &details, nullptr);
    result.code = details.scode;
    windows::Bstr texts[3];
    *texts[0].Receive() = details.bstrDescription;
    *texts[1].Receive() = details.bstrSource;
    *texts[2].Receive() = details.bstrHelpFile;
    result.description = windows::TextOfBstr(texts[0].Get());
    result.source = windows::TextOfBstr(texts[1].Get());
    return result;
}

std::string TextIn(const OwnedVariant& value) {
    EXPECT_EQ(V_VT(&value.Get()), VT_BSTR);
    return V_VT(&value.Get()) == VT_BSTR ? windows::TextOfBstr(V_BSTR(&value.Get())) : "no text";
}

} // namespace qel::test
