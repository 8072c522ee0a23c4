#pragma once

#include "platform/value/Variant.h"

#include <string>
#include <vector>

namespace qel {

/// A zero-based list of keys made from one worksheet argument; statements use element 0 alone.
using KeyList = std::vector<Variant>;

/// The keys of one worksheet argument, by the argument's type: a number, an array or a range of cells gives
/// its texts; a date, a plain text and everything else gives one empty element. Raises as ArrayToList.
KeyList ArgToList(const Variant& value, const Locale& locale);

/// The texts of a one-dimensional array whose upper bound is at most 5, or the text of a scalar. Raises
/// "To many dimensions" for a larger bound, 9 for several dimensions, and as ToText.
KeyList ArrayToList(const Variant& value, const Locale& locale);

/// Element 0 of ArgToList's list. Raises as ArgToList, for the other elements too.
Variant FirstKey(const Variant& value, const Locale& locale);
/// The same when it takes no conversion: the text of a list of one text, or of what gives no key. Null for
/// anything else.
const std::string* PlainFirstKey(const Variant& value);

} // namespace qel
