#include "engine/build/KeptFacts.h"

#include "qel/engine/EngineError.h"

#include <algorithm>
#include <limits>
#include <string_view>

namespace qel::engine {

namespace {

/// To be raised when a program reads lines in another way, or when the bytes change.
constexpr std::uint32_t keptVersion = 1;
constexpr std::uint32_t unknown = std::numeric_limits<std::uint32_t>::max();
constexpr std::size_t tableBytes = 40, leastTextBytes = 1, leastColumnBytes = 4;

void Put(const FilePrint& print, ByteWriter& out) {
    out.Put(print.size);
    out.Put(print.high);
    out.Put(print.low);
}

FilePrint GetPrint(ByteReader& in) {
    FilePrint print;
    print.size = in.Get<std::uint64_t>();
    print.high = in.Get<std::uint64_t>();
    print.low = in.Get<std::uint64_t>();
    return print;
}

[[noreturn]] void Fail() {
    throw EngineError(ErrorKind::DamagedFile,
                      "the facts that the previous cube file keeps are damaged; build without --previous");
}

} // namespace

ByteWriter KeptFacts::Describe() const {
    ByteWriter out;
    out.Put(keptVersion);
    Put(definition, out);
    out.Put(static_cast<std::uint32_t>(tables.size()));
    for (const KeptTable& table : tables) {
        Put(table.file, out);
        out.Put(table.nextLine);
        out.Put(table.rows);
    }
    out.Put(static_cast<std::uint32_t>(isSummed.size()));
    for (std::size_t i = 0; i < isSummed.size(); ++i) {
        out.Put(static_cast<std::uint8_t>(isSummed[i]));
        out.Put(i < currencies.size() ? currencies[i] : std::uint8_t{0});
    }
    out.Put(static_cast<std::uint32_t>(texts.size()));
    for (const auto& column : texts) {
        out.Put(static_cast<std::uint32_t>(column.size()));
        for (const auto& text : column) {
            out.Put(static_cast<std::uint8_t>(text.has_value()));
            if (text) {
                out.PutText(*text);
            }
        }
    }
    return out;
}

std::optional<KeptFacts> KeptFacts::Parse(std::span<const std::byte> description) {
    ByteReader in(description);
    KeptFacts kept;
    if (in.Get<std::uint32_t>() != keptVersion) {
        return std::nullopt;
    }
    kept.definition = GetPrint(in);
    kept.tables.resize(in.GetCount(tableBytes));
    for (KeptTable& table : kept.tables) {
        table.file = GetPrint(in);
        table.nextLine = in.Get<std::uint64_t>();
        table.rows = in.Get<std::uint64_t>();
    }
    for (auto left = in.GetCount(2); left != 0; --left) {
        kept.isSummed.push_back(in.Get<std::uint8_t>() != 0);
        kept.currencies.push_back(in.Get<std::uint8_t>());
    }
    kept.texts.resize(in.GetCount(leastColumnBytes));
    for (auto& column : kept.texts) {
        column.resize(in.GetCount(leastTextBytes));
        for (auto& text : column) {
            if (in.Get<std::uint8_t>() != 0) {
                text = in.GetText();
            }
        }
    }
    return in.Failed() || !in.AtEnd() ? std::nullopt : std::optional(std::move(kept));
}

bool KeptRows::AreTaken(const std::vector<KeyColumnBuilder>& keyColumns) const {
    for (std::size_t i = 0; i < keyColumns.size(); ++i) {
        const auto& texts = facts_.texts[i];
        if (!keyColumns[i].IsCalendar() && !std::all_of(texts.begin(), texts.end(), [&](const auto& text) {
                return !text || keyColumns[i].Takes(*text);
            })) {
            return false;
        }
    }
    return true;
}

/// The number in this build. A value gets it with its first fact, as when the lines are read.
std::uint32_t KeptRows::NumberOf(std::size_t column, std::uint32_t kept, KeyColumnBuilder& keys) {
    std::vector<std::uint32_t>& numbers = numbers_[column];
    numbers.resize(facts_.texts[column].size(), unknown);
    if (kept >= numbers.size() || !facts_.texts[column][kept]) {
        Fail();
    }
    if (numbers[kept] == unknown) {
        // A calendar's text begins with the format of its date.
        std::string_view text = *facts_.texts[column][kept];
        DateFormat format = DateFormat::Iso;
        if (keys.IsCalendar() && !text.empty()) {
            format = static_cast<DateFormat>(text.front() - '0');
            text.remove_prefix(1);
        }
        const auto number = keys.NumberOf(text, format);
        if (!number) {
            Fail();
        }
        numbers[kept] = *number;
    }
    return numbers[kept];
}

void KeptRows::AddRows(std::uint64_t rows, std::vector<KeyColumnBuilder>& keyColumns, FactStore& facts) {
    std::vector<std::uint32_t> numbers(keyColumns.size());
    std::vector<std::int64_t> amounts(facts_.isSummed.size());
    numbers_.resize(keyColumns.size());
    for (; rows != 0; --rows, ++next_) {
        if (next_ == block_.rows) {
            ReadBlock();
        }
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            const std::uint32_t kept = block_.keys[i][next_];
            const bool isKnown = kept < numbers_[i].size() && numbers_[i][kept] != unknown;
            numbers[i] = isKnown ? numbers_[i][kept] : NumberOf(i, kept, keyColumns[i]);
        }
        for (std::size_t i = 0; i < amounts.size(); ++i) {
            amounts[i] = facts_.isSummed[i] ? block_.values[i][next_] : 0;
        }
        facts.Add(numbers, amounts);
    }
}

void KeptRows::ReadBlock() {
    block_.keys.resize(numbers_.size());
    block_.values.resize(facts_.isSummed.size());
    if (offset_ >= size_ || !ReadFactBlock(rows_, facts_.isSummed, offset_, block_)) {
        Fail();
    }
    next_ = 0;
}

} // namespace qel::engine
