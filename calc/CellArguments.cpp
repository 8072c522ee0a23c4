#include "calc/CellArguments.h"

#include "platform/office/OfficeText.h"
#include "platform/value/AutomationError.h"
#include "platform/value/CellValues.h"
#include "platform/value/Conversion.h"

#include <com/sun/star/uno/Sequence.hxx>
#include <utility>
#include <vector>

namespace qel::calc {

using office::FromOffice;
using office::ToOffice;

using com::sun::star::uno::Any;
using com::sun::star::uno::Sequence;
using com::sun::star::uno::TypeClass_SEQUENCE;
using Rows = Sequence<Sequence<Any>>;

namespace {

/// A number or a text. Raises 13 for a block of cells and for what no cell holds.
Variant ScalarFromCell(const Any& value) {
    if (!value.hasValue()) {
        return ErrorValue{parameterNotFound};
    }
    if (double number = 0; value >>= number) {
        return number;
    }
    if (rtl::OUString text; value >>= text) {
        return FromOffice(text);
    }
    if (bool truth = false; value >>= truth) {
        return truth ? 1.0 : 0.0; // as a cell's TRUE arrives
    }
    throw PlatformError(ErrorNumber::TypeMismatch);
}

Variant BlockFromCell(const Rows& rows) {
    std::vector<Variant> values;
    for (const auto& row : rows) {
        for (const Any& value : row) {
            values.push_back(ScalarFromCell(value));
        }
    }
    return values.size() == 1 ? Variant::List(std::move(values)) : RangeOf(std::move(values));
}

bool IsOmitted(const Variant& value) { return value.Is<ErrorValue>(); }

} // namespace

Variant KeysFromCell(const Any& argument) {
    if (Rows rows; argument.getValueTypeClass() == TypeClass_SEQUENCE && (argument >>= rows)) {
        return BlockFromCell(rows);
    }
    Variant value = ScalarFromCell(argument);
    if (!value.Is<std::string>()) {
        return value;
    }
    return value.As<std::string>().empty() ? value : RangeOf({std::move(value)});
}

std::string TextFromCell(const Any& argument, const Locale& locale) {
    if (rtl::OUString text; argument >>= text) {
        return FromOffice(text);
    }
    const Variant value = ScalarFromCell(argument);
    return IsOmitted(value) ? std::string() : ToText(value, locale);
}

AutomationDate DateFromCell(const Any& argument, const Locale& locale) {
    const Variant value = ScalarFromCell(argument);
    return IsOmitted(value) ? AutomationDate() : ToDate(value, locale);
}

Any ToCell(const Variant& result) {
    if (result.Is<std::string>()) {
        return Any(ToOffice(result.As<std::string>()));
    }
    return Any(ToDouble(result, {}));
}

} // namespace qel::calc
