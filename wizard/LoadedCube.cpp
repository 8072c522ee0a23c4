#include "wizard/LoadedCube.h"

#include "cube/CubeConnection.h"
#include "cube/MemberListing.h"
#include "support/ModError.h"
#include "text/CaseFold.h"
#include "text/Text.h"

namespace qel {

namespace {

std::unique_ptr<Dimension> FindDimension(const CubeDef& cube, const std::string& name) {
    for (std::int32_t i = 0; i < cube.DimensionCount(); ++i) {
        auto dimension = cube.DimensionAt(i);
        if (EqualIgnoringCase(dimension->Name(), name)) {
            return dimension;
        }
    }
    return nullptr;
}

} // namespace

std::unique_ptr<Hierarchy> LoadedCube::FirstHierarchy(const std::string& dimension) const {
    const auto found = FindDimension(*definition, dimension);
    return found && found->HierarchyCount() > 0 ? found->HierarchyAt(0) : nullptr;
}

std::unique_ptr<Hierarchy> LoadedCube::HierarchyNamed(const std::string& dimension,
                                                      const std::string& hierarchy) const {
    const auto found = FindDimension(*definition, dimension);
    for (std::int32_t i = 0; found && i < found->HierarchyCount(); ++i) {
        auto candidate = found->HierarchyAt(i);
        if (EqualIgnoringCase(candidate->Name(), hierarchy)) {
            return candidate;
        }
    }
    return nullptr;
}

std::shared_ptr<const LoadedCube> OpenWizardCube(const WizardContext& context,
                                                 const ModSetCube::OpenedCube& name) {
    try {
        const auto own =
            context.providers.Connect(ModSetCube::ComposeConnectionText(name.cubeFile, name.cubeName));
        auto catalog = own.provider.CreateCatalog();
        catalog->SetActiveConnection(own.connection);
        auto cube = catalog->CubeAt(0);
        return std::make_shared<const LoadedCube>(LoadedCube{name, std::move(cube), std::move(catalog)});
    } catch (...) {
        ModError::ReportError(context.Messages(), ModError::CurrentError(), "", "setCubesName", "ModSetCube");
        return nullptr;
    }
}

std::string InBrackets(const std::string& key) { return ReplaceAll(key, "]", "]]"); }

std::string InFormula(const std::string& text) { return ReplaceAll(text, "\"", "\"\""); }

std::vector<MemberRow> ListRows(const WizardContext& context, const std::string& cubeFile,
                                const ModSetCube::MemberListing& listing) {
    constexpr std::int32_t rowsAxis = 1;
    const ServerAction action(context.servers); // a list that is opened asks by itself
    const auto cellset = ModSetCube::ListMembersCellset(context.providers, cubeFile, listing);
    std::vector<MemberRow> rows;
    const std::int32_t positions = cellset->PositionCount(rowsAxis);
    rows.reserve(static_cast<std::size_t>(positions));
    for (std::int32_t position = 0; position < positions; ++position) {
        auto first = cellset->MemberAt(rowsAxis, position, 0);
        std::string caption = first.caption.value_or("");
        if (caption.empty()) {
            continue;
        }
        const std::int32_t members = cellset->MemberCount(rowsAxis, position);
        if (members > 1) {
            caption = cellset->MemberAt(rowsAxis, position, members - 1).caption.value_or("");
        }
        rows.push_back({std::move(first.name), std::move(caption)});
    }
    return rows;
}

std::vector<MemberChoice> ListChoices(const WizardContext& context, const std::string& cubeFile,
                                      const ModSetCube::MemberListing& listing) {
    std::vector<MemberChoice> choices;
    for (MemberRow& row : ListRows(context, cubeFile, listing)) {
        std::string text = CaptionWithKey(row.code, row.name);
        choices.push_back({std::move(row.code), std::move(text)});
    }
    return choices;
}

} // namespace qel
