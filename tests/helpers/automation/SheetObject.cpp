#include "tests/helpers/automation/SheetObject.h"

#include "platform/value/AutomationError.h"
#include "platform/value/Conversion.h"
#include "platform/windows/ProviderFailure.h"
#include "platform/windows/VariantConversion.h"

#include <fmt/format.h>

#include <map>
#include <optional>

namespace qel::test {

namespace {

struct CellPlace {
    std::int32_t row = 1, column = 1;
    auto operator<=>(const CellPlace&) const = default;
};

std::string NameOf(const CellPlace& place) { return fmt::format("R{}C{}", place.row, place.column); }

std::int32_t NumberIn(const VARIANT* value) { return windows::FromAutomation(*value).As<std::int32_t>(); }

OwnedVariant Value(const Variant& value) { return windows::ToAutomation(value); }

std::string TextIn(const Variant& value) {
    return value.Is<std::string>() ? value.As<std::string>() : std::string();
}

} // namespace

struct SheetObject::State : std::enable_shared_from_this<SheetObject::State> {
    CellPlace active{3, 2};
    std::map<CellPlace, std::string> values;
    std::optional<std::string> protection;
    std::vector<std::string> log;
    ComPointer<DispatchDouble> application = MakeDouble();

    void RequireOpen() const {
        if (protection) {
            throw ScriptedFailure{windows::ResultOfNumber(1004), *protection, "Sheet"};
        }
    }

    void WriteTable(const CellPlace& first, const std::string& name, const VariantArray& table) {
        const std::int32_t rows = table.bounds.at(0).upper + 1;
        const std::int32_t columns = table.bounds.at(1).upper + 1;
        log.push_back(fmt::format("{} table {} x {}", name, rows, columns));
        for (std::int32_t row = 0; row < rows; ++row) {
            for (std::int32_t column = 0; column < columns; ++column) {
                const CellPlace place{first.row + row, first.column + column};
                values[place] = TextIn(table.elements[static_cast<std::size_t>(column * rows + row)]);
                log.push_back(NameOf(place) + " = " + values[place]);
            }
        }
    }

    ComPointer<IDispatch> MakeRange(const CellPlace& first, const CellPlace& last) {
        const auto self = shared_from_this();
        const std::string name = first == last ? NameOf(first) : NameOf(first) + ":" + NameOf(last);
        auto range = MakeDouble();
        range->Define(L"Application", [self](const auto&) {
            return ObjectValue(ComPointer<IDispatch>(self->application.Get()));
        });
        range->Define(L"Row", [first](const auto&) { return Value(first.row); });
        range->Define(L"Column", [first](const auto&) { return Value(first.column); });
        range->Define(L"Offset", [self, first](const auto& arguments) {
            const CellPlace moved{first.row + NumberIn(arguments[0]), first.column + NumberIn(arguments[1])};
            return ObjectValue(self->MakeRange(moved, moved));
        });
        range->Define(L"Value", [self, first](const auto&) {
            const auto found = self->values.find(first);
            return Value(found != self->values.end() ? Variant(found->second) : Variant(Empty{}));
        });
        range->Define(L"NumberFormat", [self, name](const auto& arguments) {
            self->RequireOpen();
            self->log.push_back(name + " format " + TextIn(windows::FromAutomation(*arguments[0])));
            return OwnedVariant();
        });
        range->Define(L"Formula", [self, first, name](const auto& arguments) {
            self->RequireOpen();
            const Variant formula = windows::FromAutomation(*arguments[0]);
            if (formula.IsArray()) {
                self->WriteTable(first, name, *formula.As<std::shared_ptr<const VariantArray>>());
            } else {
                self->values[first] = TextIn(formula);
                self->log.push_back(name + " formula " + self->values[first]);
            }
            return OwnedVariant();
        });
        return ComPointer<IDispatch>(range.Get());
    }

    /// The first cell of a range that came back as an argument.
    CellPlace FirstOf(const VARIANT* range) {
        Arguments none;
        const auto number = [&](const wchar_t* member) {
            const CallResult result = Invoke(V_DISPATCH(range), member, none);
            return V_I4(&result.value.Get());
        };
        return {static_cast<std::int32_t>(number(L"Row")), static_cast<std::int32_t>(number(L"Column"))};
    }
};

SheetObject::SheetObject() : state_(std::make_shared<State>()) {
    State* const state = state_.get(); // owns the application, so the handlers may not own it
    state->application->Define(L"ActiveCell", [state](const auto&) {
        return ObjectValue(state->MakeRange(state->active, state->active));
    });
    state->application->Define(
        L"Log", [state](const auto&) { return Value(fmt::format("{}", fmt::join(state->log, "\r\n"))); });
    state->application->Define(L"Cells", [state](const auto& arguments) {
        const CellPlace place{NumberIn(arguments[0]), NumberIn(arguments[1])};
        return ObjectValue(state->MakeRange(place, place));
    });
    state->application->Define(L"Range", [state](const auto& arguments) {
        return ObjectValue(state->MakeRange(state->FirstOf(arguments[0]), state->FirstOf(arguments[1])));
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

const std::vector<std::string>& SheetObject::Log() const { return state_->log; }

} // namespace qel::test
