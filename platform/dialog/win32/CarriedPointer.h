#pragma once

namespace qel::windows {

/// A pointer passed as an integer in a message or in a window's data.
template <class T, class Number>
T* CarriedPointer(Number number) {
    return reinterpret_cast<T*>(number); // NOLINT(performance-no-int-to-ptr): the system's own way
}

} // namespace qel::windows
