#include "function/formula/ComputedArgument.h"

#include "platform/value/Conversion.h"
#include "text/CaseFold.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <vector>

namespace qel {

namespace {

/// The text is an expression that is not computed here.
struct UnknownExpression {};

using Numbers = std::vector<double>;

int Whole(double number) {
    constexpr double most = 1e6; // of years and months
    if (!(std::abs(number) <= most)) {
        throw UnknownExpression();
    }
    return static_cast<int>(number);
}

double DateOfNumbers(const Numbers& numbers) {
    const AutomationDate year = DateFromDay({Whole(numbers[0]), 1, 1});
    return AddMonths(year, Whole(numbers[1]) - 1).days + std::floor(numbers[2]) - 1;
}

double DateAfterMonths(const Numbers& numbers) {
    return AddMonths(AutomationDate{std::floor(numbers[0])}, Whole(numbers[1])).days;
}

double EndOfMonth(const Numbers& numbers) {
    const CalendarDay day = DayFromDate(AutomationDate{std::floor(numbers[0])});
    const AutomationDate first = DateFromDay({day.year, day.month, 1});
    return AddMonths(first, Whole(numbers[1]) + 1).days - 1;
}

CalendarDay DayOf(const Numbers& numbers) { return DayFromDate(AutomationDate{numbers[0]}); }

struct DateFunctionEntry {
    std::string_view name;
    std::size_t arguments;
    double (*value)(const Numbers& numbers);
};

constexpr std::array<DateFunctionEntry, 6> dateFunctions = {
    {{"DATE", 3, DateOfNumbers},
     {"EDATE", 2, DateAfterMonths},
     {"EOMONTH", 2, EndOfMonth},
     {"YEAR", 1, [](const Numbers& numbers) { return static_cast<double>(DayOf(numbers).year); }},
     {"MONTH", 1, [](const Numbers& numbers) { return static_cast<double>(DayOf(numbers).month); }},
     {"DAY", 1, [](const Numbers& numbers) { return static_cast<double>(DayOf(numbers).day); }}}};

class ExpressionReader {
public:
    ExpressionReader(std::string_view text, const CellLookup& lookUp, const Locale& locale)
        : rest_(text), lookUp_(lookUp), locale_(locale) {}

    Variant ReadWhole() {
        Variant value = ReadJoined();
        if (Next() != '\0') {
            throw UnknownExpression();
        }
        return value;
    }

private:
    char Next() {
        rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t\r\n"), rest_.size()));
        return rest_.empty() ? '\0' : rest_.front();
    }

    bool Take(char symbol) {
        const bool isThere = Next() == symbol;
        rest_.remove_prefix(isThere ? 1 : 0);
        return isThere;
    }

    Variant ReadJoined() {
        Variant value = ReadSum();
        while (Take('&')) {
            std::string text = ToText(value, locale_);
            text += ToText(ReadSum(), locale_);
            value = std::move(text);
        }
        return value;
    }

    Variant ReadSum() {
        Variant value = ReadProduct();
        while (Next() == '+' || Next() == '-') {
            const bool adds = Take('+') || !Take('-');
            const double left = ToDouble(value, locale_), right = ToDouble(ReadProduct(), locale_);
            value = adds ? left + right : left - right;
        }
        return value;
    }

    Variant ReadProduct() {
        Variant value = ReadSigned();
        while (Next() == '*' || Next() == '/') {
            const bool multiplies = Take('*') || !Take('/');
            const double left = ToDouble(value, locale_), right = ToDouble(ReadSigned(), locale_);
            if (!multiplies && right == 0) {
                throw UnknownExpression();
            }
            value = multiplies ? left * right : left / right;
        }
        return value;
    }

    Variant ReadSigned() {
        constexpr int deepest = 64;
        if (++depth_ > deepest) {
            throw UnknownExpression();
        }
        Variant value = Take('-') ? Variant(-ToDouble(ReadSigned(), locale_)) : ReadOne();
        --depth_;
        return value;
    }

    Variant ReadOne() {
        const char first = Next();
        if (Take('(')) {
            Variant value = ReadJoined();
            Require(')');
            return value;
        }
        if (first == '"') {
            return ReadText();
        }
        if (first >= '0' && first <= '9') {
            double number = 0;
            const char* const end = rest_.data() + rest_.size();
            rest_.remove_prefix(
                static_cast<std::size_t>(std::from_chars(rest_.data(), end, number).ptr - rest_.data()));
            return number;
        }
        const std::string word = ReadWord();
        return Next() == '(' ? Variant(ReadFunction(word)) : lookUp_(word);
    }

    void Require(char symbol) {
        if (!Take(symbol)) {
            throw UnknownExpression();
        }
    }

    std::string ReadText() {
        std::string text;
        do {
            const auto end = rest_.find('"', 1);
            if (end == std::string_view::npos) {
                throw UnknownExpression();
            }
            text += (text.empty() ? "" : "\"") + std::string(rest_.substr(1, end - 1));
            rest_.remove_prefix(end + 1);
        } while (rest_.starts_with('"')); // a quote within is doubled
        return text;
    }

    /// A name or a reference, with quotes around a sheet's name or brackets around the whole.
    std::string ReadWord() {
        std::size_t end = 0;
        char closing = '\0';
        for (; end < rest_.size(); ++end) {
            const char c = rest_[end];
            if (closing != '\0') {
                closing = c == closing ? '\0' : closing;
            } else if (c == '\'' || c == '[') {
                closing = c == '[' ? ']' : c;
            } else if (std::string_view(" \t\r\n&+-*/(),;<>=^%{}\"").find(c) != std::string_view::npos) {
                break;
            }
        }
        if (end == 0) {
            throw UnknownExpression();
        }
        std::string word(rest_.substr(0, end));
        rest_.remove_prefix(end);
        return word;
    }

    double ReadFunction(std::string_view name) {
        const auto found = std::find_if(dateFunctions.begin(), dateFunctions.end(), [&](const auto& entry) {
            return EqualIgnoringCase(entry.name, name);
        });
        if (found == dateFunctions.end()) {
            throw UnknownExpression();
        }
        Require('(');
        Numbers numbers;
        do {
            numbers.push_back(ToDouble(ReadJoined(), locale_));
            constexpr double largest = 3e6; // more days than dates have
            if (!(std::abs(numbers.back()) < largest)) {
                throw UnknownExpression();
            }
        } while (Take(',') || Take(';'));
        Require(')');
        if (numbers.size() != found->arguments) {
            throw UnknownExpression();
        }
        return found->value(numbers);
    }

    std::string_view rest_;
    const CellLookup& lookUp_;
    const Locale& locale_;
    int depth_ = 0;
};

} // namespace

std::optional<Variant> ComputedArgument(std::string_view text, const CellLookup& lookUp,
                                        const Locale& locale) {
    try {
        return ExpressionReader(text, lookUp, locale).ReadWhole();
    } catch (const UnknownExpression&) {
        return std::nullopt;
    }
}

} // namespace qel
