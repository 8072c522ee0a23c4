#include "cube/ValueStatement.h"

#include "text/CaseFold.h"
#include "text/Text.h"

namespace qel::ModSetCube {

namespace {

constexpr std::string_view everything = "All";
constexpr std::string_view costCenters = "Cost_Centers";

/// Most statements are shorter, so that composing one takes memory once.
constexpr std::size_t usualLength = 512;

/// The pieces of the where tuple, joined with commas.
class SlicerList {
public:
    SlicerList() { text_.reserve(usualLength / 2); }

    void Add(std::string_view piece) {
        if (piece.empty()) {
            return;
        }
        if (!text_.empty()) {
            text_ += ',';
        }
        text_ += piece;
    }
    const std::string& Text() const { return text_; }

private:
    std::string text_;
};

void AppendBracketed(std::string& text, std::string_view name) {
    text += ".[";
    text += name;
    text += ']';
}

/// The structure and the node of it. No node at all is said by a text of one zero character; an empty node
/// stays, with nothing between its brackets.
std::string ObsSlicer(const ValueSelection& selection) {
    static const std::string noNode(1, '\0');
    std::string slicer = "[ActX].[OBSx].[All]";
    AppendBracketed(slicer, Trimmed(selection.obsName));
    if (selection.obsNumber != noNode) {
        AppendBracketed(slicer, selection.obsNumber);
    }
    return slicer;
}

std::string ObsLevelSlicer(const ValueSelection& selection) {
    if (NeedsObsSel(selection)) {
        return "[Obs].Sel";
    }
    if (Trimmed(selection.obsLevel) == everything) {
        return {};
    }
    std::string slicer = "[Cost_Centers].[All]";
    AppendBracketed(slicer, Trimmed(selection.obsMember));
    return slicer;
}

std::string Slicers(const ValueSelection& selection) {
    SlicerList list;
    list.Add(MemberSlicer("[Plbs]", selection.plbs));
    list.Add(MemberSlicer("[RH]", selection.rh));
    list.Add(MemberSlicer("[Firma]", selection.firma));
    list.Add(MemberSlicer("[Opening_Balance]", selection.openingBalance));
    list.Add(MemberSlicer("[MoneySet]", selection.moneySet));
    list.Add(MemberSlicer("[Activities].[ActivityCodes].[ActivityCode]", selection.activity));
    list.Add(ObsSlicer(selection));
    list.Add(ObsLevelSlicer(selection));
    list.Add(MemberSlicer("[Accounts].[AccountCodes].[All]", selection.accounts));
    return list.Text();
}

/// The summary level is compared as it stands: with blanks around it, "All" is a level's name.
std::string RowsSuffix(const ValueSelection& selection) {
    const std::string& level = selection.summaryLevel;
    if (Trimmed(level).empty() || EqualIgnoringCase(level, everything)) {
        return {};
    }
    std::string suffix;
    AppendBracketed(suffix, level);
    AppendBracketed(suffix, Trimmed(selection.summaryMember));
    return suffix;
}

} // namespace

bool IsUnrestricted(std::string_view selection) {
    const std::string_view trimmed = Trimmed(selection);
    return trimmed.empty() || EqualIgnoringCase(trimmed, everything);
}

std::string MemberSlicer(std::string_view dimension, std::string_view member) {
    if (IsUnrestricted(member)) {
        return {};
    }
    std::string slicer;
    slicer.reserve(dimension.size() + member.size() + std::string_view(".[]").size());
    slicer += dimension;
    AppendBracketed(slicer, Trimmed(member));
    return slicer;
}

bool NeedsObsSel(const ValueSelection& selection) {
    const std::string_view level = Trimmed(selection.obsLevel);
    return level != everything && level != costCenters;
}

std::string ComposeValueStatement(const ValueSelection& selection, const PeriodSpan& span,
                                  const std::string& obsSel) {
    std::string text;
    text.reserve(usualLength + obsSel.size());
    text += "WITH MEMBER [Date].DateSel as '   SUM( LastPeriods(";
    text.append(std::to_string(span.count)).append(",").append(span.last);
    text.append("),[Measures].[").append(selection.measure).append("])    '");
    text += obsSel;
    text.append(" SELECT  { [Date].DateSel} ON COLUMNS,  { [SuperSumery].[SumeryCode]");
    text.append(RowsSuffix(selection)).append(" }ON ROWS  From ").append(selection.cubeName);
    const std::string slicers = Slicers(selection);
    if (!slicers.empty()) {
        text.append(" where (  ").append(slicers).append(")");
    }
    return text;
}

} // namespace qel::ModSetCube
