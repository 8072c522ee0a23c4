#pragma once

#include "platform/value/AutomationDate.h"
#include "server/dispatch/AutomationClass.h"

namespace qel::server {

/// IDispatch::GetIDsOfNames: members and parameters by name, in any letter case.
[[nodiscard]] HRESULT FindNames(const ClassTypes& types, LPOLESTR* names, UINT count, DISPID* ids);

/// IDispatch::Invoke through the object's function table.
[[nodiscard]] HRESULT CallLateBound(const ClassTypes& types, IDispatch* object, const Locale& locale,
                                    DISPID id, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                                    EXCEPINFO* details, UINT* wrongArgument) noexcept;

} // namespace qel::server
