#pragma once

#include "server/dispatch/MemberTable.h"

namespace qel::server {

/// The names and ids of a class.
struct AutomationClass {
    const wchar_t* name;   ///< "OrmQelFunction"
    const wchar_t* progId; ///< "OrmFunctionQel4.OrmQelFunction"
    CLSID classId;
    IID interfaceId;
};

/// A class with its descriptions from the type library.
class ClassTypes {
public:
    /// Raises what the type library reports.
    ClassTypes(const AutomationClass& automationClass, ITypeLib& library);

    const AutomationClass& Class() const { return class_; }
    ITypeInfo* Interface() const { return interface_.Get(); }
    ITypeInfo* CoClass() const { return coClass_.Get(); }
    const MemberTable& Members() const { return members_; }

private:
    static windows::ComPointer<ITypeInfo> Find(ITypeLib& library, REFGUID id);

    AutomationClass class_;
    windows::ComPointer<ITypeInfo> interface_;
    windows::ComPointer<ITypeInfo> coClass_;
    MemberTable members_;
};

} // namespace qel::server
