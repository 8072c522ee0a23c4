#pragma once

#include "function/OrmQelFunction.h"

namespace qel::server {

/// What the objects of the calling thread share: its connection and Date table, and the providers of the
/// machine. `locale` outlives the object that asks.
FunctionContext ContextOfThread(const Locale& locale);

} // namespace qel::server
