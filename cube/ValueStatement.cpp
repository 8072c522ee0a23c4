#include "cube/ValueStatement.h"

#include "text/Text.h"

#include <algorithm>
#include <charconv>
#include <iterator>

namespace qel::ModSetCube {

namespace {

/// Most statements are shorter, so that composing one takes memory once.
constexpr std::size_t usualLength = 512;
constexpr std::string_view obsSelOpening = "\r\n Member [Obs].Sel as ' SUM ({ ";
constexpr std::string_view obsSelClosing = " }) ' ";
constexpr std::string_view summaryHierarchy = "[SuperSumery].[SumeryCode]";

void AppendBracketed(std::string& text, std::string_view name) {
    text += ".[";
    text += name;
    text += ']';
}

void AppendNumber(std::string& text, int number) {
    std::array<char, 12> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    text.append(digits.data(), end);
}

/// The OBS name and its number. An empty number keeps its brackets, with nothing between them.
QueryMember ObsMember(const ValueQuery& query) {
    QueryMember member{"[ActX].[OBSx].[All]", {query.obsName}, 1};
    if (query.obsNumber) {
        member.names[member.nameCount++] = *query.obsNumber;
    }
    return member;
}

/// All summary groups together are the hierarchy's own default.
QueryMember RowMember(const ValueQuery& query) {
    return SummaryMember(query).value_or(QueryMember{summaryHierarchy, {}, 0});
}

std::size_t LengthOf(const ObsMembers& members) {
    std::size_t length = obsSelOpening.size() + obsSelClosing.size();
    for (const std::string& member : members) {
        constexpr std::size_t separatorsAndQuotes = 16;
        length += member.size() + separatorsAndQuotes;
    }
    return length;
}

} // namespace

SlicerMembers::SlicerMembers(const ValueQuery& query) {
    AddUnlessEmpty("[Plbs]", query.plbs);
    AddUnlessEmpty("[RH]", query.rh);
    AddUnlessEmpty("[Firma]", query.firma);
    AddUnlessEmpty("[Opening_Balance]", query.openingBalance);
    AddUnlessEmpty("[MoneySet]", query.moneySet);
    AddUnlessEmpty("[Activities].[ActivityCodes].[ActivityCode]", query.activity);
    Add(ObsMember(query));
    if (query.obsPart == ObsPart::CostCenter) {
        Add({"[Cost_Centers].[All]", {query.obsMember}, 1});
    } else if (query.obsPart == ObsPart::LevelMember) {
        Add({"[Obs].Sel", {}, 0});
    }
    AddUnlessEmpty("[Accounts].[AccountCodes].[All]", query.accounts);
}

void SlicerMembers::AddUnlessEmpty(std::string_view path, std::string_view name) {
    if (!name.empty()) {
        Add({path, {name}, 1});
    }
}

std::optional<QueryMember> SummaryMember(const ValueQuery& query) {
    if (query.summaryLevel.empty()) {
        return std::nullopt;
    }
    return QueryMember{summaryHierarchy, {query.summaryLevel, query.summaryMember}, 2};
}

void AppendMember(std::string& text, const QueryMember& member) {
    text += member.path;
    for (std::size_t i = 0; i < member.nameCount; ++i) {
        AppendBracketed(text, member.names[i]);
    }
}

void AppendObsSel(std::string& text, const ObsMembers& members) {
    if (!members.empty()) {
        text += obsSelOpening;
    }
    for (const std::string& member : members) {
        text += " , ";
        for (const char character : member) {
            text.append(character == '\'' ? 2 : 1, character);
        }
    }
    text += obsSelClosing;
}

std::string MemberSlicer(std::string_view dimension, std::string_view key) {
    std::string slicer;
    if (!IsUnrestricted(key)) {
        slicer = dimension;
        AppendBracketed(slicer, Trimmed(key));
    }
    return slicer;
}

CellQuery InParts(const ValueQuery& query) {
    CellQuery parts;
    parts.cube = query.cubeName;
    parts.measure = query.measure;
    parts.periods = "[Date]";
    parts.lastPeriod = query.span.last;
    parts.periodCount = query.span.count;
    if (query.obsPart == ObsPart::LevelMember) {
        parts.summed = "[Obs]";
        parts.summedMembers = query.obsMembers.get();
    }
    const SlicerMembers slicer(query);
    parts.members.reserve(static_cast<std::size_t>(slicer.end() - slicer.begin()) + 1);
    parts.members.push_back(RowMember(query));
    std::copy_if(slicer.begin(), slicer.end(), std::back_inserter(parts.members),
                 [](const QueryMember& member) { return member.nameCount > 0; });
    return parts;
}

std::string ComposeValueStatement(const ValueQuery& query) {
    std::string text;
    text.reserve(usualLength + (query.obsMembers ? LengthOf(*query.obsMembers) : 0));
    text += "WITH MEMBER [Date].DateSel as '   SUM( LastPeriods(";
    AppendNumber(text, query.span.count);
    text.append(",").append(query.span.last);
    text.append("),[Measures].[").append(query.measure).append("])    '");
    if (query.obsMembers) {
        AppendObsSel(text, *query.obsMembers);
    }
    text += " SELECT  { [Date].DateSel} ON COLUMNS,  { ";
    AppendMember(text, RowMember(query));
    text.append(" }ON ROWS  From ").append(query.cubeName).append(" where (  ");
    const SlicerMembers slicer(query); // never empty: the OBS name is always there
    for (const QueryMember& member : slicer) {
        if (&member != slicer.begin()) {
            text += ',';
        }
        AppendMember(text, member);
    }
    text += ')';
    return text;
}

} // namespace qel::ModSetCube
