#pragma once

#include "platform/windows/WindowsApi.h"

#include <atomic>

namespace qel::windows {

/// A COM object that deletes itself with its last reference; the first one belongs to its maker.
template <class... Interfaces>
class ComObject : public Interfaces... {
public:
    ComObject() = default;
    virtual ~ComObject() = default;
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        if (object == nullptr) {
            return E_POINTER;
        }
        *object = Find(id);
        if (*object == nullptr) {
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = --references_;
        if (left == 0) {
            delete this; // NOLINT(cppcoreguidelines-owning-memory): a COM object is its references'
        }
        return left;
    }

protected:
    /// The interface of that number, or null.
    virtual void* Find(REFIID id) = 0;

private:
    std::atomic<ULONG> references_{1};
};

} // namespace qel::windows
