#pragma once

#include "cube/ValueQuery.h"
#include "platform/data/DataAccess.h"
#include "reason/Reason.h"
#include "text/Suggestion.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace qel {

/// What an argument does to a value.
enum class ArgumentRole : std::uint8_t {
    Everything, ///< restricts nothing
    Chosen,     ///< restricts the value to its members
    Missing     ///< names what the cube does not have
};

/// An argument, and what it became in its cube.
struct ArgumentReason {
    struct Member {
        std::string uniqueName, caption;
    };

    std::string name; ///< the interface's
    ArgumentRole role = ArgumentRole::Everything;
    std::string key = {};             ///< the one key that counts; empty where everything does
    std::vector<Member> members = {}; ///< several where a name stands under several parents
    /// What the worksheet gave: a text, or the keys of a list, with none in the place of an empty one.
    std::vector<std::optional<std::string>> given = {};
};

/// The arguments from ObsName to Opening_Balance in the interface's order, without what was given; and why
/// any of them is missing, with what the cube has instead.
struct QueryMembers {
    std::vector<ArgumentReason> arguments;
    std::vector<Reason> missing;
};

/// The names of a cube by their place in it. A place is read when a name is first missing there.
using KnownNames = std::map<std::string, KnownWords>;

/// `known` belongs to the cube. Raises what the provider raises.
QueryMembers FindQueryMembers(const CubeDef& cube, const ModSetCube::ValueQuery& query, KnownNames& known);

} // namespace qel
