#pragma once

#include "cli/formula/BindFormula.h"
#include "function/OrmQelFunction.h"

namespace qel {

/// Calls the function with its own copies of the arguments (the class overwrites texts). Raises
/// AutomationError when the call fails, which a cell shows as #VALUE!.
Variant RunFormula(OrmQelFunction& object, FormulaCall call, const Locale& locale);

/// The five key lists of a value function, in the order of its arguments.
struct KeyLists {
    KeyList ObsName, ObsNum, ObsLevel, ObsMember, ActivityList;
};

/// The lists as the function normalises them. QelFuncDemo takes lists as they are, so for it every argument
/// must be an array. Raises AutomationError.
KeyLists NormaliseKeyLists(WorksheetFunction function, const ValueCall& call, const Locale& locale);

/// QelFuncDemo's result: what the worksheet functions show, with their masked errors as texts.
Variant RunUnmasked(OrmQelFunction& object, KeyLists lists, ValueCall call);

} // namespace qel
