#pragma once

#include "platform/value/AutomationDate.h"
#include "platform/windows/OwnedVariant.h"
#include "server/dispatch/MemberTable.h"

#include <string>
#include <vector>

namespace qel::server {

/// One late-bound call: converts the caller's arguments to the parameters of the member's table entry, and
/// back.
///
/// A caller may omit optional arguments anywhere, name arguments, and pass convertible values and references
/// of any depth. A text changed by the member is written back through its reference.
class CallFrame {
public:
    explicit CallFrame(const MemberDescription& member) : member_(member), slots_(member.parameters.size()) {}

    /// Finds each parameter's argument. Returns DISP_E_BADPARAMCOUNT, DISP_E_PARAMNOTFOUND or
    /// DISP_E_PARAMNOTOPTIONAL when the arguments do not fit, with the index of the wrong one in
    /// `wrongArgument`.
    [[nodiscard]] HRESULT Bind(const DISPPARAMS& arguments, UINT& wrongArgument);
    /// Converts the arguments. Raises AutomationError naming the parameter.
    void Convert(const Locale& locale);
    /// Calls the member and returns what it returns.
    [[nodiscard]] HRESULT Call(IDispatch* object);
    /// Writes the member's changes back to the caller.
    void WriteBack();
    /// The member's result, owned by the caller; empty for a member without a result.
    VARIANT ReleaseResult();

private:
    struct Slot {
        VARIANT* argument = nullptr; ///< the caller's; null when omitted
        bool isReference = false;    ///< the caller sees what the member changes
        windows::OwnedVariant value; ///< passed to the member unless it gets the caller's variant
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
