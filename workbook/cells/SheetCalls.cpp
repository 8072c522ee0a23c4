#include "workbook/cells/SheetCalls.h"

#include "function/formula/ComputedArgument.h"
#include "function/formula/FormulaError.h"
#include "function/formula/ParseFormula.h"
#include "function/formula/WrittenCalls.h"
#include "platform/value/AutomationError.h"
#include "platform/value/CellValues.h"
#include "text/CaseFold.h"

#include <fmt/format.h>

#include <stdexcept>

namespace qel {

namespace {

constexpr std::size_t firstList = 2, lastList = 6;
constexpr int deepestName = 8;

enum class Kind { Value, List, Operand };

Kind KindOf(bool isName, std::size_t argument) {
    return !isName && argument >= firstList && argument <= lastList ? Kind::List : Kind::Value;
}

/// Why an argument's value is not in the file.
class UnreadArgument : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The values of the arguments in one sheet.
class ArgumentValues {
public:
    ArgumentValues(const WorkbookContent& workbook, std::size_t sheet, const Locale& locale)
        : workbook_(workbook), sheet_(sheet), locale_(locale) {
        locale_.nullDate = workbook.daysBefore;
    }

    FormulaCall Bind(const WrittenCall& written) const {
        Formula formula;
        formula.function = written.function;
        const bool isName = EqualIgnoringCase(written.function, "QelName") ||
                            EqualIgnoringCase(written.function, "RetQelName");
        for (std::size_t i = 0; i < written.arguments.size(); ++i) {
            formula.arguments.push_back(
                {ValueOf(written.arguments[i], KindOf(isName, i), 0), written.starts[i] + 1});
        }
        return BindFormula(formula, locale_);
    }

private:
    std::optional<Variant> ValueOf(const std::string& text, Kind kind, int depth) const {
        if (text.empty()) {
            return std::nullopt;
        }
        if (const auto range = ReadReference(text, workbook_.isOpenDocument)) {
            return CellsOf(*range, text, kind);
        }
        if (auto constant = ConstantOf(text)) {
            return Kept(std::move(*constant), kind);
        }
        const std::string* named = FindName(text);
        if (named != nullptr && depth < deepestName) {
            return ValueOf(*named, kind, depth + 1);
        }
        return Kept(ComputedOf(text, depth), kind);
    }

    /// A text that no cell holds is a key in Calc only.
    std::optional<Variant> Kept(Variant value, Kind kind) const {
        const bool isKey = kind == Kind::List && workbook_.isOpenDocument && value.Is<std::string>() &&
                           !value.As<std::string>().empty();
        return isKey ? RangeOf({std::move(value)}) : std::move(value);
    }

    Variant ComputedOf(const std::string& text, int depth) const {
        const auto lookUp = [&](const std::string& word) {
            const auto value = word == text ? std::nullopt : ValueOf(word, Kind::Operand, depth + 1);
            return value ? *value : throw UnreadArgument(fmt::format("{} is nothing of this file", word));
        };
        if (depth >= deepestName) {
            throw UnreadArgument(fmt::format("{} refers to itself", text));
        }
        auto value = ComputedArgument(text, lookUp);
        if (!value || workbook_.daysBefore != 0) {
            throw UnreadArgument(
                fmt::format("{} is computed in a way that this command does not know", text));
        }
        return std::move(*value);
    }

    std::optional<Variant> ConstantOf(const std::string& text) const {
        const bool isTruth = EqualIgnoringCase(text, "TRUE()");
        if (isTruth || EqualIgnoringCase(text, "FALSE()")) {
            return isTruth;
        }
        try {
            const FormulaDates dates = {.nullDate = workbook_.daysBefore,
                                        .takesYearsBefore1900 = !workbook_.isOpenDocument};
            const auto parsed = ParseFormula("QelF1(" + text + ")", dates);
            return parsed.arguments.size() == 1 ? parsed.arguments.front().value : std::nullopt;
        } catch (const FormulaError&) {
            return std::nullopt;
        }
    }

