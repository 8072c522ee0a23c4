#include "platform/sheet/automation/AutomationSheet.h"

#include "platform/windows/DispatchObject.h"
#include "platform/windows/SafeArrayConversion.h"
#include "platform/windows/VariantConversion.h"

namespace qel::windows {

namespace {

class AutomationApplication;

class AutomationRange : public SheetRange {
public:
    explicit AutomationRange(DispatchObject range) : range_(std::move(range)) {}

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

private:
    DispatchObject range_;
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

std::shared_ptr<SheetRange> SheetRangeOf(IDispatch* cell) {
    return std::make_shared<AutomationRange>(
        DispatchObject(ComPointer<IDispatch>(cell), "Range", macroLocale));
}

} // namespace qel::windows
