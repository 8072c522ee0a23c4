#include "qel/engine/SourceProfile.h"

#include "engine/build/AmountText.h"
#include "engine/build/CsvReader.h"
#include "engine/build/DecodedFile.h"
#include "engine/build/FieldDate.h"
#include "engine/build/HeaderLine.h"
#include "engine/build/PlainSigns.h"
#include "engine/build/SourceEncoding.h"
#include "engine/build/TextDictionary.h"
#include "engine/build/TotalLine.h"
#include "text/Utf8Path.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <optional>
#include <tuple>

namespace qel::engine {

namespace {

constexpr std::uint8_t mostDecimals = 9;

struct NumberSigns {
    char decimal, thousands;
};

/// The ways to write numbers, the likely ones first.
constexpr NumberSigns numberSigns[] = {{'.', 0},   {',', 0},   {'.', ','}, {',', '.'},
                                       {'.', ' '}, {',', ' '}, {'.', '\''}};
constexpr const char* dateWords[] = {"iso", "dmy", "mdy", "ymd"};
constexpr std::size_t dayMonth = 1, monthDay = 2;

using NumberFits = std::bitset<std::size(numberSigns)>;
using DateFits = std::bitset<std::size(dateWords)>;

CsvFormat FormatOf(std::size_t signs) {
    CsvFormat format;
    format.decimal = numberSigns[signs].decimal;
    format.thousands = numberSigns[signs].thousands;
    return format;
}

/// The digits behind the last decimal sign.
std::uint8_t DecimalsOf(std::string_view text, char sign) {
    const auto at = text.rfind(sign);
    std::uint8_t digits = 0;
    for (std::size_t i = at + 1; at != std::string_view::npos && i < text.size(); ++i) {
        digits = static_cast<std::uint8_t>(digits + (text[i] >= '0' && text[i] <= '9' ? 1 : 0));
    }
    return digits;
}

/// What the values of one column can be.
struct ColumnFits {
    NumberFits numbers;
    DateFits dates;
    bool isWhole = true, isUsed = false;
    SourceLines empty;
    std::array<std::uint8_t, std::size(numberSigns)> decimals = {};
    std::array<bool, std::size(numberSigns)> hasFewerThanThree = {}; ///< decimals, where there are any
    std::array<std::optional<std::chrono::sys_days>, std::size(dateWords)> first, last;
    std::array<SourceLines, std::size(numberSigns)> badNumbers = {};
    std::array<SourceLines, std::size(dateWords)> badDates = {};
    std::string text; ///< the first value

    void Take(std::string_view value, std::uint64_t line) {
        if (value.empty()) {
            empty.Add(line, "");
            return;
        }
        if (!isUsed) {
            text = value;
        }
        isUsed = true;
        ++count_;
        isWhole =
            isWhole && std::all_of(value.begin(), value.end(), [](char c) { return c >= '0' && c <= '9'; });
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            if (MayFit(badNumbers[i])) {
                TakeNumber(value, line, i);
            }
        }
        for (std::size_t i = 0; i < dates.size(); ++i) {
            if (MayFit(badDates[i])) {
                TakeDate(value, line, i);
            }
        }
    }

    /// To be called after the last value.
    void Finish() {
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            // Whole numbers among other texts are codes.
            numbers[i] = Fits(badNumbers[i]) && (badNumbers[i].count == 0 || decimals[i] > 0);
        }
        for (std::size_t i = 0; i < dates.size(); ++i) {
            dates[i] = Fits(badDates[i]);
        }
    }

private:
    /// A footer or a few typing mistakes do not make another column.
    bool Fits(const SourceLines& bad) const { return bad.count * 100 <= count_; }
    bool MayFit(const SourceLines& bad) const {
        constexpr std::uint64_t fewValues = 100;
        return bad.count * 100 <= std::max(count_, fewValues * fewValues);
    }

    void TakeNumber(std::string_view value, std::uint64_t line, std::size_t signs) {
        if (!ParseAmount(value, FormatOf(signs), mostDecimals).value) {
            badNumbers[signs].Add(line, value);
            return;
        }
        const auto found = DecimalsOf(value, numberSigns[signs].decimal);
        decimals[signs] = std::max(decimals[signs], found);
        hasFewerThanThree[signs] = hasFewerThanThree[signs] || (found > 0 && found != 3);
    }

