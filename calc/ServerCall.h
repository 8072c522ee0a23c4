#pragma once

#include "function/OrmQelFunction.h"

#include <functional>
#include <memory>
#include <string>

namespace qel::calc {

/// A formula over a server's cube, to be evaluated while its cell waits.
struct ServerCall {
    std::string cubeFile, cubeName; ///< as the formula has them
    std::string key;                ///< equal for calls that ask for the same
    Locale locale;                  ///< of the document that asked first
    /// A value formula, whose cell can be asked for together with others; otherwise null.
    std::shared_ptr<const ValueCall> value;
    std::function<Variant(OrmQelFunction& function)> evaluate; ///< by itself; raises AutomationError
};

ServerCall ServerCallOf(const ValueCall& call, const Locale& locale);
ServerCall ServerCallOf(const NameCall& call, const Locale& locale);

} // namespace qel::calc
