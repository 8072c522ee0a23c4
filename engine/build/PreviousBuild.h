#pragma once

#include "engine/build/Definition.h"
#include "engine/build/FilePrint.h"
#include "engine/build/KeptFacts.h"
#include "engine/storage/FileImage.h"
#include "engine/storage/MappedFile.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace qel::engine {

/// How the build of one cube goes on from a build before.
struct Continuation {
    bool keeps = false; ///< the new file keeps its facts for the next build
    FilePrint definition;
    std::optional<KeptRows> previous;
    std::string obstacle; ///< why every line is read
};

/// Why a build cannot go on from another one, or an empty text.
std::string ContinuationObstacle(const CubeDefinition& cube, const Definition& definition);

/// A cube file with the facts that it keeps.
class PreviousBuild {
public:
    /// Raises EngineError: FileNotFound, NotACubeFile, UnsupportedVersion, DamagedFile.
    explicit PreviousBuild(const std::filesystem::path& path);

    /// Takes the facts of the cube with this number, which were built with the definition of this print, or
    /// says why not. This must outlive them.
    void Take(std::uint32_t cube, Continuation& continuation) const;

private:
    MappedFile file_;
    FileImage image_;
};

} // namespace qel::engine