    void TakeDate(std::string_view value, std::uint64_t line, std::size_t format) {
        const auto day = ParseDate(value, static_cast<DateFormat>(format));
        if (!day) {
            badDates[format].Add(line, value);
        } else {
            first[format] = std::min(first[format].value_or(*day), *day);
            last[format] = std::max(last[format].value_or(*day), *day);
        }
    }

    std::uint64_t count_ = 0; ///< values
};

} // namespace

/// The values of the first lines, as numbers of each column's dictionary.
struct SourceProfile::Values {
    std::vector<TextDictionary> texts;
    std::vector<std::vector<std::uint32_t>> codes; ///< by column, then line
};

/// Reads one file into a profile.
class SourceProfiler {
public:
    SourceProfiler(const std::filesystem::path& file, const std::function<void(double)>& progress)
        : progress_(progress), encoding_(DetectEncoding(file)),
          input_(file, encoding_ == "auto" ? "" : encoding_), skipLines_(FindSkipLines(file)),
          csv_(input_.Stream(), PathToUtf8(file), 0, input_.Size(), skipLines_) {
        profile_.file = file;
        profile_.skipLines = skipLines_;
    }

    SourceProfile Read() {
        const std::size_t count = csv_.Header().size();
        fits_.resize(count);
        values_->texts.resize(count);
        values_->codes.resize(count);
        while (csv_.Next()) {
            TakeLine();
        }
        for (auto& column : fits_) {
            column.Finish();
        }
        profile_.encoding = encoding_;
        profile_.delimiter = csv_.Delimiter();
        const auto signs = ChooseSigns();
        const auto dates = ChooseDates();
        for (std::size_t i = 0; i < count; ++i) {
            profile_.columns.push_back(Column(i, signs, dates));
        }
        profile_.values_ = std::move(values_);
        return std::move(profile_);
    }

private:
    std::uint64_t FindSkipLines(const std::filesystem::path& file) const {
        DecodedFile input(file, encoding_ == "auto" ? "" : encoding_);
        return LinesAboveHeader(input.Stream(), PathToUtf8(file));
    }

    void TakeLine() {
        constexpr std::uint64_t linesBetween = 4096;
        if (++profile_.lines % linesBetween == 0 && progress_) {
            progress_(csv_.Share());
        }
        if (IsProbableTotal(csv_)) {
            profile_.totals.Add(csv_.Number(), "");
            return;
        }
        if (!csv_.Fault().empty()) {
            profile_.malformed.Add(csv_.Number(), csv_.Fault());
            return;
        }
        for (std::size_t i = 0; i < fits_.size(); ++i) {
            fits_[i].Take(csv_.Field(i), csv_.Number());
            if (profile_.lines <= SourceProfile::relatedLines) {
                values_->codes[i].push_back(values_->texts[i].Add(csv_.Field(i)));
            }
        }
    }

    /// The signs by which most columns are numbers. A sign with three digits behind it in every number is
    /// rather one between thousands.
    std::size_t ChooseSigns() {
        std::size_t best = 0;
        std::tuple<std::ptrdiff_t, bool, std::int64_t> most{-1, false, 0};
        for (std::size_t signs = 0; signs < std::size(numberSigns); ++signs) {
            const auto fit = [&](const auto& column) { return column.isUsed && column.numbers[signs]; };
            const bool isDecimal = std::none_of(fits_.begin(), fits_.end(), [&](const auto& column) {
                return fit(column) && column.decimals[signs] == 3 && !column.hasFewerThanThree[signs] &&
                       IsGrouped(column);
            });
            std::int64_t bad = 0;
            for (const auto& column : fits_) {
                bad += fit(column) ? static_cast<std::int64_t>(column.badNumbers[signs].count) : 0;
            }
            const std::tuple found{std::count_if(fits_.begin(), fits_.end(), fit), isDecimal, -bad};
            if (found > most) {
                best = signs;
                most = found;
            }
        }
        profile_.decimal = numberSigns[best].decimal;
        profile_.thousands =
            numberSigns[best].thousands == 0 ? "" : std::string(1, numberSigns[best].thousands);
        return best;
    }

    /// Whether the numbers fit a sign between thousands as well.
    static bool IsGrouped(const ColumnFits& column) {
        for (std::size_t i = 0; i < std::size(numberSigns); ++i) {
            if (column.numbers[i] && numberSigns[i].thousands != 0 && column.decimals[i] == 0) {
                return true;
            }
        }
        return false;
    }

