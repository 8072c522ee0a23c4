#include "why/WhyTexts.h"

#include "cube/ValueQuery.h"
#include "function/FunctionTexts.h"
#include "lang/StringTable.h"
#include "platform/dialog/ReadingOrder.h"
#include "platform/value/Conversion.h"
#include "platform/value/FailureText.h"
#include "platform/value/ValueText.h"
#include "text/Text.h"

#include <fmt/format.h>

#include <algorithm>

namespace qel {

namespace {

/// Numbers among the component's strings.
namespace Word {
constexpr std::int32_t everything = 1632, notInCube = 1633, reason = 1634, hiddenError = 1635, periods = 1636,
                       rule = 1637, note = 1638, lines = 1639, time = 1640, noStatement = 1641,
                       compared = 1642, comparedTexts = 1643;
} // namespace Word

class WhyComposer {
public:
    WhyComposer(const ValueReason& reason, std::int16_t language) : reason_(reason), language_(language) {}

    WhyTexts Compose() {
        WhyTexts texts;
        for (std::size_t i = 0; i < reason_.arguments.size(); ++i) {
            texts.arguments.push_back(Marked(NameAt(i)) + ": " + Became(reason_.arguments[i]));
        }
        Explain();
        texts.explanation = std::move(lines_);
        for (const std::string& statement : reason_.statements) {
            texts.statement += (texts.statement.empty() ? "" : "\n") + statement;
        }
        return texts;
    }

private:
    std::string Text(std::int32_t number) const { return ResourceString(number, language_); }

    template <class... Values>
    void Line(std::int32_t number, const Values&... values) {
        lines_.push_back(fmt::format(fmt::runtime(Text(number)), values...));
    }

    void Lines(std::int32_t number, const std::vector<Reason>& reasons) {
        for (const Reason& reason : reasons) {
            Line(number, Named(reason));
        }
    }

    /// The names of a name formula's arguments are the interface's.
    std::string NameAt(std::size_t argument) const {
        constexpr std::size_t valueArguments = 18;
        return reason_.arguments.size() == valueArguments
                   ? ValueArgumentName(argument, language_ == Language::Hebrew)
                   : reason_.arguments[argument].name;
    }

    std::string Named(Reason reason) const {
        for (std::size_t i = 0; i < reason_.arguments.size(); ++i) {
            if (reason.argument == reason_.arguments[i].name) {
                reason.argument = NameAt(i);
                break;
            }
        }
        for (Reason::Field& field : reason.fields) {
            if (!field.day) {
                field.text = Marked(field.text);
            }
        }
        for (std::string& name : reason.nearest.names) {
            name = Marked(name);
        }
        return ReasonText(reason, language_);
    }

    /// Within a Hebrew line, paths and members read from left to right.
    std::string Marked(const std::string& text) const {
        return language_ == Language::Hebrew ? InOwnDirection(text) : text;
    }

    std::string Became(const ArgumentReason& argument) const {
        std::string text;
        for (const auto& member : argument.members) {
            text += fmt::format("{}{}{}", text.empty() ? "" : "; ",
                                Marked(argument.key + " → " + member.uniqueName),
                                member.caption == argument.key ? "" : ", " + Marked(member.caption));
        }
        if (!text.empty()) {
            return text;
        }
        if (argument.role == ArgumentRole::Missing) {
            return fmt::format(fmt::runtime(Text(Word::notInCube)), Marked(argument.key));
        }
        return Given(argument);
    }

    std::string Given(const ArgumentReason& argument) const {
        const auto first = argument.given.empty() ? std::nullopt : argument.given.front();
        const bool isName = argument.name == "cubeFile" || argument.name == "CubeName";
        return !first || (!isName && ModSetCube::IsUnrestricted(*first)) ? Text(Word::everything)
                                                                         : Marked(*first);
    }

    void Explain() {
        Lines(Word::reason, reason_.why);
        if (reason_.unsent) {
            Line(Word::reason, Named(*reason_.unsent));
        }
        if (const auto& failure = reason_.result.failure) {
            ExplainFailure(FailureText(*failure));
        }
        Lines(Word::note, reason_.notes);
        for (std::size_t i = 0; i < reason_.arguments.size(); ++i) {
            if (reason_.arguments[i].given.size() > 1) {
                Line(Word::note, ReasonText({ReasonCode::FirstKeyOnly, {NameAt(i)}}, language_));
            }
        }
        if (reason_.periods) {
            Line(Word::periods, Named(reason_.periods->periods));
            Line(Word::rule, Named(reason_.periods->rule));
            Lines(Word::note, reason_.periods->notes);
        }
        if (reason_.lineCount) {
            Line(Word::lines, *reason_.lineCount);
        }
        if (reason_.statements.empty()) {
            Line(Word::noStatement);
        }
        Line(Word::time, Milliseconds(reason_.firstTime), Milliseconds(reason_.openTime));
    }

    /// Rows of a Hebrew line that is Latin but for its beginning would read from the wrong side.
    void ExplainFailure(const std::string& text) {
        const bool isHebrew = language_ == Language::Hebrew;
        Line(Word::hiddenError, isHebrew ? std::string() : text);
        if (isHebrew) {
            lines_.push_back(text);
        }
    }

    static std::string Milliseconds(std::chrono::nanoseconds time) {
        return fmt::format("{:.2f}", std::chrono::duration<double, std::milli>(time).count());
    }

    const ValueReason& reason_;
    std::int16_t language_;
    std::vector<std::string> lines_;
};

} // namespace

WhyTexts ComposeWhyTexts(const ValueReason& reason, std::int16_t language) {
    return WhyComposer(reason, language).Compose();
}

std::vector<std::string> ComparisonTexts(const FormulaResult& result, const FormulaResult& other,
                                         const std::string& file, std::int16_t language,
                                         const Locale& locale) {
    const auto shown = [&](const std::string& text) {
        return language == Language::Hebrew ? InOwnDirection(text) : text;
    };
    const std::string here = shown(ValueText(result.value)), there = shown(ValueText(other.value));
    std::vector<std::string> texts{file};
    if (IsNumeric(result.value, locale) && IsNumeric(other.value, locale)) {
        const double difference =
            ValueDifference(ToDouble(result.value, locale), ToDouble(other.value, locale));
        texts.push_back(fmt::format(fmt::runtime(ResourceString(Word::compared, language)), here, there,
                                    shown(NumberText(difference))));
    } else {
        texts.push_back(
            fmt::format(fmt::runtime(ResourceString(Word::comparedTexts, language)), here, there));
    }
    if (other.failure) {
        texts.push_back(shown(FailureText(*other.failure)));
    }
    return texts;
}

std::vector<std::string> Wrapped(const std::vector<std::string>& texts, std::size_t width) {
    std::vector<std::string> rows;
    for (const std::string& text : texts) {
        const bool isRightToLeft = BeginsRightToLeft(text);
        std::string row;
        const auto add = [&] { rows.push_back(isRightToLeft ? LinesInOwnDirection(row) : row); };
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t end = std::min(text.find(' ', at), text.size());
            const std::string word = text.substr(at, end - at);
            if (!row.empty() && LengthInUtf16(row) + LengthInUtf16(word) >= width) {
                add();
                row = isRightToLeft ? "" : "    ";
            }
            row += (row.empty() || row.ends_with("    ") ? "" : " ") + word;
            at = end + 1;
        }
        add();
    }
    return rows;
}

} // namespace qel
