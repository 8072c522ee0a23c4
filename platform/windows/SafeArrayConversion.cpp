#include "platform/windows/SafeArrayConversion.h"

#include "platform/windows/Bstr.h"
#include "platform/windows/OwnedVariant.h"
#include "platform/windows/ProviderFailure.h"
#include "platform/windows/VariantConversion.h"

#include <cstring>
#include <new>

namespace qel::windows {

namespace {

ElementType ElementTypeOf(VARTYPE type) {
    switch (type) {
    case VT_UI1:
        return ElementType::Byte;
    case VT_I1:
    case VT_I2:
        return ElementType::Integer;
    case VT_UI2:
    case VT_I4:
    case VT_INT:
        return ElementType::Long;
    case VT_UI4:
    case VT_UINT:
    case VT_I8:
    case VT_UI8:
    case VT_DECIMAL:
        return ElementType::Decimal;
    case VT_R4:
        return ElementType::Single;
    case VT_R8:
        return ElementType::Double;
    case VT_CY:
        return ElementType::Currency;
    case VT_DATE:
        return ElementType::Date;
    case VT_BSTR:
        return ElementType::String;
    case VT_BOOL:
        return ElementType::Boolean;
    case VT_ERROR:
        return ElementType::Error;
    case VT_DISPATCH:
    case VT_UNKNOWN:
        return ElementType::Object;
    case VT_VARIANT:
        return ElementType::Variant;
    default:
        throw PlatformError(ErrorNumber::TypeMismatch);
    }
}

/// Locks an array's elements for reading.
class LockedElements {
public:
    explicit LockedElements(SAFEARRAY* array) : array_(array), size_(::SafeArrayGetElemsize(array)) {
        void* data = nullptr;
        Check(::SafeArrayAccessData(array_, &data), "The array's elements cannot be read");
        data_ = static_cast<const std::byte*>(data);
    }
    ~LockedElements() { ::SafeArrayUnaccessData(array_); }
    LockedElements(const LockedElements&) = delete;
    LockedElements& operator=(const LockedElements&) = delete;

    Variant At(std::size_t index, VARTYPE type) const {
        const std::byte* const element = data_ + index * size_;
        if (type == VT_VARIANT) {
            return FromAutomation(*reinterpret_cast<const VARIANT*>(element));
        }
        VARIANT view = {}; // a view of the element: not cleared
        if (type == VT_DECIMAL) {
            std::memcpy(&view, element, sizeof(DECIMAL));
        } else {
            std::memcpy(&V_UI1(&view), element, size_);
        }
        V_VT(&view) = type;
        return FromAutomation(view);
    }

private:
    SAFEARRAY* array_;
    std::size_t size_;
    const std::byte* data_ = nullptr;
};

ArrayBounds BoundsOf(SAFEARRAY* array, UINT dimension) {
    LONG lower = 0;
    LONG upper = -1;
    Check(::SafeArrayGetLBound(array, dimension, &lower), "The array has no lower bound");
    Check(::SafeArrayGetUBound(array, dimension, &upper), "The array has no upper bound");
    return {static_cast<std::int32_t>(lower), static_cast<std::int32_t>(upper)};
}

} // namespace

Variant ArrayFrom(SAFEARRAY* array, VARTYPE elementType) {
    auto result = std::make_shared<VariantArray>();
    result->elementType = ElementTypeOf(elementType);
    if (array == nullptr) {
        return std::shared_ptr<const VariantArray>(std::move(result));
    }
    std::size_t count = 1;
    for (UINT dimension = 1; dimension <= ::SafeArrayGetDim(array); ++dimension) {
        const ArrayBounds bounds = BoundsOf(array, dimension);
        result->bounds.Add(bounds);
        count *= static_cast<std::size_t>(std::int64_t{bounds.upper} - bounds.lower + 1);
    }
    const LockedElements elements(array);
    result->elements.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        result->elements.push_back(elements.At(i, elementType));
    }
    return std::shared_ptr<const VariantArray>(std::move(result));
}

OwnedVariant ToAutomationArray(const VariantArray& array) {
    std::vector<SAFEARRAYBOUND> bounds;
    for (std::size_t i = 0; i < array.bounds.DimensionCount(); ++i) {
        const ArrayBounds& dimension = array.bounds[i];
        bounds.push_back(
            {static_cast<ULONG>(std::int64_t{dimension.upper} - dimension.lower + 1), dimension.lower});
    }
    OwnedVariant result;
    V_ARRAY(&result.Get()) = ::SafeArrayCreate(VT_VARIANT, static_cast<UINT>(bounds.size()), bounds.data());
    if (V_ARRAY(&result.Get()) == nullptr) {
        throw std::bad_alloc();
    }
    V_VT(&result.Get()) = VT_ARRAY | VT_VARIANT;
    void* data = nullptr; // the first dimension varies fastest here, too
    Check(::SafeArrayAccessData(V_ARRAY(&result.Get()), &data), "The array's elements cannot be written");
    try {
        auto* element = static_cast<VARIANT*>(data);
        for (const Variant& value : array.elements) {
            *element++ = ToAutomation(value).Release();
        }
    } catch (...) {
        ::SafeArrayUnaccessData(V_ARRAY(&result.Get()));
        throw;
    }
    ::SafeArrayUnaccessData(V_ARRAY(&result.Get()));
    return result;
}

void ReplaceTexts(SAFEARRAY* array, const std::vector<Variant>& texts) {
    VARTYPE type = VT_EMPTY;
    if (array == nullptr || ::SafeArrayGetDim(array) != 1 || FAILED(::SafeArrayGetVartype(array, &type)) ||
        (type != VT_VARIANT && type != VT_BSTR)) {
        return;
    }
    const auto before = ArrayFrom(array, type).As<std::shared_ptr<const VariantArray>>();
    for (std::size_t i = 0; i < texts.size() && i < before->elements.size(); ++i) {
        const Variant& was = before->elements[i];
        if (!was.Is<std::string>() || was.As<std::string>() == texts[i].As<std::string>()) {
            continue;
        }
        LONG index = before->bounds[0].lower + static_cast<LONG>(i);
        OwnedVariant text = ToAutomation(texts[i]);
        void* const element = type == VT_BSTR ? static_cast<void*>(V_BSTR(&text.Get())) : &text.Get();
        Check(::SafeArrayPutElement(array, &index, element), "The array's elements cannot be written");
    }
}

} // namespace qel::windows
