#include "engine/storage/Ranges.h"
#include "qel/engine/RunStatement.h"
#include "tests/engine/eval/LedgerCube.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

// Compares set functions with straightforward code over the cube's members.

namespace qel::engine {
namespace {

using Members = std::vector<MemberId>;

class RandomSets : public testing::Test {
protected:
    RandomSets()
        : cube_(BuildLedgerCube({{"2023-02", "4000", "n1", "A", "100", "7", "1", 100},
                                 {"2024-11", "5200", "s2", "C", "300", "8", "2", -100}})) {
        for (const Hierarchy& hierarchy : cube_->Hierarchies()) {
            for (MemberId member = 0; member < hierarchy.MemberCount(); ++member) {
                numbers_[hierarchy.MemberUniqueName(member)] = member;
            }
        }
    }

    const Hierarchy& Named(std::string_view uniqueName) const {
        for (const Hierarchy& hierarchy : cube_->Hierarchies()) {
            if (hierarchy.UniqueName() == uniqueName) {
                return hierarchy;
            }
        }
        throw std::logic_error("no such hierarchy");
    }
    std::size_t Below(std::size_t bound) { return random_() % bound; }
    MemberId AnyOf(const Hierarchy& hierarchy) {
        return static_cast<MemberId>(Below(hierarchy.MemberCount()));
    }

    /// The member number of each position.
    Members Positions(const std::string& set) const {
        const Cellset cellset = RunStatement(*cube_, "SELECT " + set + " ON 0 FROM Finance");
        Members members;
        for (std::size_t i = 0; i < cellset.PositionCount(0); ++i) {
            members.push_back(numbers_.at(cellset.MemberAt(0, i, 0).uniqueName));
        }
        return members;
    }

