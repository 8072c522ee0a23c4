#pragma once

#include "platform/value/Variant.h"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace qel {

/// The values of cells that were read already.
class CellValues : public Range {
public:
    explicit CellValues(std::vector<Variant> values) : values_(std::move(values)) {}

    void ForEachCell(const std::function<void(const Variant& value)>& visit) const override {
        for (const Variant& value : values_) {
            visit(value);
        }
    }

private:
    std::vector<Variant> values_;
};

inline Variant RangeOf(std::vector<Variant> values) {
    return std::shared_ptr<const Object>(std::make_shared<CellValues>(std::move(values)));
}

} // namespace qel
