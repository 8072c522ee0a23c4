#pragma once

#include "examples/ledger/Random.h"

#include <cstddef>
#include <string>
#include <vector>

namespace qel::test {

/// A hierarchy that random statements are about.
struct StatedHierarchy {
    std::string name;                ///< "[Dimension].[Hierarchy]"
    std::vector<std::string> levels; ///< names in brackets, from the top
    struct Member {
        std::string path;
        std::size_t level = 0;
    };
    std::vector<Member> members; ///< in tree order
    bool sharesFacts = false;    ///< members of one level have facts in common
};

/// Random statements over the documented functions, written by the rules of a small grammar. What they give
/// depends neither on rounding nor on what docs/mdx.md says differs between servers.
class RandomStatements {
public:
    RandomStatements(std::string cube, std::vector<StatedHierarchy> hierarchies, std::uint64_t seed)
        : cube_(std::move(cube)), hierarchies_(std::move(hierarchies)), random_(seed) {}

    std::string Next();

private:
    /// The hierarchies that rules are written for: one, or two for sets of pairs.
    struct Scope {
        std::size_t first = 0, second = 0;
    };

    std::size_t Below(std::size_t count) { return static_cast<std::size_t>(random_.Below(count)); }
    bool OneIn(std::size_t count) { return Below(count) == 0; }
    std::size_t AnyHierarchy() { return Below(hierarchies_.size()); }
    /// A hierarchy of another dimension than those in use, which it joins.
    std::size_t UnusedHierarchy();
    std::string Fill(const std::string& rule, Scope scope, int depth);
    std::string Symbol(char symbol, Scope scope, int depth);
    std::string StoredMember(std::size_t hierarchy);
    std::string Span(std::size_t hierarchy);
    /// With one measure and no slicer: the server takes others into the function's context.
    std::string NonEmptyPairs();
    std::string Definitions();
    std::string Axis();
    std::string Slicer();

    std::string cube_;
    std::vector<StatedHierarchy> hierarchies_;
    ledger::Random random_;
    std::vector<std::size_t> used_;       ///< by an axis or the slicer of the statement
    std::vector<std::string> measures_;   ///< calculated ones of the statement
    std::vector<std::string> named_;      ///< by hierarchy: a named set, or empty
    std::vector<std::string> calculated_; ///< by hierarchy: a calculated member, or empty
    bool usesCalculated_ = false;
    std::size_t lastAlias_ = 0; ///< the number of the latest name of a set
};

} // namespace qel::test
