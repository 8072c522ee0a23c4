#include "engine/eval/LineColumns.h"

#include "engine/storage/CodeColumn.h"
#include "text/CaseFold.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <unordered_set>

namespace qel::engine {

namespace {

const Level& LowestLevel(const Hierarchy& hierarchy) { return hierarchy.Levels().back(); }

/// Whether every lowest member stands for one value of the ledger, and every value for one member.
bool Identifies(const Hierarchy& hierarchy) {
    std::vector<KeyRange> ranges;
    const MemberRange members = LowestLevel(hierarchy).members;
    for (MemberId member = members.first; member < members.last; ++member) {
        for (const KeyRange range : hierarchy.Ranges(member)) {
            ranges.push_back(range);
        }
        if (CountCodes(hierarchy.Ranges(member)) > 1) {
            return false;
        }
    }
    return JoinDisjoint(ranges);
}

/// The hierarchy that shows a key column's values best: the first one that identifies them, otherwise the
/// finest.
const Hierarchy* HierarchyOf(const Cube& cube, std::size_t keyColumn) {
    const Hierarchy* finest = nullptr;
    for (const Hierarchy& hierarchy : cube.Hierarchies()) {
        if (hierarchy.KeyColumn() != keyColumn) {
            continue;
        }
        if (Identifies(hierarchy)) {
            return &hierarchy;
        }
        const auto count = LowestLevel(hierarchy).members.Count();
        if (finest == nullptr || count > LowestLevel(*finest).members.Count()) {
            finest = &hierarchy;
        }
    }
    return finest;
}

class KnownColumns {
public:
    explicit KnownColumns(const Cube& cube) : cube_(cube) {}

    std::vector<LineColumn> Make() {
        const std::optional<std::size_t> date = DateColumn(cube_);
        if (date) {
            AddKeyColumn(*date);
        }
        for (std::size_t column = 0; column < cube_.Facts().KeyColumns().size(); ++column) {
            if (column != date) {
                AddKeyColumn(column);
            }
        }
        AddDetails();
        for (std::size_t measure = 0; measure < cube_.Measures().size(); ++measure) {
            if (cube_.Measures()[measure].function == AggregateFunction::Sum) {
                Add({cube_.Measures()[measure].name, LineColumn::Kind::Measure, {}, measure});
            }
        }
        if (cube_.KeepsDetails()) {
            Add({"file", LineColumn::Kind::File, {}, 0, false});
            Add({"line", LineColumn::Kind::Line, {}, 0, false});
        }
        return std::move(columns_);
    }

private:
    /// A detail that is a key or an amount besides is shown once. The date says more than its period.
    void AddDetails() {
        const std::vector<Detail> details = cube_.Details();
        const std::optional<std::size_t> date = DateColumn(cube_);
        for (std::size_t i = 0; i < details.size(); ++i) {
            const std::string& caption = details[i].caption;
            const bool isDate = date && cube_.Facts().KeyColumns()[*date].name == details[i].name;
            const bool isShown = isDate || (!IsTaken(caption) && !cube_.FindMeasure(details[i].name));
            Add({IsTaken(caption) || cube_.FindMeasure(caption) ? caption + " in ledger" : caption,
                 LineColumn::Kind::Detail,
                 {},
                 i,
                 isShown});
        }
    }

    bool IsTaken(const std::string& name) const {
        return std::any_of(columns_.begin(), columns_.end(),
                           [&](const LineColumn& other) { return EqualIgnoringCase(other.name, name); });
    }

    void AddKeyColumn(std::size_t keyColumn) {
        const Hierarchy* hierarchy = HierarchyOf(cube_, keyColumn);
        if (hierarchy == nullptr) {
            return;
        }
        const auto number = static_cast<HierarchyId>(hierarchy->Index());
        const std::size_t lowest = hierarchy->Levels().size() - 1;
        const bool isTime = cube_.Dimensions()[hierarchy->DimensionIndex()].isTime;
        std::string name = cube_.Facts().KeyColumns()[keyColumn].name;
        if (!isTime && RepeatsKeys(*hierarchy)) { // a value means something only under its parents
            for (std::size_t level = hierarchy->HasAll() ? 1 : 0; level < lowest; ++level) {
                Add({hierarchy->Levels()[level].name, LineColumn::Kind::Key, {number, level}});
            }
            name = hierarchy->Levels()[lowest].name;
        }
        Add({name, LineColumn::Kind::Key, {number, lowest}});
        if (!isTime && HasCaptions(*hierarchy)) {
            Add({name + " name", LineColumn::Kind::Caption, {number, lowest}});
        }
    }

    static bool RepeatsKeys(const Hierarchy& hierarchy) {
        std::unordered_set<std::string_view> keys;
        const MemberRange members = LowestLevel(hierarchy).members;
        for (MemberId member = members.first; member < members.last; ++member) {
            if (!keys.insert(hierarchy.MemberKey(member)).second) {
                return true;
            }
        }
        return false;
    }

