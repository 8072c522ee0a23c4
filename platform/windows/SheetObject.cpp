#include "platform/windows/SheetObject.h"

#include "platform/windows/Bstr.h"
#include "platform/windows/DispatchObject.h"
#include "platform/windows/ProviderFailure.h"
#include "platform/windows/VariantConversion.h"

namespace qel::windows {

namespace {

class OtherObject : public Object {
public:
    explicit OtherObject(std::string typeName) : typeName_(std::move(typeName)) {}
    std::string TypeName() const override { return typeName_; }

private:
    std::string typeName_;
};

/// A range of cells, accessed through its object model.
class SheetRange : public Range {
public:
    explicit SheetRange(IDispatch* range) : range_(ComPointer<IDispatch>(range), "Range", macroLocale) {}

    void ForEachCell(const std::function<void(const Variant& value)>& visit) const override {
        const ComPointer<IEnumVARIANT> cells = NewEnumeration();
        for (;;) {
            OwnedVariant cell;
            ULONG fetched = 0;
            const HRESULT status = cells->Next(1, cell.Receive(), &fetched);
            Check(status, "Range");
            if (status != S_OK || fetched == 0) {
                return;
            }
            visit(ValueOf(cell.Get()));
        }
    }

private:
    ComPointer<IEnumVARIANT> NewEnumeration() const {
        const OwnedVariant enumeration = range_.SpecialProperty(DISPID_NEWENUM);
        ComPointer<IEnumVARIANT> cells;
        const VARIANT& value = enumeration.Get();
        if (V_VT(&value) == VT_UNKNOWN || V_VT(&value) == VT_DISPATCH) {
            cells = ComPointer<IUnknown>(V_UNKNOWN(&value)).As<IEnumVARIANT>(IID_IEnumVARIANT);
        }
        if (!cells) {
            throw PlatformError(ErrorNumber::ObjectVariableNotSet);
        }
        return cells;
    }

    static Variant ValueOf(const VARIANT& cell) {
        if (V_VT(&cell) != VT_DISPATCH) {
            return FromAutomation(cell);
        }
        const DispatchObject object(ComPointer<IDispatch>(V_DISPATCH(&cell)), "Range", macroLocale);
        return FromAutomation(object.Property(L"Value").Get());
    }

    DispatchObject range_;
};

std::string NameIn(ITypeInfo& info) {
    Bstr name;
    if (FAILED(info.GetDocumentation(MEMBERID_NIL, name.Receive(), nullptr, nullptr, nullptr))) {
        return {};
    }
    return TextOfBstr(name.Get());
}

} // namespace

std::string TypeNameOf(IDispatch* object) {
    const ComPointer<IDispatch> dispatch(object);
    ComPointer<ITypeInfo> info;
    if (const auto provider = dispatch.As<IProvideClassInfo>(IID_IProvideClassInfo);
        provider && SUCCEEDED(provider->GetClassInfo(info.Receive())) && info) {
        return NameIn(*info.Get());
    }
    if (FAILED(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, info.Receive())) || !info) {
        return "Object";
    }
    std::string name = NameIn(*info.Get());
    if (name.starts_with('_')) {
        name.erase(0, 1);
    }
    return name.empty() ? "Object" : name;
}

Variant ObjectFrom(IDispatch* object) {
    if (object == nullptr) {
        return std::shared_ptr<const Object>();
    }
    std::string name = TypeNameOf(object);
    if (name == "Range") {
        return std::shared_ptr<const Object>(std::make_shared<SheetRange>(object));
    }
    return std::shared_ptr<const Object>(std::make_shared<OtherObject>(std::move(name)));
}

} // namespace qel::windows
