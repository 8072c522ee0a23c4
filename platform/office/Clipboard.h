#pragma once

#include <com/sun/star/uno/XComponentContext.hpp>
#include <string>

namespace qel::office {

/// Puts a text into the desktop's clipboard. Raises the office's exceptions.
void CopyText(const com::sun::star::uno::Reference<com::sun::star::uno::XComponentContext>& context,
              const std::string& text);

} // namespace qel::office
