#include "platform/value/Variant.h"

namespace qel {

namespace {

std::string ElementTypeName(ElementType type) {
    switch (type) {
    case ElementType::Variant:
        return "Variant";
    case ElementType::Byte:
        return "Byte";
    case ElementType::Integer:
        return "Integer";
    case ElementType::Long:
        return "Long";
    case ElementType::Single:
        return "Single";
    case ElementType::Double:
        return "Double";
    case ElementType::Currency:
        return "Currency";
    case ElementType::Decimal:
        return "Decimal";
    case ElementType::Date:
        return "Date";
    case ElementType::String:
        return "String";
    case ElementType::Boolean:
        return "Boolean";
    case ElementType::Error:
        return "Error";
    case ElementType::Object:
        return "Object";
    }
    return "Variant";
}

struct TypeNameOf {
    std::string operator()(const Empty&) const { return "Empty"; }
    std::string operator()(const Null&) const { return "Null"; }
    std::string operator()(std::uint8_t) const { return "Byte"; }
    std::string operator()(std::int16_t) const { return "Integer"; }
    std::string operator()(std::int32_t) const { return "Long"; }
    std::string operator()(float) const { return "Single"; }
    std::string operator()(double) const { return "Double"; }
    std::string operator()(const Currency&) const { return "Currency"; }
    std::string operator()(const Decimal&) const { return "Decimal"; }
    std::string operator()(const AutomationDate&) const { return "Date"; }
    std::string operator()(const std::string&) const { return "String"; }
    std::string operator()(bool) const { return "Boolean"; }
    std::string operator()(const ErrorValue&) const { return "Error"; }
    std::string operator()(const std::shared_ptr<const Object>& object) const {
        return object ? object->TypeName() : "Nothing";
    }
    std::string operator()(const std::shared_ptr<const VariantArray>& array) const {
        return ElementTypeName(array->elementType) + "()";
    }
};

} // namespace

Variant Variant::List(std::vector<Variant> elements) {
    auto array = std::make_shared<VariantArray>();
    array->bounds.Add({0, static_cast<std::int32_t>(elements.size()) - 1});
    array->elements = std::move(elements);
    return std::shared_ptr<const VariantArray>(std::move(array));
}

std::string Variant::TypeName() const { return std::visit(TypeNameOf{}, value_); }

} // namespace qel
