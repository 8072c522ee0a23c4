#pragma once

#include "platform/windows/Bstr.h"
#include "platform/windows/ProviderFailure.h"

#include <array>
#include <string>

namespace qel::server {

/// Texts passed by reference: read when a member starts, written back when it ends.
template <std::size_t count>
class TextsByReference {
public:
    /// Raises 5 for a null pointer; a null text is an empty one.
    explicit TextsByReference(const std::array<BSTR*, count>& places) : places_(places) {
        for (std::size_t i = 0; i < count; ++i) {
            if (places[i] == nullptr) {
                throw PlatformError(ErrorNumber::InvalidProcedureCall);
            }
            texts_[i] = windows::TextOfBstr(*places[i]);
        }
        before_ = texts_;
    }

    std::string& operator[](std::size_t index) { return texts_[index]; }

    /// Writes changed texts back to the caller.
    void WriteBack() const {
        for (std::size_t i = 0; i < count; ++i) {
            if (texts_[i] == before_[i]) {
                continue;
            }
            windows::Bstr text(texts_[i]);
            ::SysFreeString(*places_[i]);
            *places_[i] = text.Release();
        }
    }

private:
    std::array<BSTR*, count> places_;
    std::array<std::string, count> texts_, before_;
};

/// The place for a member's result. Raises 5 for a null pointer.
template <class T>
T& ResultPlace(T* place) {
    if (place == nullptr) {
        throw PlatformError(ErrorNumber::InvalidProcedureCall);
    }
    return *place;
}

} // namespace qel::server
