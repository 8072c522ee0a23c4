#include "server/dispatch/MemberTable.h"

#include "platform/windows/Bstr.h"
#include "platform/windows/ProviderFailure.h"

#include <array>

namespace qel::server {

using windows::Bstr;
using windows::Check;
using windows::ComPointer;

namespace {

const char* const unreadable = "The type library cannot be read";

/// The interface behind a dual interface's dispatch description.
ComPointer<ITypeInfo> TableView(ITypeInfo& info) {
    constexpr UINT dualInterface = static_cast<UINT>(-1);
    HREFTYPE reference = 0;
    ComPointer<ITypeInfo> table;
    if (SUCCEEDED(info.GetRefTypeOfImplType(dualInterface, &reference))) {
        Check(info.GetRefTypeInfo(reference, table.Receive()), unreadable);
    }
    return table ? table : ComPointer<ITypeInfo>(&info);
}

WORD MemberCount(ITypeInfo& info) {
    TYPEATTR* attributes = nullptr;
    Check(info.GetTypeAttr(&attributes), unreadable);
    const WORD count = attributes->cFuncs;
    info.ReleaseTypeAttr(attributes);
    return count;
}

ParameterDescription Describe(const ELEMDESC& element, BSTR name) {
    const TYPEDESC* type = &element.tdesc;
    ParameterDescription parameter;
    parameter.name = windows::TextOfBstr(name);
    parameter.isOptional = (element.paramdesc.wParamFlags & PARAMFLAG_FOPT) != 0;
    // An object is itself a pointer; by reference it is a pointer to that pointer.
    if (type->vt == VT_PTR && type->lptdesc->vt != VT_USERDEFINED) {
        parameter.isReference = true;
        type = type->lptdesc;
    }
    parameter.type = type->vt;
    return parameter;
}

/// Owns a function's description.
class FunctionDescription {
public:
    FunctionDescription(ITypeInfo& info, UINT index) : info_(info) {
        Check(info.GetFuncDesc(index, &function_), unreadable);
    }
    ~FunctionDescription() { info_.ReleaseFuncDesc(function_); }
    FunctionDescription(const FunctionDescription&) = delete;
    FunctionDescription& operator=(const FunctionDescription&) = delete;

    MemberDescription Read() const {
        MemberDescription member;
        member.id = function_->memid;
        member.kind = function_->invkind;
        member.tableOffset = static_cast<ULONG_PTR>(function_->oVft);
        const std::vector<Bstr> names = ParameterNames();
        for (std::size_t i = 0; i < names.size(); ++i) {
            const ELEMDESC& element = function_->lprgelemdescParam[i];
            ParameterDescription parameter = Describe(element, names[i].Get());
            if ((element.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0) {
                member.result = parameter.type;
            } else {
                member.parameters.push_back(std::move(parameter));
            }
        }
        return member;
    }

private:
    /// One name per parameter. A property's new value has no name.
    std::vector<Bstr> ParameterNames() const {
        constexpr std::size_t mostNames = 32;
        std::array<BSTR, mostNames> given = {};
        UINT count = 0;
        Check(info_.GetNames(function_->memid, given.data(), mostNames, &count), unreadable);
        std::vector<Bstr> names(mostNames);
        for (std::size_t i = 0; i < count; ++i) {
            *names[i].Receive() = given[i];
        }
        names.erase(names.begin()); // the member's own
        names.resize(static_cast<std::size_t>(function_->cParams));
        return names;
    }

    ITypeInfo& info_;
    FUNCDESC* function_ = nullptr;
};

} // namespace

MemberTable::MemberTable(ITypeInfo& info) {
    const ComPointer<ITypeInfo> table = TableView(info);
    const WORD count = MemberCount(*table.Get());
    for (UINT i = 0; i < count; ++i) {
        members_.push_back(FunctionDescription(*table.Get(), i).Read());
    }
}

const MemberDescription* MemberTable::Find(MEMBERID id, WORD flags) const {
    for (const MemberDescription& member : members_) {
        if (member.id == id && (member.kind & flags) != 0) {
            return &member;
        }
    }
    return nullptr;
}

} // namespace qel::server
