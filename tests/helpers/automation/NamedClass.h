#pragma once

#include "tests/helpers/automation/AutomationClient.h"

#include <functional>
#include <memory>
#include <optional>

namespace qel::test {

/// A class of this process under a name of the machine's, for as long as it lives; what was registered under
/// the name is restored at the end.
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
    std::shared_ptr<IClassFactory> factory_;
    std::optional<std::wstring> before_;
    DWORD cookie_ = 0;
};

} // namespace qel::test