    static bool HasCaptions(const Hierarchy& hierarchy) {
        const MemberRange members = LowestLevel(hierarchy).members;
        for (MemberId member = members.first; member < members.last; ++member) {
            if (hierarchy.MemberCaption(member) != hierarchy.MemberKey(member)) {
                return true;
            }
        }
        return false;
    }

    void Add(LineColumn column) {
        const std::string base = column.name;
        for (int copy = 2; IsTaken(column.name); ++copy) {
            column.name = fmt::format("{} {}", base, copy);
        }
        columns_.push_back(std::move(column));
    }

    const Cube& cube_;
    std::vector<LineColumn> columns_;
};

template <class Stored>
std::int64_t StoredAt(const std::byte* value) {
    return std::int64_t{ReadAt<Stored>(value, 0)};
}

std::int64_t StoredValue(const std::byte* value, std::uint8_t width) {
    return width == 1   ? StoredAt<std::int8_t>(value)
           : width == 2 ? StoredAt<std::int16_t>(value)
           : width == 4 ? StoredAt<std::int32_t>(value)
                        : StoredAt<std::int64_t>(value);
}

std::vector<LineValue> ReadAmounts(const FactTable& facts, std::size_t measure,
                                   std::span<const LinePlace> places) {
    const MeasureColumn& column = facts.Measures()[measure];
    std::vector<LineValue> values;
    values.reserve(places.size());
    for (const LinePlace& place : places) {
        std::uint64_t scaled = 1; // a count counts every fact
        if (column.width != 0) {
            const std::byte* const stored = place.projection->Values(measure, {place.row, place.row + 1});
            scaled = static_cast<std::uint64_t>(StoredValue(stored, column.width)) *
                     static_cast<std::uint64_t>(column.unit);
        }
        values.emplace_back(CellValue::Exact(static_cast<std::int64_t>(scaled), column.decimals));
    }
    return values;
}

std::string_view TextOf(const Hierarchy& hierarchy, MemberId member, LineColumn::Kind kind) {
    switch (kind) {
    case LineColumn::Kind::Name:
        return hierarchy.MemberName(member);
    case LineColumn::Kind::Caption:
        return hierarchy.MemberCaption(member);
    default:
        return hierarchy.MemberKey(member);
    }
}

/// The texts of the level's members that stand for the codes; several are joined.
std::map<std::uint32_t, std::string> TextsOfCodes(const Hierarchy& hierarchy, const LineColumn& column,
                                                  std::vector<std::uint32_t> codes) {
    std::sort(codes.begin(), codes.end());
    codes.erase(std::unique(codes.begin(), codes.end()), codes.end());
    std::map<std::uint32_t, std::string> texts;
    const MemberRange members = hierarchy.Levels()[column.level.level].members;
    for (MemberId member = members.first; member < members.last; ++member) {
        for (const KeyRange range : hierarchy.Ranges(member)) {
            auto code = std::lower_bound(codes.begin(), codes.end(), range.first);
            for (; code != codes.end() && *code < range.last; ++code) {
                const auto [text, isNew] = texts.try_emplace(*code);
                text->second += isNew ? "" : ", ";
                text->second += TextOf(hierarchy, member, column.kind);
            }
        }
    }
    return texts;
}

std::vector<LineValue> ReadDetails(const FactTable& facts, const LineColumn& column,
                                   std::span<const LinePlace> places) {
    std::vector<LineValue> values;
    values.reserve(places.size());
    for (const LinePlace& place : places) {
        const std::uint32_t fact = FactOf(facts, place);
        const DetailTable& details = *facts.Details();
        if (column.kind == LineColumn::Kind::Detail) {
            values.emplace_back(std::string(details.Text(column.number, fact)));
            continue;
        }
        const SourceLine line = details.LineOf(fact);
        values.emplace_back(column.kind == LineColumn::Kind::File ? details.Files()[line.file]
                                                                  : std::to_string(line.line));
    }
    return values;
}

} // namespace

std::vector<LineColumn> KnownLineColumns(const Cube& cube) { return KnownColumns(cube).Make(); }

std::vector<LineValue> ReadLineColumn(const Cube& cube, const LineColumn& column,
                                      std::span<const LinePlace> places) {
    if (column.kind == LineColumn::Kind::Measure) {
        return ReadAmounts(cube.Facts(), column.number, places);
    }
    using Kind = LineColumn::Kind;
    if (column.kind == Kind::Detail || column.kind == Kind::File || column.kind == Kind::Line) {
        return ReadDetails(cube.Facts(), column, places);
    }
    std::vector<LineValue> values(places.size());
    const Hierarchy& hierarchy = cube.Hierarchies()[column.level.hierarchy];
    if (!hierarchy.KeyColumn()) {
        return values;
    }
    std::vector<std::uint32_t> codes;
    codes.reserve(places.size());
    for (const LinePlace& place : places) {
        codes.push_back(CodeOf(cube.Facts(), place, *hierarchy.KeyColumn()));
    }
    const auto texts = TextsOfCodes(hierarchy, column, codes);
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (const auto text = texts.find(codes[i]); text != texts.end()) {
            values[i] = text->second;
        }
    }
    return values;
}

} // namespace qel::engine
