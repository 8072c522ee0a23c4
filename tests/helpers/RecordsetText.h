#pragma once

#include "platform/data/DataAccess.h"
#include "platform/value/Conversion.h"

#include <fmt/format.h>

#include <string>

namespace qel::test {

/// The fields' names and the rows from the current one on, a line each; Null is "-". Servers sum doubles in
/// another order, so their numbers are compared with three decimals.
inline std::string TextOf(Recordset& rows, bool withThreeDecimals = false) {
    std::string text;
    for (std::int32_t field = 0; field < rows.FieldCount(); ++field) {
        text += (field == 0 ? "" : "|") + rows.FieldName(field);
    }
    for (; !rows.AtEnd(); rows.MoveNext()) {
        for (std::int32_t field = 0; field < rows.FieldCount(); ++field) {
            const Variant value = rows.FieldValue(field);
            text += field == 0 ? "\n" : "|";
            text += value.Is<Null>() ? "-"
                    : withThreeDecimals && value.Is<double>()
                        ? fmt::format("{:.3f}", value.As<double>() + 0.0) // no negative zero
                        : ToText(value, {});
        }
    }
    return text;
}

} // namespace qel::test
