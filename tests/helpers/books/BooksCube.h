#pragma once

#include "qel/engine/BuildCube.h"
#include "tests/helpers/TemporaryFolder.h"

#include <filesystem>
#include <string>

namespace qel::test {

/// Builds the cubes of tests/helpers/books.
inline std::string BuildBooks(const std::filesystem::path& output) {
    engine::BuildOptions options;
    options.definition = std::filesystem::path(QEL_BOOKS_FOLDER) / "books.json";
    options.output = output;
    engine::BuildCube(options);
    return output.string();
}

inline std::string TextFor(const std::string& cubeFile, const std::string& cube) {
    return "Provider=MSOLAP;Data Source=" + cubeFile + ";Initial Catalog=" + cube +
           ";Client Cache Size=25;Auto Synch Period=10000";
}

} // namespace qel::test
