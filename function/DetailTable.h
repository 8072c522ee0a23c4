#pragma once

#include "platform/value/Variant.h"

#include <string>

namespace qel {

/// An argument text as a table of labels and values: an array with the bounds 0 to the number of its parts
/// plus one, and 0 to 1. A part is what stands between two commas, so an array of several keys takes several
/// rows and the values after it stand beside the labels of others.
std::shared_ptr<const VariantArray> ComposeDetailTable(const std::string& argumentText, std::int16_t iLang);

} // namespace qel
