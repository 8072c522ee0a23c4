#pragma once

#include "platform/value/Variant.h"
#include "platform/windows/OwnedVariant.h"

namespace qel::windows {

/// A copy of the array with its bounds. `elementType` is the element type named by its variant. A null (never
/// dimensioned) array has no bounds and no elements. Raises 13 for elements without a variant type.
Variant ArrayFrom(SAFEARRAY* array, VARTYPE elementType);

/// An automation array of variants with the same bounds and elements. Raises 13 for elements that are not
/// scalars.
OwnedVariant ToAutomationArray(const VariantArray& array);

/// Replaces elements of a caller's one-dimensional array of variants or texts, passed by reference. Elements
/// that already have the new text are not touched.
void ReplaceTexts(SAFEARRAY* array, const std::vector<Variant>& texts);

} // namespace qel::windows
