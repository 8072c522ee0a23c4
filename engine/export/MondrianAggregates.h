#pragma once

#include "engine/export/FlatStar.h"

#include <string>

namespace qel::engine {

/// The hierarchy's name in the schema of a star that is spread over shards, which is the same to statements.
/// In the description of an aggregate table Mondrian takes [Firma].[Firma] for a hierarchy and finds no
/// level, but finds [Firma].[firma].[Firma].
std::string NameAmongAggregates(const Hierarchy& hierarchy, const std::string& dimension);

/// The star's fact table, with its views as aggregate tables. Of those that hold a statement's levels the
/// server takes the one with the fewest rows, so the stated numbers only give the order of the views.
std::string ComposeAggregates(const FlatStar& flat);

} // namespace qel::engine
