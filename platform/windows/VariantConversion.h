#pragma once

#include "platform/value/Variant.h"
#include "platform/windows/OwnedVariant.h"

namespace qel::windows {

/// The value behind an automation value, through any number of references. An integer of a type that has no
/// name of its own becomes the smallest type that holds it; a spreadsheet's range becomes a Range; any other
/// object keeps its class name alone. Raises 13 for what no variant can be.
Variant FromAutomation(const VARIANT& value);

/// A scalar as an automation value. Raises 13 for arrays and objects.
OwnedVariant ToAutomation(const Variant& value);

/// The value that a chain of references to variants ends in: the caller's own variable.
const VARIANT& Dereferenced(const VARIANT& value);
VARIANT& Dereferenced(VARIANT& value);

} // namespace qel::windows
