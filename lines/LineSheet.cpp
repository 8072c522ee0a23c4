#include "lines/LineSheet.h"

#include "lines/CellCalls.h"
#include "lines/ColumnDecimals.h"
#include "platform/value/AutomationError.h"
#include "wizard/FormulaArgs.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

namespace qel {

namespace {

using Kind = CellFormat::Kind;
using Rows = std::vector<std::vector<Variant>>;

constexpr std::size_t monthLength = 7, dayLength = 10; // 2024-12, 2024-12-31

std::optional<int> NumberAt(std::string_view text, std::size_t begin, std::size_t count) {
    int number = 0;
    const auto* const end = text.data() + begin + count;
    const auto read = std::from_chars(text.data() + begin, end, number);
    return read.ec == std::errc() && read.ptr == end ? std::optional(number) : std::nullopt;
}

/// The day, or the first day of the month.
std::optional<AutomationDate> IsoDate(std::string_view text, std::size_t length) {
    if (text.size() != length || text[4] != '-' || (length == dayLength && text[7] != '-')) {
        return std::nullopt;
    }
    const auto year = NumberAt(text, 0, 4), month = NumberAt(text, 5, 2);
    const auto day = length == dayLength ? NumberAt(text, 8, 2) : 1;
    if (!year || !month || !day || *year < 1900) {
        return std::nullopt;
    }
    try {
        return DateFromDay({*year, *month, *day});
    } catch (const AutomationError&) {
        return std::nullopt;
    }
}

/// Whether the column has texts and all of them are such dates.
bool HoldsDates(const Rows& rows, std::size_t column, std::size_t length) {
    bool hasAny = false;
    for (const auto& row : rows) {
        if (const Variant& value = row[column]; !value.Is<Null>()) {
            if (!value.Is<std::string>() || !IsoDate(value.As<std::string>(), length)) {
                return false;
            }
            hasAny = true;
        }
    }
    return hasAny;
}

void MakeDates(Rows& rows, std::size_t column, std::size_t length) {
    for (auto& row : rows) {
        if (row[column].Is<std::string>()) {
            row[column] = *IsoDate(row[column].As<std::string>(), length);
        }
    }
}

constexpr int mostDecimals = 9;

CellFormat TakeFormat(Rows& rows, std::size_t column) {
    if (const auto decimals = ColumnDecimals(rows, column)) {
        return {Kind::Number, std::min(*decimals, mostDecimals)};
    }
    if (HoldsDates(rows, column, dayLength)) {
        MakeDates(rows, column, dayLength);
        return {Kind::Day};
    }
    if (column == 0 && HoldsDates(rows, column, monthLength)) { // elsewhere it may be any number
        MakeDates(rows, column, monthLength);
        return {Kind::Month};
    }
    return {};
}

Variant ArgumentCell(const ValueCall& call, std::size_t argument) {
    if (argument < FormulaArg::FromDate) {
        return ArgumentText(call, argument);
    }
    const AutomationDate date = argument == FormulaArg::FromDate ? call.From_Date : call.To_Date;
    return date.IsZero() ? Variant() : Variant(date);
}

/// What stands above the table.
class Heading {
public:
    Heading(const LinesBehind& behind, const LineSheetTexts& texts, const std::vector<SheetColumn>& columns)
        : behind_(behind), texts_(texts), columns_(columns) {}

    std::vector<std::vector<HeadingCell>> Make() const {
        std::vector<std::vector<HeadingCell>> rows{
            {Remark(Title(), true)}, {}, {}, {Remark(Summary(), false)}};
        AddPair(rows, texts_.value, {.value = behind_.value, .format = AmountFormat(), .isBold = true});
        for (std::size_t argument = FormulaArg::ObsName; argument < texts_.arguments.size(); ++argument) {
            const Kind kind = argument < FormulaArg::FromDate ? Kind::Text : Kind::Day;
            AddPair(rows, texts_.arguments[argument],
                    {.value = ArgumentCell(behind_.call, argument), .format = {kind}});
        }
        AddPair(rows, texts_.arguments[FormulaArg::CubeName], {.value = behind_.call.CubeName});
        AddPair(rows, texts_.arguments[FormulaArg::CubeFile], Remark(behind_.call.cubeFile, false));
        rows.push_back(Totals());
        return rows;
    }

private:
    static HeadingCell Remark(std::string text, bool isBold) {
        return {.value = std::move(text), .kind = HeadingCell::Kind::Remark, .isBold = isBold};
    }

    static void AddPair(std::vector<std::vector<HeadingCell>>& rows, const std::string& name,
                        HeadingCell value) {
        rows[1].push_back({.value = name, .kind = HeadingCell::Kind::Name});
        rows[2].push_back(std::move(value));
    }

    std::string Title() const {
        return fmt::format("{} {} – {}, {}", texts_.title, behind_.cell, behind_.call.CubeName,
                           FileName(behind_.call.cubeFile));
    }

    /// Of a server, its address.
    static std::string FileName(const std::string& path) {
        const bool isFile = path.find("://") == std::string::npos;
        return isFile ? path.substr(path.find_last_of("/\\") + 1) : path;
    }

    CellFormat AmountFormat() const {
        const int decimals = behind_.lines.amount ? columns_[*behind_.lines.amount].format.decimals : 2;
        return {Kind::Number, std::max(decimals, std::min(DecimalsOf(behind_.value), mostDecimals))};
    }

    std::string Summary() const {
        const Rowset& rows = behind_.lines.rows;
        std::string text = fmt::format("{}: {}", texts_.lines, rows.rows.size());
        if (!behind_.lines.isComplete) {
            return fmt::format("{} {} {}. {}", text, texts_.of,
                               rows.total ? std::to_string(*rows.total) : texts_.more, texts_.totalOfSome);
        }
        constexpr double halfCent = 0.005;
        const bool isOther =
            behind_.lines.amount &&
            std::abs(ModSetCube::SumOfField(rows, *behind_.lines.amount) - behind_.value) >= halfCent;
        return isOther ? text + ". " + texts_.otherTotal : text;
    }

    std::vector<HeadingCell> Totals() const {
        std::vector<HeadingCell> cells(columns_.size());
        std::size_t firstSum = columns_.size();
        for (std::size_t column = columns_.size(); column-- > 0;) {
            if (columns_[column].format.kind == Kind::Number) {
                cells[column] = {.format = columns_[column].format,
                                 .kind = HeadingCell::Kind::SumOfColumn,
                                 .isBold = true};
                firstSum = column;
            }
        }
        if (firstSum > 0 && firstSum < columns_.size()) {
            cells[firstSum - 1] = {.value = texts_.total, .isBold = true};
        }
        return cells;
    }

    const LinesBehind& behind_;
    const LineSheetTexts& texts_;
    const std::vector<SheetColumn>& columns_;
};

} // namespace

TableSheet ComposeLineSheet(std::string name, LinesBehind behind, const LineSheetTexts& texts) {
    TableSheet sheet{.name = std::move(name), .isRightToLeft = texts.isRightToLeft};
    Rowset& rows = behind.lines.rows;
    for (std::size_t column = 0; column < rows.fields.size(); ++column) {
        sheet.columns.push_back({rows.fields[column], TakeFormat(rows.rows, column)});
    }
    sheet.heading = Heading(behind, texts, sheet.columns).Make();
    sheet.rows = std::move(rows.rows);
    return sheet;
}

} // namespace qel
