#pragma once

#include "platform/windows/WindowsApi.h"

#include <utility>

namespace qel::windows {

/// Owns a VARIANT.
class OwnedVariant {
public:
    OwnedVariant() { ::VariantInit(&value_); }
    ~OwnedVariant() { ::VariantClear(&value_); }
    OwnedVariant(OwnedVariant&& other) noexcept : value_(other.Release()) {}
    OwnedVariant& operator=(OwnedVariant&& other) noexcept {
        std::swap(value_, other.value_);
        return *this;
    }
    OwnedVariant(const OwnedVariant&) = delete;
    OwnedVariant& operator=(const OwnedVariant&) = delete;

    const VARIANT& Get() const { return value_; }
    VARIANT& Get() { return value_; }
    /// For functions that return a value through an out parameter.
    VARIANT* Receive() {
        ::VariantClear(&value_);
        return &value_;
    }
    /// Passes ownership of the value to the caller.
    VARIANT Release() {
        const VARIANT value = value_;
        ::VariantInit(&value_);
        return value;
    }

private:
    VARIANT value_;
};

} // namespace qel::windows
