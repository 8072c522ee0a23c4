#include "engine/build/CsvReader.h"

#include "engine/build/HeaderLine.h"
#include "engine/build/ReadAhead.h"
#include "qel/engine/EngineError.h"
#include "tests/engine/FaultOf.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <utility>

namespace qel::engine {
namespace {

/// Header and records, one per line: "line:field|field", or "line!fault" for a malformed record.
std::string ReadAll(const std::string& text, std::uint64_t skipLines = 0) {
    std::istringstream input(text);
    std::string result;
    try {
        CsvReader reader(input, "t.csv", 0, 0, skipLines);
        for (const std::string& column : reader.Header()) {
            result += "<" + column + ">";
        }
        while (reader.Next()) {
            result += "\n" + std::to_string(reader.Number());
            if (!reader.Fault().empty()) {
                result += "!" + reader.Fault();
                continue;
            }
            result += ":";
            for (std::size_t i = 0; i < reader.Header().size(); ++i) {
                result += (i == 0 ? "" : "|") + std::string(reader.Field(i));
            }
        }
    } catch (const EngineError& error) {
        result = error.what();
    }
    return result;
}

TEST(CsvReader, ReadsRealWorldFiles) {
    const struct {
        const char* what;
        std::string text, expected;
    } cases[] = {
        {"plain", "a,b\n1,2\n3,4", "<a><b>\n2:1|2\n3:3|4"},
        {"byte order mark, semicolons, CR LF",
         "\xEF\xBB\xBF"
         "a;b\r\n1,5;2\r\n",
         "<a><b>\n2:1,5|2"},
        {"tabs, with empty fields at the ends", "a\tb\tc\n\t2\t\n\t\t\n", "<a><b><c>\n2:|2|\n3:||"},
        {"bars", "a|b\n1|2\n", "<a><b>\n2:1|2"},
        {"old line ends", "a,b\r1,2\r3,4\r", "<a><b>\n2:1|2\n3:3|4"},
        {"the most frequent delimiter outside quotes", "\"a,b,c\";d;e\n1;2;3\n", "<a,b,c><d><e>\n2:1|2|3"},
        {"one column", "a\n1\n", "<a>\n2:1"},
        {"quotes, doubled and around line ends", "a,b\n\"say \"\"hi\"\"\",\"x\ny\"\n5,6\n",
         "<a><b>\n2:say \"hi\"|x\ny\n4:5|6"},
        {"blank lines are no records and are counted", "\n\na,b\n\n1,2\n  \n\n3,4\n\n",
         "<a><b>\n5:1|2\n8:3|4"},
        {"blanks around fields, no-break ones too", "a , b\n 1\xC2\xA0,\"\xC2\xA0 2 \" \n", "<a><b>\n2:1|2"},
        {"Hebrew", "\xD7\xA9\xD7\x9D,b\n\xD7\x90\xD7\x91,2\n", "<\xD7\xA9\xD7\x9D><b>\n2:\xD7\x90\xD7\x91|2"},
        {"header alone", "a,b", "<a><b>"},
        {"columns without a name", "a,,\n1,2,3\n", "<a><><>\n2:1|2|3"},
        {"too few and too many fields", "a,b\n1\n1,2,3\n4,5\n",
         "<a><b>\n2!expected 2 fields, found 1\n3!expected 2 fields, found 3\n4:4|5"},
        {"not UTF-8", "a,b\n\xE9t\xE9,2\n3,4\n",
         "<a><b>\n2!the text is not in the file's encoding; set \"encoding\", such as "
         "\"windows-1255\"\n3:3|4"},
        {"code 0", std::string("a,b\n1\0,2\n3,4\n", 13), "<a><b>\n2!a character with code 0\n3:3|4"},
        {"quotes within fields", "a,b\n5\" pipe,2\n \"x, \"\"y\"\"\" ,3\"\n3,4\n",
         "<a><b>\n2:5\" pipe|2\n3:x, \"y\"|3\"\n4:3|4"},
        {"quotes within the words of a header", "סכום בש\"ח;מע\"מ;שם\nצ'ק;\"א;ב\";ד\"ר\n",
         "<סכום בש\"ח><מע\"מ><שם>\n2:צ'ק|א;ב|ד\"ר"},
        {"a text behind a quote", "a,b\n\"x\"y,2\n3,4\n",
         "<a><b>\n2!a quote stands within a field, and is not doubled\n3:3|4"},
        {"an open quote: reading goes on with the next line", "a,b\n1,2\n\"3,4\n5,6\n7,8\n",
         "<a><b>\n2:1|2\n3!a quote is not closed\n4:5|6\n5:7|8"},
        {"two open quotes", "a,b\n\"3,4\n5,6\n\"7,8\n9,1\n",
         "<a><b>\n2!a quote stands within a field, and is not doubled\n3:5|6\n4!a quote is not "
         "closed\n5:9|1"},
        {"empty file", "", "t.csv: the file is empty, expected a line with the names of the columns"},
        {"blank file", "\xEF\xBB\xBF\n \n",
         "t.csv: the file is empty, expected a line with the names of the columns"},
        {"UTF-16",
         "\xFF\xFE"
         "a",
         "t.csv: line 1: the file is UTF-16, expected UTF-8"},
        {"a column twice", "a,b,a\n", "<a><b><a>"},
        {"a line with the delimiter", "sep=;\n\na,x;b\n1;2\n", "<a,x><b>\n4:1|2"},
        {"a delimiter's line alone", "sep=;\n", "t.csv: the file has no line with the names of the columns"},
        {"header with an open quote", "a,\"b\n1,2\n", "t.csv: line 1: a quote is not closed"},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(ReadAll(test.text), test.expected) << test.what;
    }
}

TEST(CsvReader, LinesAboveTheHeaderAreFoundAndSkipped) {
    const struct {
        const char* text;
        std::uint64_t lines;
        const char* read; ///< with as many lines skipped
    } cases[] = {
        {"a;b;c\n1;2;3\n", 0, "<a><b><c>\n2:1|2|3"},
        {"\xEF\xBB\xBFLedger, 2024\n\n\"x\";;\na;b;\n1,5;2;3\n", 3, "<a><b><>\n5:1,5|2|3"},
        {"Ledger 2024,,,\nfrom 01/01/2024,,,\na,b,c,d\n1,2,3,4\n", 2, "<a><b><c><d>\n4:1|2|3|4"},
        {"\nsep=;\n\na;b\n1;2\n", 0, "<a><b>\n5:1|2"},
        {"a,,\n1,2,3\n", 0, "<a><><>\n2:1|2|3"},
        {"a\n1\n", 0, "<a>\n2:1"},
    };
    for (const auto& test : cases) {
        std::istringstream input(test.text);
        EXPECT_EQ(LinesAboveHeader(input, "t.csv"), test.lines) << test.text;
        EXPECT_EQ(ReadAll(test.text, test.lines), test.read);
    }
    EXPECT_EQ(ReadAll("a\n1\n", 3), "t.csv: \"skipLines\" is 3, but the file has 2 lines");
}

TEST(CsvReader, AFileWithoutLinesIsRefused) {
    EXPECT_EQ(ReadAll(std::string(2 << 20, 'a')),
              "t.csv: line 1: the names of the columns take more than 1 MiB; this is no CSV file");
    const std::string endless(17 << 20, 'a');
    for (const std::string& text : {endless, "a\n" + endless}) {
        EXPECT_EQ(ReadAll(text), "t.csv: a line has more than 16 MiB; this is no CSV file");
    }
    std::istringstream input(endless);
    EXPECT_EQ(FaultOf([&] { LinesAboveHeader(input, "t.csv"); }).text,
              "t.csv: a line has more than 16 MiB; this is no CSV file");
}

/// Records, quoted line ends and CR LF pairs that cross the boundaries of read chunks.
TEST(CsvReader, ReadsOnAcrossChunks) {
    std::string text = "number,text\r\n";
    constexpr int records = 40000;
    for (int i = 0; i < records; ++i) {
        text += std::to_string(i) + ",\"" + std::string(static_cast<std::size_t>(i) % 97, 'x') + "\r\n\"\r\n";
    }
    std::istringstream input(text);
    CsvReader reader(input, "t.csv", 0);
    int record = 0;
    for (; reader.Next(); ++record) {
        ASSERT_EQ(reader.Fault(), "");
        ASSERT_EQ(reader.Field(0), std::to_string(record));
        ASSERT_EQ(reader.Number(), static_cast<std::uint64_t>(record) * 2 + 2);
        ASSERT_EQ(reader.Field(1).size(), static_cast<std::size_t>(record) % 97 + 2);
    }
    EXPECT_EQ(record, records);
}

TEST(CsvReader, AnOpenQuoteDoesNotSwallowABigFile) {
    std::string text = "a,b\n\"1,2\n";
    for (int i = 0; i < 300000; ++i) {
        text += "3,4\n";
    }
    std::istringstream input(text);
    CsvReader reader(input, "t.csv", 0);
    ASSERT_TRUE(reader.Next());
    EXPECT_EQ(reader.Fault(), "no end within 1 MiB; a quote is not closed");
    EXPECT_EQ(reader.Raw(), "\"1,2\n");
    int records = 0;
    while (reader.Next()) {
        records += reader.Fault().empty() ? 1 : 0;
    }
    EXPECT_EQ(records, 300000);
}

/// Over many batches, every record equals the one of a plain reader: its number, fields, raw text and fault.
/// An error of the reader is raised after the records before it, and again on every further call.
TEST(ReadAhead, GivesTheRecordsOfItsReader) {
    std::string text = "number,text\r\n";
    for (int i = 0; i < 60000; ++i) {
        const std::string field(static_cast<std::size_t>(i) % 97, 'x');
        text += i % 1000 == 7    ? "too,many," + field + "\n"
                : i % 1000 == 77 ? "\"a\nb\"," + field + "\r\n"
                                 : std::to_string(i) + ", " + field + "\n";
    }
    for (const std::string& end : {std::string("last,\"line"), std::string(17 << 20, 'a')}) {
        std::istringstream input(text + end), same(text + end);
        CsvReader alone(input, "t.csv", 0);
        ReadAhead ahead(std::make_unique<CsvReader>(same, "t.csv", 0));
        ASSERT_EQ(ahead.HeaderText() + ahead.Delimiter(), alone.HeaderText() + alone.Delimiter());
        const auto next = [](RecordReader& reader) {
            bool isRead = false;
            const std::string failure = FaultOf([&] { isRead = reader.Next(); }).text;
            if (failure != "no fault") {
                return std::pair(false, failure);
            }
            std::string record = fmt::format("{} {} {} {}", reader.Number(), reader.Fault(),
                                             reader.IsComplete(), isRead ? reader.Raw() : "");
            for (std::size_t i = 0; isRead && i < reader.FieldCount(); ++i) {
                record.append("|").append(reader.Field(i));
            }
            return std::pair(isRead, record);
        };
        for (bool isRead = true; isRead;) {
            const auto expected = next(alone);
            ASSERT_EQ(next(ahead).second, expected.second);
            isRead = expected.first;
        }
        EXPECT_EQ(next(ahead), next(alone));
    }
    std::istringstream input(text);
    ReadAhead left(std::make_unique<CsvReader>(input, "t.csv", 0));
    for (int i = 0; i < 20000; ++i) {
        ASSERT_TRUE(left.Next()); // the destructor runs while the other thread reads
    }
}

} // namespace
} // namespace qel::engine
