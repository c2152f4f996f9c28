// Files, and replacing them as a whole.
#include <gtest/gtest.h>

#if defined(__linux__)
#include <unistd.h>
#endif

#include <filesystem>
#include <fstream>
#include <sstream>

#include "foundation/ur/tests/TemporaryFolder.h"
#include "foundation/urOS/AtomicFile.h"
#include "foundation/urOS/File.h"
#include "foundation/urOS/OStream.h"

namespace urOS {
namespace {

namespace fs = std::filesystem;

/// Each test in a folder of its own.
class Files : public testing::Test {
protected:
    [[nodiscard]] std::string path(char const* name) const { return (folder_ / name).string(); }
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

TEST_F(Files, WriteFromTheStartReadSeekAndAppend) {
    constexpr bool namesAreBytes = sizeof(fs::path::value_type) == 1;  // then one that is no UTF-8 is a name, too
    std::string const name = path(namesAreBytes ? "caf\xC3\xA9 \xFF" : "caf\xC3\xA9");
    put(name, "something longer that has to go");
    File file;
    ASSERT_TRUE(file.open(wide(name), static_cast<OpenMode>(9)).ok());
    EXPECT_TRUE(file.write("0123456789", 10).ok());
    ASSERT_TRUE(file.open(wide(name), openWrite | openAppend).ok());
    EXPECT_TRUE(file.write("ab", 2).ok());
    EXPECT_TRUE(file.close().ok());
    EXPECT_EQ(textOf(name), "0123456789ab");

    ASSERT_TRUE(file.open(wide(name), openRead).ok());
    std::uint64_t size = 0;
    EXPECT_TRUE(file.size(size).ok());
    EXPECT_EQ(size, 12U);
    EXPECT_TRUE(file.seek(9).ok());
    urString::CString rest;
    EXPECT_TRUE(file.readAll(rest).ok());
    EXPECT_EQ(rest, "9ab");
    EXPECT_TRUE(file.write("x", 1).isError());
}

TEST_F(Files, WhatCannotBeOpenedSaysWhy) {
    File file;
    urUtil::Error const error = file.open(wide(path("none/none")), openRead);
    EXPECT_EQ(error.code(), ENOENT);
    EXPECT_NE(error.message().find("none/none"), std::string_view::npos);
    std::size_t done = 7;
    EXPECT_TRUE(file.read(&done, 1, &done).isError());
    EXPECT_EQ(done, 0U);
    EXPECT_TRUE(file.close().ok());
    put(path("other"), "kept");
    urString::IString const withNul = wide(path("other") + '\0' + "x");
    EXPECT_EQ(file.open(withNul, openForWriting).code(), EINVAL);
    EXPECT_EQ(AtomicFile().open(withNul).code(), EINVAL);
    EXPECT_EQ(textOf(path("other")), "kept");
}

TEST_F(Files, TextPassesThroughTheBufferInOrder) {
    std::string expected;
    File file;
    ASSERT_TRUE(file.open(wide(path("text")), openForWriting).ok());
    {
        OStream out(file);
        for (int i = 0; i < 3000; ++i) {
            out.print("%d", i);
            out.put(',');
            out.write(i == 1000 ? std::string(10000, 'x') : "yz");
            expected += std::to_string(i) + "," + (i == 1000 ? std::string(10000, 'x') : "yz");
        }
    }
    EXPECT_EQ(textOf(path("text")), expected);
}

TEST_F(Files, ACommittedFileTakesTheOldOnesPlace) {
    put(path("target"), "old");
    AtomicFile file;
    ASSERT_TRUE(file.open(wide(path("target"))).ok());
    ASSERT_TRUE(file.write("new", 3).ok());
    EXPECT_EQ(textOf(path("target")), "old");
    EXPECT_TRUE(file.commit().ok());
    EXPECT_EQ(textOf(path("target")), "new");
    EXPECT_EQ(fileCount(), 1U);
    EXPECT_TRUE(file.commit().isError()) << "there is nothing left to commit";
}

TEST_F(Files, WhatIsNotCommittedOrFailsLeavesTheOldFileAndNothingElse) {
    put(path("target"), "old");
    {
        AtomicFile file;
        ASSERT_TRUE(file.open(wide(path("target"))).ok());
        ASSERT_TRUE(file.write("new", 3).ok());
    }
    AtomicFile file;
    ASSERT_TRUE(file.open(wide(path("target"))).ok());
    ASSERT_TRUE(file.write("new", 3).ok());
    fs::remove(path("target"));
    fs::create_directories(path("target/in the way"));
    EXPECT_TRUE(file.commit().isError());
    EXPECT_TRUE(file.open(wide(path("no folder/target"))).isError());
    EXPECT_TRUE(file.commit().isError());
    EXPECT_EQ(fileCount(), 1U);
}

#if defined(__linux__)

TEST_F(Files, PermissionsAndTheLinkToAFileOutliveIt) {
    put(path("target"), "old");
    fs::permissions(path("target"), static_cast<fs::perms>(0640));
    fs::create_symlink(path("target"), path("link"));
    AtomicFile file;
    ASSERT_TRUE(file.open(wide(path("link"))).ok() && file.write("new", 3).ok() && file.commit().ok());
    EXPECT_EQ(textOf(path("target")), "new");
    EXPECT_EQ(fs::status(path("target")).permissions(), static_cast<fs::perms>(0640));
    EXPECT_TRUE(fs::is_symlink(path("link")));
}

TEST_F(Files, ALinkToNothingLeadsToWhereTheFileIsMade) {
    fs::create_symlink("new", path("link"));
    fs::create_symlink("circle", path("circle"));
    AtomicFile file;
    ASSERT_TRUE(file.open(wide(path("link"))).ok());
    EXPECT_TRUE(file.write("new", 3).ok());
    EXPECT_EQ(fileCount(), 2U) << "a process that dies here leaves nothing";
    EXPECT_TRUE(file.commit().ok());
    EXPECT_EQ(textOf(path("new")), "new");
    EXPECT_TRUE(fs::is_symlink(path("link")));
    EXPECT_EQ(file.open(wide(path("circle"))).code(), ELOOP);
    EXPECT_EQ(file.open({}).code(), ENOENT);
    EXPECT_EQ(fileCount(), 3U);
}

TEST_F(Files, ADeviceIsWrittenToDirectlyAndItsFirstErrorStays) {
    File device;
    ASSERT_TRUE(device.open("/dev/full", openWrite).ok());
    OStream full(device);
    full.put('x');
    EXPECT_TRUE(full.error().ok());
    EXPECT_EQ(full.flush().code(), ENOSPC);
    EXPECT_EQ(full.flush().code(), ENOSPC);

    AtomicFile file;
    ASSERT_TRUE(file.open(urString::IString("/dev/full")).ok());
    EXPECT_EQ(file.write("x", 1).code(), ENOSPC);
    EXPECT_EQ(file.commit().code(), ENOSPC);
    ASSERT_TRUE(file.open(urString::IString("/dev/null")).ok());
    EXPECT_TRUE(file.write("x", 1).ok());
    EXPECT_TRUE(file.commit().ok());
}

#endif

}  // namespace
}  // namespace urOS
