#include "server/dispatch/LateBoundCall.h"

#include "platform/windows/WideText.h"
#include "server/dispatch/CallFrame.h"
#include "server/dispatch/FailureReport.h"

namespace qel::server {

namespace {

HRESULT Failed(HRESULT result, EXCEPINFO* details) {
    DescribeFailure(result, details);
    return DISP_E_EXCEPTION;
}

HRESULT Call(CallFrame& frame, IDispatch* object, const Locale& locale, VARIANT* result, EXCEPINFO* details) {
    frame.Convert(locale);
    if (const HRESULT status = frame.Call(object); FAILED(status)) {
        return Failed(status, details);
    }
    frame.WriteBack();
    windows::OwnedVariant value;
    value.Get() = frame.ReleaseResult();
    if (result != nullptr) {
        *result = value.Release();
    }
    return S_OK;
}

HRESULT Report(const std::exception& failure, const AutomationClass& called) noexcept {
    try {
        return ReportFailure(failure, called.interfaceId, windows::ToUtf8(called.progId));
    } catch (const std::exception&) {
        return E_OUTOFMEMORY;
    }
}

} // namespace

HRESULT FindNames(const ClassTypes& types, LPOLESTR* names, UINT count, DISPID* ids) {
    return types.Interface()->GetIDsOfNames(names, count, ids);
}

HRESULT CallLateBound(const ClassTypes& types, IDispatch* object, const Locale& locale, DISPID id, WORD flags,
                      DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* details,
                      UINT* wrongArgument) noexcept {
    ::SetErrorInfo(0, nullptr);
    if (arguments == nullptr) {
        return E_POINTER;
    }
    const MemberDescription* const member = types.Members().Find(id, flags);
    if (member == nullptr) {
        return DISP_E_MEMBERNOTFOUND;
    }
    try {
        CallFrame frame(*member);
        UINT wrong = 0;
        if (const HRESULT status = frame.Bind(*arguments, wrong); FAILED(status)) {
            if (wrongArgument != nullptr) {
                *wrongArgument = wrong;
            }
            return status;
        }
        return Call(frame, object, locale, result, details);
    } catch (const std::exception& failure) {
        return Failed(Report(failure, types.Class()), details);
    } catch (...) {
        return E_UNEXPECTED;
    }
}

} // namespace qel::server
