#pragma once

#include "platform/value/Variant.h"
#include "platform/windows/OwnedVariant.h"

namespace qel::windows {

/// Converts an automation value, following references. Integer types without a Variant type become the
/// smallest type that holds the value; a spreadsheet's range becomes a Range; of other objects only the class
/// name is kept. Raises 13 for values without a variant type.
Variant FromAutomation(const VARIANT& value);

/// A scalar as an automation value. Raises 13 for arrays and objects.
OwnedVariant ToAutomation(const Variant& value);

/// The end of a chain of references to variants: the caller's variable.
const VARIANT& Dereferenced(const VARIANT& value);
VARIANT& Dereferenced(VARIANT& value);

} // namespace qel::windows
