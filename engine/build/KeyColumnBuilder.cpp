#include "engine/build/KeyColumnBuilder.h"

#include "engine/build/FieldDate.h"
#include "engine/build/TableReader.h"
#include "engine/build/TextOrder.h"
#include "qel/engine/EngineError.h"
#include "text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace qel::engine {

namespace {

constexpr std::uint32_t noCode = 0xFFFFFFFFU;

std::string Shown(std::string_view value) {
    return ReplaceAll(value, std::string_view(&keyPartEnd, 1), " / ");
}

bool IsSet(const std::vector<bool>& flags, std::uint32_t number) {
    return number < flags.size() && flags[number];
}

} // namespace

std::uint32_t KeyColumnBuilder::AddKnownValue(std::string_view text, std::size_t table) {
    const std::uint32_t number = texts_.Add(text);
    if (isKnown_.size() <= table) {
        isKnown_.resize(table + 1);
    }
    std::vector<bool>& known = isKnown_[table];
    if (known.size() <= number) {
        known.resize(std::size_t{number} + 1);
    }
    known[number] = true;
    return number;
}

void KeyColumnBuilder::CloseTables(std::vector<std::string> tableNames) {
    tableNames_ = std::move(tableNames);
    isKnown_.resize(tableNames_.size());
    isUsable_.resize(texts_.Count());
    for (std::uint32_t number = 0; number < texts_.Count(); ++number) {
        isUsable_[number] = IsKnownToAll(number);
    }
}

bool KeyColumnBuilder::IsKnownToAll(std::uint32_t number) const {
    return std::all_of(isKnown_.begin(), isKnown_.end(),
                       [number](const auto& known) { return IsSet(known, number); });
}

bool KeyColumnBuilder::Takes(std::string_view text) const {
    const auto number = texts_.Find(text);
    return tableNames_.empty() || text.empty() || (number && IsSet(isUsable_, *number));
}

std::optional<std::uint32_t> KeyColumnBuilder::NumberOf(std::string_view field, DateFormat format) {
    if (IsCalendar()) {
        return NumberOfDate(field, format);
    }
    // An empty field has no member, so the tables need not list it.
    if (tableNames_.empty() || field.empty()) {
        return texts_.Add(field);
    }
    const auto number = texts_.Find(field);
    return number && IsSet(isUsable_, *number) ? number : std::nullopt;
}

std::optional<std::uint32_t> KeyColumnBuilder::NumberOfDate(std::string_view field, DateFormat format) {
    datedText_.assign(1, static_cast<char>('0' + static_cast<int>(format)));
    datedText_ += field;
    const std::uint32_t number = texts_.Add(datedText_);
    if (number == days_.size()) {
        auto day = ParseDate(field, format);
        const CalendarDefinition& rules = *calendarDefinition_;
        if (day && ((rules.from && *day < *rules.from) || (rules.to && *day > *rules.to))) {
            day.reset();
        }
        days_.push_back(day);
    }
    return days_[number] ? std::optional(number) : std::nullopt;
}

std::string KeyColumnBuilder::FaultOf(std::string_view field, const TableDefinition& table) const {
    if (IsCalendar()) {
        const CalendarDefinition& rules = *calendarDefinition_;
        if (!ParseDate(field, table.format.dates)) {
            return fmt::format("expected {}, found \"{}\"{}", ExpectedDate(table.format.dates), field,
                               DateRemedy(field, table.name));
        }
        return fmt::format("\"{}\" lies outside the calendar ({} to {})", field,
                           rules.from ? FormatDate(*rules.from) : "any date",
                           rules.to ? FormatDate(*rules.to) : "any date");
    }
    const auto number = texts_.Find(field);
    for (std::size_t i = 0; i < tableNames_.size(); ++i) {
        if (!number || !IsSet(isKnown_[i], *number)) {
            return fmt::format("\"{}\" is not in the {}", Shown(field), tableNames_[i]);
        }
    }
    return "cannot be used";
}

