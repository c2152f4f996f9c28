// Tests memory streams, file names, identifiers, stopwatches and message outputs.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "foundation/urOS/AppOutput.h"
#include "foundation/urOS/DebugChannel.h"
#include "foundation/urOS/Filename.h"
#include "foundation/urOS/FirstError.h"
#include "foundation/urOS/MemoryIOStream.h"
#include "foundation/urOS/StopWatch.h"
#include "foundation/urOS/Uuid.h"
#include "foundation/urOS/sysInfo.h"
#include "foundation/urOS/tests/CapturedOutput.h"

namespace urOS {
namespace {

TEST(MemoryIOStream, KeepsItsContentsInBlocksAcrossClosing) {
    MemoryIOStream stream(4);
    EXPECT_TRUE(stream.write("x", 1).isError()) << "not open yet";
    ASSERT_TRUE(stream.open(openForWriting).ok());
    EXPECT_TRUE(stream.write("abcdef", 6).ok());
    EXPECT_TRUE(stream.write("ghi", 3).ok());
    EXPECT_TRUE(stream.close().ok());
    ASSERT_EQ(stream.blockCount(), 3U);
    EXPECT_EQ(stream.block(1), "efgh");
    EXPECT_EQ(stream.block(2), "i");

    ASSERT_TRUE(stream.open(openRead | openWrite).ok());
    EXPECT_TRUE(stream.seek(3).ok());
    EXPECT_TRUE(stream.write("DE", 2).ok());
    char text[10] = {};
    std::size_t done = 0;
    EXPECT_TRUE(stream.read(text, 10, &done).ok());
    EXPECT_EQ(std::string(text, done), "fghi");
    EXPECT_EQ(stream.tell(), 9U);
    EXPECT_TRUE(stream.seek(10).isError());
    ASSERT_TRUE(stream.open(openRead).ok());
    EXPECT_TRUE(stream.write("x", 1, &done).isError());
    EXPECT_EQ(done, 0U);
    ASSERT_TRUE(stream.open(openWrite | openAppend).ok());
    EXPECT_TRUE(stream.write("jk", 2, &done).ok());
    EXPECT_EQ(done, 2U);
    EXPECT_TRUE(stream.read(text, 1, &done).isError());
    EXPECT_EQ(done, 0U);
    EXPECT_EQ(stream.contents(), "abcDEfghijk");
    ASSERT_TRUE(stream.open(openForWriting).ok());
    EXPECT_EQ(stream.size() + stream.blockCount(), 0U);
}

TEST(FirstError, IsThrownOnceAndOthersArePrinted) {
    struct Leaver {
        ~Leaver() noexcept(false) { errors.leaveDestructor(); }
        FirstError const& errors;
    };
    CapturedOutput const output;
    FirstError errors("here");
    errors.print();
    EXPECT_NO_THROW(errors.leaveDestructor());
    EXPECT_TRUE(errors.guard([] {}));
    EXPECT_FALSE(errors.guard([] { throw std::runtime_error("broken"); }));
    EXPECT_FALSE(errors.guard([] { throw 7; }));
    EXPECT_THROW(errors.leaveDestructor(), std::runtime_error);
    auto const leaveWithAnother = [&] {
        Leaver const leaver{errors};
        throw 8;
    };
    EXPECT_THROW(leaveWithAnother(), int);
    EXPECT_EQ(output.text(), "here: unknown exception\nhere: broken\n");
}

TEST(Filename, TakesPathsApartAndJoinsThem) {
    struct Case {
        char const *path, *directory, *base, *extension;
    };
    for (Case const& c : {Case{"a/b/c.tar.gz", "a/b", "c.tar.gz", "gz"}, Case{"c", "", "c", ""},
                          Case{"/c", "/", "c", ""}, Case{"a.d/c", "a.d", "c", ""}, Case{"a/", "a", "", ""},
                          Case{"a/.hidden", "a", ".hidden", ""}, Case{"", "", "", ""}}) {
        Filename const name{urString::IString(c.path)};
        EXPECT_EQ(name.directory().asUTF8(), c.directory) << c.path;
        EXPECT_EQ(name.basename().asUTF8(), c.base) << c.path;
        EXPECT_EQ(name.extension().asUTF8(), c.extension) << c.path;
    }
    EXPECT_EQ(Filename::join("a/b", "c").asUTF8(), "a/b/c");
    EXPECT_EQ(Filename::join("a/", "c").asUTF8(), "a/c");
    EXPECT_EQ(Filename::join("", "c").asUTF8(), "c");
    EXPECT_EQ(Filename::join("a", "/c").asUTF8(), "/c");
    EXPECT_EQ(std::filesystem::path(Filename("a/b")), "a/b");
}

TEST(Uuid, WritesAndReadsItsText) {
    Uuid const id(0x01234567U, 0x89ABCDEFU, 0x00112233U, 0xFFEEDDCCU);
    EXPECT_EQ(id.asString(), "01234567-89ab-cdef-0011-2233ffeeddcc");
    Uuid read;
    EXPECT_TRUE(read.parse("01234567-89AB-cdef-0011-2233ffeeddcc"));
    EXPECT_EQ(read, id);
    for (char const* wrong : {"", "01234567-89ab-cdef-0011-2233ffeeddc", "01234567-89ab-cdef-0011-2233ffeeddc-",
                              "01234567089ab-cdef-0011-2233ffeeddcc", "01234567-89ab-cdef-0011-2233ffeeddcg"}) {
        EXPECT_FALSE(read.parse(wrong)) << wrong;
    }
    EXPECT_EQ(read, id);
    EXPECT_LT(Uuid(1, 0, 0, 0).compare(Uuid(1, 0, 0, 1)), 0);
}

TEST(Uuid, GeneratesDifferentOnesOfVersionFour) {
    std::set<Uuid> seen;
    for (int i = 0; i < 100; ++i) {
        Uuid id;
        id.generate();
        urString::CString const text = id.asString();
        EXPECT_EQ(text[14], '4');
        EXPECT_NE(std::string("89ab").find(text[19]), std::string::npos);
        seen.insert(id);
    }
    EXPECT_EQ(seen.size(), 100U);
}

TEST(Uuid, HashesSoThatNobodyCanChooseCollisions) {
    UuidHash const hash;
    std::set<std::size_t> seen;
    for (std::uint32_t i = 0; i < 1000; ++i) {
        Uuid const id(i, 7, i, 7);
        EXPECT_EQ(std::hash<Uuid>()(id), 0U);
        EXPECT_EQ(hash(id), UuidHash(hash)(id));
        seen.insert(hash(id));
    }
    EXPECT_GT(seen.size(), 990U);
    EXPECT_NE(hash(Uuid()), UuidHash()(Uuid())) << "each has its own secret";
}

TEST(StopWatch, AddsUpOnlyWhileItRuns) {
    auto const wait = [] { std::this_thread::sleep_for(std::chrono::milliseconds(5)); };
    StopWatch watch;
    double former = 0;
    for (int round = 0; round < 2; ++round) {
        wait();
        EXPECT_EQ(watch.elapsed(), former);
        watch.start();
        wait();
        EXPECT_GE(watch.elapsed(), former + 0.005);
        watch.start();  // runs already
        watch.stop();
        EXPECT_GE(watch.elapsed(), former + 0.005);
        former = watch.elapsed();
    }
    watch.clear();
    EXPECT_EQ(watch.elapsed(), 0.0);
}

TEST(SysInfo, ResidentMemoryGrowsWithTouchedMemory) {
    std::uint64_t const before = sysInfo().processResidentMemory();
    std::vector<char> touched(64U << 20, 'x');
    std::uint64_t const after = sysInfo().processResidentMemory();
    EXPECT_GT(before, 100U);
    EXPECT_GE(after, before + 60 * 1024) << touched[1];
}

TEST(DebugChannel, PrintsOnlyWhileEnabledToItsOutputOrTheApplications) {
    MemoryIOStream stream;
    ASSERT_TRUE(stream.open(openForWriting).ok());
    DebugChannel channel;
    AppOutput::getInstance().open(stream);
    channel.print("%s", "lost");
    channel.enable();
    channel.print("%.02fMB\n", 1.5);
    EXPECT_EQ(stream.contents(), "1.50MB\n");

    MemoryIOStream other;
    ASSERT_TRUE(other.open(openForWriting).ok());
    OStream out(other);
    DebugChannel copy = channel;
    copy.setOutput(&out);
    copy.print("%d", 7);
    copy.disable();
    copy.print("lost");
    EXPECT_EQ(other.contents(), "7");
    EXPECT_TRUE(channel.isEnabled());
    EXPECT_TRUE(AppOutput::getInstance().open(urString::IString("-"), false).ok());
}

TEST(AppOutput, DashIsTheStandardOutputInOrderWithPrintf) {
    testing::internal::CaptureStdout();
    AppOutput::getInstance().print("a%d", 1);
    std::printf("b");
    AppOutput::getInstance().print("c");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "a1bc");
    EXPECT_TRUE(AppOutput::getInstance().open(urString::IString("/none/none"), false).isError());
    AppOutput::getInstance().print("dropped");
    EXPECT_TRUE(AppOutput::getInstance().open(urString::IString("-"), false).ok());
}

}  // namespace
}  // namespace urOS
