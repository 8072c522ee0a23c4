#pragma once

#include "calc/AsyncResults.h"
#include "calc/DocumentLocales.h"

#include <OrmFunctionQel4/XWorksheetFunctions.hpp>
#include <com/sun/star/lang/XServiceInfo.hpp>
#include <com/sun/star/lang/XServiceName.hpp>
#include <com/sun/star/sheet/XAddIn.hpp>
#include <com/sun/star/sheet/XCompatibilityNames.hpp>
#include <cppuhelper/implbase5.hxx>

namespace qel::calc {

using AddInInterfaces =
    cppu::WeakImplHelper5<OrmFunctionQel4::XWorksheetFunctions, com::sun::star::sheet::XAddIn,
                          com::sun::star::sheet::XCompatibilityNames, com::sun::star::lang::XServiceName,
                          com::sun::star::lang::XServiceInfo>;

/// The worksheet functions as Calc finds and calls them. A failed call leaves as a RuntimeException, which
/// the cell shows as #VALUE!. A formula over a server's cube gives a result that comes later.
class OrmQelFunctionAddIn : public AddInInterfaces {
public:
    using Any = com::sun::star::uno::Any;
    using Context = DocumentLocales::Context;
    using Language = com::sun::star::lang::Locale;
    using Text = rtl::OUString;
    template <class T>
    using List = com::sun::star::uno::Sequence<T>;

    explicit OrmQelFunctionAddIn(const Context& context) : context_(context), locales_(context) {}

    // XWorksheetFunctions
    Any SAL_CALL QelF1(const DocumentReference& document, const Any& cubeFile, const Any& CubeName,
                       const Any& ObsName, const Any& ObsNum, const Any& ObsLevel, const Any& ObsMember,
                       const Any& ActivityList, const Any& SummaryGroup, const Any& SeifLevel,
                       const Any& Accounts, const Any& Measure, const Any& MoneySet, const Any& Plbs,
                       const Any& RH, const Any& Firma, const Any& OpeningBalance, const Any& FromDate,
                       const Any& ToDate) override;
    Any SAL_CALL QeL1(const DocumentReference& document, const Any& cubeFile, const Any& CubeName,
                      const Any& ObsName, const Any& ObsNum, const Any& ObsLevel, const Any& ObsMember,
                      const Any& ActivityList, const Any& SummaryGroup, const Any& SeifLevel,
                      const Any& Accounts, const Any& Measure, const Any& MoneySet, const Any& Plbs,
                      const Any& RH, const Any& Firma, const Any& OpeningBalance, const Any& FromDate,
                      const Any& ToDate) override;
    Any SAL_CALL QelName(const DocumentReference& document, const Any& cubeFile, const Any& CubeName,
                         const Any& DimType, const Any& DimMember) override;
    Any SAL_CALL RetQelName(const DocumentReference& document, const Any& cubeFile, const Any& CubeName,
                            const Any& DimType, const Any& DimMember) override;

    // XAddIn: `argument` counts the document, too.
    Text SAL_CALL getProgrammaticFuntionName(const Text& displayName) override;
    Text SAL_CALL getDisplayFunctionName(const Text& method) override;
    Text SAL_CALL getFunctionDescription(const Text& method) override;
    Text SAL_CALL getDisplayArgumentName(const Text& method, sal_Int32 argument) override;
    Text SAL_CALL getArgumentDescription(const Text& method, sal_Int32 argument) override;
    Text SAL_CALL getProgrammaticCategoryName(const Text& method) override;
    Text SAL_CALL getDisplayCategoryName(const Text& method) override;
    void SAL_CALL setLocale(const Language& language) override;
    Language SAL_CALL getLocale() override;

    // XCompatibilityNames
    List<com::sun::star::sheet::LocalizedName> SAL_CALL getCompatibilityNames(const Text& method) override;

    // XServiceName, XServiceInfo
    Text SAL_CALL getServiceName() override;
    Text SAL_CALL getImplementationName() override;
    sal_Bool SAL_CALL supportsService(const Text& service) override;
    List<Text> SAL_CALL getSupportedServiceNames() override;

private:
    bool IsHebrew() const;
    /// Made at the first formula over a server; it ends with the office.
    AsyncResults& ServerResults();
    /// Reads the arguments and evaluates the call: now, or later when it asks a server.
    template <class Read>
    Any Answer(const DocumentReference& document, const Read& read);

    Context context_;
    DocumentLocales locales_;
    std::mutex mutex_; ///< guards the one below
    std::shared_ptr<AsyncResults> serverResults_;
    Language language_; ///< of the office's menus
    std::shared_ptr<std::atomic<bool>> isHebrew_ =
        std::make_shared<std::atomic<bool>>(false); ///< that language
};

} // namespace qel::calc
