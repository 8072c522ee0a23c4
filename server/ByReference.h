#pragma once

#include "platform/windows/Bstr.h"
#include "platform/windows/ProviderFailure.h"

#include <array>
#include <string>

namespace qel::server {

/// Texts of a call that a caller passed by reference: read at the beginning of a member, written back at its
/// end.
template <class Call, std::size_t count>
class TextsByReference {
public:
    using Fields = std::array<std::string Call::*, count>;

    /// `places` are those of the fields. Raises 5 for a null pointer.
    TextsByReference(const Fields& fields, const std::array<BSTR*, count>& places)
        : fields_(fields), places_(places) {
        for (BSTR* const place : places) {
            if (place == nullptr) {
                throw PlatformError(ErrorNumber::InvalidProcedureCall);
            }
        }
    }

    /// A null text is an empty one.
    Call Read() const {
        Call call;
        for (std::size_t i = 0; i < count; ++i) {
            call.*fields_[i] = windows::TextOfBstr(*places_[i]);
        }
        return call;
    }

    /// Gives the caller new texts where they changed.
    void WriteBack(const Call& before, const Call& after) const {
        for (std::size_t i = 0; i < count; ++i) {
            if (after.*fields_[i] == before.*fields_[i]) {
                continue;
            }
            windows::Bstr text(after.*fields_[i]);
            ::SysFreeString(*places_[i]);
            *places_[i] = text.Release();
        }
    }

private:
    Fields fields_;
    std::array<BSTR*, count> places_;
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
