#include "calc/WizardsService.h"

#include "calc/CallingDocument.h"
#include "calc/DocumentContent.h"
#include "calc/OpenForm.h"
#include "calc/ThreadFunction.h"
#include "lines/LinesOfCell.h"
#include "platform/data/choice/ChooseProvider.h"
#include "platform/office/Clipboard.h"
#include "platform/office/OfficeText.h"
#include "platform/sheet/calc/CalcCells.h"
#include "platform/sheet/calc/CalcWorkbook.h"
#include "why/CheckForm.h"
#include "why/MakeWhyForm.h"
#include "wizard/Raised.h"

#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/uno/RuntimeException.hpp>
#include <cppuhelper/supportsservice.hxx>

namespace qel::calc {

namespace uno = com::sun::star::uno;
using office::ToOffice;

namespace {

constexpr const char* serviceName = "OrmFunctionQel4.Wizards";

/// How the document's formulas mean paths of cube files.
CubePath CubePathsOf(const office::SheetDocument& document) {
    return [properties = DocumentReference(document, uno::UNO_QUERY)](const std::string& file) {
        return CubePathFrom(properties, file);
    };
}

/// While lines are read, or formulas checked, other windows take commands.
void RunAlone(const std::function<void()>& command) {
    static bool isRunning = false;
    if (!isRunning) {
        const Raised running(isRunning);
        command();
    }
}

} // namespace

/// What a command works with on its own, because cells are calculated meanwhile.
struct WizardsService::OwnNeeds : FormNeeds {
    OwnNeeds(WizardsService* own, Locale ofDocument) : service(own), locale(ofDocument) {}

    rtl::Reference<WizardsService> service; ///< with the dialogs' services
    Locale locale;
    ModSetCube::ThreadState thread;
};

WizardContext WizardsService::ContextOf(OwnNeeds& needs, const Providers& providers) const {
    const WizardServices& services = suite_->Services();
    return {needs.thread, providers, needs.locale, services.toolkit, services.language, services.servers};
}

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
    Edit(document, [&] { return office::ActiveFormulaCellOf(document); });
}

void WizardsService::Edit(const office::SheetDocument& document, const FindCell& find) {
    With(document, [&](OrmQelFunction& object) { object.EditFormula(*find(), CubePathsOf(document)); });
}

void WizardsService::ShowWhy() {
    static OpenForm* shown = nullptr;
    const auto document = DocumentInFront();
    WithProviders(document, [&](const Providers& providers, const Locale& locale) {
        auto needs = std::make_unique<OwnNeeds>(this, locale);
        const auto wizards = ContextOf(*needs, providers);
        const std::shared_ptr<FormulaCell> cell = office::ChosenFormulaCellOf(document);
        auto form = MakeWhyForm(
            wizards,
            {.cell = cell,
             .book = office::WorkbookOf(context_, document),
             .fullPath = CubePathsOf(document),
             .editFormula = [=, this] { Edit(document, [&] { return std::shared_ptr(cell); }); },
             .copy = [context = context_](const std::string& text) { office::CopyText(context, text); },
             .alone = &RunAlone});
        if (form) {
            const auto side = office::StandsRight(document, *cell) ? WindowSide::Left : WindowSide::Right;
            const rtl::Reference<OpenForm> open(
                new OpenForm(shown, context_, {document, uno::UNO_QUERY}, std::move(needs), std::move(form)));
            open->Show(side);
        }
    });
}

void WizardsService::ShowLines() {
    const auto document = DocumentInFront();
    WithProviders(document, [&](const Providers& providers, const Locale& locale) {
        OwnNeeds own(this, locale);
        const auto cell = office::ChosenFormulaCellOf(document);
        const auto book = office::WorkbookOf(context_, document);
        ShowLinesOfCell(ContextOf(own, providers), {.cell = cell.get(),
                                                    .sheet = book->ActiveSheetName(),
                                                    .book = *book,
                                                    .fullPath = CubePathsOf(document)});
    });
}

void WizardsService::ShowCheck() {
    static OpenForm* shown = nullptr;
    const auto document = DocumentInFront();
    WithProviders(document, [&](const Providers& providers, const Locale& locale) {
        auto needs = std::make_unique<OwnNeeds>(this, locale);
        const std::shared_ptr<Workbook> book = office::WorkbookOf(context_, document);
        auto form = MakeCheckForm(
            ContextOf(*needs, providers),
            {.book = book,
             .fullPath = CubePathsOf(document),
             .read =
                 [=](bool isWholeDocument) {
                     return ContentOf(document, isWholeDocument ? "" : book->ActiveSheetName());
                 },
             .readCell =
                 [=](const std::string& sheet, CellPlace place) {
                     return CallsOf(*office::FormulaCellAt(document, sheet, place.row, place.column),
                                    CubePathsOf(document), locale);
                 },
             .goTo = [=](const std::string& sheet,
                         CellPlace place) { office::GoToCell(document, sheet, place.row, place.column); },
             .copy = [context = context_](const std::string& text) { office::CopyText(context, text); },
             .alone = &RunAlone});
        if (form) {
            const rtl::Reference<OpenForm> open(
                new OpenForm(shown, context_, {document, uno::UNO_QUERY}, std::move(needs), std::move(form)));
            open->Show(WindowSide::Right);
        }
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
        RunAlone([this] { ShowLines(); });
    } else if (method == "ShowWhy") {
        ShowWhy();
    } else if (method == "ShowCheck") {
        RunAlone([this] { ShowCheck(); });
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
