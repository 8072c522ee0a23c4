#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace qel {

struct ServerMember {
    std::string name, caption, uniqueName;
    std::string parent; ///< its unique name; empty at the top level
};

/// The members of one level, in their order.
struct ServerMembers {
    std::vector<ServerMember> members;
    /// By the name's folded letters, in member order.
    std::unordered_map<std::string, std::vector<std::size_t>> byName;
    std::unordered_map<std::string, std::size_t> byUniqueName;
};

struct ServerLevel {
    std::string name, caption, uniqueName;
};

struct ServerHierarchy {
    std::string name, caption, uniqueName;
    std::vector<ServerLevel> levels; ///< from the top
};

struct ServerDimension {
    std::string name, caption, uniqueName;
    std::vector<ServerHierarchy> hierarchies; ///< the default one first
};

/// A cube's metadata as the server describes it, without members.
struct ServerCube {
    std::string name, caption;
    std::vector<ServerDimension> dimensions;

    /// By unique name, letter case ignored; null when missing. "[a]" also finds "[a].[a]".
    const ServerHierarchy* FindHierarchy(const std::string& uniqueName) const;
};

} // namespace qel
