#pragma once

#include "calc/AsyncResults.h"

#include <com/sun/star/uno/XComponentContext.hpp>

namespace qel::calc {

/// Results over the servers that the user's settings reach, delivered on the office's main thread, and ended
/// with the office.
std::shared_ptr<AsyncResults>
MakeServerResults(const com::sun::star::uno::Reference<com::sun::star::uno::XComponentContext>& context);

} // namespace qel::calc
