#pragma once

#include "platform/windows/ComObject.h"
#include "platform/windows/ComPointer.h"
#include "server/ServerModule.h"

#include <functional>

namespace qel::server {

/// Makes objects of one class. `make` raises what the class raises.
class ClassFactory : public windows::ComObject<IClassFactory> {
public:
    using Maker = std::function<windows::ComPointer<IDispatch>()>;

    explicit ClassFactory(Maker make) : make_(std::move(make)) {}

    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID id, void** object) override;
    STDMETHODIMP LockServer(BOOL lock) override;

private:
    void* Find(REFIID id) override;

    Maker make_;
    ServerUse use_;
};

} // namespace qel::server
