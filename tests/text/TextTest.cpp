#include "text/Text.h"

#include "text/CaseFold.h"
#include "text/Suggestion.h"

#include <gtest/gtest.h>

namespace qel {
namespace {

TEST(Text, FoldsTheLettersOfCasedAlphabetsAndNothingElse) {
    const struct {
        const char *what, *text, *folded;
    } cases[] = {
        {"ASCII beside its neighbours @ [ ` {", "@AZ[`az{", "@az[`az{"},
        {"Latin of two bytes, the multiplication sign is no letter", "ÀÉÞ×ß", "àéþ×ß"},
        {"letters in pairs, both parities", "ĀāĹĺŸŽ", "āāĺĺÿž"},
        {"dotted I becomes the one-byte letter", "İstanbul", "istanbul"},
        {"a letter of three bytes becomes one of two", "STRAẞE", "straße"},
        {"a letter of two bytes becomes one of three", "Ⱥ", "ⱥ"},
        {"Greek and Cyrillic", "ΑΩΣ ЖЁЯ", "αωσ жёя"},
        {"Hebrew, no-break space and emoji stay", "שלום\u00A0😀", "שלום\u00A0😀"},
        {"bytes that are not UTF-8 stay, letters after them fold",
         "\xC3"
         "A\xFF"
         "B\xE2\x82",
         "\xC3"
         "a\xFF"
         "b\xE2\x82"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(FoldCase(c.text), c.folded) << c.what;
    }
}

TEST(Text, ComparesNamesWithoutLetterCase) {
    EXPECT_TRUE(EqualIgnoringCase("Dépenses", "DÉPENSES"));
    EXPECT_TRUE(EqualIgnoringCase("İ", "i"));
    EXPECT_TRUE(EqualIgnoringCase("", ""));
    EXPECT_FALSE(EqualIgnoringCase("All", "All "));
    EXPECT_FALSE(EqualIgnoringCase("Al", "All"));
    EXPECT_FALSE(EqualIgnoringCase("שכר", "שכ"));
    EXPECT_TRUE(ContainsIgnoringCase("mySUPERsum1", "SuperSum"));
    EXPECT_FALSE(ContainsIgnoringCase("Super Sum1", "SuperSum"));
}

TEST(Text, TellsWellFormedUtf8) {
    for (const char* good : {"", "plain", "é", "ש", "\xED\x9F\xBF", "😀", "\xF4\x8F\xBF\xBF"}) {
        EXPECT_TRUE(IsValidUtf8(good)) << good;
    }
    for (const char* bad :
         {"\x80", "\xC3", "\xC3(", "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF",
          "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "a\xFF", "\xE2\x82"}) {
        EXPECT_FALSE(IsValidUtf8(bad)) << bad;
    }
}

TEST(Text, TrimsBlanksAndNothingElse) {
    const struct {
        const char *text, *trimmed;
    } cases[] = {{"  a b  ", "a b"},   {"", ""},
                 {"    ", ""},         {"a", "a"},
                 {" \tA\t ", "\tA\t"}, {"\u00A0 x \u00A0", "\u00A0 x \u00A0"}};
    for (const auto& c : cases) {
        std::string inPlace = c.text;
        Trim(inPlace);
        EXPECT_EQ(inPlace, c.trimmed);
        EXPECT_EQ(Trimmed(c.text), c.trimmed);
    }
}

TEST(Text, CountsCharactersAsUtf16) {
    EXPECT_EQ(LengthInUtf16("abc"), 3U);
    EXPECT_EQ(LengthInUtf16("שכר"), 3U);
    EXPECT_EQ(LengthInUtf16("€"), 1U);
    EXPECT_EQ(LengthInUtf16("😀"), 2U);
}

TEST(Text, SuggestsWordsThatDifferInFewLettersWhateverTheirBytes) {
    const KnownWords words({"Main", "רכשים", "כספיים", "Café"});
    using Words = std::vector<std::string>;
    EXPECT_EQ(words.Nearest("Mian", 3), Words{"Main"});
    EXPECT_EQ(words.Nearest("כספים", 3), Words{"כספיים"});
    EXPECT_EQ(words.Nearest("cafe", 3), Words{"Café"});
    EXPECT_EQ(words.Nearest("\x80", 3), Words{});
    EXPECT_EQ(Suggestion("כספים", words.All()), "; did you mean \"כספיים\"?");
}

TEST(Text, ReplacesEveryOccurrenceOnce) {
    EXPECT_EQ(ReplaceAll("'a''b'", "'", "''"), "''a''''b''");
    EXPECT_EQ(ReplaceAll("aaa", "aa", "b"), "ba");
    EXPECT_EQ(ReplaceAll("abc", "", "x"), "abc");
}

} // namespace
} // namespace qel
