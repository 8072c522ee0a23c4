#include "server/dispatch/FailureReport.h"

#include "platform/value/AutomationError.h"
#include "platform/windows/Bstr.h"
#include "platform/windows/ComPointer.h"
#include "platform/windows/ProviderFailure.h"

#include <new>

namespace qel::server {

using windows::Bstr;
using windows::ComPointer;

namespace {

void SetThreadError(std::string_view description, std::string_view source, REFIID interfaceId) {
    ComPointer<ICreateErrorInfo> error;
    if (FAILED(::CreateErrorInfo(error.Receive()))) {
        return;
    }
    error->SetGUID(interfaceId);
    error->SetDescription(Bstr(description).Get());
    error->SetSource(Bstr(source).Get());
    if (const auto info = error.As<IErrorInfo>(IID_IErrorInfo)) {
        ::SetErrorInfo(0, info.Get());
    }
}

} // namespace

HRESULT ReportFailure(const std::exception& failure, REFIID interfaceId, std::string_view source) noexcept {
    try {
        if (const auto* error = dynamic_cast<const AutomationError*>(&failure)) {
            SetThreadError(error->Description(), error->Source().empty() ? source : error->Source(),
                           interfaceId);
            return windows::ResultOfNumber(error->Number());
        }
        SetThreadError(failure.what(), source, interfaceId);
        return dynamic_cast<const std::bad_alloc*>(&failure) != nullptr ? E_OUTOFMEMORY : E_FAIL;
    } catch (const std::exception&) {
        return E_OUTOFMEMORY; // no memory for the error's texts
    }
}

void DescribeFailure(HRESULT result, EXCEPINFO* details) {
    ComPointer<IErrorInfo> info;
    const bool isDescribed = ::GetErrorInfo(0, info.Receive()) == S_OK && info;
    if (details == nullptr) {
        return;
    }
    *details = {};
    details->scode = result;
    if (isDescribed) {
        info->GetDescription(&details->bstrDescription);
        info->GetSource(&details->bstrSource);
    }
}

} // namespace qel::server
