#include "cli/LevelPath.h"

#include "text/CaseFold.h"
#include "text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

namespace qel {

namespace {

std::string TakeBracketed(std::string_view& text, std::string_view whole) {
    std::string name;
    std::size_t place = 1;
    while (true) {
        const auto end = text.find(']', place);
        if (end == std::string_view::npos) {
            throw std::invalid_argument(fmt::format("The level '{}' has a '[' without ']'", whole));
        }
        name += text.substr(place, end - place);
        if (end + 1 >= text.size() || text[end + 1] != ']') {
            text.remove_prefix(end + 1);
            return name;
        }
        name += ']';
        place = end + 2;
    }
}

std::vector<std::string> SplitPath(std::string_view whole) {
    std::vector<std::string> parts;
    auto text = whole;
    while (true) {
        if (text.starts_with('[')) {
            parts.push_back(TakeBracketed(text, whole));
        } else {
            const auto end = std::min(text.find('.'), text.size());
            parts.emplace_back(text.substr(0, end));
            text.remove_prefix(end);
        }
        if (text.empty()) {
            return parts;
        }
        if (text.front() != '.') {
            throw std::invalid_argument(fmt::format("The level '{}' has no '.' after a name", whole));
        }
        text.remove_prefix(1);
    }
}

/// Steps of the path may be left out from the left, and the hierarchy between dimension and level.
bool Matches(const LevelPlace& place, const std::vector<std::string>& parts) {
    const auto& dimension = place.cube->Dimensions()[place.hierarchy->DimensionIndex()].name;
    const auto& hierarchy = place.hierarchy->Name();
    if (!EqualIgnoringCase(parts.back(), place.level->name)) {
        return false;
    }
    if (parts.size() == 1) {
        return true;
    }
    if (parts.size() == 2) {
        return EqualIgnoringCase(parts[0], dimension) || EqualIgnoringCase(parts[0], hierarchy);
    }
    return parts.size() == 3 && EqualIgnoringCase(parts[0], dimension) &&
           EqualIgnoringCase(parts[1], hierarchy);
}

std::string NamesOf(const std::vector<LevelPlace>& places) {
    std::string names;
    for (const auto& place : places) {
        names += fmt::format("\n  {} of the cube {}", FullName(place), place.cube->Name());
    }
    return names;
}

/// The levels of the cube of that name, or of all when it is empty.
std::vector<LevelPlace> LevelsOf(const engine::CubeFile& file, std::string_view cubeName) {
    std::vector<LevelPlace> levels;
    for (const auto& cube : file.Cubes()) {
        if (!cubeName.empty() && !EqualIgnoringCase(cube.Name(), cubeName)) {
            continue;
        }
        for (const auto& hierarchy : cube.Hierarchies()) {
            for (const auto& level : hierarchy.Levels()) {
                levels.push_back({&cube, &hierarchy, &level});
            }
        }
    }
    if (levels.empty()) {
        throw std::invalid_argument(fmt::format("The file has no cube '{}'", cubeName));
    }
    return levels;
}

} // namespace

std::string FullName(const LevelPlace& place) {
    const auto quoted = [](const std::string& name) { return ReplaceAll(name, "]", "]]"); };
    return fmt::format("[{}].[{}].[{}]",
                       quoted(place.cube->Dimensions()[place.hierarchy->DimensionIndex()].name),
                       quoted(place.hierarchy->Name()), quoted(place.level->name));
}

LevelPlace FindLevel(const engine::CubeFile& file, std::string_view path, std::string_view cubeName) {
    const auto parts = SplitPath(path);
    const auto all = LevelsOf(file, cubeName);
    std::vector<LevelPlace> found;
    std::copy_if(all.begin(), all.end(), std::back_inserter(found),
                 [&](const LevelPlace& place) { return Matches(place, parts); });
    if (found.empty()) {
        throw std::invalid_argument(fmt::format("There is no level '{}'; there are:{}", path, NamesOf(all)));
    }
    if (found.size() > 1) {
        throw std::invalid_argument(
            fmt::format("Several levels are called '{}', name one in full, and its cube with --cube:{}", path,
                        NamesOf(found)));
    }
    return found.front();
}

} // namespace qel