    std::shared_ptr<const Cube> cube_;
    std::map<std::string, MemberId> numbers_;
    std::mt19937 random_{11};
};

bool Contains(const Members& members, MemberId member) {
    return std::find(members.begin(), members.end(), member) != members.end();
}

Members WithoutDuplicates(const Members& members) {
    Members distinct;
    for (const MemberId member : members) {
        if (!Contains(distinct, member)) {
            distinct.push_back(member);
        }
    }
    return distinct;
}

Members Where(const Members& left, const Members& right, bool isInRight) {
    Members kept;
    for (const MemberId member : left) {
        if (Contains(right, member) == isInRight) {
            kept.push_back(member);
        }
    }
    return WithoutDuplicates(kept);
}

Members Joined(Members left, const Members& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

/// A random set as text and as members.
struct RandomSet {
    std::string text;
    Members members;
};

RandomSet MakeSet(const Hierarchy& hierarchy, std::mt19937& random, int depth) {
    if (depth == 0) {
        RandomSet set{"{", {}};
        for (std::size_t count = random() % 5; count > 0; --count) {
            set.members.push_back(static_cast<MemberId>(random() % hierarchy.MemberCount()));
            set.text += (set.text.size() > 1 ? ", " : "") + hierarchy.MemberUniqueName(set.members.back());
        }
        set.text += "}";
        return set;
    }
    const RandomSet left = MakeSet(hierarchy, random, depth - 1);
    const RandomSet right = MakeSet(hierarchy, random, depth - 1);
    const std::size_t count = random() % 4;
    const Members& all = left.members;
    switch (random() % 9) {
    case 0:
        return {fmt::format("Union({}, {})", left.text, right.text),
                WithoutDuplicates(Joined(left.members, right.members))};
    case 1:
        return {fmt::format("Union({}, {}, ALL)", left.text, right.text),
                Joined(left.members, right.members)};
    case 2:
        return {fmt::format("Except({}, {})", left.text, right.text),
                Where(left.members, right.members, false)};
    case 3:
        return {fmt::format("Intersect({}, {})", left.text, right.text),
                Where(left.members, right.members, true)};
    case 4:
        return {fmt::format("{{{}, {}}}", left.text, right.text), Joined(left.members, right.members)};
    case 5:
        return {fmt::format("Distinct({})", left.text), WithoutDuplicates(all)};
    case 6:
        return {fmt::format("Head({}, {})", left.text, count),
                Members(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(std::min(count, all.size())))};
    case 7:
        return {fmt::format("Tail({}, {})", left.text, count),
                Members(all.end() - static_cast<std::ptrdiff_t>(std::min(count, all.size())), all.end())};
    default:
        return {fmt::format("({} - {})", left.text, right.text), Where(left.members, right.members, false)};
    }
}

TEST_F(RandomSets, CombineAsListsDo) {
    const Hierarchy& hierarchy = Named("[SuperSumery].[SumeryCode]");
    for (int round = 0; round < 400; ++round) {
        const RandomSet set = MakeSet(hierarchy, random_, 1 + round % 3);
        ASSERT_EQ(Positions(set.text), set.members) << set.text;
    }
}

bool IsUnder(const Hierarchy& hierarchy, MemberId member, MemberId ancestor) {
    for (; member != noMember; member = hierarchy.Parent(member)) {
        if (member == ancestor) {
            return true;
        }
    }
    return false;
}

/// A member and its descendants, parents first.
void AppendTree(const Hierarchy& hierarchy, MemberId member, Members& tree) {
    tree.push_back(member);
    for (MemberId child = 0; child < hierarchy.MemberCount(); ++child) {
        if (hierarchy.Parent(child) == member) {
            AppendTree(hierarchy, child, tree);
        }
    }
}

TEST_F(RandomSets, WalkFamiliesByTheirParents) {
    for (const char* name : {"[Date]", "[OBS]", "[SuperSumery].[SumeryName]", "[ActX].[OBSx]"}) {
        const Hierarchy& hierarchy = Named(name);
        for (int round = 0; round < 40; ++round) {
            const MemberId member = AnyOf(hierarchy);
            const std::string path = hierarchy.MemberUniqueName(member);
            Members tree;
            AppendTree(hierarchy, member, tree);
            EXPECT_EQ(Positions(fmt::format("Descendants({})", path)), tree) << path;

            const std::size_t level = Below(hierarchy.Levels().size());
            Members onLevel;
            Members leaves;
            Members leavesToLevel;
            for (const MemberId below : tree) {
                if (hierarchy.LevelOf(below) == level) {
                    onLevel.push_back(below);
                }
                const bool isLeaf = hierarchy.Children(below).Count() == 0;
                if (isLeaf) {
                    leaves.push_back(below);
                }
                if (isLeaf && hierarchy.LevelOf(below) <= level) {
                    leavesToLevel.push_back(below);
                }
            }
            EXPECT_EQ(Positions(fmt::format("Descendants({}, {}.Levels({}))", path, name, level)), onLevel)
                << path;
            EXPECT_EQ(Positions(fmt::format("Descendants({}, , LEAVES)", path)), leaves) << path;
            EXPECT_EQ(Positions(fmt::format("Descendants({}, {}.Levels({}), LEAVES)", path, name, level)),
                      leavesToLevel)
                << path;

            Members ascendants;
            for (MemberId step = member; step != noMember; step = hierarchy.Parent(step)) {
                ascendants.push_back(step);
            }
            EXPECT_EQ(Positions(fmt::format("Ascendants({})", path)), ascendants) << path;

            Members family;
            Members children;
            for (MemberId other = 0; other < hierarchy.MemberCount(); ++other) {
                if (hierarchy.Parent(other) == hierarchy.Parent(member)) {
                    family.push_back(other);
                }
                if (hierarchy.Parent(other) == member) {
                    children.push_back(other);
                }
            }
            EXPECT_EQ(Positions(path + ".Siblings"), family) << path;
            EXPECT_EQ(Positions(path + ".Children"), children) << path;
        }
    }
}

TEST_F(RandomSets, HierarchizeGivesBackTheTree) {
    const Hierarchy& hierarchy = Named("[Date]");
    Members tree;
    AppendTree(hierarchy, 0, tree);
    for (int round = 0; round < 30; ++round) {
        Members chosen;
        for (int i = 0; i < 8; ++i) {
            chosen.push_back(AnyOf(hierarchy));
        }
        std::string set;
        for (const MemberId member : chosen) {
            set += (set.empty() ? "" : ", ") + hierarchy.MemberUniqueName(member);
        }
        Members sorted = chosen;
        std::stable_sort(sorted.begin(), sorted.end(), [&](MemberId a, MemberId b) {
            return std::find(tree.begin(), tree.end(), a) < std::find(tree.begin(), tree.end(), b);
        });
        EXPECT_EQ(Positions("Hierarchize({" + set + "})"), sorted) << set;

        const Members post = Positions("Hierarchize({" + set + "}, POST)");
        for (std::size_t i = 0; i < post.size(); ++i) {
            for (std::size_t j = i + 1; j < post.size(); ++j) {
                EXPECT_TRUE(post[i] == post[j] || !IsUnder(hierarchy, post[j], post[i])) << set;
            }
        }
    }
}

TEST_F(RandomSets, PeriodsAreNeighboursOnTheirLevel) {
    const Hierarchy& dates = Named("[Date]");
    for (int round = 0; round < 200; ++round) {
        const MemberId member = AnyOf(dates);
        const std::string path = dates.MemberUniqueName(member);
        const int count = static_cast<int>(Below(40)) - 20;
        Members periods;
        for (int step = count > 0 ? 1 - count : 0; step < (count > 0 ? 1 : -count); ++step) {
            const std::int64_t other = std::int64_t{member} + step;
            if (other >= 0 && other < dates.MemberCount() &&
                dates.LevelOf(static_cast<MemberId>(other)) == dates.LevelOf(member)) {
                periods.push_back(static_cast<MemberId>(other));
            }
        }
        ASSERT_EQ(Positions(fmt::format("LastPeriods({}, {})", count, path)), periods)
            << path << " " << count;

        Members toDate;
        MemberId year = member;
        while (year != noMember && dates.LevelOf(year) > 1) {
            year = dates.Parent(year);
        }
        for (MemberId other = 0; other <= member && dates.LevelOf(member) >= 1; ++other) {
            if (dates.LevelOf(other) == dates.LevelOf(member) && IsUnder(dates, other, year)) {
                toDate.push_back(other);
            }
        }
        ASSERT_EQ(Positions(fmt::format("YTD({})", path)), toDate) << path;
    }
}

TEST_F(RandomSets, CrossJoinsOfOneDimensionKeepWhatSharesCodes) {
    const Hierarchy& codes = Named("[SuperSumery].[SumeryCode]");
    const Hierarchy& names = Named("[SuperSumery].[SumeryName]");
    const auto shares = [&](MemberId code, MemberId name) {
        for (const KeyRange a : codes.Ranges(code)) {
            for (const KeyRange b : names.Ranges(name)) {
                if (a.first < b.last && b.first < a.last) {
                    return true;
                }
            }
        }
        return false;
    };
    for (int round = 0; round < 100; ++round) {
        const RandomSet left = MakeSet(codes, random_, 1);
        const RandomSet right = MakeSet(names, random_, 1);
        const Cellset cellset = RunStatement(
            *cube_, fmt::format("SELECT CrossJoin({}, {}) ON 0 FROM Finance", left.text, right.text));
        std::vector<std::pair<MemberId, MemberId>> expected;
        for (const MemberId code : left.members) {
            for (const MemberId name : right.members) {
                if (shares(code, name)) {
                    expected.emplace_back(code, name);
                }
            }
        }
        ASSERT_EQ(cellset.PositionCount(0), expected.size()) << left.text << right.text;
        for (std::size_t i = 0; i < expected.size(); ++i) {
            EXPECT_EQ(numbers_.at(cellset.MemberAt(0, i, 0).uniqueName), expected[i].first);
            EXPECT_EQ(numbers_.at(cellset.MemberAt(0, i, 1).uniqueName), expected[i].second);
        }
    }
}

} // namespace
} // namespace qel::engine
