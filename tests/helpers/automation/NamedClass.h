#pragma once

#include "tests/helpers/automation/AutomationClient.h"

#include <functional>
#include <optional>

namespace qel::test {

ComPointer<IClassFactory> MakeFactory(std::function<ComPointer<IDispatch>()> make);

/// Registers a class of this process under a ProgID for as long as it lives; the previous registration is
/// restored at the end.
class NamedClass {
public:
    using Factory = std::function<ComPointer<IDispatch>()>;

    NamedClass(std::wstring progId, Factory make);
    ~NamedClass();
    NamedClass(const NamedClass&) = delete;
    NamedClass& operator=(const NamedClass&) = delete;

private:
    void Write(const std::wstring& classId) const;

    std::wstring progId_;
    ComPointer<IClassFactory> factory_;
    std::optional<std::wstring> before_;
    DWORD cookie_ = 0;
};

} // namespace qel::test
