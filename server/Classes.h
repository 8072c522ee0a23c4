#pragma once

#include "server/dispatch/AutomationClass.h"

#include <span>

namespace qel::server {

/// A class of the server: its names, and how its objects are made.
struct ServerClass {
    AutomationClass automation;
    /// A new object's dispatch interface. Raises AutomationError.
    windows::ComPointer<IDispatch> (*create)(const ClassTypes& types);
};

std::span<const ServerClass> ServerClasses();

/// The class of Excel's ribbon, which is not in the type library.
struct RibbonClass {
    const wchar_t* progId;
    CLSID classId;
    windows::ComPointer<IDispatch> (*create)();
};
const RibbonClass& ClassOfRibbon();

/// The class with its types, read from the DLL's type library on first use. Raises what the type library
/// reports.
const ClassTypes& TypesOf(const ServerClass& serverClass);

/// The DLL's own type library. Raises what the system reports.
windows::ComPointer<ITypeLib> OwnTypeLibrary();

} // namespace qel::server
