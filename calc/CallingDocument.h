#pragma once

#include "platform/AutomationDate.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>
#include <string>

namespace qel::calc {

using DocumentReference = com::sun::star::uno::Reference<com::sun::star::beans::XPropertySet>;

/// The path of a cube as a formula of the document means it: a relative path that leads from the document's
/// folder to a file leads there; every other path stays as it is, and a relative one then counts from the
/// current folder.
std::string CubePathFrom(const DocumentReference& document, const std::string& cubeFile);

/// How texts of the document write dates and numbers: as its language does. The platform's default when the
/// document does not tell.
Locale LocaleOf(const DocumentReference& document,
                const com::sun::star::uno::Reference<com::sun::star::uno::XComponentContext>& context);

} // namespace qel::calc
