#pragma once

#include "cube/MemberStatements.h"
#include "wizard/MemberRows.h"
#include "wizard/WizardContext.h"

namespace qel {

/// The cube that a dialog's lists are filled from.
struct LoadedCube {
    ModSetCube::OpenedCube name;
    std::unique_ptr<CubeDef> definition;
    std::unique_ptr<Catalog> catalog = nullptr; ///< keeps the definition alive

    /// The first hierarchy of a dimension; null when the cube lacks it.
    std::unique_ptr<Hierarchy> FirstHierarchy(const std::string& dimension) const;
    /// A hierarchy by name, letter case ignored; null when the cube lacks it.
    std::unique_ptr<Hierarchy> HierarchyNamed(const std::string& dimension,
                                              const std::string& hierarchy) const;
};

/// Opens a catalog on a new connection. A failure is reported and returns null.
[[nodiscard]] std::shared_ptr<const LoadedCube> OpenWizardCube(const WizardContext& context,
                                                               const ModSetCube::OpenedCube& name);

/// Escapes a key for the square brackets of a statement.
std::string InBrackets(const std::string& key);

/// Escapes a text for the double quotes of a formula.
std::string InFormula(const std::string& text);

/// The rows of a listing: the key of a position's first member and the caption of its last one. Positions
/// with an empty first caption are skipped. Raises what the provider raises.
std::vector<MemberRow> ListRows(const WizardContext& context, const std::string& cubeFile,
                                const ModSetCube::MemberListing& listing);

/// The same as choices.
std::vector<MemberChoice> ListChoices(const WizardContext& context, const std::string& cubeFile,
                                      const ModSetCube::MemberListing& listing);

} // namespace qel
