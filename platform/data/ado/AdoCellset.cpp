#include "platform/data/ado/AdoCellset.h"

#include "platform/data/ado/AdoConnection.h"
#include "platform/windows/VariantConversion.h"

namespace qel::windows {

namespace {

std::optional<std::string> TextUnlessNull(const DispatchObject& object, const wchar_t* member) {
    const OwnedVariant text = object.Property(member);
    if (V_VT(&Dereferenced(text.Get())) == VT_NULL) {
        return std::nullopt;
    }
    return object.Text(member);
}

} // namespace

void AdoCellset::Open(const std::string& source, const std::shared_ptr<Connection>& connection) {
    cellset_.Call(L"Open", ArgumentList(source, AdoConnection::ObjectOf(connection)));
}

DispatchObject AdoCellset::Positions(std::int32_t axis) const {
    return cellset_.Child(L"Axes").Child(L"Item", ArgumentList(axis)).Child(L"Positions");
}

DispatchObject AdoCellset::Members(std::int32_t axis, std::int32_t position) const {
    return Positions(axis).Child(L"Item", ArgumentList(position)).Child(L"Members");
}

std::int32_t AdoCellset::AxisCount() const { return cellset_.Child(L"Axes").Number(L"Count"); }

std::int32_t AdoCellset::PositionCount(std::int32_t axis) const { return Positions(axis).Number(L"Count"); }

std::int32_t AdoCellset::MemberCount(std::int32_t axis, std::int32_t position) const {
    return Members(axis, position).Number(L"Count");
}

CellsetMember AdoCellset::MemberAt(std::int32_t axis, std::int32_t position, std::int32_t index) const {
    const DispatchObject member = Members(axis, position).Child(L"Item", ArgumentList(index));
    return {.name = member.Text(L"Name"),
            .uniqueName = member.Text(L"UniqueName"),
            .levelName = member.Text(L"LevelName"),
            .caption = TextUnlessNull(member, L"Caption"),
            .levelDepth = member.Number(L"LevelDepth")};
}

Variant AdoCellset::Value(const std::vector<std::int32_t>& positions) const {
    CallArguments arguments;
    for (const std::int32_t position : positions) {
        arguments.push_back(ToArgument(position));
    }
    return FromAutomation(cellset_.Child(L"Item", std::move(arguments)).Property(L"Value").Get());
}

} // namespace qel::windows
