#include "calc/WizardsService.h"

#include "calc/CallingDocument.h"
#include "calc/ThreadFunction.h"
#include "function/FunctionTexts.h"
#include "lines/LinesOfCell.h"
#include "platform/data/choice/ChooseProvider.h"
#include "platform/office/OfficeText.h"
#include "platform/sheet/calc/CalcWorkbook.h"
#include "wizard/Raised.h"

#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/uno/RuntimeException.hpp>
#include <cppuhelper/supportsservice.hxx>

namespace qel::calc {

namespace uno = com::sun::star::uno;
using office::ToOffice;

namespace {

constexpr const char* serviceName = "OrmFunctionQel4.Wizards";

} // namespace

rtl::OUString WizardsService::ShowFormGetVal(const Any& activeCell) {
    return Show(&OrmQelFunction::ShowFormGetVal, activeCell);
}

rtl::OUString WizardsService::ShowFormQelName(const Any& activeCell) {
    return Show(&OrmQelFunction::ShowFormQelName, activeCell);
}

rtl::OUString WizardsService::Show(Form form, const Any& activeCell) {
    rtl::OUString text;
    const auto document = DocumentInFront();
    With(document, [&](OrmQelFunction& object) {
        auto cell = office::CellFrom(activeCell, document);
        if (!cell && document.is()) {
            cell = office::ActiveCellOf(document);
        }
        text = ToOffice((object.*form)(cell));
    });
    return text;
}

void WizardsService::EditFormula() {
    const auto document = DocumentInFront();
    With(document, [&](OrmQelFunction& object) {
        const DocumentReference properties(document, uno::UNO_QUERY);
        object.EditFormula(*office::ActiveFormulaCellOf(document),
                           [&](const std::string& cubeFile) { return CubePathFrom(properties, cubeFile); });
    });
}

void WizardsService::ShowLines() {
    const auto document = DocumentInFront();
    static bool isRunning = false; // of all windows: while lines are read, the others take commands
    if (isRunning) {
        return;
    }
    const Raised running(isRunning);
    WithProviders(document, [&](const Providers& providers, const Locale& locale) {
        ModSetCube::ThreadState own; // cells are calculated meanwhile
        const WizardServices& services = suite_->Services();
        const WizardContext wizards{
            own, providers, locale, services.toolkit, services.language, services.servers};
        const auto cell = office::ChosenFormulaCellOf(document);
        const auto book = office::WorkbookOf(context_, document);
        const DocumentReference properties(document, uno::UNO_QUERY);
        ShowLinesOfCell(wizards,
                        {.cell = cell.get(),
                         .book = *book,
                         .fullPath = [&](const std::string& file) { return CubePathFrom(properties, file); },
                         .argumentName = &ValueArgumentName});
    });
}

void WizardsService::With(const office::SheetDocument& document, const Use& use) {
    WithProviders(document, [&](const Providers& providers, const Locale& locale) {
        // A macro's object is one of its own; the thread's connection is every object's.
        OrmQelFunction object({FunctionOfThread().state, providers, locale, &suite_->Services()});
        use(object);
    });
}

void WizardsService::WithProviders(const office::SheetDocument& document, const UseProviders& use) {
    try {
        if (!suite_) {
            suite_ = std::make_unique<SuiteOfUser>(context_);
        }
        const Locale locale = locales_.Of(DocumentReference(document, uno::UNO_QUERY));
        use(ChooseProvider(Cubes(), &suite_->Servers(), nullptr), locale);
    } catch (const uno::Exception&) {
        throw;
    } catch (const std::exception& error) {
        throw uno::RuntimeException(ToOffice(error.what()));
    }
}

office::SheetDocument WizardsService::DocumentInFront() const {
    const auto desktop = com::sun::star::frame::Desktop::create(context_);
    return {desktop->getCurrentComponent(), uno::UNO_QUERY};
}

void WizardsService::trigger(const rtl::OUString& method) {
    if (method == "ShowFormGetVal") {
        ShowFormGetVal({});
    } else if (method == "ShowFormQelName") {
        ShowFormQelName({});
    } else if (method == "EditFormula") {
        EditFormula();
    } else if (method == "ShowLines") {
        ShowLines();
    }
}

rtl::OUString WizardsService::getImplementationName() { return ToOffice("OrmFunctionQel4.WizardsService"); }

sal_Bool WizardsService::supportsService(const rtl::OUString& service) {
    return cppu::supportsService(this, service);
}

uno::Sequence<rtl::OUString> WizardsService::getSupportedServiceNames() {
    const rtl::OUString name = ToOffice(serviceName);
    return {&name, 1};
}

} // namespace qel::calc