    static bool IsDate(const ColumnFits& column) {
        return column.isUsed && column.dates.any() && (column.numbers.none() || IsPlainDay(column));
    }

    /// "20240331" and the like, which are numbers, too.
    static bool IsPlainDay(const ColumnFits& column) {
        constexpr std::size_t digits = 8;
        constexpr auto earliest = std::chrono::sys_days(std::chrono::year(1950) / 1 / 1);
        return column.isWhole && column.text.size() == digits && column.first[0] >= earliest;
    }

    std::size_t ChooseDates() {
        std::size_t best = 0;
        std::pair<std::int64_t, std::int64_t> most{0, 0};
        for (std::size_t format = 0; format < std::size(dateWords); ++format) {
            std::pair<std::int64_t, std::int64_t> found{0, 0};
            for (const auto& column : fits_) {
                if (IsDate(column) && column.dates[format]) {
                    ++found.first;
                    found.second -= static_cast<std::int64_t>(column.badDates[format].count);
                }
            }
            if (found > most) {
                best = format;
                most = found;
            }
        }
        profile_.dates = dateWords[best];
        profile_.fitsOtherDates =
            best == dayMonth && std::any_of(fits_.begin(), fits_.end(), [](const auto& column) {
                return IsDate(column) && column.dates[dayMonth] && column.badDates[monthDay].count == 0;
            });
        return best;
    }

    SourceColumn Column(std::size_t index, std::size_t signs, std::size_t dates) const {
        const auto& fits = fits_[index];
        const auto& texts = values_->texts[index];
        SourceColumn column;
        column.name = csv_.Header()[index];
        column.isRepeated = std::count(csv_.Header().begin(), csv_.Header().end(), column.name) > 1;
        column.isDate = IsDate(fits) && fits.dates[dates];
        column.isAmount = fits.isUsed && fits.numbers[signs] && !column.isDate;
        column.isWhole = fits.isUsed && fits.isWhole;
        column.isEmpty = !fits.isUsed;
        column.emptyValues = fits.empty;
        column.decimals = column.isAmount ? fits.decimals[signs] : std::uint8_t{0};
        column.distinct = texts.Count() - (texts.Find("") ? 1 : 0);
        column.isUnique = column.distinct > 0 && column.distinct == values_->codes[index].size();
        column.first = fits.text;
        column.badValues = column.isDate     ? fits.badDates[dates]
                           : column.isAmount ? fits.badNumbers[signs]
                                             : SourceLines();
        if (column.isDate) {
            column.least = FormatDate(*fits.first[dates]);
            column.greatest = FormatDate(*fits.last[dates]);
        }
        return column;
    }

    const std::function<void(double)>& progress_;
    std::string encoding_;
    DecodedFile input_;
    std::uint64_t skipLines_;
    CsvReader csv_;
    SourceProfile profile_;
    std::vector<ColumnFits> fits_;
    std::shared_ptr<SourceProfile::Values> values_ = std::make_shared<SourceProfile::Values>();
};

bool SourceProfile::Determines(std::size_t column, std::size_t other) const {
    const auto& from = values_->codes[column];
    const auto& to = values_->codes[other];
    const auto emptyText = values_->texts[other].Find("");
    std::vector<std::optional<std::uint32_t>> known(values_->texts[column].Count());
    for (std::size_t line = 0; line < from.size(); ++line) {
        auto& value = known[from[line]];
        if (to[line] == emptyText || (value && value != to[line])) {
            return false;
        }
        value = to[line];
    }
    return true;
}

double SourceProfile::ShareIn(std::size_t column, const SourceProfile& other, std::size_t otherColumn) const {
    const auto& texts = values_->texts[column];
    std::size_t found = 0;
    for (std::uint32_t i = 0; i < texts.Count(); ++i) {
        if (!texts.Text(i).empty() && other.values_->texts[otherColumn].Find(texts.Text(i))) {
            ++found;
        }
    }
    return columns[column].distinct == 0
               ? 0
               : static_cast<double>(found) / static_cast<double>(columns[column].distinct);
}

SourceProfile ProfileSource(const std::filesystem::path& file,
                            const std::function<void(double share)>& progress) {
    return SourceProfiler(file, progress).Read();
}

} // namespace qel::engine
