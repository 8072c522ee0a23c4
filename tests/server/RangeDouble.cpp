#include "tests/server/RangeDouble.h"

#include "platform/windows/DispatchObject.h"
#include "tests/helpers/automation/DispatchDouble.h"

#include <memory>

namespace qel::test {

namespace {

using SharedValue = std::shared_ptr<OwnedVariant>;

OwnedVariant Copy(const SharedValue& value) {
    OwnedVariant copy;
    ::VariantCopy(copy.Receive(), &value->Get());
    return copy;
}

ComPointer<IDispatch> MakeCell(const SharedValue& value) {
    return MakeObject([&](DispatchDouble& cell) {
        cell.RequireLocale(windows::macroLocale);
        cell.Define(L"Value", [value](const Inputs&) { return Copy(value); });
    });
}

class Cells : public windows::ComObject<IEnumVARIANT> {
public:
    explicit Cells(std::vector<SharedValue> values) : values_(std::move(values)) {}

    STDMETHODIMP Next(ULONG /*count*/, VARIANT* values, ULONG* fetched) override {
        *fetched = 0;
        if (at_ == values_.size()) {
            return S_FALSE;
        }
        *values = ObjectValue(MakeCell(values_[at_++])).Release();
        *fetched = 1;
        return S_OK;
    }
    STDMETHODIMP Skip(ULONG /*count*/) override { return E_NOTIMPL; }
    STDMETHODIMP Reset() override { return E_NOTIMPL; }
    STDMETHODIMP Clone(IEnumVARIANT** /*copy*/) override { return E_NOTIMPL; }

private:
    void* Find(REFIID id) override {
        return id == IID_IUnknown || id == IID_IEnumVARIANT ? static_cast<IEnumVARIANT*>(this) : nullptr;
    }

    std::vector<SharedValue> values_;
    std::size_t at_ = 0;
};

/// Type information that holds only a name.
ComPointer<ITypeInfo> TypeNamed(const wchar_t* name) {
    ComPointer<ICreateTypeLib2> library;
    ::CreateTypeLib2(SYS_WIN64, L"range.tlb", library.Receive());
    ComPointer<ICreateTypeInfo> created;
    library->CreateTypeInfo(const_cast<LPOLESTR>(name), TKIND_DISPATCH, created.Receive());
    return created.As<ITypeInfo>(IID_ITypeInfo);
}

class RangeObject : public DispatchDouble {
public:
    STDMETHODIMP GetTypeInfo(UINT /*index*/, LCID /*locale*/, ITypeInfo** info) override {
        *info = ComPointer<ITypeInfo>(type_).Release();
        return S_OK;
    }

private:
    ComPointer<ITypeInfo> type_ = TypeNamed(L"Range");
};

} // namespace

ComPointer<IDispatch> MakeRange(std::vector<OwnedVariant> values) {
    std::vector<SharedValue> shared;
    shared.reserve(values.size());
    for (OwnedVariant& value : values) {
        shared.push_back(std::make_shared<OwnedVariant>(std::move(value)));
    }
    auto range = ComPointer<RangeObject>::Adopt(std::make_unique<RangeObject>().release());
    range->RequireLocale(windows::macroLocale);
    range->DefineNumber(DISPID_NEWENUM, [shared](const auto&) {
        OwnedVariant enumeration;
        V_VT(&enumeration.Get()) = VT_UNKNOWN;
        V_UNKNOWN(&enumeration.Get()) = std::make_unique<Cells>(shared).release();
        return enumeration;
    });
    range->DefineNumber(DISPID_VALUE, [shared](const auto&) { return Copy(shared.front()); });
    return ComPointer<IDispatch>::Adopt(range.Release());
}

} // namespace qel::test
