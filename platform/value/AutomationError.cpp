#include "platform/value/AutomationError.h"

namespace qel {

namespace {

const char* PlatformText(std::int32_t number) {
    switch (number) {
    case ErrorNumber::InvalidProcedureCall:
        return "Invalid procedure call or argument";
    case ErrorNumber::Overflow:
        return "Overflow";
    case ErrorNumber::SubscriptOutOfRange:
        return "Subscript out of range";
    case ErrorNumber::TypeMismatch:
        return "Type mismatch";
    case ErrorNumber::ObjectVariableNotSet:
        return "Object variable or With block variable not set";
    case ErrorNumber::InvalidUseOfNull:
        return "Invalid use of Null";
    case ErrorNumber::ToManyDimensions:
        return "To many dimensions";
    default:
        return "Application-defined or object-defined error";
    }
}

} // namespace

AutomationError PlatformError(std::int32_t number) { return {number, PlatformText(number)}; }

} // namespace qel
