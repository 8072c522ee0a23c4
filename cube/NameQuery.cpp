#include "cube/NameQuery.h"

#include "platform/value/Conversion.h"
#include "text/ShownText.h"
#include "text/Text.h"

namespace qel::ModSetCube {

namespace {

constexpr std::size_t longestKeyOfLetters = 3;
constexpr std::int32_t rows = 1;

bool IsNameAlready(const std::string& key, const Locale& locale) {
    return LengthInUtf16(key) > longestKeyOfLetters && !IsNumericText(key, locale);
}

} // namespace

std::string ComposeMemberNameStatement(const std::string& cubeName, const std::string& dimType,
                                       const std::string& dimMember) {
    return " SELECT NON EMPTY { [Measures] } on columns,  NON EMPTY  {[SuperSumery].[SumeryName].[" +
           dimType + "Name].Allmembers  } ON ROWS  From [" + cubeName +
           "] where (  [SuperSumery].[SumeryCode].[" + dimMember + "] )";
}

std::string GetMemberName(const ThreadState& thread, const Providers& providers, const Locale& locale,
                          const std::string& cubeName, const std::string& dimType,
                          const std::string& dimMember) {
    if (IsNameAlready(dimMember, locale)) {
        return dimMember;
    }
    if (!ContainsIgnoringCase(dimType, "SuperSum")) {
        return {};
    }
    const std::string statement = ComposeMemberNameStatement(cubeName, dimType, dimMember);
    providers.Sending(statement);
    const auto cellset = thread.provider->CreateCellset();
    cellset->Open(statement, thread.CubeConnection);
    std::string name = OnOneShownLine(cellset->MemberAt(rows, 0, 0).caption.value_or(""));
    cellset->Close();
    return name;
}

} // namespace qel::ModSetCube
