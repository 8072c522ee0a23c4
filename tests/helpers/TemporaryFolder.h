#pragma once

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

namespace qel::test {

/// A new folder, deleted at the end of the test.
class TemporaryFolder {
public:
    TemporaryFolder()
        : path_(std::filesystem::temp_directory_path() /
                ("qel-test-" + std::to_string(std::random_device()()) + "-" +
                 std::to_string(std::random_device()()))) {
        std::filesystem::create_directories(path_);
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::filesystem::path Path(std::string_view name = "") const {
        return path_ / std::u8string(name.begin(), name.end());
    }
    std::filesystem::path Write(std::string_view name, std::string_view text) const {
        std::ofstream file(Path(name), std::ios::binary);
        file << text;
        return Path(name);
    }
    std::string Read(std::string_view name) const {
        std::ifstream file(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
    std::size_t FileCount() const {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(path_)) {
            count += entry.is_directory() ? 0U : 1U;
        }
        return count;
    }

private:
    std::filesystem::path path_;
};

} // namespace qel::test
