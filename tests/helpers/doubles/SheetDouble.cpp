#include "tests/helpers/doubles/SheetDouble.h"

#include "platform/value/AutomationError.h"

namespace qel::test {

namespace {

std::string NameOf(SheetDouble::Place place) {
    return "R" + std::to_string(place.first) + "C" + std::to_string(place.second);
}

std::shared_ptr<SheetApplication> ApplicationFor(SheetDouble& sheet);

class RangeDouble : public SheetRange {
public:
    RangeDouble(SheetDouble& sheet, SheetDouble::Place first, SheetDouble::Place last)
        : sheet_(sheet), first_(first), last_(last) {}

    std::shared_ptr<SheetApplication> Application() const override { return ApplicationFor(sheet_); }
    std::int32_t Row() const override { return first_.first; }
    std::int32_t Column() const override { return first_.second; }
    std::shared_ptr<SheetRange> Offset(std::int32_t rows, std::int32_t columns) const override {
        const auto moved = [&](SheetDouble::Place place) {
            return SheetDouble::Place{place.first + rows, place.second + columns};
        };
        return std::make_shared<RangeDouble>(sheet_, moved(first_), moved(last_));
    }
    Variant Value() const override {
        const auto found = sheet_.cells.find(first_);
        return found == sheet_.cells.end() ? Variant() : found->second;
    }
    void SetNumberFormat(const std::string& format) override {
        RequireUnprotected();
        sheet_.log.push_back("format " + Name() + " " + format);
    }
    void SetFormula(const Variant& formula) override {
        RequireUnprotected();
        sheet_.log.push_back("formula " + Name() +
                             (formula.IsArray() ? "" : " " + formula.As<std::string>()));
        if (formula.IsArray()) {
            PutBlock(*formula.As<std::shared_ptr<const VariantArray>>());
        } else {
            sheet_.cells[first_] = formula;
        }
    }

private:
    std::string Name() const {
        return first_ == last_ ? NameOf(first_) : NameOf(first_) + ":" + NameOf(last_);
    }
    void RequireUnprotected() const {
        if (sheet_.isProtected) {
            throw AutomationError(1004, "The sheet is protected.", "Excel");
        }
    }
    void PutBlock(const VariantArray& block) {
        const std::int32_t rows = block.bounds[0].upper - block.bounds[0].lower + 1;
        for (std::int32_t column = first_.second; column <= last_.second; ++column) {
            for (std::int32_t row = first_.first; row <= last_.first; ++row) {
                sheet_.cells[{row, column}] = block.elements.at(
                    static_cast<std::size_t>((column - first_.second) * rows + row - first_.first));
            }
        }
    }

    SheetDouble& sheet_;
    SheetDouble::Place first_, last_;
};

class ApplicationDouble : public SheetApplication {
public:
    explicit ApplicationDouble(SheetDouble& sheet) : sheet_(sheet) {}

    std::shared_ptr<SheetRange> ActiveCell() const override { return sheet_.Cell(sheet_.activeCell); }
    std::shared_ptr<SheetRange> Cells(std::int32_t row, std::int32_t column) const override {
        return sheet_.Cell({row, column});
    }
    std::shared_ptr<SheetRange> Range(const SheetRange& first, const SheetRange& last) const override {
        return std::make_shared<RangeDouble>(sheet_, SheetDouble::Place{first.Row(), first.Column()},
                                             SheetDouble::Place{last.Row(), last.Column()});
    }

private:
    SheetDouble& sheet_;
};

std::shared_ptr<SheetApplication> ApplicationFor(SheetDouble& sheet) {
    return std::make_shared<ApplicationDouble>(sheet);
}

} // namespace

std::shared_ptr<SheetRange> SheetDouble::Cell(Place place) {
    return std::make_shared<RangeDouble>(*this, place, place);
}

} // namespace qel::test
