#include "platform/sheet/automation/AutomationSheet.h"

#include "platform/value/AutomationError.h"
#include "platform/windows/DispatchObject.h"
#include "platform/windows/SafeArrayConversion.h"
#include "platform/windows/VariantConversion.h"

#include <algorithm>

namespace qel::windows {

namespace {

class AutomationApplication;

constexpr std::int32_t applicationDefinedError = 1004;

bool IsTrue(const DispatchObject& object, const wchar_t* property) {
    const Variant value = FromAutomation(object.Property(property).Get());
    return value.Is<bool>() && value.As<bool>();
}

class AutomationRange : public FormulaCell {
public:
    explicit AutomationRange(DispatchObject range, bool isReadOnly = false)
        : range_(std::move(range)), isReadOnly_(isReadOnly) {}

    const DispatchObject& Object() const { return range_; }

    std::shared_ptr<SheetApplication> Application() const override;
    std::int32_t Row() const override { return range_.Number(L"Row"); }
    std::int32_t Column() const override { return range_.Number(L"Column"); }
    std::shared_ptr<SheetRange> Offset(std::int32_t rows, std::int32_t columns) const override {
        return std::make_shared<AutomationRange>(range_.Child(L"Offset", ArgumentList(rows, columns)));
    }
    Variant Value() const override { return FromAutomation(range_.Property(L"Value").Get()); }
    void SetNumberFormat(const std::string& format) override {
        range_.Put(L"NumberFormat", ToArgument(format));
    }
    void SetFormula(const Variant& formula) override {
        using Array = std::shared_ptr<const VariantArray>;
        range_.Put(L"Formula",
                   formula.IsArray() ? ToAutomationArray(*formula.As<Array>()) : ToAutomation(formula));
    }

    std::string Formula() const override {
        if (!isReadOnly_ && IsTrue(range_, L"Locked") &&
            IsTrue(range_.Child(L"Worksheet"), L"ProtectContents")) {
            throw AutomationError(applicationDefinedError, "The cell is protected.", "Excel");
        }
        const bool isOwn = IsTrue(range_, L"HasFormula") && !IsTrue(range_, L"HasArray");
        return isOwn ? range_.Text(FormulaMember()) : std::string();
    }
    Variant Evaluate(const std::string& expression) const override {
        const OwnedVariant found = range_.Child(L"Worksheet").Property(L"Evaluate", ArgumentList(expression));
        const VARIANT& value = Dereferenced(found.Get());
        return V_VT(&value) == VT_DISPATCH
                   ? CellsOf(DispatchObject(ComPointer<IDispatch>(V_DISPATCH(&value)), "Range", macroLocale))
                   : FromAutomation(value);
    }
    bool TakesTextsAsKeys() const override { return false; }
    void ReplaceFormula(const std::string& formula) override {
        range_.Put(FormulaMember(), ToArgument(formula));
    }

private:
    /// Where arrays spill, Formula would cut them down to one cell.
    const wchar_t* FormulaMember() const { return range_.Has(L"Formula2") ? L"Formula2" : L"Formula"; }

    static Variant CellsOf(const DispatchObject& range) {
        constexpr std::int32_t mostCells = 6; // no argument uses more
        const std::int32_t count = std::min(range.Number(L"Count"), mostCells);
        std::vector<Variant> cells;
        for (std::int32_t i = 1; i <= count; ++i) {
            const DispatchObject cell = range.Child(L"Item", ArgumentList(i));
            cells.push_back(FromAutomation(cell.Property(L"Value").Get()));
        }
        return Variant::List(std::move(cells));
    }

    DispatchObject range_;
    bool isReadOnly_; ///< then a protected cell does, too
};

class AutomationApplication : public SheetApplication {
public:
    explicit AutomationApplication(DispatchObject application) : application_(std::move(application)) {}

    std::shared_ptr<SheetRange> ActiveCell() const override {
        return std::make_shared<AutomationRange>(application_.Child(L"ActiveCell"));
    }
    std::shared_ptr<SheetRange> Cells(std::int32_t row, std::int32_t column) const override {
        return std::make_shared<AutomationRange>(application_.Child(L"Cells", ArgumentList(row, column)));
    }
    std::shared_ptr<SheetRange> Range(const SheetRange& first, const SheetRange& last) const override {
        // Ranges of this application are always of this class.
        const auto& from = dynamic_cast<const AutomationRange&>(first).Object();
        const auto& to = dynamic_cast<const AutomationRange&>(last).Object();
        return std::make_shared<AutomationRange>(application_.Child(L"Range", ArgumentList(from, to)));
    }

private:
    DispatchObject application_;
};

std::shared_ptr<SheetApplication> AutomationRange::Application() const {
    return std::make_shared<AutomationApplication>(range_.Child(L"Application"));
}

} // namespace

std::shared_ptr<SheetRange> SheetRangeOf(IDispatch* cell) { return FormulaCellOf(cell); }

std::shared_ptr<FormulaCell> FormulaCellOf(IDispatch* cell) {
    return std::make_shared<AutomationRange>(
        DispatchObject(ComPointer<IDispatch>(cell), "Range", macroLocale));
}

std::shared_ptr<FormulaCell> ReadFormulaCellOf(IDispatch* cell) {
    return std::make_shared<AutomationRange>(
        DispatchObject(ComPointer<IDispatch>(cell), "Range", macroLocale), true);
}

} // namespace qel::windows
