#include "engine/build/FactColumns.h"

#include "engine/build/AmountText.h"
#include "engine/build/StoredWidth.h"
#include "qel/engine/EngineError.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <span>

namespace qel::engine {

namespace {

/// Reads the lines of one fact table.
class FactReader {
public:
    FactReader(TableReader& reader, const std::vector<MeasureDefinition>& measures,
               const DetailsOfTable& details, std::vector<KeyColumnBuilder>& keyColumns, FactColumns& facts)
        : reader_(reader), measures_(measures), details_(details), keyColumns_(keyColumns), facts_(facts),
          numbers_(keyColumns.size()), amounts_(measures.size()) {
        for (const KeyColumnBuilder& column : keyColumns) {
            keyFields_.push_back(reader.Columns(column.Columns()));
        }
        for (const MeasureDefinition& measure : measures) {
            valueFields_.push_back(measure.column ? reader.Column(*measure.column) : noColumn);
            minusFields_.push_back(measure.minus ? reader.Column(*measure.minus) : noColumn);
        }
    }

    void Run() {
        while (reader_.Next()) {
            // Adding a free text creates a member, so this waits until the whole line is known to be valid.
            if (TakeKeys(false) && TakeAmounts() && TakeKeys(true)) {
                AddRow();
            }
        }
    }

private:
    bool TakeKeys(bool anyText) {
        const DateFormat dates = reader_.Table().format.dates;
        for (std::size_t i = 0; i < keyColumns_.size(); ++i) {
            if (keyColumns_[i].TakesAnyText() != anyText) {
                continue;
            }
            const std::string_view field = reader_.Key(keyFields_[i]);
            const auto number = keyColumns_[i].NumberOf(field, dates);
            if (!number) {
                reader_.ReportBad(keyFields_[i], keyColumns_[i].FaultOf(field, reader_.Table()));
                return false;
            }
            numbers_[i] = *number;
        }
        return true;
    }

    bool TakeAmounts() {
        for (std::size_t i = 0; i < measures_.size(); ++i) {
            if (valueFields_[i] != noColumn &&
                !(TakeAmount(i, valueFields_[i], amounts_[i]) && Subtract(i))) {
                return false;
            }
        }
        return true;
    }

    bool TakeAmount(std::size_t measure, std::size_t column, std::int64_t& value) {
        const std::string_view field = reader_.Field(column);
        const std::uint8_t decimals = measures_[measure].decimals;
        const auto amount = ParseAmount(field, reader_.Table().format, decimals);
        if (MayLackDigits(field, amount) && reader_.Records().IsFloating(column)) {
            reader_.ReportBad({&column, 1}, FloatingFault(field, column, decimals));
            return false;
        }
        if (!amount.value) {
            reader_.ReportBad({&column, 1},
                              amount.isTooLarge ? TooLarge(field, decimals) : AmountFault(field, decimals));
            return false;
        }
        if (amount.currency != 0 && !IsCurrencyOf(measure, amount.currency)) {
            reader_.ReportBad(
                {&column, 1},
                fmt::format("\"{}\" is in {}, and amounts before it are in {}; they have no sum: build a "
                            "cube of each currency",
                            field, CurrencySign(amount.currency), CurrencySign(facts_.currencies[measure])));
            return false;
        }
        value = *amount.value;
        return true;
    }

    /// Whether a floating-point number may have had more digits than those that were read.
    static bool MayLackDigits(std::string_view field, const ParsedAmount& amount) {
        constexpr std::int64_t sixteenDigits = 1'000'000'000'000'000;
        return amount.value ? *amount.value >= sixteenDigits || *amount.value <= -sixteenDigits
                            : amount.isTooLarge || field.find_first_of("eE") != std::string_view::npos;
    }

    std::string FloatingFault(std::string_view field, std::size_t column, std::uint8_t decimals) const {
        return fmt::format(
            "the number {} comes from a floating-point column, of which only 15 digits are read: too "
            "few for {} decimals; make it exact in the query, in SQLite with printf('%.{}f', {}), "
            "elsewhere with CAST({} AS DECIMAL(19, {})), or keep whole numbers of the smallest unit",
            field, decimals, decimals, reader_.Records().Header()[column], reader_.Records().Header()[column],
            decimals);
    }

