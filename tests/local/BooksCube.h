#pragma once

#include "engine/build/BuildCube.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>

namespace qel::test {

/// A folder of its own for a test, removed with everything in it.
class TemporaryFolder {
public:
    TemporaryFolder() : path_(std::filesystem::path(testing::TempDir()) / UniqueName()) {
        std::filesystem::create_directories(path_);
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }
    const std::filesystem::path& Path() const { return path_; }

private:
    static std::string UniqueName() {
        const auto* const test = testing::UnitTest::GetInstance()->current_test_info();
        return fmt::format("qel-{}-{}-{}", test->test_suite_name(), test->name(), std::random_device()());
    }

    std::filesystem::path path_;
};

/// Builds the cubes of tests/books.
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
