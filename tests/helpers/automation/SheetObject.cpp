#include "tests/helpers/automation/SheetObject.h"

#include "platform/value/AutomationError.h"
#include "platform/windows/DispatchObject.h"
#include "platform/windows/VariantConversion.h"

#include <fmt/format.h>

#include <cstdlib>
#include <map>
#include <optional>

namespace qel::test {

namespace {

struct CellPlace {
    std::int32_t row = 1, column = 1;
    auto operator<=>(const CellPlace&) const = default;
};

constexpr WORD getOrPut = DISPATCH_PROPERTYGET | DISPATCH_PROPERTYPUT;

std::string NameOf(const CellPlace& place) { return fmt::format("R{}C{}", place.row, place.column); }

std::string TextIn(const Variant& value) {
    return value.Is<std::string>() ? value.As<std::string>() : std::string();
}

} // namespace

struct SheetObject::State : std::enable_shared_from_this<SheetObject::State> {
    CellPlace active{3, 2};
    std::map<CellPlace, std::string> values;
    std::optional<std::string> protection;
    std::vector<std::string> log;
    bool spills = false;
    ComPointer<DispatchDouble> application = MakeDouble();

    void RequireOpen() const {
        if (protection) {
            throw AutomationError(1004, *protection, "Sheet");
        }
    }

    void WriteTable(const CellPlace& first, const std::string& name, const VariantArray& table) {
        const std::int32_t rows = table.bounds[0].upper + 1;
        const std::int32_t columns = table.bounds[1].upper + 1;
        log.push_back(fmt::format("{} table {} x {}", name, rows, columns));
        for (std::int32_t row = 0; row < rows; ++row) {
            for (std::int32_t column = 0; column < columns; ++column) {
                const CellPlace place{first.row + row, first.column + column};
                values[place] =
                    TextIn(table.elements[static_cast<std::size_t>(column) * static_cast<std::size_t>(rows) +
                                          static_cast<std::size_t>(row)]);
                log.push_back(NameOf(place) + " = " + values[place]);
            }
        }
    }

    ComPointer<IDispatch> MakeRange(const CellPlace& first, const CellPlace& last) {
        const auto self = shared_from_this();
        const std::string name = first == last ? NameOf(first) : NameOf(first) + ":" + NameOf(last);
        return MakeObject([&](DispatchDouble& range) {
            range.RequireLocale(windows::macroLocale);
            range.Child(L"Application", [self] { return ComPointer<IDispatch>(self->application.Get()); });
            range.Value(L"Row", first.row);
            range.Value(L"Column", first.column);
            range.Define(L"Offset", [self, first](const Inputs& inputs) {
                const CellPlace moved{first.row + NumberAt(inputs, 0), first.column + NumberAt(inputs, 1)};
                return ObjectValue(self->MakeRange(moved, moved));
            });
            range.Property(L"Value", [self, first] {
                const auto found = self->values.find(first);
                return found != self->values.end() ? Variant(found->second) : Variant(Empty{});
            });
            range.Put(L"NumberFormat", [self, name](const Inputs& inputs) {
                self->RequireOpen();
                self->log.push_back(name + " format " + TextAt(inputs, 0));
            });
            range.Define(L"Formula", FormulaOf(first, name + " formula "), getOrPut);
            if (spills) {
                range.Define(L"Formula2", FormulaOf(first, name + " formula2 "), getOrPut);
            }
            range.Property(L"HasFormula", [self, first] { return self->values[first].starts_with('='); });
            range.Value(L"HasArray", false);
            range.Value(L"Locked", true);
            range.Value(L"Count", (last.row - first.row + 1) * (last.column - first.column + 1));
            range.Define(L"Item", [self, first, last](const Inputs& inputs) {
                const auto [row, column] = std::div(NumberAt(inputs, 0) - 1, last.column - first.column + 1);
                const CellPlace place{first.row + row, first.column + column};
                return ObjectValue(self->MakeRange(place, place));
            });
            range.Child(L"Worksheet", [self] { return self->MakeWorksheet(); });
        });
    }

    DispatchDouble::Handler FormulaOf(const CellPlace& first, const std::string& written) {
        return [self = shared_from_this(), first, written](const Inputs& inputs) {
            if (inputs.empty()) {
                return windows::ToAutomation(self->values[first]);
            }
            self->RequireOpen();
            const Variant formula = windows::FromAutomation(*inputs.at(0));
            if (formula.IsArray()) {
                self->WriteTable(first, written.substr(0, written.find(' ')),
                                 *formula.As<std::shared_ptr<const VariantArray>>());
            } else {
                self->values[first] = TextIn(formula);
                self->log.push_back(written + self->values[first]);
            }
            return OwnedVariant();
        };
    }

    ComPointer<IDispatch> MakeWorksheet() {
        return MakeObject([self = shared_from_this()](DispatchDouble& worksheet) {
            worksheet.RequireLocale(windows::macroLocale);
            worksheet.Value(L"ProtectContents", self->protection.has_value());
            worksheet.Define(L"Evaluate", [self](const Inputs& inputs) {
                const std::string cells = TextAt(inputs, 0); // "A1" or "A1:B2"
                const CellPlace first{cells.at(1) - '0', cells.at(0) - 'A' + 1};
                const CellPlace last{cells.back() - '0', cells.at(cells.size() - 2) - 'A' + 1};
                return ObjectValue(self->MakeRange(first, last));
            });
        });
    }

    /// The first cell of a range passed as an argument.
    CellPlace FirstOf(const VARIANT* range) {
        const windows::DispatchObject object(ComPointer<IDispatch>(V_DISPATCH(range)), "Range",
                                             windows::macroLocale);
        return {object.Number(L"Row"), object.Number(L"Column")};
    }
};

SheetObject::SheetObject() : state_(std::make_shared<State>()) {
    State* const state = state_.get(); // owns the application, so its handlers must not own the state
    DispatchDouble& application = *state->application.Get();
    application.RequireLocale(windows::macroLocale);
    application.Child(L"ActiveCell", [state] { return state->MakeRange(state->active, state->active); });
    application.Property(L"Log",
                         [state] { return Variant(fmt::format("{}", fmt::join(state->log, "\r\n"))); });
    application.Define(L"Cells", [state](const Inputs& inputs) {
        const CellPlace place{NumberAt(inputs, 0), NumberAt(inputs, 1)};
        return ObjectValue(state->MakeRange(place, place));
    });
    application.Define(L"Range", [state](const Inputs& inputs) {
        return ObjectValue(state->MakeRange(state->FirstOf(inputs[0]), state->FirstOf(inputs[1])));
    });
}

ComPointer<IDispatch> SheetObject::Application() const {
    return ComPointer<IDispatch>(state_->application.Get());
}

ComPointer<IDispatch> SheetObject::Cell(std::int32_t row, std::int32_t column) const {
    return state_->MakeRange({row, column}, {row, column});
}

void SheetObject::Activate(std::int32_t row, std::int32_t column) const { state_->active = {row, column}; }

void SheetObject::Put(std::int32_t row, std::int32_t column, const std::string& value) const {
    state_->values[{row, column}] = value;
}

void SheetObject::Protect(const std::string& message) const { state_->protection = message; }

std::string SheetObject::Formula(std::int32_t row, std::int32_t column) const {
    const auto found = state_->values.find({row, column});
    return found != state_->values.end() ? found->second : std::string();
}

void SheetObject::SpillArrays() const { state_->spills = true; }

const std::vector<std::string>& SheetObject::Log() const { return state_->log; }

} // namespace qel::test
