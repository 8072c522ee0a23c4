#pragma once

#include "OrmFunctionQel4.h"
#include "platform/windows/UserLocale.h"
#include "server/ServerModule.h"
#include "server/dispatch/AutomationObject.h"
#include "support/ClTimming.h"

namespace qel::server {

/// The elapsed-time class as callers see it.
class ClTimmingObject : public AutomationObject<_ClTimming> {
public:
    explicit ClTimmingObject(const ClassTypes& types);

    STDMETHODIMP Start() override;
    STDMETHODIMP Finish() override;
    STDMETHODIMP get_ElapsedTime(double* result) override;

private:
    ServerUse use_;
    ClTimming timing_;
};

} // namespace qel::server
