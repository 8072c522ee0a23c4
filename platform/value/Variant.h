#pragma once

#include "platform/value/ArrayShape.h"
#include "platform/value/AutomationDate.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace qel {

struct Empty {
    Empty() = default;
    // Not trivial: a std::variant of nothing but strings, pointers and trivial types takes itself for always
    // filled in GCC 12's library, and destroys garbage where memory for the copy of a string lacks.
    // NOLINTBEGIN(modernize-use-equals-default)
    Empty(const Empty& /*other*/) noexcept {}
    Empty& operator=(const Empty& /*other*/) noexcept { return *this; }
    // NOLINTEND(modernize-use-equals-default)
    ~Empty() = default;

    bool operator==(const Empty&) const = default;
};

struct Null {
    bool operator==(const Null&) const = default;
};

/// Four decimals, scaled by 10,000.
struct Currency {
    std::int64_t scaled = 0;

    bool operator==(const Currency&) const = default;
};

/// A 96-bit integer divided by ten to the power of `scale` (0 to 28).
struct Decimal {
    std::uint32_t high = 0;
    std::uint64_t low = 0;
    std::uint8_t scale = 0;
    bool negative = false;

    bool operator==(const Decimal&) const = default;
};

/// An error value such as a cell's #N/A, or a missing argument.
struct ErrorValue {
    std::int32_t code = 0;

    bool operator==(const ErrorValue&) const = default;
};

/// DISP_E_PARAMNOTFOUND: how a spreadsheet sends an omitted argument.
inline constexpr std::int32_t parameterNotFound = static_cast<std::int32_t>(0x80020004);

class Variant;

/// An object passed by a worksheet, known only by its class name.
class Object {
public:
    virtual ~Object() = default;
    virtual std::string TypeName() const = 0; ///< "Range" for a range of cells
};

/// A range of cells, enumerated row by row and area by area.
class Range : public Object {
public:
    std::string TypeName() const override { return "Range"; }
    virtual void ForEachCell(const std::function<void(const Variant& value)>& visit) const = 0;
};

/// The types of an array's elements; Variant for an array of variants.
enum class ElementType : std::uint8_t {
    Variant,
    Byte,
    Integer,
    Long,
    Single,
    Double,
    Currency,
    Decimal,
    Date,
    String,
    Boolean,
    Error,
    Object
};

/// A safe array: the bounds of each dimension, and the elements, the first dimension varying fastest.
struct VariantArray {
    ElementType elementType = ElementType::Variant;
    ArrayShape bounds;
    std::vector<Variant> elements;
};

/// A value of any automation type. Text is UTF-8.
class Variant {
public:
    using Value = std::variant<Empty, Null, std::uint8_t, std::int16_t, std::int32_t, float, double, Currency,
                               Decimal, AutomationDate, std::string, bool, ErrorValue,
                               std::shared_ptr<const Object>, std::shared_ptr<const VariantArray>>;

    Variant() = default;
    template <class T>
        requires std::is_constructible_v<Value, T>
    Variant(T value)
        : value_(std::move(value)) {} // NOLINT(google-explicit-constructor): a variant is any of these
    Variant(const char* text) : value_(std::string(text)) {}

    /// A one-dimensional array of variants, zero-based.
    static Variant List(std::vector<Variant> elements);

    const Value& Get() const { return value_; }
    template <class T>
    bool Is() const {
        return std::holds_alternative<T>(value_);
    }
    template <class T>
    const T& As() const {
        return std::get<T>(value_);
    }
    bool IsArray() const { return Is<std::shared_ptr<const VariantArray>>(); }
    /// The platform's type-name text: "Integer", "Double", "String", "Empty", "Error", "Nothing", an object's
    /// class name, "Variant()", "Double()", ...
    std::string TypeName() const;

private:
    Value value_;
};

} // namespace qel