    const std::string* FindName(const std::string& text) const {
        auto found = workbook_.names.find(std::to_string(sheet_) + '!' + FoldCase(text));
        if (found == workbook_.names.end()) {
            found = workbook_.names.find(FoldCase(text));
        }
        return found == workbook_.names.end() ? nullptr : &found->second;
    }

    Variant CellsOf(const CellRange& range, const std::string& text, Kind kind) const {
        if (range.isElsewhere) {
            throw UnreadArgument(fmt::format("{} refers to another file", text));
        }
        const SheetContent* sheet =
            range.sheet.empty() ? &workbook_.sheets[sheet_] : workbook_.SheetNamed(range.sheet);
        if (sheet == nullptr) {
            throw UnreadArgument(fmt::format("{} refers to a sheet that is not there", text));
        }
        std::vector<Variant> values;
        constexpr std::size_t mostCells = 32768;
        for (auto row = range.first.row; row <= range.last.row; ++row) {
            for (auto column = range.first.column; column <= range.last.column; ++column) {
                values.push_back(CellOf(*sheet, {row, column}));
                if (values.size() > mostCells) {
                    throw UnreadArgument(fmt::format("{} has too many cells", text));
                }
            }
        }
        if (kind == Kind::List) {
            return RangeOf(std::move(values));
        }
        if (values.size() > 1) {
            throw UnreadArgument(fmt::format("{} are several cells for one value", text));
        }
        if (workbook_.isOpenDocument && kind != Kind::Operand && values.front().Is<Empty>()) {
            return 0.0; // as Calc passes an empty cell
        }
        return values.front();
    }

    static Variant CellOf(const SheetContent& sheet, CellPlace place) {
        const auto found = sheet.values.find(SheetContent::KeyOf(place));
        if (found == sheet.values.end()) {
            return {};
        }
        if (found->second.Is<Null>()) {
            throw UnreadArgument(
                fmt::format("the file has no value of cell {}; save it in the spreadsheet", CellName(place)));
        }
        if (found->second.Is<ErrorValue>()) {
            throw UnreadArgument(fmt::format("cell {} shows an error", CellName(place)));
        }
        return found->second;
    }

    const WorkbookContent& workbook_;
    std::size_t sheet_;
    Locale locale_;
};

SheetCall Read(const ArgumentValues& values, const WrittenCall& written, std::size_t sheet, CellPlace place) {
    SheetCall call{sheet, place, std::nullopt, {}, false};
    try {
        call.call = values.Bind(written);
    } catch (const UnreadArgument& error) {
        call.fault = error.what();
        call.isUnread = true;
    } catch (const FormulaError& error) {
        call.fault = error.what();
    } catch (const AutomationError& error) {
        call.fault = error.Description();
    }
    return call;
}

} // namespace

std::vector<SheetCall> FindSheetCalls(const WorkbookContent& workbook, const Locale& locale) {
    std::vector<SheetCall> calls;
    for (std::size_t sheet = 0; sheet < workbook.sheets.size(); ++sheet) {
        const ArgumentValues values(workbook, sheet, locale);
        const std::string* last = nullptr;
        std::size_t begin = 0;
        for (const SheetFormula& formula : workbook.sheets[sheet].formulas) {
            if (last != nullptr && *last == formula.text) { // as in a file that repeats a cell
                for (const std::size_t end = calls.size(); begin < end; ++begin) {
                    calls.push_back(calls[begin]);
                    calls.back().place = formula.place;
                }
                continue;
            }
            begin = calls.size();
            for (const WrittenCall& written : FindCallsOfAnyName(formula.text)) {
                calls.push_back(Read(values, written, sheet, formula.place));
            }
            last = &formula.text;
        }
    }
    return calls;
}

} // namespace qel
