#pragma once

#include "platform/value/Variant.h"
#include "platform/windows/OwnedVariant.h"

namespace qel::windows {

/// A copy of the array with its bounds, whatever they start with; `elementType` is the type that its variant
/// names. An array that was never dimensioned (null) has no bounds and no elements. Raises 13 for elements
/// that no variant can be.
Variant ArrayFrom(SAFEARRAY* array, VARTYPE elementType);

/// An automation array of variants with the array's bounds and elements, which are scalars. Raises 13 for any
/// other element.
OwnedVariant ToAutomationArray(const VariantArray& array);

/// Puts the texts in place of elements of a one-dimensional array of variants or texts, which is what a
/// caller that passed it by reference sees. Elements whose new text is no other than their own stay
/// untouched.
void ReplaceTexts(SAFEARRAY* array, const std::vector<Variant>& texts);

} // namespace qel::windows
