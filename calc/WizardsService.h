#pragma once

#include "calc/DocumentLocales.h"
#include "calc/SuiteOfUser.h"
#include "function/OrmQelFunction.h"
#include "platform/sheet/calc/CalcSheet.h"

#include <OrmFunctionQel4/XWizards.hpp>
#include <com/sun/star/lang/XServiceInfo.hpp>
#include <com/sun/star/task/XJobExecutor.hpp>
#include <cppuhelper/implbase3.hxx>
#include <functional>
#include <memory>

namespace qel::calc {

using WizardsInterfaces = cppu::WeakImplHelper3<OrmFunctionQel4::XWizards, com::sun::star::task::XJobExecutor,
                                                com::sun::star::lang::XServiceInfo>;

/// The wizards as macros and the menu reach them.
class WizardsService : public WizardsInterfaces {
public:
    using Any = com::sun::star::uno::Any;

    explicit WizardsService(const office::Context& context) : context_(context), locales_(context) {}

    // XWizards: a failure that is not reported in a box leaves as a RuntimeException.
    rtl::OUString SAL_CALL ShowFormGetVal(const Any& activeCell) override;
    rtl::OUString SAL_CALL ShowFormQelName(const Any& activeCell) override;

    /// XJobExecutor: the menu names the method.
    void SAL_CALL trigger(const rtl::OUString& method) override;

    // XServiceInfo
    rtl::OUString SAL_CALL getImplementationName() override;
    sal_Bool SAL_CALL supportsService(const rtl::OUString& service) override;
    com::sun::star::uno::Sequence<rtl::OUString> SAL_CALL getSupportedServiceNames() override;

private:
    /// The wizard that wrote the formula of the active cell.
    void EditFormula();
    using FindCell = std::function<std::shared_ptr<FormulaCell>()>;
    void Edit(const office::SheetDocument& document, const FindCell& find);
    /// A new sheet with the lines behind the active cell.
    void ShowLines();
    /// A window beside the sheet that tells why the active cell has its value.
    void ShowWhy();
    /// A window with the formulas of the active sheet whose 0 hides an error.
    void ShowCheck();
    struct OwnNeeds;
    WizardContext ContextOf(OwnNeeds& needs, const Providers& providers) const;
    /// The object of a call, with the user's suite and the document's locale.
    using Use = std::function<void(OrmQelFunction& object)>;
    void With(const office::SheetDocument& document, const Use& use);
    using UseProviders = std::function<void(const Providers& providers, const Locale& locale)>;
    void WithProviders(const office::SheetDocument& document, const UseProviders& use);

    using Form = std::string (OrmQelFunction::*)(const std::shared_ptr<SheetRange>& xlActiveCell);

    rtl::OUString Show(Form form, const Any& activeCell);
    office::SheetDocument DocumentInFront() const;

    office::Context context_;
    DocumentLocales locales_;
    std::unique_ptr<SuiteOfUser> suite_; ///< made when it is first needed
};

} // namespace qel::calc
