#include "server/dispatch/AutomationClass.h"

#include "platform/windows/ProviderFailure.h"

namespace qel::server {

ClassTypes::ClassTypes(const AutomationClass& automationClass, ITypeLib& library)
    : class_(automationClass), interface_(Find(library, class_.interfaceId)),
      coClass_(Find(library, class_.classId)), members_(*interface_.Get()) {}

windows::ComPointer<ITypeInfo> ClassTypes::Find(ITypeLib& library, REFGUID id) {
    windows::ComPointer<ITypeInfo> info;
    windows::Check(library.GetTypeInfoOfGuid(id, info.Receive()),
                   "The type library lacks a class of the server");
    return info;
}

} // namespace qel::server
