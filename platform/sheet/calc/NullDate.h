#pragma once

#include <com/sun/star/beans/XPropertySet.hpp>

namespace qel::office {

/// The day from which the cells of a document count days, as an AutomationDate. Raises what the office
/// raises.
double NullDateOf(const com::sun::star::uno::Reference<com::sun::star::beans::XPropertySet>& document);

} // namespace qel::office
