#pragma once

#include "platform/value/Variant.h"
#include "platform/windows/ComPointer.h"
#include "platform/windows/WindowsApi.h"

namespace qel::windows {

/// What a worksheet's object is to the component: a Range when its class is called so, otherwise an object
/// known by its class name alone; no object for a null pointer.
Variant ObjectFrom(IDispatch* object);

/// The name of the object's class, or of its interface without the underscore at its beginning; "Object" when
/// it does not tell.
std::string TypeNameOf(IDispatch* object);

} // namespace qel::windows
