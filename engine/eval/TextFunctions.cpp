#include "engine/eval/FormatText.h"
#include "engine/eval/FunctionLookup.h"
#include "text/CaseFold.h"
#include "text/UpperCase.h"

#include <algorithm>
#include <array>

// Functions of texts. Places and lengths count characters, from 1.

namespace qel::engine {

namespace {

bool IsContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

std::int64_t CountCharacters(std::string_view text) {
    return std::count_if(text.begin(), text.end(), [](char c) { return !IsContinuation(c); });
}

/// The byte at which the character number `place`, from 0, starts; the text's size beyond its end.
std::size_t ByteOf(std::string_view text, std::int64_t place) {
    std::size_t byte = 0;
    for (; place > 0 && byte < text.size(); --place) {
        do {
            ++byte;
        } while (byte < text.size() && IsContinuation(text[byte]));
    }
    return byte;
}

std::string_view Part(std::string_view text, std::int64_t first, std::int64_t count) {
    const std::size_t begin = ByteOf(text, first);
    const std::string_view rest = text.substr(begin);
    return rest.substr(0, ByteOf(rest, count));
}

/// A text made by make(evaluator, text, numbers...), whose numbers are whole.
template <class... Numbers, class Make>
Bound TextOf(Call& call, const Make& make, Numbers... numbers) {
    TextPtr text = call.Text(0);
    const bool isConstant = text->IsConstant() && (true && ... && numbers->IsConstant());
    auto shared = std::make_tuple(std::shared_ptr<NumberExpression>(std::move(numbers))...);
    return MakeText(isConstant, [make, text = std::move(text), shared](Evaluator& evaluator) {
        return std::apply(
            [&](const auto&... number) {
                return std::string(
                    make(text->Evaluate(evaluator), WholeNumber(number->Evaluate(evaluator))...));
            },
            shared);
    });
}

/// A length or a place may not be negative.
NumberPtr NotBelow(Call& call, std::size_t argument, std::int64_t smallest) {
    NumberPtr number = call.Number(argument);
    const bool isConstant = number->IsConstant();
    Binder& binder = call.binder;
    return MakeNumber(isConstant, [smallest, &binder, node = call.arguments[argument],
                                   number = std::move(number)](Evaluator& evaluator) {
        const CellValue value = number->Evaluate(evaluator);
        if (WholeNumber(value) < smallest) {
            binder.Fail(node, smallest == 0 ? "a length cannot be below 0" : "a place in a text starts at 1");
        }
        return value;
    });
}

Bound Left(Call& call) {
    return TextOf(
        call, [](const std::string& text, std::int64_t count) { return std::string(Part(text, 0, count)); },
        NotBelow(call, 1, 0));
}

Bound Right(Call& call) {
    return TextOf(
        call,
        [](const std::string& text, std::int64_t count) {
            return text.substr(ByteOf(text, CountCharacters(text) - count));
        },
        NotBelow(call, 1, 0));
}

Bound Mid(Call& call) {
    if (!call.Has(2)) {
        return TextOf(
            call,
            [](const std::string& text, std::int64_t from) { return text.substr(ByteOf(text, from - 1)); },
            NotBelow(call, 1, 1));
    }
    return TextOf(
        call,
        [](const std::string& text, std::int64_t from, std::int64_t count) {
            return std::string(Part(text, from - 1, count));
        },
        NotBelow(call, 1, 1), NotBelow(call, 2, 0));
}

Bound UpperCaseOf(Call& call) {
    return TextOf(call, [](const std::string& text) { return UpperCase(text); });
}
Bound LowerCaseOf(Call& call) {
    return TextOf(call, [](const std::string& text) { return FoldCase(text); });
}

std::string WithoutBlanks(std::string_view text, bool left, bool right) {
    while (left && text.starts_with(' ')) {
        text.remove_prefix(1);
    }
    while (right && text.ends_with(' ')) {
        text.remove_suffix(1);
    }
    return std::string(text);
}

Bound TrimBoth(Call& call) {
    return TextOf(call, [](const std::string& text) { return WithoutBlanks(text, true, true); });
}
Bound TrimLeft(Call& call) {
    return TextOf(call, [](const std::string& text) { return WithoutBlanks(text, true, false); });
}
Bound TrimRight(Call& call) {
    return TextOf(call, [](const std::string& text) { return WithoutBlanks(text, false, true); });
}

Bound Length(Call& call) {
    TextPtr text = call.Text(0);
    const bool isConstant = text->IsConstant();
    return MakeNumber(isConstant, [text = std::move(text)](Evaluator& evaluator) {
        return CellValue::Exact(CountCharacters(text->Evaluate(evaluator)), 0);
    });
}

/// The place of the first `sought` in `text` from the character `from` on, or 0.
std::int64_t PlaceIn(std::string_view text, std::string_view sought, std::int64_t from) {
    const std::int64_t length = CountCharacters(text);
    if (text.empty() || from > length) {
        return 0;
    }
    const std::size_t found = text.find(sought, ByteOf(text, from - 1));
    return found == std::string_view::npos ? 0 : CountCharacters(text.substr(0, found)) + 1;
}

/// InStr(text, sought) or InStr(from, text, sought). Letter case counts.
Bound InText(Call& call) {
    const std::size_t first = call.Count() == 3 ? 1 : 0;
    NumberPtr from = first == 1 ? NotBelow(call, 0, 1)
                                : MakeNumber(true, [](Evaluator&) { return CellValue::Exact(1, 0); });
    TextPtr text = call.Text(first);
    TextPtr sought = call.Text(first + 1);
    const bool isConstant = from->IsConstant() && text->IsConstant() && sought->IsConstant();
    return MakeNumber(isConstant, [from = std::move(from), text = std::move(text),
                                   sought = std::move(sought)](Evaluator& evaluator) {
        return CellValue::Exact(PlaceIn(text->Evaluate(evaluator), sought->Evaluate(evaluator),
                                        WholeNumber(from->Evaluate(evaluator))),
                                0);
    });
}

Bound Format(Call& call) {
    NumberPtr value = call.binder.BindValue(call.arguments[0]);
    TextPtr format = call.Text(1);
    const bool isConstant = value->IsConstant() && format->IsConstant();
    Binder& binder = call.binder;
    return MakeText(isConstant, [&binder, node = call.arguments[1], value = std::move(value),
                                 format = std::move(format)](Evaluator& evaluator) {
        const CellValue shown = value->Evaluate(evaluator);
        if (shown.text != nullptr) {
            return *shown.text;
        }
        std::string fault;
        std::string text = FormatText(shown, format->Evaluate(evaluator), fault);
        if (!fault.empty()) {
            binder.Fail(node, fault);
        }
        return text;
    });
}

constexpr std::array<Function, 11> textFunctions{{{"Left", 2, 2, Left},
                                                  {"Right", 2, 2, Right},
                                                  {"Mid", 2, 3, Mid},
                                                  {"Len", 1, 1, Length},
                                                  {"InStr", 2, 3, InText},
                                                  {"UCase", 1, 1, UpperCaseOf},
                                                  {"LCase", 1, 1, LowerCaseOf},
                                                  {"Trim", 1, 1, TrimBoth},
                                                  {"LTrim", 1, 1, TrimLeft},
                                                  {"RTrim", 1, 1, TrimRight},
                                                  {"Format", 2, 2, Format}}};

} // namespace

std::span<const Function> TextFunctions() { return textFunctions; }

} // namespace qel::engine
