#include "platform/sheet/calc/NullDate.h"

#include "platform/value/AutomationDate.h"

#include <com/sun/star/util/Date.hpp>

namespace qel::office {

double NullDateOf(const com::sun::star::uno::Reference<com::sun::star::beans::XPropertySet>& document) {
    static const rtl::OUString property("NullDate");
    com::sun::star::util::Date date(30, 12, 1899);
    document->getPropertyValue(property) >>= date;
    return DateFromDay({date.Year, date.Month, date.Day}).days;
}

} // namespace qel::office
