#pragma once

#include "cube/ValueQuery.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace qel::ModSetCube {

/// The OBS members that were found by their level and name in one open cube. They do not change while it is
/// open.
class ObsMemory {
public:
    /// Null when that name was not looked for.
    std::shared_ptr<const ObsMembers> Find(std::string_view level, std::string_view member) const;
    void Keep(std::string_view level, std::string_view member, std::shared_ptr<const ObsMembers> found);
    void Clear() { byLevel_.clear(); }

private:
    struct Hash : std::hash<std::string_view> {
        using is_transparent = void;
    };
    template <class Value>
    using ByName = std::unordered_map<std::string, Value, Hash, std::equal_to<>>;

    ByName<ByName<std::shared_ptr<const ObsMembers>>> byLevel_;
};

} // namespace qel::ModSetCube
