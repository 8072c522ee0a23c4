#include "engine/eval/FormatText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>

namespace qel::engine {

namespace {

/// A number in decimal: 0.digits times 10^exponent.
struct Decimal {
    bool isNegative = false;
    std::string digits; ///< without zeros at the start
    int exponent = 0;
};

Decimal WithoutLeadingZeros(Decimal number) {
    const std::size_t zeros = std::min(number.digits.find_first_not_of('0'), number.digits.size());
    number.digits.erase(0, zeros);
    number.exponent = number.digits.empty() ? 0 : number.exponent - static_cast<int>(zeros);
    return number;
}

/// Exact where the value is; else the 15 digits that a double holds.
Decimal DecimalOf(const CellValue& value) {
    Decimal number;
    std::string text = value.isExact ? fmt::format("{}", value.scaled) : fmt::format("{:.14e}", value.number);
    number.isNegative = text.starts_with('-');
    text.erase(0, number.isNegative ? 1 : 0);
    if (value.isExact) {
        number.exponent = static_cast<int>(text.size()) - value.decimals;
        number.digits = text;
        return WithoutLeadingZeros(number);
    }
    const std::size_t e = text.find('e');
    number.exponent = static_cast<int>(std::strtol(text.c_str() + e + 1, nullptr, 10)) + 1;
    number.digits = text.substr(0, 1) + text.substr(2, e - 2);
    number.digits.erase(number.digits.find_last_not_of('0') + 1);
    return WithoutLeadingZeros(number);
}

/// Keeps so many digits behind the point, rounding halves away from zero.
Decimal Rounded(Decimal number, int decimals) {
    const int kept = number.exponent + decimals;
    if (kept >= static_cast<int>(number.digits.size())) {
        return number;
    }
    const bool up = kept >= 0 && number.digits[static_cast<std::size_t>(kept)] >= '5';
    number.digits.resize(static_cast<std::size_t>(std::max(kept, 0)));
    if (!up) {
        return WithoutLeadingZeros(number);
    }
    std::size_t place = number.digits.size();
    while (place > 0 && number.digits[place - 1] == '9') {
        number.digits[--place] = '0';
    }
    if (place > 0) {
        ++number.digits[place - 1];
        return number;
    }
    number.digits.insert(0, 1, '1');
    ++number.exponent;
    return number;
}

/// A sign of a picture: a digit's place, the point, or characters that stand for themselves.
struct Sign {
    enum class Kind { Zero, Digit, Point, Exponent, Literal } kind;
    std::string text;
};

/// A section of a picture of digits.
struct Picture {
    std::vector<Sign> signs;
    int wholePlaces = 0, decimals = 0, exponentPlaces = 0;
    int shift = 0; ///< powers of ten that the number is multiplied by
    bool hasGroups = false, hasPoint = false, hasExponent = false, exponentHasPlus = false;
    int commas = 0; ///< since the last digit's place
};

void AddPlace(Picture& picture, char c) {
    if (picture.hasExponent) {
        picture.exponentPlaces += c == '0' ? 1 : 0;
        return;
    }
    picture.hasGroups = picture.hasGroups || picture.commas > 0;
    picture.commas = 0;
    ++(picture.hasPoint ? picture.decimals : picture.wholePlaces);
    picture.signs.push_back({c == '0' ? Sign::Kind::Zero : Sign::Kind::Digit, {}});
}

void AddPoint(Picture& picture) {
    picture.shift -= 3 * picture.commas; // commas before the point divide by thousands
    picture.commas = 0;
    picture.hasPoint = true;
    picture.signs.push_back({Sign::Kind::Point, {}});
}

void AddLiteral(Picture& picture, std::string_view text) {
    picture.signs.push_back({Sign::Kind::Literal, std::string(text)});
}

bool IsExponent(std::string_view section, std::size_t i) {
    return (section[i] == 'E' || section[i] == 'e') && i + 1 < section.size() &&
           (section[i + 1] == '+' || section[i + 1] == '-');
}

/// Reads the sign at `i` and returns the next place.
std::size_t ReadSign(std::string_view section, std::size_t i, Picture& picture, std::string& fault) {
    const char c = section[i];
    if (c == '0' || c == '#') {
        AddPlace(picture, c);
    } else if (c == '.' && !picture.hasPoint) {
        AddPoint(picture);
    } else if (c == ',') {
        picture.commas += picture.wholePlaces > 0 && !picture.hasPoint ? 1 : 0;
    } else if (c == '%') {
        picture.shift += 2;
        AddLiteral(picture, "%");
    } else if (c == '"') {
        const std::size_t end = std::min(section.find('"', i + 1), section.size());
        AddLiteral(picture, section.substr(i + 1, end - i - 1));
        return end + 1;
    } else if (c == '\\') {
        AddLiteral(picture, section.substr(i + 1, 1));
        return i + 2;
    } else if (IsExponent(section, i) && !picture.hasExponent) {
        picture.hasExponent = true;
        picture.exponentHasPlus = section[i + 1] == '+';
        picture.signs.push_back({Sign::Kind::Exponent, std::string(1, c)});
        return i + 2;
    } else if (std::string_view("@&<>!").find(c) != std::string_view::npos) {
        fault = fmt::format("the sign {} of a format is for texts; write it in quotes to show it", c);
    } else {
        AddLiteral(picture, section.substr(i, 1));
    }
    return i + 1;
}

Picture ReadPicture(std::string_view section, std::string& fault) {
    Picture picture;
    for (std::size_t i = 0; i < section.size() && fault.empty();) {
        i = ReadSign(section, i, picture, fault);
    }
    if (!picture.hasPoint) {
        picture.shift -= 3 * picture.commas;
    }
    return picture;
}

/// The digit at a power of ten, or '0' outside of the number's digits.
char DigitAt(const Decimal& number, int power) {
    const int place = number.exponent - 1 - power;
    return place >= 0 && place < static_cast<int>(number.digits.size())
               ? number.digits[static_cast<std::size_t>(place)]
               : '0';
}

std::string ExponentText(const Picture& picture, const Sign& sign, int exponent) {
    const std::string_view mark = exponent < 0 ? "-" : picture.exponentHasPlus ? "+" : "";
    return fmt::format("{}{}{:0{}}", sign.text, mark, std::abs(exponent),
                       std::max(picture.exponentPlaces, 1));
}

/// Writes a number along a picture, from its first place to its last.
class PictureWriter {
public:
    PictureWriter(const Picture& picture, Decimal number, int exponent)
        : picture_(picture), number_(std::move(number)), exponent_(exponent),
          power_(picture.wholePlaces - 1) {}

