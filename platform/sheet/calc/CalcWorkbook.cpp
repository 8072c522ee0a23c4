#include "platform/sheet/calc/CalcWorkbook.h"

#include "platform/office/OfficeFailure.h"
#include "platform/office/OtherInterface.h"
#include "platform/sheet/calc/CalcTable.h"
#include "platform/sheet/calc/StatusBarAction.h"

#include <com/sun/star/container/XNamed.hpp>
#include <com/sun/star/document/XUndoManagerSupplier.hpp>
#include <com/sun/star/frame/XModel.hpp>
#include <com/sun/star/frame/XStorable.hpp>
#include <com/sun/star/sheet/XCellRangeAddressable.hpp>
#include <com/sun/star/sheet/XSpreadsheetView.hpp>
#include <com/sun/star/sheet/XViewFreezable.hpp>
#include <com/sun/star/table/XColumnRowRange.hpp>
#include <com/sun/star/util/XProtectable.hpp>

namespace qel::office {

namespace uno = com::sun::star::uno;
namespace sheet = com::sun::star::sheet;

namespace {

/// While one lives, the document's changes are one step to undo, and its windows stand still.
class OneStep {
public:
    OneStep(const SheetDocument& document, const std::string& title)
        : model_(document, uno::UNO_QUERY_THROW),
          undo_(As<com::sun::star::document::XUndoManagerSupplier>(document)->getUndoManager()) {
        undo_->enterUndoContext(ToOffice(title));
        model_->lockControllers();
    }
    ~OneStep() {
        try {
            model_->unlockControllers();
            undo_->leaveUndoContext();
        } catch (const uno::Exception&) { // NOLINT(bugprone-empty-catch): the document was closed
        }
    }
    OneStep(const OneStep&) = delete;
    OneStep& operator=(const OneStep&) = delete;

private:
    uno::Reference<com::sun::star::frame::XModel> model_;
    uno::Reference<com::sun::star::document::XUndoManager> undo_;
};

class CalcWorkbook : public Workbook {
public:
    using Context = StatusBarAction::Context;

    CalcWorkbook(const Context& context, const SheetDocument& document)
        : context_(context), document_(document) {}

    std::vector<std::string> SheetNames() const override {
        return Translating([&] {
            std::vector<std::string> names;
            for (const rtl::OUString& name : document_->getSheets()->getElementNames()) {
                names.push_back(FromOffice(name));
            }
            return names;
        });
    }

    std::string ActiveSheetName() const override {
        return Translating(
            [&] { return FromOffice(As<com::sun::star::container::XNamed>(ActiveSheet())->getName()); });
    }

    bool CanAddSheet() const override {
        return Translating([&] {
            return !As<com::sun::star::util::XProtectable>(document_)->isProtected() &&
                   !As<com::sun::star::frame::XStorable>(document_)->isReadonly();
        });
    }

    bool CanReadArguments() const override {
        return Translating([&] {
            return CanAddSheet() && !As<com::sun::star::util::XProtectable>(ActiveSheet())->isProtected();
        });
    }

    std::uint64_t SheetRows() const override {
        return Translating([&] {
            const auto rows = As<com::sun::star::table::XColumnRowRange>(ActiveSheet())->getRows();
            return static_cast<std::uint64_t>(rows->getCount());
        });
    }

    std::unique_ptr<LongAction> BeginAction(const std::string& text) override {
        return Translating(
            [&] { return std::make_unique<StatusBarAction>(context_, Controller()->getFrame(), text); });
    }

    void AddSheet(const TableSheet& table, const std::function<void(double share)>& progress) override {
        Translating([&] {
            Write(table, progress);
            Show(table);
        });
    }

private:
    using Controllers = uno::Reference<com::sun::star::frame::XController>;
    using Sheet = uno::Reference<sheet::XSpreadsheet>;

    Controllers Controller() const {
        const auto controller = As<com::sun::star::frame::XModel>(document_)->getCurrentController();
        if (!controller.is()) {
            throw PlatformError(ErrorNumber::ObjectVariableNotSet);
        }
        return controller;
    }

    uno::Reference<sheet::XSpreadsheetView> View() const { return As<sheet::XSpreadsheetView>(Controller()); }

    Sheet ActiveSheet() const { return View()->getActiveSheet(); }

    void Write(const TableSheet& table, const std::function<void(double share)>& progress) {
        const OneStep step(document_, table.name);
        const auto name = ToOffice(table.name);
        const auto sheets = document_->getSheets();
        const auto active = As<sheet::XCellRangeAddressable>(ActiveSheet())->getRangeAddress().Sheet;
        sheets->insertNewByName(name, static_cast<sal_Int16>(active + 1));
        try {
            const Sheet own(sheets->getByName(name), uno::UNO_QUERY_THROW);
            CalcTable(document_, own, table).Write(progress);
        } catch (...) {
            Remove(name);
            throw;
        }
    }

    void Remove(const rtl::OUString& name) noexcept {
        try {
            document_->getSheets()->removeByName(name);
        } catch (const uno::Exception&) { // NOLINT(bugprone-empty-catch): the document was closed
        }
    }

    void Show(const TableSheet& table) {
        const Sheet own(document_->getSheets()->getByName(ToOffice(table.name)), uno::UNO_QUERY_THROW);
        View()->setActiveSheet(own);
        As<sheet::XViewFreezable>(Controller())
            ->freezeAtPosition(0, static_cast<sal_Int32>(table.heading.size()) + 1);
    }

    Context context_;
    SheetDocument document_;
};

} // namespace

std::unique_ptr<Workbook> WorkbookOf(const uno::Reference<uno::XComponentContext>& context,
                                     const SheetDocument& document) {
    return std::make_unique<CalcWorkbook>(context, document);
}

} // namespace qel::office
