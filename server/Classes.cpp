#include "server/Classes.h"

#include "OrmFunctionQel4.h"
#include "platform/windows/ProviderFailure.h"
#include "server/ClTimmingObject.h"
#include "server/OrmQelFunctionObject.h"
#include "server/RibbonObject.h"
#include "server/ServerModule.h"

#include <memory>
#include <vector>

namespace qel::server {

namespace {

using windows::ComPointer;

template <class Object>
ComPointer<IDispatch> Create(const ClassTypes& types) {
    return ComPointer<IDispatch>::Adopt(std::make_unique<Object>(types).release());
}

std::vector<ClassTypes> LoadTypes() {
    const ComPointer<ITypeLib> library = OwnTypeLibrary();
    std::vector<ClassTypes> types;
    for (const ServerClass& serverClass : ServerClasses()) {
        types.emplace_back(serverClass.automation, *library.Get());
    }
    return types;
}

} // namespace

std::span<const ServerClass> ServerClasses() {
    static const ServerClass classes[] = {
        {{L"OrmQelFunction", L"OrmFunctionQel4.OrmQelFunction", CLSID_OrmQelFunction, IID__OrmQelFunction},
         Create<OrmQelFunctionObject>},
        {{L"ClTimming", L"OrmFunctionQel4.ClTimming", CLSID_ClTimming, IID__ClTimming},
         Create<ClTimmingObject>},
    };
    return classes;
}

const RibbonClass& ClassOfRibbon() {
    static constexpr CLSID id = {
        0x680cabbd, 0x2bbb, 0x462a, {0x94, 0x9c, 0x27, 0x4d, 0xc3, 0x51, 0x22, 0xf2}};
    static const RibbonClass ribbon = {L"OrmFunctionQel4.Ribbon", id, [] {
                                           AddIn* const made = std::make_unique<RibbonObject>().release();
                                           return ComPointer<IDispatch>::Adopt(made);
                                       }};
    return ribbon;
}

const ClassTypes& TypesOf(const ServerClass& serverClass) {
    static const std::vector<ClassTypes> types = LoadTypes();
    return types[static_cast<std::size_t>(&serverClass - ServerClasses().data())];
}

ComPointer<ITypeLib> OwnTypeLibrary() {
    ComPointer<ITypeLib> library;
    windows::Check(::LoadTypeLibEx(ServerPath().c_str(), REGKIND_NONE, library.Receive()),
                   "The server's type library cannot be read");
    return library;
}

} // namespace qel::server
