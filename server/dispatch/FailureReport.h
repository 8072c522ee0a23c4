#pragma once

#include "platform/windows/WindowsApi.h"

#include <exception>
#include <string_view>

namespace qel::server {

/// Sets the current exception as the thread's error object and returns the result code. `source` is the
/// default error source.
[[nodiscard]] HRESULT ReportFailure(const std::exception& failure, REFIID interfaceId,
                                    std::string_view source) noexcept;

/// The thread's error object as the texts returned to a late-bound caller with `result`. Clears the error
/// object.
void DescribeFailure(HRESULT result, EXCEPINFO* details);

/// Runs an operation called through COM. No exception leaves it.
template <class Work>
[[nodiscard]] HRESULT Guarded(REFIID interfaceId, std::string_view source, const Work& work) noexcept {
    try {
        work();
        return S_OK;
    } catch (const std::exception& failure) {
        return ReportFailure(failure, interfaceId, source);
    } catch (...) {
        return E_UNEXPECTED;
    }
}

} // namespace qel::server
