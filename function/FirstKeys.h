#pragma once

#include "cube/CallKey.h"
#include "cube/ValueQuery.h"
#include "platform/value/Variant.h"

#include <array>
#include <string>
#include <string_view>

namespace qel {

/// The first keys of a worksheet call's lists, as texts: those of the call where they stand as they are,
/// otherwise converted. It views into the call.
class FirstKeys {
public:
    /// Raises as FirstKey for a list that cannot be made. The order of reading decides which failure is
    /// reported.
    FirstKeys(const ValueCall& call, const Locale& locale);
    ~FirstKeys() = default;
    FirstKeys(const FirstKeys&) = delete;
    FirstKeys& operator=(const FirstKeys&) = delete;

    const ModSetCube::KeyTexts& Texts() const { return texts_; }
    ModSetCube::ValueKeys Values() const;

private:
    std::string_view TextOf(const Variant& list, const Locale& locale);
    std::string_view Own(std::string text);

    std::array<std::string, 6> own_;
    std::size_t ownCount_ = 0;
    ModSetCube::KeyTexts texts_;
};

} // namespace qel
