#include "tests/engine/build/CubeText.h"

#include <cstring>

namespace qel::engine {

namespace {

std::int64_t Stored(const std::byte* bytes, std::size_t width) {
    std::int64_t value = 0;
    std::memcpy(&value, bytes, width);
    const std::size_t unused = 64 - 8 * width;
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(value) << unused) >> unused;
}

bool Holds(const Cube& cube, const Projection& projection, std::size_t hierarchyIndex, MemberId member,
           std::uint64_t row) {
    const Hierarchy& hierarchy = cube.Hierarchies()[hierarchyIndex];
    if (!hierarchy.KeyColumn()) {
        return true;
    }
    const std::size_t column = *hierarchy.KeyColumn();
    const std::uint32_t code = ReadCodes(cube.Facts(), projection, column, {row, row + 1}).front();
    for (const KeyRange& range : hierarchy.Ranges(member)) {
        if (code >= range.first && code < range.last) {
            return true;
        }
    }
    return false;
}

void Draw(const Cube& cube, const Hierarchy& hierarchy, MemberId member, std::string& text) {
    text.append(hierarchy.LevelOf(member), ' ');
    text += hierarchy.MemberName(member);
    if (hierarchy.MemberCaption(member) != hierarchy.MemberName(member)) {
        text.append("=").append(hierarchy.MemberCaption(member));
    }
    if (hierarchy.MemberKey(member) != hierarchy.MemberName(member)) {
        text.append("&").append(hierarchy.MemberKey(member));
    }
    text += " " + std::to_string(SumOf(cube, 0, 0, {{hierarchy.Index(), member}})) + "\n";
    const MemberRange children = hierarchy.Children(member);
    for (MemberId child = children.first; child < children.last; ++child) {
        Draw(cube, hierarchy, child, text);
    }
}

} // namespace

std::string DrawHierarchy(const Cube& cube, std::size_t hierarchy) {
    std::string text;
    const Hierarchy& drawn = cube.Hierarchies()[hierarchy];
    const MemberRange top = drawn.Levels().front().members;
    for (MemberId member = top.first; member < top.last; ++member) {
        Draw(cube, drawn, member, text);
    }
    return text;
}

std::int64_t SumOf(const Cube& cube, std::size_t measure, std::size_t projection,
                   const std::vector<std::pair<std::size_t, MemberId>>& members) {
    const Projection& facts = cube.Facts().Projections()[projection];
    const std::uint8_t width = cube.Facts().Measures()[measure].width;
    const std::int64_t unit = cube.Facts().Measures()[measure].unit;
    std::int64_t sum = 0;
    for (std::uint64_t row = 0; row < facts.RowCount(); ++row) {
        bool isHeld = true;
        for (const auto& [hierarchy, member] : members) {
            isHeld = isHeld && Holds(cube, facts, hierarchy, member, row);
        }
        if (isHeld) {
            sum += width == 0 ? 1 : Stored(facts.Values(measure, {row, row + 1}), width) * unit;
        }
    }
    return sum;
}

} // namespace qel::engine
