#pragma once

#include "platform/value/Variant.h"
#include "qel/engine/Cellset.h"

namespace qel {

/// A cell's value as the provider gives it: Null when it is empty.
inline Variant CellVariant(const engine::CellValue& cell) {
    if (cell.isEmpty) {
        return Null{};
    }
    if (cell.text != nullptr) {
        return *cell.text;
    }
    return cell.isCondition ? Variant(cell.number != 0) : Variant(cell.number);
}

} // namespace qel
