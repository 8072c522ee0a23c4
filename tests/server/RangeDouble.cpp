#include "tests/server/RangeDouble.h"

#include "tests/helpers/automation/DispatchDouble.h"

#include <memory>

namespace qel::test {

namespace {

using SharedValue = std::shared_ptr<OwnedVariant>;

ComPointer<IDispatch> MakeCell(SharedValue value) {
    auto cell = MakeDouble();
    cell->Define(L"Value", [value](const auto&) {
        OwnedVariant copy;
        ::VariantCopy(copy.Receive(), &value->Get());
        return copy;
    });
    return ComPointer<IDispatch>(cell.Get());
}

class Cells : public IEnumVARIANT {
public:
    explicit Cells(std::vector<SharedValue> values) : values_(std::move(values)) {}
    virtual ~Cells() = default;

    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        *object = nullptr;
        if (id != IID_IUnknown && id != IID_IEnumVARIANT) {
            return E_NOINTERFACE;
        }
        *object = static_cast<IEnumVARIANT*>(this);
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = --references_;
        if (left == 0) {
            delete this; // NOLINT(cppcoreguidelines-owning-memory): a COM object is its references'
        }
        return left;
    }
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
    std::vector<SharedValue> values_;
    std::size_t at_ = 0;
    ULONG references_ = 1;
};

/// Type information that tells a name and nothing else.
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
    for (OwnedVariant& value : values) {
        shared.push_back(std::make_shared<OwnedVariant>(std::move(value)));
    }
    auto range = ComPointer<RangeObject>::Adopt(std::make_unique<RangeObject>().release());
    range->DefineNumber(DISPID_NEWENUM, [shared](const auto&) {
        OwnedVariant enumeration;
        V_VT(&enumeration.Get()) = VT_UNKNOWN;
        V_UNKNOWN(&enumeration.Get()) = std::make_unique<Cells>(shared).release();
        return enumeration;
    });
    range->DefineNumber(DISPID_VALUE, [shared](const auto&) {
        OwnedVariant copy;
        ::VariantCopy(copy.Receive(), &shared.front()->Get());
        return copy;
    });
    return ComPointer<IDispatch>(range.Get());
}

} // namespace qel::test
