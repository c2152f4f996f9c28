// A temporary folder for tests.
#pragma once

#include <filesystem>
#include <random>
#include <string>

namespace test {

/// Creates a new, empty folder; the destructor removes it with its content.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::random_device random;
        do path_ = std::filesystem::temp_directory_path() / ("nx-test-" + std::to_string(random()));
        while (!std::filesystem::create_directory(path_));
    }
    TemporaryFolder(TemporaryFolder const&) = delete;
    TemporaryFolder& operator=(TemporaryFolder const&) = delete;
    ~TemporaryFolder() { std::filesystem::remove_all(path_); }

    [[nodiscard]] std::filesystem::path const& path() const { return path_; }
    [[nodiscard]] std::filesystem::path operator/(std::string const& name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

}  // namespace test
