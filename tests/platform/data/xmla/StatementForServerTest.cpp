#include "platform/data/xmla/StatementForServer.h"

#include "platform/data/xmla/CellsetAnswer.h"
#include "platform/data/xmla/XmlaRequest.h"

#include <gtest/gtest.h>

namespace qel {
namespace {

struct TextCase {
    const char* what;
    const char *text, *expected;
};

TEST(StatementForServer, LeavesEmptyElementsOutAndNothingElse) {
    const TextCase cases[] = {
        {"the sum over OBS members", "' SUM ({  , [OBS].[a],[OBS].[b] }) '",
         "' SUM ({   [OBS].[a],[OBS].[b] }) '"},
        {"several empty elements", "{,\t, [a]}", "{\t [a]}"},
        {"line ends between", "{ \r\n , [a]}", "{ \r\n  [a]}"},
        {"commas between elements", "{[a] , [b]}", "{[a] , [b]}"},
        {"inside a name", "{ [x{ , y]]{ , ], [b]}", "{ [x{ , y]]{ , ], [b]}"},
        {"inside quotes", "{ \"{ , \"\"{ , \" , [b]}", "{ \"{ , \"\"{ , \" , [b]}"},
        {"an apostrophe quotes nothing", "'{ , [O''Neill]}'", "'{  [O''Neill]}'"},
        {"a name that never ends", "{ [a , ", "{ [a , "},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(WithoutEmptyElements(c.text), c.expected) << c.what;
    }
}

TEST(StatementForServer, ReplacesNamesRightBelowAHierarchy) {
    const MemberLookup find = [](const std::string& hierarchy,
                                 const std::string& name) -> std::optional<std::string> {
        if (hierarchy == "[S].[Code]" && (name == "42" || name == "a]b")) {
            return "[S].[Code].[All].[4].[" + name + "!]";
        }
        return std::nullopt;
    };
    const TextCase cases[] = {
        {"the name function's path", "where (  [S].[Code].[42] )", "where (  [S].[Code].[All].[4].[42!] )"},
        {"a bracket in the name", "[S].[Code].[a]]b]", "[S].[Code].[All].[4].[a]b!]"},
        {"a path that goes on with a name", "[S].[Code].[42].[421]", "[S].[Code].[42].[421]"},
        {"a path that goes on with a function", "[S].[Code].[42].Children", "[S].[Code].[42].Children"},
        {"an unknown member", "[S].[Code].[43]", "[S].[Code].[43]"},
        {"another hierarchy", "[S].[Name].[42]", "[S].[Name].[42]"},
        {"a hierarchy alone", "{ [S].[Code] }", "{ [S].[Code] }"},
        {"in quotes", "\"[S].[Code].[42]\"", "\"[S].[Code].[42]\""},
        {"in a name", "[x [S].[Code].[42]", "[x [S].[Code].[42]"},
        {"several", "{[S].[Code].[42],[S].[Code].[42]}",
         "{[S].[Code].[All].[4].[42!],[S].[Code].[All].[4].[42!]}"},
        {"cut off", "[S].[Code].[4", "[S].[Code].[4"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(WithMembersOfLowerLevels(c.text, find), c.expected) << c.what;
    }
}

TEST(CellsetAnswer, NamesMembersByTheEndOfTheirPath) {
    const TextCase cases[] = {
        {"a path", "[Date].[2024].[Q1].[1]", "1"},
        {"brackets", "[OBS].[Lod [A]]]", "Lod [A]"},
        {"a key is no name", "[Date].&[2024]", ""},
        {"a key above a name", "[Date].&[2024].[1]", "1"},
        {"no brackets", "Measures", ""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(LastNameOf(c.text), c.expected) << c.what;
    }
}

TEST(XmlaRequest, CarriesEveryCharacterOfAStatement) {
    const std::string request = ComposeExecute("a\r\nb <c> & \"d\" 'e' \x01", {{"Catalog", "R&D"}});
    EXPECT_NE(request.find("<Statement>a&#13;\nb &lt;c&gt; &amp; \"d\" 'e' </Statement>"), std::string::npos)
        << request;
    EXPECT_NE(request.find("<PropertyList><Catalog>R&amp;D</Catalog></PropertyList>"), std::string::npos)
        << request;
}

} // namespace
} // namespace qel
