#pragma once

#include "engine/build/Definition.h"
#include "engine/storage/CubeModel.h"

#include <string_view>
#include <vector>

// Steps that every hierarchy's model needs, whatever its members are made from.

namespace qel::engine {

/// Sorts the ranges and joins those that overlap or touch.
void NormalizeRanges(std::vector<KeyRange>& ranges);

/// Adds the level "(All)" and its one member, which stands for all codes.
void AddTopMember(std::string_view name, std::uint32_t codes, HierarchyModel& model);

/// Adds the codes of the next member.
void AddRanges(const std::vector<KeyRange>& ranges, HierarchyModel& model);

/// Fills `firstChild` from `parents`.
void FillFirstChildren(HierarchyModel& model);

/// The number of the default member. Raises EngineError (InvalidDefinition) when the hierarchy has no
/// members, or none with the key that the definition gives.
std::uint32_t FindDefaultMember(const HierarchyDefinition& definition, const HierarchyModel& model);

} // namespace qel::engine
