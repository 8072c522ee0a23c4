#pragma once

#include "platform/windows/WindowsApi.h"

#include <exception>
#include <string_view>

namespace qel::server {

/// Makes the failure the thread's error object, where the caller's language looks for it, and returns the
/// result code to leave with. `source` names the class to failures that name nothing.
HRESULT ReportFailure(const std::exception& failure, REFIID interfaceId, std::string_view source) noexcept;

/// The thread's error object as the texts that a late-bound caller gets with `result`; clears the error
/// object.
void DescribeFailure(HRESULT result, EXCEPINFO* details);

/// Runs an operation that a caller reached through COM: no exception leaves it.
template <class Work>
HRESULT Guarded(REFIID interfaceId, std::string_view source, const Work& work) noexcept {
    try {
        work();
        return S_OK;
    } catch (const std::exception& failure) {
        return ReportFailure(failure, interfaceId, source);
    }
}

} // namespace qel::server
