#pragma once

namespace qel::windows {

/// The pointer that a message or a window's data carries as a number.
template <class T, class Number>
T* CarriedPointer(Number number) {
    return reinterpret_cast<T*>(number); // NOLINT(performance-no-int-to-ptr): the system's own way
}

} // namespace qel::windows
