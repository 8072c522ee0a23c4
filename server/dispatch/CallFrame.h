#pragma once

#include "platform/value/AutomationDate.h"
#include "platform/windows/OwnedVariant.h"
#include "server/dispatch/MemberTable.h"

#include <string>
#include <vector>

namespace qel::server {

/// One late-bound call: the caller's arguments turned into what the member's table entry takes, and back.
///
/// A caller may leave out optional arguments, in the middle too, name them, pass any value that converts, and
/// pass references of any depth. A text that the member changes is written back through the reference that it
/// came by.
class CallFrame {
public:
    explicit CallFrame(const MemberDescription& member) : member_(member), slots_(member.parameters.size()) {}

    /// Finds each parameter's argument. Returns DISP_E_BADPARAMCOUNT, DISP_E_PARAMNOTFOUND or
    /// DISP_E_PARAMNOTOPTIONAL when the arguments do not fit, with the wrong one's place in `wrongArgument`.
    HRESULT Bind(const DISPPARAMS& arguments, UINT& wrongArgument);
    /// Converts the arguments. Raises AutomationError naming the parameter.
    void Convert(const Locale& locale);
    /// Calls the member and returns what it returns.
    HRESULT Call(IDispatch* object);
    /// Lets the caller see what the member changed.
    void WriteBack();
    /// The member's result, given to the caller; empty for a member without one.
    VARIANT ReleaseResult();

private:
    struct Slot {
        VARIANT* argument = nullptr; ///< the caller's own; null when it is left out
        bool isReference = false;    ///< the caller sees what the member changes
        windows::OwnedVariant value; ///< what the member gets, unless that is the caller's own variant
        std::string textBefore;
    };

    HRESULT Place(std::size_t parameter, VARIANT& argument);
    void ConvertSlot(const ParameterDescription& parameter, Slot& slot, const Locale& locale) const;
    static VARIANT PassedValue(const ParameterDescription& parameter, Slot& slot);
    static void WriteText(VARIANT& target, windows::OwnedVariant& text);

    const MemberDescription& member_;
    std::vector<Slot> slots_;
    windows::OwnedVariant result_;
};

} // namespace qel::server