    std::string Write() {
        for (const Sign& sign : picture_.signs) {
            switch (sign.kind) {
            case Sign::Kind::Zero:
            case Sign::Kind::Digit:
                power_ >= 0 ? WriteWhole(sign.kind) : WriteDecimal(sign.kind);
                --power_;
                break;
            case Sign::Kind::Point:
                WriteRestOfWhole();
                text_ += '.';
                break;
            case Sign::Kind::Exponent:
                text_ += ExponentText(picture_, sign, exponent_);
                break;
            case Sign::Kind::Literal:
                text_ += sign.text;
                break;
            }
        }
        return text_;
    }

private:
    void WriteWhole(Sign::Kind kind) {
        WriteRestOfWhole(); // the first place takes what the picture has no places for
        if (kind == Sign::Kind::Zero || hasBegun_ || number_.exponent > power_) {
            WriteDigit(power_);
        }
    }

    void WriteRestOfWhole() {
        for (int power = number_.exponent - 1;
             !hasRest_ && power > std::max(power_, picture_.wholePlaces - 1); --power) {
            WriteDigit(power);
        }
        hasRest_ = true;
    }

    void WriteDigit(int power) {
        hasBegun_ = true;
        text_ += DigitAt(number_, power);
        if (picture_.hasGroups && power > 0 && power % 3 == 0) {
            text_ += ',';
        }
    }

    /// Places written # leave out zeros at the end.
    void WriteDecimal(Sign::Kind kind) {
        const int lowest = number_.exponent - static_cast<int>(number_.digits.size());
        if (kind == Sign::Kind::Zero || lowest <= power_) {
            text_ += DigitAt(number_, power_);
        }
    }

    const Picture& picture_;
    Decimal number_;
    int exponent_;
    int power_;
    bool hasBegun_ = false, hasRest_ = false;
    std::string text_;
};

Decimal WithoutTrailingZeros(Decimal number) {
    number.digits.erase(number.digits.find_last_not_of('0') + 1);
    return number.digits.empty() ? Decimal{number.isNegative, {}, 0} : number;
}

/// As many digits as a double needs, without an exponent where it stays short.
std::string GeneralText(const CellValue& value) {
    const Decimal number = WithoutTrailingZeros(DecimalOf(value));
    constexpr int longest = 15;
    const std::string sign = number.isNegative ? "-" : "";
    if (number.digits.empty()) {
        return "0";
    }
    if (number.exponent > longest && !value.isExact) {
        return fmt::format("{:.15G}", value.number);
    }
    if (number.exponent <= -4) {
        return fmt::format("{:.15G}", value.number);
    }
    std::string whole;
    for (int power = number.exponent - 1; power >= 0; --power) {
        whole += DigitAt(number, power);
    }
    std::string decimals;
    const int lowest = number.exponent - static_cast<int>(number.digits.size());
    for (int power = -1; power >= lowest; --power) {
        decimals += DigitAt(number, power);
    }
    return sign + (whole.empty() ? "0" : whole) + (decimals.empty() ? "" : "." + decimals);
}

} // namespace

std::string FormatNumber(const CellValue& value, std::string_view section, std::string& fault) {
    if (section.empty()) {
        return GeneralText(value);
    }
    const Picture picture = ReadPicture(section, fault);
    Decimal number = DecimalOf(value);
    int exponent = 0;
    if (picture.hasExponent && !number.digits.empty()) {
        const int places = std::max(picture.wholePlaces, 1);
        exponent = number.exponent - places;
        number.exponent = places;
        number = Rounded(number, picture.decimals);
        exponent += number.exponent - places; // 9.99 became 10.0
        number.exponent = places;
    } else if (!number.digits.empty()) {
        number.exponent += picture.shift;
        number = Rounded(number, picture.decimals);
    }
    number = WithoutTrailingZeros(number);
    const bool hasPlaces = picture.wholePlaces + picture.decimals > 0;
    const bool hasSign = number.isNegative && !number.digits.empty() && hasPlaces;
    return (hasSign ? "-" : "") + PictureWriter(picture, number, exponent).Write();
}

} // namespace qel::engine
