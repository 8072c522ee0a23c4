#include "calc/ServerCall.h"

#include "platform/data/ConnectionText.h"
#include "text/Text.h"

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

// NOLINTNEXTLINE(performance-unnecessary-value-param): the class changes its texts
Variant Evaluate(OrmQelFunction& function, ValueArguments arguments) {
    auto& [cubeFile, cubeName, obsName, obsNumber, obsLevel, obsMember, activities, summaryGroup, seifLevel,
           accounts, measure, moneySet, plbs, rh, firma, openingBalance, fromDate, toDate] = arguments;
    return function.QeLF1(cubeFile, cubeName, obsName, obsNumber, obsLevel, obsMember, activities,
                          summaryGroup, seifLevel, accounts, measure, moneySet, plbs, rh, firma,
                          openingBalance, fromDate, toDate);
}

Variant Evaluate(OrmQelFunction& function, NameArguments arguments) {
    return function.QelName(arguments.cubeFile, arguments.cubeName, arguments.dimType, arguments.dimMember);
}

bool AsksServer(const std::string& cubeFile) { return IsServerAddress(Trimmed(cubeFile)); }

ServerCall CallOf(const ValueArguments& arguments, const Locale& locale) {
    KeyText key;
    key.Add(std::string("value")).Add(locale).Add(arguments.fromDate.days).Add(arguments.toDate.days);
    for (const Variant* list : {&arguments.obsName, &arguments.obsNumber, &arguments.obsLevel,
                                &arguments.obsMember, &arguments.activities}) {
        key.Add(*list);
    }
    for (const std::string* text :
         {&arguments.cubeFile, &arguments.cubeName, &arguments.summaryGroup, &arguments.seifLevel,
          &arguments.accounts, &arguments.measure, &arguments.moneySet, &arguments.plbs, &arguments.rh,
          &arguments.firma, &arguments.openingBalance}) {
        key.Add(*text);
    }
    return {std::string(Trimmed(arguments.cubeFile)),
            arguments.cubeName,
            key.Take(),
            locale,
            true,
            [arguments](OrmQelFunction& function) { return Evaluate(function, arguments); }};
}

ServerCall CallOf(const NameArguments& arguments, const Locale& locale) {
    KeyText key;
    key.Add(std::string("name")).Add(locale);
    for (const std::string* text :
         {&arguments.cubeFile, &arguments.cubeName, &arguments.dimType, &arguments.dimMember}) {
        key.Add(*text);
    }
    return {std::string(Trimmed(arguments.cubeFile)),
            arguments.cubeName,
            key.Take(),
            locale,
            false,
            [arguments](OrmQelFunction& function) { return Evaluate(function, arguments); }};
}

} // namespace qel::calc
