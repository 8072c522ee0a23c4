#include "platform/windows/ProviderFailure.h"

#include "platform/windows/Bstr.h"
#include "platform/windows/ComPointer.h"

#include <fmt/format.h>

namespace qel::windows {

namespace {

struct NamedResult {
    HRESULT result;
    std::int32_t number;
};

/// As the platform's documentation of automation errors names them.
const NamedResult namedResults[] = {
    {E_INVALIDARG, ErrorNumber::InvalidProcedureCall},
    {DISP_E_OVERFLOW, ErrorNumber::Overflow},
    {E_OUTOFMEMORY, 7},
    {STG_E_INSUFFICIENTMEMORY, 7},
    {DISP_E_BADINDEX, ErrorNumber::SubscriptOutOfRange},
    {TYPE_E_OUTOFBOUNDS, ErrorNumber::SubscriptOutOfRange},
    {DISP_E_ARRAYISLOCKED, 10},
    {DISP_E_DIVBYZERO, 11},
    {DISP_E_TYPEMISMATCH, ErrorNumber::TypeMismatch},
    {TYPE_E_TYPEMISMATCH, ErrorNumber::TypeMismatch},
    {STG_E_FILENOTFOUND, 53},
    {STG_E_INVALIDNAME, 53},
    {STG_E_CANTSAVE, 57},
    {STG_E_READFAULT, 57},
    {STG_E_WRITEFAULT, 57},
    {TYPE_E_IOERROR, 57},
    {STG_E_FILEALREADYEXISTS, 58},
    {STG_E_MEDIUMFULL, 61},
    {STG_E_NOMOREFILES, 67},
    {STG_E_TOOMANYOPENFILES, 67},
    {E_ACCESSDENIED, 70},
    {STG_E_ACCESSDENIED, 70},
    {STG_E_DISKISWRITEPROTECTED, 70},
    {STG_E_INUSE, 70},
    {STG_E_LOCKVIOLATION, 70},
    {STG_E_NOTCURRENT, 70},
    {STG_E_SHAREVIOLATION, 75},
    {STG_E_PATHNOTFOUND, 76},
    {TYPE_E_CANTCREATETMPFILE, 322},
    {CO_E_APPDIDNTREG, 429},
    {CO_E_APPNOTFOUND, 429},
    {CO_E_CLASSSTRING, 429},
    {MK_E_UNAVAILABLE, 429},
    {REGDB_E_CLASSNOTREG, 429},
    {E_NOINTERFACE, 430},
    {MK_E_CANTOPENFILE, 432},
    {MK_E_INVALIDEXTENSION, 432},
    {DISP_E_MEMBERNOTFOUND, 438},
    {DISP_E_UNKNOWNINTERFACE, 438},
    {DISP_E_UNKNOWNNAME, 438},
    {E_NOTIMPL, 445},
    {DISP_E_NONAMEDARGS, 446},
    {DISP_E_UNKNOWNLCID, 447},
    {DISP_E_PARAMNOTFOUND, 448},
    {DISP_E_PARAMNOTOPTIONAL, 449},
    {DISP_E_BADPARAMCOUNT, 450},
    {DISP_E_NOTACOLLECTION, 451},
    {TYPE_E_DLLFUNCTIONNOTFOUND, 453},
    {DISP_E_BADVARTYPE, 458},
    {HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE), 462},
};

std::string SystemText(HRESULT result) {
    wchar_t text[512];
    const DWORD length = ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                          static_cast<DWORD>(result), 0, text, 512, nullptr);
    std::string utf8 = ToUtf8({text, length});
    utf8.erase(utf8.find_last_not_of("\r\n ") + 1);
    return utf8;
}

std::string Described(std::string description, HRESULT result, const std::string& what) {
    if (description.empty()) {
        description = SystemText(result);
    }
    if (description.empty()) {
        return fmt::format("{} (0x{:08X})", what, static_cast<std::uint32_t>(result));
    }
    return description;
}

} // namespace

std::int32_t NumberOfResult(HRESULT result) {
    if (HRESULT_FACILITY(result) == FACILITY_CONTROL && FAILED(result)) {
        return HRESULT_CODE(result);
    }
    for (const NamedResult& named : namedResults) {
        if (named.result == result) {
            return named.number;
        }
    }
    return result;
}

HRESULT ResultOfNumber(std::int32_t number) {
    if (number > 0 && number <= 0xFFFF) {
        return MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, number);
    }
    return number < 0 ? number : E_FAIL;
}

AutomationError FailureOf(HRESULT result, const std::string& what) {
    Bstr description;
    Bstr source;
    ComPointer<IErrorInfo> info;
    if (::GetErrorInfo(0, info.Receive()) == S_OK && info) {
        info->GetDescription(description.Receive());
        info->GetSource(source.Receive());
    }
    return {NumberOfResult(result), Described(TextOfBstr(description.Get()), result, what),
            TextOfBstr(source.Get())};
}

AutomationError FailureOf(EXCEPINFO& details, const std::string& what) {
    if (details.pfnDeferredFillIn != nullptr) {
        details.pfnDeferredFillIn(&details);
    }
    Bstr description;
    Bstr source;
    Bstr helpFile;
    *description.Receive() = details.bstrDescription;
    *source.Receive() = details.bstrSource;
    *helpFile.Receive() = details.bstrHelpFile;
    const HRESULT result = details.scode != 0 ? details.scode : ResultOfNumber(details.wCode);
    return {NumberOfResult(result), Described(TextOfBstr(description.Get()), result, what),
            TextOfBstr(source.Get())};
}

void Check(HRESULT result, const char* what) {
    if (FAILED(result)) {
        throw FailureOf(result, what);
    }
}

} // namespace qel::windows
