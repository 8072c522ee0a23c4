#pragma once

#include "platform/windows/ComObject.h"
#include "server/Classes.h"
#include "server/ServerModule.h"

namespace qel::server {

/// Makes objects of one class.
class ClassFactory : public windows::ComObject<IClassFactory> {
public:
    explicit ClassFactory(const ServerClass& serverClass) : class_(serverClass) {}

    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID id, void** object) override;
    STDMETHODIMP LockServer(BOOL lock) override;

private:
    void* Find(REFIID id) override;

    const ServerClass& class_;
    ServerUse use_;
};

} // namespace qel::server
