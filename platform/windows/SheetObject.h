#pragma once

#include "platform/value/Variant.h"
#include "platform/windows/ComPointer.h"
#include "platform/windows/WindowsApi.h"

namespace qel::windows {

/// A worksheet's object as the component sees it: a Range when its class is named so, otherwise an object
/// known only by its class name; a null object for a null pointer.
Variant ObjectFrom(IDispatch* object);

/// The name of the object's class, or of its interface without the leading underscore; "Object" when it is
/// unknown.
std::string TypeNameOf(IDispatch* object);

} // namespace qel::windows
