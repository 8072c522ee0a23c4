#include "function/ArgumentText.h"

#include "platform/value/AutomationError.h"
#include "platform/value/Conversion.h"
#include "text/Text.h"

namespace qel {

namespace {

constexpr const char* noBreakSpace = "\xC2\xA0";
constexpr std::string_view textSeparator = ", ";

std::string Quoted(const std::string& text) { return '"' + text + '"'; }

/// Carries a double quote of the one key as a no-break space: the value function turns it back.
void ReplaceQuotes(Variant& argument, const VariantArray& array, const Locale& locale) {
    VariantArray replaced = array;
    replaced.elements.front() = ReplaceAll(ToText(array.elements.front(), locale), "\"", noBreakSpace);
    argument = std::make_shared<const VariantArray>(std::move(replaced));
}

std::string ArrayText(Variant& argument, const Locale& locale, std::string_view separator) {
    const auto array = argument.As<std::shared_ptr<const VariantArray>>();
    if (array->elements.empty()) {
        throw PlatformError(ErrorNumber::SubscriptOutOfRange);
    }
    if (array->elements.size() == 1) {
        if (array->elements.front().Is<Empty>()) {
            return Quoted("");
        }
        ReplaceQuotes(argument, *array, locale);
    }
    std::string text;
    for (const Variant& element : argument.As<std::shared_ptr<const VariantArray>>()->elements) {
        text += text.empty() ? "{" : separator;
        text += Quoted(ToText(element, locale));
    }
    return text + "}";
}

} // namespace

std::string ComposeArgument(Variant& argument, const Locale& locale, std::string_view separator) {
    return argument.IsArray() ? ArrayText(argument, locale, separator) : Quoted(ToText(argument, locale));
}

std::string ComposeArgumentText(FormulaArgs& arguments, const Locale& locale) {
    std::string text;
    for (Variant& argument : arguments) {
        text += ComposeArgument(argument, locale, textSeparator);
        text += text.ends_with('}') ? "," : textSeparator;
    }
    text.resize(text.size() - textSeparator.size());
    return text;
}

std::string ComposeNameArgumentText(const std::vector<std::string>& arguments) {
    std::string text;
    for (const std::string& argument : arguments) {
        text += text.empty() ? "" : textSeparator;
        text += Quoted(argument);
    }
    return text;
}

} // namespace qel
