#pragma once

#include "platform/data/DataAccess.h"
#include "platform/data/xmla/XmlStream.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace qel {

/// One tuple of an axis.
using CellsetPosition = std::vector<CellsetMember>;

/// The answer to an Execute that is multidimensional.
class CellsetAnswer : public XmlHandler {
public:
    void StartElement(std::string_view name, const XmlAttributes& attributes) override;
    void EndElement(std::string_view name, const std::string& text) override;

    const std::vector<std::vector<CellsetPosition>>& Axes() const { return axes_; }
    /// Raises AutomationError for a cell that was sent twice or lies outside of the axes.
    void RequireCellsOnAxes() const;
    /// The cell with that ordinal (the columns axis varies fastest); Null when it is empty. Raises
    /// AutomationError with the server's message when the cell holds an error.
    Variant Cell(std::uint64_t ordinal) const;

private:
    void StartAxis(std::string_view name);
    void EndInMember(std::string_view name, const std::string& text);
    void EndInCell(std::string_view name, const std::string& text);

    std::vector<std::vector<CellsetPosition>> axes_;
    std::unordered_map<std::uint64_t, Variant> cells_;
    std::unordered_map<std::uint64_t, std::string> cellErrors_;
    std::unordered_set<std::uint64_t> ordinals_; ///< of all cells that were sent
    std::optional<std::uint64_t> repeated_;      ///< one that was sent twice
    bool inAxes_ = false;                        ///< below Axes, not in their description
    bool inResultAxis_ = false;                  ///< not in the slicer's
    bool inMember_ = false, inCell_ = false;
    std::uint64_t ordinal_ = 0;
    std::string valueType_;
};

/// The last name of a path: "1]" of "[Date].[2024].[1]]]". Empty for a path that ends with a key.
std::string LastNameOf(std::string_view path);

} // namespace qel
