#pragma once

#include "platform/windows/ComPointer.h"

#include <optional>
#include <string>
#include <vector>

namespace qel::server {

struct ParameterDescription {
    std::string name;
    VARTYPE type = VT_EMPTY; ///< of the value itself, without VT_BYREF
    bool isReference = false;
    bool isOptional = false;
};

/// One entry of an interface's table, as described by ITypeInfo.
struct MemberDescription {
    MEMBERID id = MEMBERID_NIL;
    INVOKEKIND kind = INVOKE_FUNC;
    ULONG_PTR tableOffset = 0; ///< in bytes
    std::vector<ParameterDescription> parameters;
    std::optional<VARTYPE> result; ///< none for a member without one
};

/// The members of a dual interface, read once from its type information.
class MemberTable {
public:
    /// `info` describes the dispatch interface or the interface behind it. Raises what ITypeInfo reports.
    explicit MemberTable(ITypeInfo& info);

    /// The member for a call with these flags (DISPATCH_METHOD and the like), or null.
    const MemberDescription* Find(MEMBERID id, WORD flags) const;

private:
    std::vector<MemberDescription> members_;
};

} // namespace qel::server