    /// Subtracts the column that the measure subtracts, if it has one.
    bool Subtract(std::size_t measure) {
        const std::size_t column = minusFields_[measure];
        std::int64_t other = 0;
        if (column == noColumn) {
            return true;
        }
        if (!TakeAmount(measure, column, other)) {
            return false;
        }
        std::int64_t& value = amounts_[measure];
        if (__builtin_sub_overflow(value, other, &value) ||
            value == std::numeric_limits<std::int64_t>::min()) {
            reader_.ReportBad({&column, 1}, TooLarge(reader_.Field(column), measures_[measure].decimals));
            return false;
        }
        return true;
    }

    /// Amounts of several currencies have no sum.
    bool IsCurrencyOf(std::size_t measure, std::uint8_t currency) {
        facts_.currencies.resize(measures_.size());
        if (facts_.currencies[measure] == 0) {
            facts_.currencies[measure] = currency;
        }
        return facts_.currencies[measure] == currency;
    }

    static std::string TooLarge(std::string_view field, std::uint8_t decimals) {
        std::string most = std::to_string(std::numeric_limits<std::int64_t>::max());
        if (decimals > 0) {
            most.insert(most.size() - decimals, ".");
        }
        return fmt::format("the amount {} is too large; the most is {}", field, most);
    }

    std::string AmountFault(std::string_view field, std::uint8_t decimals) const {
        const CsvFormat& format = reader_.Table().format;
        const std::string thousands = format.thousands == 0 ? "" : std::string(1, format.thousands);
        std::string example = fmt::format("1{}234", thousands);
        if (decimals > 0) {
            example += format.decimal + std::string("567890123").substr(0, decimals);
        }
        return fmt::format("expected an amount such as {}, with at most {} decimals, found \"{}\"{}", example,
                           decimals, field, AmountRemedy(field, reader_.Table(), decimals));
    }

    void AddRow() {
        if (details_.areKept) {
            AddDetails();
        }
        facts_.store.Add(numbers_, amounts_);
    }

    void AddDetails() {
        for (std::size_t i = 0; i < details_.columns.size(); ++i) {
            DetailTexts& detail = facts_.details[i];
            const std::uint32_t number = detail.texts.Add(reader_.Field(details_.columns[i]));
            detail.numbers.Append(std::as_bytes(std::span(&number, 1)));
        }
        const auto row = static_cast<std::uint32_t>(facts_.store.RowCount());
        const std::uint64_t line = reader_.Records().Number();
        const bool goesOn = !facts_.lines.empty() && facts_.lines.back().file == details_.file &&
                            facts_.lines.back().line + (row - facts_.lines.back().first) == line;
        if (!goesOn) {
            facts_.lines.push_back({row, details_.file, line});
        }
    }

    TableReader& reader_;
    const std::vector<MeasureDefinition>& measures_;
    const DetailsOfTable& details_;
    std::vector<KeyColumnBuilder>& keyColumns_;
    FactColumns& facts_;
    std::vector<std::vector<std::size_t>> keyFields_;
    std::vector<std::size_t> valueFields_, minusFields_; ///< by measure
    std::vector<std::uint32_t> numbers_;
    std::vector<std::int64_t> amounts_;
};

} // namespace

void ReadFacts(TableReader& reader, const std::vector<MeasureDefinition>& measures,
               const DetailsOfTable& details, std::vector<KeyColumnBuilder>& keyColumns, FactColumns& facts) {
    FactReader(reader, measures, details, keyColumns, facts).Run();
}

std::vector<MeasureColumn> MeasureModels(const std::vector<MeasureDefinition>& measures,
                                         const FactStore& facts, const std::string& cubeName) {
    std::vector<MeasureColumn> models;
    for (std::size_t i = 0; i < measures.size(); ++i) {
        const MeasureDefinition& measure = measures[i];
        MeasureColumn model{
            {measure.name, measure.caption, AggregateFunction::Count, measure.decimals}, 0, 1};
        if (measure.column) {
            const AmountRange& amounts = facts.Amounts(i);
            if (!amounts.isSummable) {
                throw EngineError(
                    ErrorKind::InvalidData,
                    fmt::format("cube {}, measure {}: the amounts are too large; the sum of their "
                                "absolute values is beyond 63 bits at {} decimals",
                                cubeName, measure.name, measure.decimals));
            }
            model.function = AggregateFunction::Sum;
            model.unit = std::max<std::int64_t>(amounts.unit, 1);
            model.width = ValueWidth(amounts.least / model.unit, amounts.most / model.unit);
        }
        models.push_back(model);
    }
    return models;
}

} // namespace qel::engine
