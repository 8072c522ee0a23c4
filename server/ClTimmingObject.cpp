#include "server/ClTimmingObject.h"

#include "server/ByReference.h"

// clang-format off
#include <windows.h>
#include <timeapi.h>
// clang-format on

namespace qel::server {

ClTimmingObject::ClTimmingObject(const ClassTypes& types)
    : AutomationObject(types, windows::UserLocale()), timing_([] { return std::uint32_t{::timeGetTime()}; }) {
}

STDMETHODIMP ClTimmingObject::Start() {
    return Guard([&] { timing_.Start(); });
}

STDMETHODIMP ClTimmingObject::Finish() {
    return Guard([&] { timing_.Finish(); });
}

STDMETHODIMP ClTimmingObject::get_ElapsedTime(double* result) {
    return Guard([&] { ResultPlace(result) = timing_.ElapsedTime(); });
}

} // namespace qel::server
