#include "qel/engine/CheckCalculations.h"

#include "engine/eval/Binder.h"
#include "engine/eval/CubeCalculations.h"
#include "engine/eval/FormatText.h"
#include "engine/mdx/Parser.h"
#include "qel/engine/EngineError.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

namespace qel::engine {

namespace {

enum class Order : std::uint8_t { MembersFirst, SetsFirst };

/// Runs `check` on every member and every set. Returns the first that it raises an error for.
template <class Check>
std::optional<CalculationFault> FirstFault(const Calculations& calculations, Order order,
                                           const Check& check) {
    for (const bool isSet : {order == Order::SetsFirst, order == Order::MembersFirst}) {
        const std::size_t count = isSet ? calculations.sets.size() : calculations.members.size();
        for (std::size_t i = 0; i < count; ++i) {
            try {
                check(isSet, i);
            } catch (const EngineError& error) {
                return CalculationFault{isSet, i, error.what()};
            }
        }
    }
    return std::nullopt;
}

const std::string& NameOf(const Calculations& calculations, bool isSet, std::size_t index) {
    return isSet ? calculations.sets[index].name : calculations.members[index].name;
}

/// The references between a cube's calculations: members first, then sets.
class References {
public:
    References(const Calculations& calculations, const CubeCalculations& bound)
        : memberCount_(calculations.members.size()), states_(memberCount_ + calculations.sets.size()) {
        for (std::size_t i = 0; i < states_.size(); ++i) {
            const bool isSet = i >= memberCount_;
            CubeCalculations::Needs needs =
                isSet ? bound.NeedsOfSet(i - memberCount_) : bound.NeedsOfMember(i);
            std::vector<std::size_t>& targets = targets_.emplace_back(std::move(needs.members));
            for (const std::size_t set : needs.sets) {
                targets.push_back(memberCount_ + set);
            }
        }
    }

    /// Calculations that need each other in a circle, or none.
    std::vector<std::size_t> FindCircle() {
        for (std::size_t start = 0; start < states_.size(); ++start) {
            if (states_[start] == State::New) {
                Open(start);
            }
            while (!path_.empty()) {
                if (std::vector<std::size_t> circle = Step(); !circle.empty()) {
                    return circle;
                }
            }
        }
        return {};
    }

private:
    enum class State : std::uint8_t { New, Open, Done };

    void Open(std::size_t calculation) {
        states_[calculation] = State::Open;
        path_.emplace_back(calculation, 0);
    }

    /// Follows the next reference of the last calculation on the path.
    std::vector<std::size_t> Step() {
        auto& [calculation, next] = path_.back();
        if (next == targets_[calculation].size()) {
            states_[calculation] = State::Done;
            path_.pop_back();
            return {};
        }
        const std::size_t target = targets_[calculation][next++];
        std::vector<std::size_t> circle;
        if (states_[target] == State::New) {
            Open(target);
        } else if (states_[target] == State::Open) {
            auto first = std::find_if(path_.begin(), path_.end(),
                                      [target](const auto& step) { return step.first == target; });
            for (; first != path_.end(); ++first) {
                circle.push_back(first->first);
            }
        }
        return circle;
    }

    std::size_t memberCount_;
    std::vector<State> states_;
    std::vector<std::vector<std::size_t>> targets_;
    std::vector<std::pair<std::size_t, std::size_t>> path_; ///< with the reference to follow next
};

std::optional<CalculationFault> FindCircle(const Calculations& calculations, const CubeCalculations& bound) {
    const std::vector<std::size_t> circle = References(calculations, bound).FindCircle();
    if (circle.empty()) {
        return std::nullopt;
    }
    const std::size_t memberCount = calculations.members.size();
    const auto name = [&](std::size_t i) {
        return i < memberCount ? calculations.members[i].name : calculations.sets[i - memberCount].name;
    };
    const auto start = std::min_element(circle.begin(), circle.end()); // a set needs earlier sets only
    std::string text = fmt::format("the cube's definition of {} needs itself: ", name(*start));
    for (std::size_t i = 0; i < circle.size(); ++i) {
        const auto place = static_cast<std::size_t>(start - circle.begin());
        text += name(circle[(place + i) % circle.size()]) + " needs ";
    }
    return CalculationFault{false, *start, text + name(*start)};
}

/// Whether the name means something in the cube without its calculations.
bool IsTaken(const std::string& name, MemberSpace& space, Evaluator& evaluator) {
    mdx::Definition parsed;
    const mdx::Statement tree = mdx::ParseName({name, name}, parsed);
    try {
        Binder(tree, space, evaluator, nullptr, Scope::Cube).Bind(parsed.name);
        return true;
    } catch (const EngineError&) {
        return false;
    }
}

} // namespace

std::optional<CalculationFault> FindSyntaxFault(const Calculations& calculations) {
    return FirstFault(calculations, Order::MembersFirst, [&](bool isSet, std::size_t i) {
        const std::string& name = NameOf(calculations, isSet, i);
        mdx::Definition parsed;
        mdx::ParseName({name, name}, parsed);
        mdx::ParseText({isSet ? calculations.sets[i].formula : calculations.members[i].formula, name},
                       parsed);
    });
}

std::optional<CalculationFault> FindCalculationFault(const Cube& cube) {
    const Calculations& calculations = cube.GetCalculations();
    std::optional<CalculationFault> fault = FindSyntaxFault(calculations);
    if (fault) {
        return fault;
    }
    MemberSpace space(cube);
    Evaluator evaluator(space, {});
    CubeCalculations bound(space, evaluator);
    fault = FirstFault(calculations, Order::MembersFirst, [&](bool isSet, std::size_t i) {
        const std::string& name = NameOf(calculations, isSet, i);
        const bool isTaken = IsTaken(name, space, evaluator);
        isSet ? bound.DeclareSet(i) : bound.DeclareMember(i); // raises what is more to the point
        if (isTaken) {
            throw EngineError(ErrorKind::InvalidExpression,
                              fmt::format("the cube's definition of {}: the cube has a dimension, a level or "
                                          "a member of this name",
                                          name));
        }
    });
    if (fault) {
        return fault;
    }
    bound.AddFormulas();
    // A member's formula binds the sets that it names: a faulty set is told as its own.
    fault = FirstFault(calculations, Order::SetsFirst, [&](bool isSet, std::size_t i) {
        isSet ? static_cast<void>(bound.Set(i)) : bound.BindMember(i);
    });
    return fault ? fault : FindCircle(calculations, bound);
}

std::string FindFormatFault(std::string_view format) {
    std::string fault;
    for (const CellValue& value : {CellValue::Exact(1, 0), CellValue::Exact(-1, 0), CellValue::Exact(0, 0),
                                   CellValue::Empty()}) { // one for each section
        if (fault.empty()) {
            FormatText(value, format, fault);
        }
    }
    return fault;
}

CalculationPlaces FindCalculationPlaces(const Cube& cube) {
    MemberSpace space(cube);
    Evaluator evaluator(space, {});
    CubeCalculations calculations(space, evaluator);
    calculations.Declare();
    CalculationPlaces places{{}, calculations.SetNames()};
    for (const CalculatedName& member : space.Calculated()) {
        const bool isMeasure = space.IsMeasures(member.hierarchy);
        places.members.push_back({isMeasure ? std::nullopt : std::optional<std::size_t>(member.hierarchy),
                                  member.parent, member.name});
    }
    return places;
}

} // namespace qel::engine
