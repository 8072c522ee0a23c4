#pragma once

#include "platform/windows/WindowsApi.h"

#include <utility>

namespace qel::windows {

/// A counted reference to a COM object.
template <class Interface>
class ComPointer {
public:
    ComPointer() = default;
    ComPointer(std::nullptr_t) {}
    /// Adds a reference.
    explicit ComPointer(Interface* object) : object_(object) {
        if (object_ != nullptr) {
            object_->AddRef();
        }
    }
    /// Takes ownership of the caller's reference.
    static ComPointer Adopt(Interface* object) {
        ComPointer pointer;
        pointer.object_ = object;
        return pointer;
    }
    ~ComPointer() { Reset(); }
    ComPointer(const ComPointer& other) : ComPointer(other.object_) {}
    ComPointer(ComPointer&& other) noexcept : object_(other.Release()) {}
    ComPointer& operator=(const ComPointer& other) {
        ComPointer copy(other);
        std::swap(object_, copy.object_);
        return *this;
    }
    ComPointer& operator=(ComPointer&& other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }

    explicit operator bool() const { return object_ != nullptr; }
    Interface* operator->() const { return object_; }
    Interface* Get() const { return object_; }
    /// For functions that return a reference through an out parameter.
    Interface** Receive() {
        Reset();
        return &object_;
    }
    void** ReceiveVoid() { return reinterpret_cast<void**>(Receive()); }
    /// Passes ownership of the reference to the caller.
    Interface* Release() { return std::exchange(object_, nullptr); }
    void Reset() {
        if (Interface* const object = Release()) {
            object->Release();
        }
    }

    /// The object's other interface; null when it has none.
    template <class Other>
    ComPointer<Other> As(REFIID id) const {
        ComPointer<Other> other;
        if (object_ != nullptr && FAILED(object_->QueryInterface(id, other.ReceiveVoid()))) {
            other.Release(); // a failed query returned no reference
        }
        return other;
    }

private:
    Interface* object_ = nullptr;
};

} // namespace qel::windows
