#pragma once

#include "calc/CallingDocument.h"
#include "platform/value/AutomationDate.h"

#include <com/sun/star/container/XNameAccess.hpp>
#include <com/sun/star/lang/Locale.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>
#include <map>
#include <mutex>
#include <optional>
#include <tuple>

namespace qel::calc {

/// How documents write dates and numbers. Serves any number of threads.
class DocumentLocales {
public:
    using Context = com::sun::star::uno::Reference<com::sun::star::uno::XComponentContext>;

    explicit DocumentLocales(const Context& context) : context_(context) {}

    /// As the document's language does. Calc calls every document English (USA) whose language nobody chose,
    /// a Hebrew user's among them; such a document is read as the office reads what is typed into its cells.
    Locale Of(const DocumentReference& document);

private:
    using Language = com::sun::star::lang::Locale;
    using Key = std::tuple<rtl::OUString, rtl::OUString, rtl::OUString>;

    const Locale& LocaleOfOffice();
    const Locale& LocaleOf(const Language& language);

    Context context_;
    std::mutex mutex_;
    com::sun::star::uno::Reference<com::sun::star::container::XNameAccess> setting_, system_;
    std::map<Key, Locale> known_;
    rtl::OUString tag_; ///< the office's language when localeOfTag_ was read
    std::optional<Locale> localeOfTag_;
};

} // namespace qel::calc
