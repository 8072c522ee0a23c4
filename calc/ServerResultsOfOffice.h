#pragma once

#include "calc/AsyncResults.h"

#include <com/sun/star/uno/XComponentContext.hpp>

namespace qel::calc {

/// Results over the servers that the user allows, delivered on the office's main thread, and ended with the
/// office. `isHebrew` is the language of questions.
std::shared_ptr<AsyncResults>
MakeServerResults(const com::sun::star::uno::Reference<com::sun::star::uno::XComponentContext>& context,
                  const std::shared_ptr<const std::atomic<bool>>& isHebrew);

} // namespace qel::calc
