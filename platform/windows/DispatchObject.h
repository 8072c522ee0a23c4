#pragma once

#include "platform/windows/ComPointer.h"
#include "platform/windows/OwnedVariant.h"
#include "platform/windows/WideText.h"

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace qel::windows {

/// The arguments of one late-bound call, in the order in which a macro writes them.
using CallArguments = std::vector<OwnedVariant>;

/// Makes arguments of texts, numbers and objects: ArgumentList(1, "text", object).
OwnedVariant ToArgument(std::string_view text);
OwnedVariant ToArgument(std::int32_t number);
/// In the place of an optional argument.
OwnedVariant MissingArgument();

template <class... Values>
CallArguments ArgumentList(const Values&... values) {
    CallArguments arguments;
    (arguments.push_back(ToArgument(values)), ...);
    return arguments;
}

/// The locale in which macros call the objects of their spreadsheet: English (United States), whatever the
/// user's is. Formulas and formats are texts in that language, and other locales may need files that are not
/// installed.
inline constexpr LCID macroLocale = 1033;

/// An object whose members are looked up by name on use, as in a macro. A failed call raises AutomationError
/// with the object's number, description and source, or with the reason why it could not be made.
class DispatchObject {
public:
    /// Raises 91 for a null object. `name` is its name in messages; its children are called in its locale.
    DispatchObject(ComPointer<IDispatch> object, std::string name, LCID locale = LOCALE_USER_DEFAULT);
    /// A new object of a registered class. Raises 429 when the class is not registered.
    static DispatchObject Create(const wchar_t* progId);

    IDispatch* Get() const { return object_.Get(); }

    /// True when the object knows a member of that name.
    bool Has(const wchar_t* member) const;
    OwnedVariant Property(const wchar_t* member, CallArguments arguments = {}) const;
    /// A property without a name: DISPID_VALUE, DISPID_NEWENUM.
    OwnedVariant SpecialProperty(DISPID id) const;
    std::string Text(const wchar_t* member) const;
    std::int32_t Number(const wchar_t* member) const;
    /// Raises 91 when the member is not an object.
    DispatchObject Child(const wchar_t* member, CallArguments arguments = {}) const;
    void Call(const wchar_t* member, CallArguments arguments = {}) const;
    void Put(const wchar_t* member, OwnedVariant value) const;

private:
    OwnedVariant Invoke(const wchar_t* member, WORD kind, CallArguments arguments) const;
    OwnedVariant Invoke(DISPID id, const std::string& what, WORD kind, CallArguments arguments) const;
    std::string Described(const wchar_t* member) const;

    ComPointer<IDispatch> object_;
    std::string name_;
    LCID locale_;
};

OwnedVariant ToArgument(const DispatchObject& object);

/// True when a class of that name is registered and its server can be loaded into this process.
[[nodiscard]] bool CanLoadClass(const wchar_t* progId);

} // namespace qel::windows
