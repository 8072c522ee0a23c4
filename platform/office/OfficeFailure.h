#pragma once

#include "platform/office/OfficeText.h"
#include "platform/value/AutomationError.h"

#include <com/sun/star/uno/Exception.hpp>
#include <utility>

namespace qel::office {

/// The platform's number for an application's failure; the office's exceptions carry no number.
inline constexpr std::int32_t applicationDefinedError = 1004;

/// Runs an office operation. Turns an office exception into an AutomationError with its message.
template <class Operation>
auto Translating(Operation&& operation) {
    try {
        return std::forward<Operation>(operation)();
    } catch (const com::sun::star::uno::Exception& failure) {
        throw AutomationError(applicationDefinedError, FromOffice(failure.Message), "LibreOffice");
    }
}

} // namespace qel::office
