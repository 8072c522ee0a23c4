#include "function/formula/ParseFormula.h"

#include "function/formula/DateFunction.h"
#include "function/formula/FormulaError.h"
#include "function/formula/Tokens.h"
#include "platform/value/AutomationError.h"
#include "text/CaseFold.h"

#include <fmt/format.h>

#include <array>

namespace qel {

namespace {

/// No nesting in the grammar: a call holds plain values, array constants of plain values, and DATE of
/// numbers.
class FormulaParser {
public:
    FormulaParser(std::string_view text, const FormulaDates& dates)
        : reader_(text), token_(reader_.Next()), dates_(dates) {}

    Formula Parse() {
        if (token_.IsSymbol('=')) {
            Take();
        }
        if (token_.kind == TokenKind::End) {
            throw FormulaError(token_.position, "The formula is empty");
        }
        Formula formula = ParseFunctionName();
        Expect('(', "the function's name");
        ParseArguments(formula.arguments);
        if (token_.kind != TokenKind::End) {
            throw FormulaError(token_.position,
                               fmt::format("Expected the end of the formula, found {}", Describe(token_)));
        }
        return formula;
    }

private:
    Token Take() {
        auto taken = std::move(token_);
        token_ = reader_.Next();
        return taken;
    }

    void Expect(char symbol, std::string_view after) {
        if (!token_.IsSymbol(symbol)) {
            throw FormulaError(token_.position, fmt::format("Expected '{}' after {}, found {}", symbol, after,
                                                            Describe(token_)));
        }
        Take();
    }

    Formula ParseFunctionName() {
        if (token_.kind != TokenKind::Name) {
            throw FormulaError(token_.position,
                               fmt::format("Expected a function's name, found {}", Describe(token_)));
        }
        const auto name = Take();
        constexpr std::string_view className = "OrmFunctionQel4.OrmQelFunction.";
        if (EqualIgnoringCase(std::string_view(name.text).substr(0, className.size()), className)) {
            return {name.text.substr(className.size()), name.position, {}};
        }
        return {name.text, name.position, {}};
    }

    /// From behind the opening parenthesis to behind the closing one.
    void ParseArguments(std::vector<FormulaArgument>& arguments) {
        if (token_.IsSymbol(')')) {
            Take();
            return;
        }
        while (true) {
            arguments.push_back(ParseArgument());
            if (token_.IsSymbol(')')) {
                Take();
                return;
            }
            TakeSeparator();
        }
    }

    bool AtSeparator() const { return token_.IsSymbol(',') || token_.IsSymbol(';'); }

    /// Which of ',' and ';' separates arguments is the locale's choice; one formula uses one of them.
    void TakeSeparator() {
        if (!AtSeparator()) {
            throw FormulaError(token_.position, fmt::format("Expected ',' or ')' after an argument, found {}",
                                                            Describe(token_)));
        }
        const char separator = token_.text.front();
        if (separator_ != '\0' && separator != separator_) {
            throw FormulaError(token_.position,
                               fmt::format("Arguments are separated by '{}' before, and by '{}' here",
                                           separator_, separator));
        }
        separator_ = separator;
        Take();
    }

    FormulaArgument ParseArgument() {
        FormulaArgument argument;
        argument.position = token_.position;
        if (AtSeparator() || token_.IsSymbol(')')) {
            return argument;
        }
        argument.value = token_.IsSymbol('{') ? ParseArray() : ParseScalar();
        return argument;
    }

    Variant ParseArray() {
        constexpr std::array<char, 3> separators = {',', ';', '\\'};
        Take();
        std::vector<Variant> elements;
        char separator = '\0';
        while (true) {
            elements.push_back(ParseConstant("an array constant's element"));
            if (token_.IsSymbol('}')) {
                Take();
                return Variant::List(std::move(elements));
            }
            char found = '\0';
            for (const char candidate : separators) {
                if (token_.IsSymbol(candidate)) {
                    found = candidate;
                }
            }
            if (found == '\0') {
                throw FormulaError(
                    token_.position,
                    fmt::format("Expected ',' or '}}' in an array constant, found {}", Describe(token_)));
            }
            if (separator != '\0' && found != separator) {
                throw FormulaError(
                    token_.position,
                    "An array constant has one row or one column here: its elements are separated "
                    "by one kind of separator");
            }
            separator = found;
            Take();
        }
    }

    Variant ParseScalar() {
        if (token_.kind == TokenKind::Name && EqualIgnoringCase(token_.text, "DATE")) {
            return ParseDateCall();
        }
        return ParseConstant("an argument");
    }

    /// A text, a number, TRUE or FALSE.
    Variant ParseConstant(std::string_view role) {
        if (token_.kind == TokenKind::Text) {
            return Take().text;
        }
        if (token_.kind == TokenKind::Name && EqualIgnoringCase(token_.text, "TRUE")) {
            Take();
            return true;
        }
        if (token_.kind == TokenKind::Name && EqualIgnoringCase(token_.text, "FALSE")) {
            Take();
            return false;
        }
        return ParseNumber(role);
    }

    double ParseNumber(std::string_view role) {
        double sign = 1;
        if (token_.IsSymbol('-') || token_.IsSymbol('+')) {
            sign = Take().IsSymbol('-') ? -1 : 1;
        }
        if (token_.kind != TokenKind::Number) {
            throw FormulaError(token_.position, fmt::format("Expected {}, found {}", role, Describe(token_)));
        }
        return sign * Take().number;
    }

    Variant ParseDateCall() {
        const auto name = Take();
        Expect('(', "DATE");
        std::array<double, 3> parts{};
        for (std::size_t i = 0; i < parts.size(); ++i) {
            if (i > 0) {
                TakeSeparator();
            }
            parts[i] = ParseNumber("a number in DATE(year,month,day)");
        }
        Expect(')', "the day of DATE(year,month,day)");
        constexpr double firstYear = 1900;
        if (!dates_.takesYearsBefore1900 && parts[0] < firstYear) {
            throw FormulaError(name.position, "DATE has a year before 1900");
        }
        try {
            return DateOf(parts[0], parts[1], parts[2]).days - dates_.nullDate;
        } catch (const AutomationError&) {
            throw FormulaError(name.position, "DATE gives a day outside the years 1900 to 9999");
        }
    }

    TokenReader reader_;
    Token token_;
    FormulaDates dates_;
    char separator_ = '\0';
};

} // namespace

Formula ParseFormula(std::string_view text, const FormulaDates& dates) {
    return FormulaParser(text, dates).Parse();
}

} // namespace qel