std::string KeyColumnBuilder::ShownText(std::uint32_t number) const { return Shown(texts_.Text(number)); }

std::optional<std::string> KeyColumnBuilder::DateOfEitherOrder() const {
    for (const auto& [format, other] : {std::pair(DateFormat::DayMonthYear, DateFormat::MonthDayYear),
                                        std::pair(DateFormat::MonthDayYear, DateFormat::DayMonthYear)}) {
        std::optional<std::string> example;
        bool isProven = false, hasDays = false; // the first of every month is what a ledger of months has
        for (std::uint32_t number = 0; number < days_.size() && !isProven; ++number) {
            const std::string_view text = texts_.Text(number);
            if (!days_[number] || text.front() != static_cast<char>('0' + static_cast<int>(format))) {
                continue;
            }
            const auto asOther = ParseDate(text.substr(1), other);
            isProven = !asOther;
            hasDays = hasDays || std::chrono::year_month_day(*days_[number]).day() != std::chrono::day(1);
            if (asOther && asOther != days_[number] && !example) {
                example = std::string(text.substr(1));
            }
        }
        if (example && hasDays && !isProven) {
            return example;
        }
    }
    return std::nullopt;
}

void KeyColumnBuilder::NumberDates(const std::vector<std::uint64_t>& facts, const std::string& place) {
    const auto fail = [&](const std::string& fault) {
        throw EngineError(ErrorKind::InvalidData, fmt::format("{}, column {}: {}", place, name_, fault));
    };
    std::vector<bool> isUsed(days_.size());
    std::transform(facts.begin(), facts.end(), isUsed.begin(),
                   [](std::uint64_t count) { return count != 0; });
    auto first = calendarDefinition_->from, last = calendarDefinition_->to;
    for (std::size_t i = 0; i < days_.size(); ++i) {
        if (!isUsed[i]) {
            continue;
        }
        if (!calendarDefinition_->from) {
            first = std::min(first.value_or(*days_[i]), *days_[i]);
        }
        if (!calendarDefinition_->to) {
            last = std::max(last.value_or(*days_[i]), *days_[i]);
        }
    }
    if (!first || !last) {
        fail("there are no dates; set the calendar's \"from\" and \"to\"");
    }
    constexpr std::chrono::days longest(200 * 366);
    if (*last - *first > longest) {
        fail(fmt::format(
            "the dates span more than 200 years, from {} to {}; set the calendar's \"from\" and \"to\"",
            FormatDate(*first), FormatDate(*last)));
    }
    periods_.emplace(calendarDefinition_->byDays, *first, *last);
    codeCount_ = periods_->PeriodCount();
    codes_.assign(days_.size(), noCode);
    for (std::size_t i = 0; i < days_.size(); ++i) {
        if (isUsed[i]) {
            codes_[i] = periods_->PeriodOf(*days_[i]);
        }
    }
}

void KeyColumnBuilder::NumberTexts(const std::vector<std::uint32_t>& ordered) {
    codes_.assign(texts_.Count(), noCode);
    for (const std::uint32_t number : ordered) {
        codes_[number] = codeCount_++;
    }
    std::vector<std::uint32_t> others(texts_.Count());
    const auto ranks = Ranks();
    for (std::uint32_t number = 0; number < texts_.Count(); ++number) {
        others[ranks[number]] = number;
    }
    for (const std::uint32_t number : others) {
        if (codes_[number] == noCode) {
            codes_[number] = codeCount_++;
        }
    }
}

std::vector<std::uint32_t> KeyColumnBuilder::Ranks() const {
    std::vector<std::string_view> texts;
    for (std::uint32_t number = 0; number < texts_.Count(); ++number) {
        texts.push_back(texts_.Text(number));
    }
    const auto order = SortTexts(texts);
    std::vector<std::uint32_t> ranks(order.size());
    for (std::uint32_t place = 0; place < order.size(); ++place) {
        ranks[order[place]] = place;
    }
    return ranks;
}

} // namespace qel::engine
