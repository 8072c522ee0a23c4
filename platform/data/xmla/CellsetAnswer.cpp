#include "platform/data/xmla/CellsetAnswer.h"

#include "platform/data/xmla/RowsetAnswer.h"
#include "platform/data/xmla/ServerErrors.h"

#include <fmt/format.h>

#include <charconv>
#include <system_error>

namespace qel {

namespace {

template <class Number>
Number NumberIn(std::string_view text, const char* what) {
    Number number = 0;
    const auto [end, failed] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (failed != std::errc() || end != text.data() + text.size()) {
        throw ServerError(errorServerAnswer, fmt::format("The server sent '{}' as {}.", text, what));
    }
    return number;
}

/// Mondrian sends a cell's error as its text.
constexpr std::string_view errorText = "#ERR:";

} // namespace

std::string LastNameOf(std::string_view path) {
    std::string name;
    bool inBrackets = false, isKey = false;
    for (std::size_t i = 0; i < path.size(); ++i) {
        const char character = path[i];
        if (!inBrackets && character == '[') {
            inBrackets = true;
            isKey = i > 0 && path[i - 1] == '&';
            name.clear();
        } else if (inBrackets && character == ']' && i + 1 < path.size() && path[i + 1] == ']') {
            name += path[++i];
        } else if (inBrackets && character == ']') {
            inBrackets = false;
        } else if (inBrackets) {
            name += character;
        }
    }
    return isKey ? std::string() : name;
}

void CellsetAnswer::StartElement(std::string_view name, const XmlAttributes& attributes) {
    if (inMember_) {
        return; // a member property of any name
    }
    if (name == "Axes") {
        inAxes_ = true;
    } else if (inAxes_ && name == "Axis") {
        StartAxis(attributes.Of("name"));
    } else if (inResultAxis_ && name == "Tuple") {
        axes_.back().emplace_back();
    } else if (inResultAxis_ && name == "Member" && !axes_.back().empty()) {
        axes_.back().back().emplace_back();
        inMember_ = true;
    } else if (name == "Cell" && !attributes.Of("CellOrdinal").empty()) {
        inCell_ = true;
        ordinal_ = NumberIn<std::uint64_t>(attributes.Of("CellOrdinal"), "a cell's number");
        if (!ordinals_.insert(ordinal_).second) {
            repeated_ = ordinal_;
        }
    } else if (inCell_ && name == "Value") {
        valueType_ = attributes.Of("type");
    }
}

void CellsetAnswer::StartAxis(std::string_view name) {
    inResultAxis_ = name != "SlicerAxis";
    if (!inResultAxis_) {
        return;
    }
    if (name != fmt::format("Axis{}", axes_.size())) {
        throw ServerError(errorServerAnswer,
                          fmt::format("The server sent axis '{}' out of its order.", name));
    }
    axes_.emplace_back();
}

void CellsetAnswer::EndElement(std::string_view name, const std::string& text) {
    if (name == "Axes") {
        inAxes_ = inResultAxis_ = false;
    } else if (inMember_) {
        EndInMember(name, text);
    } else if (inCell_) {
        EndInCell(name, text);
    } else if (name == "Axis") {
        inResultAxis_ = false;
    }
}

void CellsetAnswer::EndInMember(std::string_view name, const std::string& text) {
    CellsetMember& member = axes_.back().back().back();
    if (name == "UName") {
        member.uniqueName = text;
    } else if (name == "Caption") {
        member.caption = text;
    } else if (name == "LName") {
        member.levelName = LastNameOf(text);
    } else if (name == "LNum") {
        member.levelDepth = NumberIn<std::int32_t>(text, "a level's number");
    }
    if (name != "Member") {
        return;
    }
    inMember_ = false;
    member.name = LastNameOf(member.uniqueName);
    if (member.name.empty()) {
        member.name = member.caption.value_or("");
    }
}

void CellsetAnswer::EndInCell(std::string_view name, const std::string& text) {
    if (name == "Cell") {
        inCell_ = false;
    } else if (name == "Description") { // of an Error in the Value
        cellErrors_[ordinal_] = text;
    } else if (name == "Value" && text.starts_with(errorText)) {
        cellErrors_[ordinal_] = text.substr(errorText.size());
    } else if (name == "Value" && !cellErrors_.contains(ordinal_)) {
        cells_[ordinal_] = TypedValue(valueType_, text);
    }
}

void CellsetAnswer::RequireCellsOnAxes() const {
    std::uint64_t count = 1;
    for (const auto& axis : axes_) {
        count *= axis.size();
    }
    for (const std::uint64_t ordinal : ordinals_) {
        if (ordinal >= count) {
            throw ServerError(
                errorServerAnswer,
                fmt::format("The server sent cell {} of an answer with {} cells.", ordinal, count));
        }
    }
    if (repeated_) {
        throw ServerError(errorServerAnswer, fmt::format("The server sent cell {} twice.", *repeated_));
    }
}

Variant CellsetAnswer::Cell(std::uint64_t ordinal) const {
    const auto failed = cellErrors_.find(ordinal);
    if (failed != cellErrors_.end()) {
        throw ServerError(errorServerFault, "The server could not compute the cell:" + failed->second);
    }
    const auto found = cells_.find(ordinal);
    return found == cells_.end() ? Variant(Null{}) : found->second;
}

} // namespace qel
