#include "calc/ServerCall.h"

#include <fmt/format.h>

#include <utility>

namespace qel::calc {

namespace {

/// The text of a call. A part has its length before it, so that no two calls have one text.
class KeyText {
public:
    KeyText& Add(const std::string& part) {
        text_ += fmt::format("{}:{}", part.size(), part);
        return *this;
    }
    KeyText& Add(double number) { return Add(fmt::format("{:a}", number)); }

    /// A list argument: its elements, or the one value that it is.
    KeyText& Add(const Variant& value) {
        Add(value.TypeName());
        if (value.Is<double>()) {
            return Add(value.As<double>());
        }
        if (value.Is<std::string>()) {
            return Add(value.As<std::string>());
        }
        if (value.IsArray()) {
            for (const Variant& element : value.As<std::shared_ptr<const VariantArray>>()->elements) {
                Add(element);
            }
        } else if (value.Is<std::shared_ptr<const Object>>()) {
            if (const auto* range =
                    dynamic_cast<const Range*>(value.As<std::shared_ptr<const Object>>().get())) {
                range->ForEachCell([this](const Variant& cell) { Add(cell); });
            }
        }
        return Add(std::string("."));
    }

    /// Keys and dates become texts as the document writes them.
    KeyText& Add(const Locale& locale) {
        return Add(fmt::format("{}{}{}{}", static_cast<int>(locale.dateOrder), locale.dateSeparator,
                               locale.decimalSeparator, locale.thousandsSeparator));
    }

    std::string Take() { return std::move(text_); }

private:
    std::string text_;
};

} // namespace

ServerCall ServerCallOf(const ValueCall& call, const Locale& locale) {
    KeyText key;
    key.Add(std::string("value")).Add(locale).Add(call.From_Date.days).Add(call.To_Date.days);
    for (const auto list : valueCallLists) {
        key.Add(call.*list);
    }
    for (const auto text : valueCallTexts) {
        key.Add(call.*text);
    }
    const auto value = std::make_shared<const ValueCall>(call);
    return {call.cubeFile, call.CubeName,
            key.Take(),    locale,
            value,         [value](OrmQelFunction& function) { return function.QeLF1(*value).value; }};
}

ServerCall ServerCallOf(const NameCall& call, const Locale& locale) {
    KeyText key;
    key.Add(std::string("name")).Add(locale);
    for (const auto text : nameCallTexts) {
        key.Add(call.*text);
    }
    return {call.cubeFile, call.CubeName,
            key.Take(),    locale,
            nullptr,       [call](OrmQelFunction& function) { return function.QelName(call).value; }};
}

} // namespace qel::calc
