#include "calc/DocumentLocales.h"

#include "platform/sheet/calc/NullDate.h"

#include <com/sun/star/beans/PropertyValue.hpp>
#include <com/sun/star/configuration/theDefaultProvider.hpp>
#include <com/sun/star/i18n/LocaleData2.hpp>

namespace qel::calc {

namespace i18n = com::sun::star::i18n;
namespace uno = com::sun::star::uno;
using NameAccess = uno::Reference<com::sun::star::container::XNameAccess>;

namespace {

/// A view of the office's settings that follows their changes.
NameAccess Settings(const DocumentLocales::Context& context, const char* path) {
    const auto provider = com::sun::star::configuration::theDefaultProvider::get(context);
    com::sun::star::beans::PropertyValue node;
    node.Name = "nodepath";
    node.Value <<= rtl::OUString::createFromAscii(path);
    const uno::Any argument(node);
    return {provider->createInstanceWithArguments("com.sun.star.configuration.ConfigurationAccess",
                                                  {&argument, 1}),
            uno::UNO_QUERY_THROW};
}

rtl::OUString TextOf(const NameAccess& settings, const rtl::OUString& name) {
    rtl::OUString text;
    settings->getByName(name) >>= text;
    return text;
}

/// "he-IL" as language and country; a script or variant between or after them is left out.
com::sun::star::lang::Locale LanguageFromTag(const rtl::OUString& tag) {
    constexpr sal_Int32 countryLength = 2;
    com::sun::star::lang::Locale language;
    sal_Int32 position = 0;
    language.Language = tag.getToken(0, '-', position);
    while (position >= 0) {
        const rtl::OUString part = tag.getToken(0, '-', position);
        if (part.getLength() == countryLength) {
            language.Country = part;
        }
    }
    return language;
}

/// A separator is one ASCII character, or else any kind of blank (French thousands), or missing.
char Separator(const rtl::OUString& text, char missing) {
    if (text.isEmpty()) {
        return missing;
    }
    return text[0] < 0x80 ? static_cast<char>(text[0]) : ' ';
}

/// By the first pattern ("D/M/Y") in which the language takes dates.
DateOrder OrderOf(const uno::Sequence<rtl::OUString>& patterns) {
    const sal_Unicode first = patterns.hasElements() && !patterns[0].isEmpty() ? patterns[0][0] : 'D';
    if (first == 'M') {
        return DateOrder::MonthDayYear;
    }
    return first == 'Y' ? DateOrder::YearMonthDay : DateOrder::DayMonthYear;
}

bool IsNobodysChoice(const com::sun::star::lang::Locale& language) {
    return language.Language.isEmpty() || (language.Language == "en" && language.Country == "US");
}

} // namespace

Locale DocumentLocales::Of(const DocumentReference& document) {
    static const rtl::OUString property("CharLocale");
    Language language;
    if (document.is()) {
        document->getPropertyValue(property) >>= language;
    }
    const double nullDate = document.is() ? office::NullDateOf(document) : 0;
    const std::lock_guard lock(mutex_);
    Locale locale = IsNobodysChoice(language) ? LocaleOfOffice() : LocaleOf(language);
    locale.nullDate = nullDate;
    return locale;
}

const Locale& DocumentLocales::LocaleOfOffice() {
    static const rtl::OUString choice("ooSetupSystemLocale"), system("SystemLocale");
    if (!setting_.is()) {
        setting_ = Settings(context_, "/org.openoffice.Setup/L10N");
        system_ = Settings(context_, "/org.openoffice.System/L10N");
    }
    rtl::OUString tag = TextOf(setting_, choice);
    if (tag.isEmpty()) {
        tag = TextOf(system_, system);
    }
    if (!localeOfTag_ || tag != tag_) {
        localeOfTag_ = LocaleOf(LanguageFromTag(tag));
        tag_ = tag;
    }
    return *localeOfTag_;
}

const Locale& DocumentLocales::LocaleOf(const Language& language) {
    const Key key(language.Language, language.Country, language.Variant);
    const auto found = known_.find(key);
    if (found != known_.end()) {
        return found->second;
    }
    const auto data = i18n::LocaleData2::create(context_);
    const i18n::LocaleDataItem2 items = data->getLocaleItem2(language);
    const Locale locale = {.dateOrder = OrderOf(data->getDateAcceptancePatterns(language)),
                           .dateSeparator = Separator(items.dateSeparator, '/'),
                           .decimalSeparator = Separator(items.decimalSeparator, '.'),
                           .thousandsSeparator = Separator(items.thousandSeparator, ',')};
    return known_.emplace(key, locale).first->second;
}

} // namespace qel::calc
