// A fixture with a folder for each file test.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

#include "foundation/ur/tests/TemporaryFolder.h"
#include "foundation/urString/IString.h"

namespace urOS {

namespace fs = std::filesystem;

/// Each test has its own folder.
class Files : public testing::Test {
protected:
    [[nodiscard]] std::string path(char const* name = ".") const { return (folder_ / name).string(); }
    [[nodiscard]] static urString::IString wide(std::string const& name) {
        return {name, urString::Encoding::multibyte};
    }
    [[nodiscard]] static std::string textOf(fs::path const& name) {
        std::ostringstream text;
        text << std::ifstream(name, std::ios::binary).rdbuf();
        return text.str();
    }
    static void put(fs::path const& name, std::string_view text) { std::ofstream(name, std::ios::binary) << text; }
    [[nodiscard]] std::size_t fileCount() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(folder_.path()), fs::directory_iterator()));
    }

private:
    ::test::TemporaryFolder const folder_;
};

}  // namespace urOS
