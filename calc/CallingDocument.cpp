#include "calc/CallingDocument.h"

#include "calc/OfficeText.h"
#include "platform/PathText.h"
#include "platform/Text.h"

#include <com/sun/star/frame/XModel.hpp>
#include <com/sun/star/i18n/LocaleData2.hpp>
#include <map>
#include <osl/file.hxx>
#include <system_error>
#include <tuple>

namespace qel::calc {

namespace {

namespace i18n = com::sun::star::i18n;
namespace lang = com::sun::star::lang;
namespace uno = com::sun::star::uno;

/// Empty for a document that was never saved, or not to a file.
std::filesystem::path FolderOf(const DocumentReference& document) {
    const uno::Reference<com::sun::star::frame::XModel> model(document, uno::UNO_QUERY);
    rtl::OUString path;
    if (!model.is() ||
        osl::FileBase::getSystemPathFromFileURL(model->getURL(), path) != osl::FileBase::E_None)
        return {};
    return PathFromText(FromOffice(path)).parent_path();
}

/// A separator is one ASCII character, or else any kind of blank (French thousands), or missing.
char Separator(const rtl::OUString& text, char missing) {
    if (text.isEmpty())
        return missing;
    return text[0] < 0x80 ? static_cast<char>(text[0]) : ' ';
}

/// By the first pattern ("D/M/Y") in which the language takes dates.
DateOrder OrderOf(const uno::Sequence<rtl::OUString>& patterns) {
    const sal_Unicode first = patterns.hasElements() && !patterns[0].isEmpty() ? patterns[0][0] : 'D';
    if (first == 'M')
        return DateOrder::MonthDayYear;
    return first == 'Y' ? DateOrder::YearMonthDay : DateOrder::DayMonthYear;
}

Locale LocaleOfLanguage(const lang::Locale& language, const uno::Reference<uno::XComponentContext>& context) {
    const auto data = i18n::LocaleData2::create(context);
    const i18n::LocaleDataItem2 items = data->getLocaleItem2(language);
    return {.dateOrder = OrderOf(data->getDateAcceptancePatterns(language)),
            .dateSeparator = Separator(items.dateSeparator, '/'),
            .decimalSeparator = Separator(items.decimalSeparator, '.'),
            .thousandsSeparator = Separator(items.thousandSeparator, ',')};
}

} // namespace

std::string CubePathFrom(const DocumentReference& document, const std::string& cubeFile) {
    std::string text(Trimmed(cubeFile));
    const std::filesystem::path path = PathFromText(text);
    if (path.empty() || path.is_absolute())
        return text;
    const std::filesystem::path folder = FolderOf(document);
    std::error_code failed;
    if (folder.empty() || !std::filesystem::is_regular_file(folder / path, failed))
        return text;
    return TextFromPath(folder / path);
}

Locale LocaleOf(const DocumentReference& document, const uno::Reference<uno::XComponentContext>& context) {
    lang::Locale language;
    if (!document.is() || !(document->getPropertyValue("CharLocale") >>= language))
        return {};
    // A sheet's formulas ask thousands of times for the same few languages.
    thread_local std::map<std::tuple<rtl::OUString, rtl::OUString, rtl::OUString>, Locale> known;
    const auto key = std::make_tuple(language.Language, language.Country, language.Variant);
    const auto found = known.find(key);
    if (found != known.end())
        return found->second;
    return known.emplace(key, LocaleOfLanguage(language, context)).first->second;
}

} // namespace qel::calc
