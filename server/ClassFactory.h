#pragma once

#include "server/Classes.h"
#include "server/ServerModule.h"

#include <atomic>

namespace qel::server {

/// Makes objects of one class.
class ClassFactory : public IClassFactory {
public:
    explicit ClassFactory(const ServerClass& serverClass) : class_(serverClass) {}
    virtual ~ClassFactory() = default;
    ClassFactory(const ClassFactory&) = delete;
    ClassFactory& operator=(const ClassFactory&) = delete;

    STDMETHODIMP QueryInterface(REFIID id, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override;
    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID id, void** object) override;
    STDMETHODIMP LockServer(BOOL lock) override;

private:
    const ServerClass& class_;
    ServerUse use_;
    std::atomic<ULONG> references_{1};
};

} // namespace qel::server
